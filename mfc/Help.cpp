// The application's help.
#include <afxwin.h>

void CWinApp::OnHelp()
{
    const CWnd* pMainWnd = AfxGetMainWnd();
    if (pMainWnd && m_pszHelpFilePath && GetFileAttributesW(m_pszHelpFilePath) != INVALID_FILE_ATTRIBUTES)
        WinHelpW(pMainWnd->m_hWnd, m_pszHelpFilePath, HELP_FINDER, 0);
}
