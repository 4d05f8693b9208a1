// The exchange of data between a dialog's controls and its members.
#include <afxwin.h>

static HWND FindControl(CDataExchange* pDX, int nIDC)
{
    HWND hControl = GetDlgItem(pDX->m_pDlgWnd->m_hWnd, nIDC);
    if (!hControl)
        AfxThrowInvalidArgException();
    return hControl;
}

static bool IsRadioButton(HWND hWnd)
{
    return (SendMessageW(hWnd, WM_GETDLGCODE, 0, 0) & DLGC_RADIOBUTTON) != 0;
}

static HWND NextInGroup(HWND hWnd)
{
    hWnd = GetWindow(hWnd, GW_HWNDNEXT);
    return hWnd && (GetWindowLongW(hWnd, GWL_STYLE) & WS_GROUP) == 0 ? hWnd : nullptr;
}

CDataExchange::CDataExchange(CWnd* pDlgWnd, BOOL bSaveAndValidate)
    : m_bSaveAndValidate(bSaveAndValidate), m_pDlgWnd(pDlgWnd)
{
}

BOOL CWnd::UpdateData(BOOL bSaveAndValidate)
{
    CDataExchange exchange(this, bSaveAndValidate);
    try
    {
        DoDataExchange(&exchange);
    }
    catch (CException*)
    {
        return FALSE;
    }
    return TRUE;
}

void CWnd::DoDataExchange(CDataExchange*) {}

void AFXAPI DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl)
{
    if (!rControl.m_hWnd)
        rControl.SubclassWindow(FindControl(pDX, nIDC));
}

void AFXAPI DDX_Check(CDataExchange* pDX, int nIDC, int& value)
{
    HWND hControl = FindControl(pDX, nIDC);
    if (pDX->m_bSaveAndValidate)
        value = static_cast<int>(SendMessageW(hControl, BM_GETCHECK, 0, 0));
    else
        SendMessageW(hControl, BM_SETCHECK, value, 0);
}

void AFXAPI DDX_Radio(CDataExchange* pDX, int nIDC, int& value)
{
    HWND hControl = FindControl(pDX, nIDC);
    if (pDX->m_bSaveAndValidate)
        value = -1;
    int iButton = 0;
    for (; hControl; hControl = NextInGroup(hControl))
    {
        if (!IsRadioButton(hControl))
            continue;
        if (!pDX->m_bSaveAndValidate)
            SendMessageW(hControl, BM_SETCHECK, iButton == value, 0);
        else if (SendMessageW(hControl, BM_GETCHECK, 0, 0) != 0)
            value = iButton;
        ++iButton;
    }
}

void AFXAPI DDX_Text(CDataExchange* pDX, int nIDC, CString& value)
{
    HWND hControl = FindControl(pDX, nIDC);
    if (pDX->m_bSaveAndValidate)
        CWnd::FromHandle(hControl)->GetWindowText(value);
    else
        SetWindowTextW(hControl, value);
}
