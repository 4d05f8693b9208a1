#include "uninstall/UninstallDriver.h"

#include <afx.h>
#include <shlobj.h>
#include <initializer_list>

#include "app/Product.h"
#include "foundation/DiskFiles.h"
#include "foundation/Owners.h"
#include "foundation/ProcessLaunch.h"
#include "foundation/RegistryValues.h"
#include "foundation/SystemFacts.h"
#include "uninstall/AssociationRepair.h"
#include "uninstall/BootList.h"
#include "uninstall/LogReplay.h"
#include "uninstall/RegistryRemoval.h"
#include "uninstall/UserHives.h"

static void LetProductUnregister(const CString& strFolder)
{
    RunAndWait(L"\"" + strFolder + kProductExe + L"\" -unregonly", strFolder, kBoundedWaitMs);
}

static void ReplayLogs(const CString& strFolder)
{
    const CString strSecondList = strFolder + kSecondListName;
    const CString strList = strFolder + kFileListName;
    RemoveLoggedLinks(strSecondList);
    RemoveLoggedLinks(strList);
    RemoveLoggedFiles(strSecondList, strFolder);
    RemoveLoggedFiles(strList, strFolder);
    DeleteMatchingFiles(strFolder, kFileListName);
}

// The parent folder of a product whose folder name is a nested one; this product's isn't.
static void RemoveNestingFolder(const CString& strFolder)
{
    if (wcschr(kProductName, L'\\') == nullptr)
        return;
    CString strParent(strFolder);
    strParent.TrimRight(L"\\");
    strParent = strParent.Left(strParent.ReverseFind(L'\\'));
    if (!RemoveDirectoryW(strParent))
        DeleteAtReboot(strParent);
}

// The three folders are judged differently, which is not to be tidied away: one goes on the boot list even if it was
// never there, the next only if it stands, and the product's own only while that second one still stands. The folder
// ends in a backslash already: two in a row are harmless.
static void RemoveFolders(const CString& strFolder)
{
    const CString strX64 = strFolder + L"\\" + kX64Folder;
    if (!RemoveDirectoryW(strX64))
        DeleteAtReboot(strX64);

    const CString strX32 = strFolder + L"\\" + kX32Folder;
    if (!RemoveDirectoryW(strX32) && PathExists(strX32))
        DeleteAtReboot(strX32);

    if (!RemoveDirectoryW(strFolder) && PathExists(strX32))
        DeleteAtReboot(strFolder);

    RemoveNestingFolder(strFolder);
}

static void DeleteLink(const CString& strFolder)
{
    DeleteFileW(strFolder + kProductLinkPath);
}

// Takes whatever lies in the group of the default name, also what a user put there. A group of another name is reached
// through the log alone.
static void DeleteGroup(const CString& strPrograms)
{
    const CString strGroup = strPrograms + L"\\" + kProductName + L"\\";
    DeleteMatchingFiles(strGroup, L"*.*");
    RemoveDirectoryW(strGroup);
}

static void SweepMachineFolders()
{
    for (const int nFolder : { CSIDL_COMMON_STARTUP, CSIDL_COMMON_DESKTOPDIRECTORY })
    {
        const CString strFolder = GetSpecialFolder(nFolder);
        if (IsFolderPath(strFolder))
            DeleteLink(strFolder);
    }
    const CString strPrograms = GetSpecialFolder(CSIDL_COMMON_PROGRAMS);
    if (IsFolderPath(strPrograms))
        DeleteGroup(strPrograms);
}

static void SweepUserFolders(HKEY hUser)
{
    CKeyOwner folders;
    if (RegOpenKeyExW(hUser, kShellFoldersKey, 0, KEY_ALL_ACCESS, folders.Receive()) != ERROR_SUCCESS)
        return;
    for (const wchar_t* pszFolder : { L"Startup", L"Desktop" })
    {
        const CString strFolder = QueryRegText(folders, pszFolder);
        if (!strFolder.IsEmpty())
            DeleteLink(strFolder);
    }
    const CString strPrograms = QueryRegText(folders, L"Programs");
    folders.Close();
    if (!strPrograms.IsEmpty())
        DeleteGroup(strPrograms);
}

void RunUninstall(const wchar_t* pszFolder)
{
    const CString strFolder(pszFolder);

    LetProductUnregister(strFolder);
    RemoveProductRegistry(kCompanyName, kProductName, kProductName, kProductExe);
    RepairFileAssociations();
    ReplayLogs(strFolder);

    // The first stage's current folder was inherited and may be the very folder that has to go.
    SetCurrentDirectoryW(L"\\");
    RemoveFolders(strFolder);
    SweepMachineFolders();
    ForEachUserHive(SweepUserFolders);
}
