#include "app/SetupApp.h"

#include <stdlib.h>

#include "app/OtherInstances.h"
#include "app/RunState.h"
#include "app/StartBox.h"
#include "foundation/FolderPaths.h"
#include "foundation/SystemFacts.h"
#include "foundation/TextEnds.h"
#include "install/InstallRun.h"
#include "res/resource.h"
#include "uninstall/Relaunch.h"

BEGIN_MESSAGE_MAP(CSetupApp, CWinApp)
ON_COMMAND(ID_HELP, &CWinApp::OnHelp)
END_MESSAGE_MAP()

CSetupApp::CSetupApp() : CWinApp(nullptr) {}

static constexpr wchar_t kSfxNamePrefix[] = L"-sfxname=";

// Sets the silent mode and the package's folder. What stands behind the first "-v" or "-sconf" isn't looked at: such
// a "-sfxname=" is lost. Returns whether "-s" was met on the way.
static bool ScanModeSwitches()
{
    bool bDashS = false;
    g_nSilent = SILENT_ON;
    for (int i = 1; i < __argc; ++i)
    {
        const wchar_t* pszArgument = __wargv[i];
        if (_wcsicmp(pszArgument, L"-v") == 0)
        {
            g_nSilent = SILENT_OFF;
            break;
        }
        if (_wcsicmp(pszArgument, L"-s") == 0)
        {
            bDashS = true;
        }
        else if (_wcsicmp(pszArgument, L"-sconf") == 0)
        {
            g_nSilent = SILENT_REPORT;
            break;
        }
        else if (StartsWith(pszArgument, kSfxNamePrefix))
        {
            g_strSfxName = ParentFolder(pszArgument + wcslen(kSfxNamePrefix));
        }
    }
    return bDashS;
}

// The whole path is searched, folder names included.
static bool IsInstallRole()
{
    if (__argc > 1 && _wcsicmp(__wargv[1], L"-install") == 0)
        return true;
    CString strPath = GetModulePath();
    strPath.MakeLower();
    return strPath.Find(L"setup.exe") >= 0;
}

static void UseOwnResources()
{
    AFX_MODULE_STATE* pState = AfxGetModuleState();
    pState->m_hCurrentInstanceHandle = GetModuleHandleW(nullptr);
    pState->m_hCurrentResourceHandle = GetModuleHandleW(nullptr);
    LoadStartCaption();
}

static bool ConfirmUninstall()
{
    return ShowStartBox(LoadStartText(IDS_CONFIRM_UNINSTALL), MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2) == IDYES;
}

static BOOL StartInstall(bool bDashS)
{
    if (!bDashS && g_nSilent < SILENT_REPORT)
        g_nSilent = SILENT_OFF;
    const int nOthers = CountOtherInstances();
    if (nOthers >= 1)
    {
        if (!ConfirmClosingInstances(nOthers))
            return 1;
        CloseOtherInstances(nOthers);
    }
    return RunInstall();
}

static BOOL StartUninstall()
{
    if (g_nSilent == SILENT_OFF && !ConfirmUninstall())
        return 0;
    // Nobody is asked before the product is closed: who uninstalls it wants it gone.
    const int nOthers = CountOtherInstances();
    if (nOthers >= 1)
        CloseOtherInstances(nOthers);
    RelaunchFromTemp();
    return 0;
}

BOOL CSetupApp::InitInstance()
{
    const bool bDashS = ScanModeSwitches();

    // The copy in the temporary folder, whatever its name. Case matters here, unlike with "-install".
    if (__argc > 2 && wcscmp(__wargv[1], L"-delself") == 0)
        FinishUninstall(__wargv[2]);

    UseOwnResources();
    return IsInstallRole() ? StartInstall(bDashS) : StartUninstall();
}
