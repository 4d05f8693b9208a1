// The framework's start: from the entry point's arguments to the exit code.
#include <afxwin.h>

#include <stdlib.h>

static void NameExecutable(CWinApp* pApp)
{
    wchar_t szPath[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, szPath, _countof(szPath));
    CString strPath(szPath);
    const int iDot = strPath.ReverseFind(L'.');
    if (iDot > strPath.ReverseFind(L'\\'))
        strPath = strPath.Left(iDot);
    if (!pApp->m_pszExeName)
        pApp->m_pszExeName = _wcsdup(strPath.Mid(strPath.ReverseFind(L'\\') + 1));
    if (!pApp->m_pszHelpFilePath)
        pApp->m_pszHelpFilePath = _wcsdup(strPath + L".HLP");
}

BOOL AFXAPI AfxWinInit(HINSTANCE hInstance, HINSTANCE, LPTSTR, int)
{
    // A drive without a medium is told by the call that meets it, and not by a box of the system's own.
    SetErrorMode(SetErrorMode(0) | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);

    AFX_MODULE_STATE* pState = AfxGetModuleState();
    pState->m_hCurrentInstanceHandle = hInstance;
    pState->m_hCurrentResourceHandle = hInstance;

    CWinApp* pApp = AfxGetApp();
    if (!pApp)
        return TRUE;
    NameExecutable(pApp);
    if (!pApp->m_pszAppName)
    {
        CString strTitle;
        pApp->m_pszAppName =
            _wcsdup(strTitle.LoadString(AFX_IDS_APP_TITLE) ? strTitle.GetString() : pApp->m_pszExeName);
    }
    return TRUE;
}

int AFXAPI AfxWinMain(HINSTANCE hInstance, HINSTANCE hPrevInstance, LPTSTR lpCmdLine, int nCmdShow)
{
    if (!AfxGetApp() || !AfxWinInit(hInstance, hPrevInstance, lpCmdLine, nCmdShow))
        return -1;
    if (!AfxGetApp()->InitInstance())
        return AfxGetApp()->ExitInstance();
    return AfxGetApp()->Run();
}
