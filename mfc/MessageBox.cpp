// The framework's message boxes.
#include <afxwin.h>

int AFXAPI AfxMessageBox(LPCTSTR lpszText, UINT nType)
{
    if (!AfxGetApp())
        return 0;
    if ((nType & MB_ICONMASK) == 0 && (nType & MB_TYPEMASK) != MB_ABORTRETRYIGNORE &&
        (nType & MB_TYPEMASK) != MB_RETRYCANCEL)
        nType |= MB_ICONEXCLAMATION;
    const CWnd* pOwner = CWnd::GetSafeOwner();
    return MessageBoxW(pOwner ? pOwner->m_hWnd : nullptr, lpszText, AfxGetApp()->m_pszAppName, nType);
}

int AFXAPI AfxMessageBox(UINT nIDPrompt, UINT nType)
{
    CString strPrompt;
    strPrompt.LoadString(nIDPrompt);
    return AfxMessageBox(strPrompt, nType);
}
