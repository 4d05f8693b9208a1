// The framework's message boxes.
#include <afxwin.h>

int CWinApp::DoMessageBox(LPCTSTR lpszPrompt, UINT nType, UINT)
{
    if ((nType & MB_ICONMASK) == 0 && (nType & MB_TYPEMASK) != MB_ABORTRETRYIGNORE &&
        (nType & MB_TYPEMASK) != MB_RETRYCANCEL)
        nType |= MB_ICONEXCLAMATION;
    const CWnd* pOwner = CWnd::GetSafeOwner();
    return MessageBoxW(pOwner ? pOwner->m_hWnd : nullptr, lpszPrompt, m_pszAppName, nType);
}

int AFXAPI AfxMessageBox(LPCTSTR lpszText, UINT nType, UINT nIDHelp)
{
    return AfxGetApp() ? AfxGetApp()->DoMessageBox(lpszText, nType, nIDHelp) : 0;
}

int AFXAPI AfxMessageBox(UINT nIDPrompt, UINT nType, UINT nIDHelp)
{
    CString strPrompt;
    strPrompt.LoadString(nIDPrompt);
    return AfxMessageBox(strPrompt, nType, nIDHelp == static_cast<UINT>(-1) ? nIDPrompt : nIDHelp);
}
