#include "install/InstallDriver.h"

#include <afx.h>
#include <shlobj.h>

#include "app/Product.h"
#include "app/RunState.h"
#include "foundation/DiskFiles.h"
#include "foundation/FolderPaths.h"
#include "foundation/InstallLog.h"
#include "foundation/ProcessLaunch.h"
#include "foundation/StringTable.h"
#include "foundation/SystemFacts.h"
#include "install/FileReplacement.h"
#include "install/PackageList.h"
#include "install/Registration.h"
#include "install/ShellLinks.h"
#include "res/resource.h"
#include "uninstall/LogReplay.h"

// The links are taken away by the old logs while these still stand. The files go by the new package's list, of which
// only the "File Del: " records and the folders count: what the list copies is written over anyway.
static void ClearEarlierInstallation()
{
    RemoveLoggedLinks(g_strInstDir + kSecondListPath);
    RemoveLoggedLinks(g_strInstDir + kFileListPath);
    RemoveLoggedFiles(g_strSourceDir + kFileListPath, g_strInstDir, kFileDel);
}

// The bare line end makes what follows start on a line of its own.
static void CopyPackage()
{
    ProcessPackageList(g_strSourceDir + kFileListPath);
    CopyMatchingFiles(kFileListName, g_strSourceDir, g_strInstDir);
    AppendLogLine(g_strInstDir + kFileListPath, L"");
}

static int FolderByKind(int nCommonFolder, int nUserFolder)
{
    return g_nInstallKind == KIND_ALL_USERS ? nCommonFolder : nUserFolder;
}

static constexpr int kShortestProgramsFolder = 4; // characters

// The folder that the group goes to. Without a common one the whole rest of the install is for the current user.
static CString SettleProgramsFolder()
{
    if (g_nInstallKind == KIND_ALL_USERS)
    {
        CString strCommon = GetSpecialFolder(CSIDL_COMMON_PROGRAMS);
        if (strCommon.GetLength() >= kShortestProgramsFolder)
            return strCommon;
        g_nInstallKind = KIND_CURRENT_USER;
    }
    return GetSpecialFolder(CSIDL_PROGRAMS);
}

static void CreateProductLink(const CString& strFolder)
{
    CreateShellLink(g_strInstDir + kProductExePath,
                    strFolder + L"\\" + LoadResString(IDS_PRODUCT_NAME) + kLinkExtension, L"", SW_SHOWNORMAL, nullptr,
                    GetSpecialFolder(CSIDL_MYPICTURES));
}

static void CreateHelpLink(const CString& strFolder)
{
    CreateShellLink(g_strInstDir + kHelpFilePath, strFolder + L"\\" + LoadResString(IDS_HELP_LINK) + kLinkExtension,
                    L"", SW_SHOWNORMAL, nullptr, nullptr);
}

// Only the deepest folder of a nested group is recorded, made or not: a removal climbs from there. An empty name gives
// the programs folder itself with a backslash behind it.
static void CreateProgramGroup()
{
    const CString strPrograms = SettleProgramsFolder();
    g_strGroup.Replace(L'/', L'\\');
    g_strGroup.Trim(kPathTrim);

    const CString strGroupFolder = strPrograms + L"\\" + g_strGroup;
    // The search starts behind the separator and the group's first character: the programs folder isn't made.
    CreateFoldersAbove(strGroupFolder, strPrograms.GetLength() + 2);
    CreateDirectoryW(strGroupFolder, nullptr);
    AppendLogLine(g_strInstDir + kFileListPath, kMadeDir + strGroupFolder);
    if (!PathExists(strGroupFolder))
        return;
    CreateProductLink(strGroupFolder);
    CreateHelpLink(strGroupFolder);
}

static void CreateLinks()
{
    CreateProgramGroup();
    if (g_bDeskIcon)
        CreateProductLink(GetSpecialFolder(FolderByKind(CSIDL_COMMON_DESKTOPDIRECTORY, CSIDL_DESKTOP)));
    if (g_bAutoStart)
        CreateProductLink(GetSpecialFolder(FolderByKind(CSIDL_COMMON_STARTUP, CSIDL_STARTUP)));
}

static void TakeOverSettings()
{
    if (g_strSfxName.IsEmpty())
        return;
    g_bSettingsCopied = ReplaceOneFile(kSettingsFile, g_strSfxName, g_strInstDir, nullptr);
    ReplaceOneFile(kRegistrySettingsFile, g_strSfxName, g_strInstDir, nullptr);
}

static void LetProductRegister()
{
    RunAndWait(L"\"" + g_strInstDir + kProductExePath + L"\" -regonly", nullptr, 0);
}

int PerformInstall()
{
    if (!g_bFreshInstall)
        ClearEarlierInstallation();
    CopyPackage();
    if (g_nInstallKind != KIND_PORTABLE)
    {
        CreateLinks();
        RegisterWithSystem();
    }
    TakeOverSettings();
    if (g_nInstallKind != KIND_PORTABLE)
        LetProductRegister();
    return 0;
}
