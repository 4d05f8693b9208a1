// The framework's message boxes.
#include <afxwin.h>

namespace
{
HWND FindBoxOwner()
{
    HWND hWnd = GetActiveWindow();
    return hWnd ? GetLastActivePopup(hWnd) : nullptr;
}
} // namespace

int CWinApp::DoMessageBox(LPCTSTR lpszPrompt, UINT nType, UINT)
{
    if ((nType & MB_ICONMASK) == 0 && (nType & MB_TYPEMASK) != MB_ABORTRETRYIGNORE &&
        (nType & MB_TYPEMASK) != MB_RETRYCANCEL)
        nType |= MB_ICONEXCLAMATION;
    return MessageBoxW(FindBoxOwner(), lpszPrompt, m_pszAppName, nType);
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
