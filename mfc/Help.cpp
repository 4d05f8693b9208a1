// The application's help.
#include <afxwin.h>

void CWinApp::OnHelp()
{
    if (m_pszHelpFilePath && GetFileAttributesW(m_pszHelpFilePath) != INVALID_FILE_ATTRIBUTES)
        WinHelpW(GetActiveWindow(), m_pszHelpFilePath, HELP_FINDER, 0);
}
