#include "install/InstallRun.h"

#include <afxwin.h>
#include <stdlib.h>

#include "app/Product.h"
#include "app/RunState.h"
#include "foundation/DiskFiles.h"
#include "foundation/FolderPaths.h"
#include "foundation/ProcessLaunch.h"
#include "foundation/StringTable.h"
#include "foundation/SystemFacts.h"
#include "install/EarlierInstallation.h"
#include "install/FileVersion.h"
#include "install/InstallDriver.h"
#include "install/InstallSwitches.h"
#include "res/resource.h"
#include "wizard/WizardRun.h"

static CString GetModuleFolder()
{
    const CString strPath = GetModulePath();
    return strPath.Left(strPath.ReverseFind(L'\\'));
}

static void ChooseTarget()
{
    g_strInstDir = FindInstalledFolder();
    g_strSourceDir = GetModuleFolder();
    ScanInstallSwitches();
    if (g_strInstDir.IsEmpty())
    {
        g_strInstDir = GetProgramFilesFolder() + L"\\" + kProductName;
        g_bFreshInstall = 1;
    }
    g_strGroup = kProductName;
}

static Version ReadVersion(const wchar_t* pszPath)
{
    ReadFileVersion(pszPath);
    return { g_nVerMajor, g_nVerMinor, g_nVerFix, g_nVerBuild };
}

static bool ConfirmVersion(const Version& installed, const Version& package)
{
    CString strQuestion;
    if (FoldVersion(package) < FoldVersion(installed))
        strQuestion.Format(LoadResString(IDS_OLDER_PACKAGE), installed.nMajor, installed.nMinor, installed.nFix,
                           installed.nBuild, package.nMajor, package.nMinor, package.nFix, package.nBuild);
    else
        strQuestion.Format(LoadResString(IDS_SAME_PACKAGE), package.nMajor, package.nMinor, package.nFix,
                           package.nBuild);
    return AfxMessageBox(strQuestion, MB_YESNO | MB_ICONQUESTION) == IDYES;
}

// Leaves the package's version in the globals. An installed product that isn't there counts as version 0, and so as an
// older one. False if the user declines a package that isn't newer.
static bool CompareVersions()
{
    const Version installed = ReadVersion(g_strInstDir + kProductExePath);
    const Version package = ReadVersion(g_strSourceDir + kProductExePath);
    if (g_nSilent == SILENT_OFF && FoldVersion(installed) >= FoldVersion(package))
        return ConfirmVersion(installed, package);
    g_bUpgrade = 1;
    return true;
}

static bool PrepareRepeatedInstall()
{
    if (!CompareVersions())
        return false;
    TakeOverKind();
    TakeOverGroup();
    TakeOverAutoStart();
    return true;
}

[[noreturn]] static void ReportDamagedPackage()
{
    AfxMessageBox(FormatResString(IDS_DAMAGED_PACKAGE, kHomePageAddress), MB_ICONERROR);
    ShellExecuteW(nullptr, L"open", kHomePageAddress, nullptr, nullptr, SW_SHOW);
    exit(1);
}

// An empty list is a list: only a missing one counts as damage.
static bool IsPackageDamaged()
{
    return g_nVerMajor == 0 || !PathExists(g_strSourceDir + kFileListPath);
}

static void RunSilently()
{
    // A silent first installation goes to all users, also after a lone "-instport".
    if (g_bFreshInstall)
        g_nInstallKind = KIND_ALL_USERS;
    PerformInstall();
    if (g_nSilent == SILENT_REPORT)
        ShowReportPage();
}

static void EndRun()
{
    SetCurrentDirectoryW(g_strInstDir);
    if (!g_bRunAfter)
        return;
    if (g_bRebootNeeded)
        RestartComputer();
    else
        RunAndWait(g_strInstDir + kProductExePath, nullptr, 0);
}

int RunInstall()
{
    ChooseTarget();
    if (g_bFreshInstall)
        ReadFileVersion(g_strSourceDir + kProductExePath);
    else if (!PrepareRepeatedInstall())
        return 1;

    if (IsPackageDamaged())
        ReportDamagedPackage();
    if (g_nSilent != SILENT_OFF)
        RunSilently();
    else if (!ShowWizard())
        return 1;
    EndRun();
    return 0;
}
