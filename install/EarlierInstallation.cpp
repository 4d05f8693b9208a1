#include "install/EarlierInstallation.h"

#include <shlobj.h>

#include "app/Product.h"
#include "app/RunState.h"
#include "foundation/DiskFiles.h"
#include "foundation/FolderPaths.h"
#include "foundation/InstallLog.h"
#include "foundation/Owners.h"
#include "foundation/RegistryValues.h"
#include "foundation/SystemFacts.h"
#include "foundation/TextEnds.h"

CString FindInstalledFolder()
{
    CString strFolder = ReadRegString(HKEY_LOCAL_MACHINE, kProductKey, kFolderValue);
    if (strFolder.IsEmpty())
    {
        const CString strExe = ReadRegString(HKEY_LOCAL_MACHINE, kAppPathsKey, nullptr);
        const int nExe = strExe.Find(kProductExePath);
        strFolder = nExe >= 0 ? strExe.Left(nExe) : CString();
    }
    return CutTrailingBackslash(strFolder);
}

void TakeOverKind()
{
    if (g_nInstallKind >= KIND_PORTABLE)
        return;
    const bool bAllUsers = ReadRegString(HKEY_LOCAL_MACHINE, kProductKey, kKindValue) == kAllUsersLetter;
    g_nInstallKind = bAllUsers ? KIND_ALL_USERS : KIND_CURRENT_USER;
}

namespace
{
// The folders that links of the run's kind lie in, in lower case; the Programs folder with a backslash at its end.
struct MenuFolders
{
    CString strPrograms;
    CString strStartup;
};
} // namespace

static MenuFolders GetMenuFolders()
{
    MenuFolders folders;
    if (g_nInstallKind == KIND_ALL_USERS)
    {
        folders.strPrograms = GetSpecialFolder(CSIDL_COMMON_PROGRAMS);
        folders.strStartup = GetSpecialFolder(CSIDL_COMMON_STARTUP);
    }
    else if (g_nInstallKind == KIND_CURRENT_USER)
    {
        folders.strPrograms = GetSpecialFolder(CSIDL_PROGRAMS);
        folders.strStartup = GetSpecialFolder(CSIDL_STARTUP);
    }
    if (!EndsWith(folders.strPrograms, L"\\"))
        folders.strPrograms += L'\\';
    folders.strPrograms.MakeLower();
    folders.strStartup.MakeLower();
    return folders;
}

// An empty Startup folder is found in every path, so that a portable run takes over no group.
static bool IsGroupLink(const wchar_t* pszLink, const MenuFolders& folders)
{
    CString strLink(pszLink);
    strLink.MakeLower();
    return StartsWith(strLink, folders.strPrograms) && wcsstr(strLink, folders.strStartup) == nullptr;
}

static void TakeGroupFromLog(CInstallLogReader& log)
{
    const MenuFolders folders = GetMenuFolders();
    while (log.ReadLine())
    {
        const wchar_t* pszLink = FindRecordValue(log.Line(), kShellLink);
        if (pszLink != nullptr && IsGroupLink(pszLink, folders))
            g_strGroup = ParentFolder(pszLink + folders.strPrograms.GetLength());
    }
}

void TakeOverGroup()
{
    CInstallLogReader log(g_strInstDir + kFileListPath);
    if (log.IsOpen())
    {
        TakeGroupFromLog(log);
        return;
    }
    CInstallLogReader secondLog(g_strInstDir + kSecondListPath);
    if (secondLog.IsOpen())
        TakeGroupFromLog(secondLog);
}

// Makes a file in the common Startup folder and deletes it. Decides nothing. Not to be tidied away: a file that can't
// be opened stays, and that is a visible trace.
static void ProbeFolder(const wchar_t* pszFolder)
{
    wchar_t szProbe[MAX_PATH] = L"";
    GetTempFileNameW(pszFolder, L"h5t", 0, szProbe);
    CStreamOwner probe(_wfopen(szProbe, L"w"));
    if (!probe.IsOpen())
        return;
    probe.Close();
    DeleteFileW(szProbe);
}

static bool HasProductLink(const CString& strFolder)
{
    return IsFolderPath(strFolder) && PathExists(strFolder + kProductLinkPath);
}

void TakeOverAutoStart()
{
    const CString strCommon = GetSpecialFolder(CSIDL_COMMON_STARTUP);
    const CString strUser = GetSpecialFolder(CSIDL_STARTUP);
    if (IsFolderPath(strCommon))
        ProbeFolder(strCommon);
    g_bAutoStart = HasProductLink(strCommon);
    if (HasProductLink(strUser))
        g_bAutoStart = 1;
}
