// The package's file list as an install reads it.
#include "install/PackageList.h"

#include <windows.h>

#include "app/RunState.h"
#include "foundation/FolderPaths.h"
#include "foundation/InstallLog.h"
#include "foundation/SystemFacts.h"
#include "install/FileReplacement.h"

static bool IsAlways(const wchar_t*, bool)
{
    return true;
}

static bool IsPortable(const wchar_t*, bool)
{
    return g_nInstallKind == KIND_PORTABLE;
}

// Asks whether the machine has the library anyway. The package's own copy lies beside the running setup, where the
// library search would find it, so it is hidden under another name meanwhile. On a read-only medium that fails, and
// the package's copy is taken for the machine's.
static bool IsLibraryAbsent(const wchar_t* pszValue)
{
    CString strName;
    CString strTarget;
    SplitFileValue(pszValue, strName, strTarget);
    strName.TrimRight();
    const CString strPackageFile = WithSeparator(g_strSourceDir) + strName;
    const CString strHidden = strPackageFile + L".toinst";

    MoveFileW(strPackageFile, strHidden);
    const CLibraryOwner library(LoadLibraryW(strName));
    MoveFileW(strHidden, strPackageFile);
    return !library.IsOpen();
}

static bool IsPortableOrLibraryAbsent(const wchar_t* pszValue, bool bWow64)
{
    return IsPortable(pszValue, bWow64) || IsLibraryAbsent(pszValue);
}

static void CopyRecord(const wchar_t* pszValue, const CString& strTargetFolder)
{
    CString strSource;
    CString strTarget;
    if (SplitFileValue(pszValue, strSource, strTarget))
        ReplaceOneFile(strSource, g_strSourceDir, strTargetFolder, strTarget);
    else
        CopyMatchingFiles(pszValue, g_strSourceDir, strTargetFolder);
}

static void CopyToInstallFolder(const wchar_t* pszValue)
{
    CopyRecord(pszValue, g_strInstDir);
}

// What a portable install keeps beside its folder: the starter.
static void CopyToParentFolder(const wchar_t* pszValue)
{
    CopyRecord(pszValue, CutLastPart(g_strInstDir));
}

// One level, no parents: ahead of the first copied file the install folder may not be there yet.
static void MakeDirectory(const wchar_t* pszValue)
{
    CreateDirectoryW(g_strInstDir + L"\\" + pszValue, nullptr);
}

struct RecordAction
{
    const wchar_t* pszPrefix;
    bool (*pfnApplies)(const wchar_t* pszValue, bool bWow64);
    void (*pfnAct)(const wchar_t* pszValue);
};

static bool IsWow64OrPortable(const wchar_t* pszValue, bool bWow64)
{
    return bWow64 || IsPortable(pszValue, bWow64);
}

static const RecordAction kRecordActions[] = {
    { kFileCopy, IsAlways, CopyToInstallFolder },
    { kFileCopyX64, IsWow64OrPortable, CopyToInstallFolder },
    { kFileCopyPortable, IsPortable, CopyToParentFolder },
    { kFileCopyIfAbsent, IsPortableOrLibraryAbsent, CopyToInstallFolder },
    { kMakeDir, IsAlways, MakeDirectory },
};

static void ProcessLine(const wchar_t* pszLine, bool bWow64)
{
    for (const RecordAction& row : kRecordActions)
    {
        const wchar_t* pszValue = FindRecordValue(pszLine, row.pszPrefix);
        if (pszValue == nullptr)
            continue;
        if (row.pfnApplies(pszValue, bWow64))
            row.pfnAct(pszValue);
        return;
    }
}

void ProcessPackageList(const wchar_t* pszList)
{
    const bool bWow64 = IsWow64() != 0;
    CInstallLogReader list(pszList);
    while (list.ReadLine())
        ProcessLine(list.Line(), bWow64);
}

// The folder that the matches of a mask go to, with a backslash at its end.
static CString GetMatchTarget(const wchar_t* pszMask, const wchar_t* pszTargetFolder)
{
    CString strTarget(pszTargetFolder);
    strTarget.Replace(L'/', L'\\');
    strTarget = WithSeparator(strTarget);
    CString strMask(pszMask);
    strMask.Replace(L'/', L'\\');
    strTarget += strMask;
    return strTarget.Left(strTarget.ReverseFind(L'\\') + 1);
}

// The trimming takes the leading backslashes of a network path too, so that a missing folder there isn't made.
static void MakeFolder(const CString& strFolder)
{
    CString strPath(strFolder);
    strPath.Trim(L" \t\r\n\\");
    CreateFoldersAbove(strPath, 1);
    CreateDirectoryW(strPath, nullptr);
}

int CopyMatchingFiles(const wchar_t* pszMask, const wchar_t* pszSourceFolder, const wchar_t* pszTargetFolder)
{
    const CString strPattern = WithSeparator(pszSourceFolder) + pszMask;
    WIN32_FIND_DATAW match;
    CFindOwner find(FindFirstFileW(strPattern, &match));
    if (!find.IsOpen())
        return 0;

    const CString strTarget = GetMatchTarget(pszMask, pszTargetFolder);
    if (GetFileAttributesW(strTarget) == INVALID_FILE_ATTRIBUTES)
        MakeFolder(strTarget);
    const CString strSource =
        wcschr(pszMask, L'\\') != nullptr ? strPattern.Left(strPattern.ReverseFind(L'\\')) : CString(pszSourceFolder);

    // The first failure ends the mask: what matches behind it isn't tried.
    int nCopied = 0;
    do
    {
        if (IsDotName(match.cFileName))
            continue;
        if (!ReplaceOneFile(match.cFileName, strSource, strTarget, nullptr))
            break;
        ++nCopied;
    } while (FindNextFileW(find, &match));
    return nCopied;
}
