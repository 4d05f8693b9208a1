#include "uninstall/Relaunch.h"

#include <afxwin.h>
#include <process.h>
#include <stdlib.h>

#include "app/Product.h"
#include "app/RunState.h"
#include "foundation/ProcessLaunch.h"
#include "foundation/StringTable.h"
#include "foundation/SystemFacts.h"
#include "res/resource.h"
#include "uninstall/BootList.h"
#include "uninstall/UninstallDriver.h"

static constexpr DWORD kFirstStageExitMs = 1000; // the only hand-shake between the two stages

// The file is made, and stands empty.
static CString MakeTempFile()
{
    wchar_t szTempFolder[MAX_PATH] = L"";
    wchar_t szCopy[MAX_PATH] = L"";
    GetTempPathW(_countof(szTempFolder), szTempFolder);
    GetTempFileNameW(szTempFolder, L"uni", 0, szCopy);
    return szCopy;
}

// The runtime joins the arguments by blanks and doesn't quote them.
static CString QuoteIfBlank(const CString& strPath)
{
    return strPath.FindOneOf(L" \t") >= 0 ? L"\"" + strPath + L"\"" : strPath;
}

void RelaunchFromTemp()
{
    const CString strCopy = MakeTempFile();
    const CString strModule = GetModulePath();
    CopyFileW(strModule, strCopy, FALSE);
    const CString strProgram = QuoteIfBlank(strCopy);
    const CString strUninstaller = QuoteIfBlank(strModule);
    const wchar_t* pszSilent = g_nSilent != SILENT_OFF ? L"-s" : nullptr;
    _wexecl(strCopy, static_cast<const wchar_t*>(strProgram), L"-delself", static_cast<const wchar_t*>(strUninstaller),
            pszSilent, nullptr);
}

// Drive and folder of the path, with the backslash that ends the folder.
static CString GetDriveAndFolder(const wchar_t* pszPath)
{
    wchar_t szDrive[_MAX_DRIVE];
    wchar_t szFolder[_MAX_DIR];
    _wsplitpath(pszPath, szDrive, szFolder, nullptr, nullptr);
    return CString(szDrive) + szFolder;
}

static void UnregisterThumbnailHandler(const CString& strFolder)
{
    if (IsNT6OrLater())
        RunAndWait(L"regsvr32.exe /s /u \"" + strFolder + kThumbnailDll + L"\"", strFolder, kBoundedWaitMs);
}

void FinishUninstall(const wchar_t* pszUninstaller)
{
    Sleep(kFirstStageExitMs);

    // Before all else: the removal of the running copy stands arranged whatever happens later.
    DeleteAtReboot(GetModulePath());

    const CString strFolder = GetDriveAndFolder(pszUninstaller);
    UnregisterThumbnailHandler(strFolder);
    DeleteFileW(pszUninstaller);
    RunUninstall(strFolder);

    // Only a hand-made command line with "-v" comes here: the first stage never passes that switch on.
    if (g_nSilent == SILENT_OFF)
        AfxMessageBox(LoadResString(IDS_UNINSTALLED));
    exit(0);
}
