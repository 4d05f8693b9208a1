#include <afxwin.h>

#include <stdlib.h>

IMPLEMENT_DYNAMIC(CWinApp, CWinThread)

CWinApp::CWinApp(LPCTSTR lpszAppName)
    : m_pszAppName(lpszAppName ? _wcsdup(lpszAppName) : nullptr), m_pszExeName(nullptr), m_pszHelpFilePath(nullptr),
      m_dwRestartManagerSupportFlags(0)
{
    AfxGetModuleState()->m_pCurrentWinApp = this;
}

CWinApp::~CWinApp()
{
    free(const_cast<LPTSTR>(m_pszAppName));
    free(const_cast<LPTSTR>(m_pszExeName));
    free(const_cast<LPTSTR>(m_pszHelpFilePath));
    if (AfxGetApp() == this)
        AfxGetModuleState()->m_pCurrentWinApp = nullptr;
}

BOOL CWinApp::InitInstance()
{
    return TRUE;
}

int CWinApp::Run()
{
    if (!m_pMainWnd)
        PostQuitMessage(0);
    return CWinThread::Run();
}
