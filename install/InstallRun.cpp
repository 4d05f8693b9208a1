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
#include "res/resource.h"
#include "wizard/WizardRun.h"

static CString GetModuleFolder()
{
    const CString strPath = GetModulePath();
    return strPath.Left(strPath.ReverseFind(L'\\'));
}

// A quoted folder that ends in a backslash reaches the program with its closing quote still on it, since the runtime
// reads the two as a literal quote. Both are cut.
static CString CleanFolderArgument(const wchar_t* pszArgument)
{
    CString strFolder(pszArgument);
    if (EndsWith(strFolder, L'"'))
        strFolder = strFolder.Left(strFolder.GetLength() - 1);
    if (EndsWith(strFolder, L'\\') || EndsWith(strFolder, L'/'))
        strFolder = strFolder.Left(strFolder.GetLength() - 1);
    return strFolder;
}

// Handles the switches that begin with "-inst"; -install lands here too, and is passed over. The folder in the next
// argument isn't skipped by the scan: it is tested as a switch like any other.
static void ScanFolderSwitch(int nIndex, CString& strFolder)
{
    const bool bPortable = wcscmp(__wargv[nIndex], L"-instport") == 0;
    if (bPortable)
        g_nInstallKind = KIND_PORTABLE;
    if ((bPortable || wcscmp(__wargv[nIndex], L"-instdir") == 0) && nIndex + 1 < __argc)
        strFolder = CleanFolderArgument(__wargv[nIndex + 1]);
}

static void ScanInstallSwitches()
{
    CString strFolder;
    for (int i = 1; i < __argc; ++i)
    {
        const wchar_t* pszArgument = __wargv[i];
        if (StartsWith(pszArgument, L"-inst"))
            ScanFolderSwitch(i, strFolder);
        else if (_wcsicmp(pszArgument, L"-runafter") == 0)
            g_bRunAfter = 1;
        // Never the case, since the kind starts at all users: the switch is accepted and has no effect of its own.
        else if (g_nInstallKind == KIND_CURRENT_USER && _wcsicmp(pszArgument, L"-allusers") == 0)
            g_nInstallKind = KIND_ALL_USERS;
        else if (_wcsicmp(pszArgument, L"-autostart") == 0)
            g_bAutoStart = 1;
        else if (_wcsicmp(pszArgument, L"-nodeskico") == 0)
            g_bDeskIcon = 0;
    }
    if (!strFolder.IsEmpty())
        g_strInstDir = strFolder;
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

namespace
{
struct Version
{
    unsigned int nMajor;
    unsigned int nMinor;
    unsigned int nFix;
    unsigned int nBuild;

    unsigned int Folded() const { return FoldVersion(nMajor, nMinor, nFix, nBuild); }
};
} // namespace

static Version ReadVersion(const wchar_t* pszPath)
{
    ReadFileVersion(pszPath);
    return { g_nVerMajor, g_nVerMinor, g_nVerFix, g_nVerBuild };
}

static bool ConfirmVersion(const Version& installed, const Version& package)
{
    CString strQuestion;
    if (package.Folded() < installed.Folded())
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
    if (g_nSilent == SILENT_OFF && installed.Folded() >= package.Folded())
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
