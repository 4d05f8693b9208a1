// The classes of controls.
#include <afxwin.h>

IMPLEMENT_DYNAMIC(CButton, CWnd)
IMPLEMENT_DYNAMIC(CStatic, CWnd)
IMPLEMENT_DYNAMIC(CEdit, CWnd)

int CButton::GetCheck() const
{
    return static_cast<int>(::SendMessageW(m_hWnd, BM_GETCHECK, 0, 0));
}

void CButton::SetCheck(int nCheck)
{
    ::SendMessageW(m_hWnd, BM_SETCHECK, nCheck, 0);
}

void CEdit::SetSel(int nStartChar, int nEndChar, BOOL bNoScroll)
{
    ::SendMessageW(m_hWnd, EM_SETSEL, nStartChar, nEndChar);
    if (!bNoScroll)
        ::SendMessageW(m_hWnd, EM_SCROLLCARET, 0, 0);
}
