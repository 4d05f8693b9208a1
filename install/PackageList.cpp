#include "install/PackageList.h"

#include "app/RunState.h"
#include "foundation/DiskFiles.h"
#include "foundation/FolderPaths.h"
#include "foundation/InstallLog.h"
#include "foundation/Owners.h"
#include "foundation/SystemFacts.h"
#include "install/FileReplacement.h"

namespace
{
struct CopyRule
{
    const wchar_t* pszPrefix;
    bool bApplies;
    bool bUnlessFound; // not where the machine has the library anyway
    CString strTargetFolder;
};
} // namespace

// Loads the library and frees it again: true if the machine's own search finds it. The package's copy lies beside the
// running setup, where that search would meet it, so it is hidden under another name meanwhile. On a read-only medium
// that fails, and the package's copy is taken for the machine's.
static bool TryLibraryOfMachine(const wchar_t* pszValue)
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
    return library.IsOpen();
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

// A folder record makes one level and no parents. So one ahead of the first file makes nothing where the install folder
// isn't there yet.
template <size_t nRules>
static void ProcessLine(const wchar_t* pszLine, const CopyRule (&rules)[nRules])
{
    for (const CopyRule& rule : rules)
    {
        const wchar_t* pszFile = FindRecordValue(pszLine, rule.pszPrefix);
        if (pszFile == nullptr)
            continue;
        if (rule.bApplies && !(rule.bUnlessFound && TryLibraryOfMachine(pszFile)))
            CopyRecord(pszFile, rule.strTargetFolder);
        return;
    }
    if (const wchar_t* pszFolder = FindRecordValue(pszLine, kMakeDir))
        CreateDirectoryW(g_strInstDir + L"\\" + pszFolder, nullptr);
}

void ProcessPackageList(const wchar_t* pszList)
{
    const bool bWow64 = IsWow64() != 0;
    const bool bPortable = g_nInstallKind == KIND_PORTABLE;
    const CopyRule rules[] = {
        { kFileCopy, true, false, g_strInstDir },
        { kFileCopyX64, bPortable || bWow64, false, g_strInstDir },
        { kFileCopyPortable, bPortable, false, CutLastPart(g_strInstDir) }, // beside the folder
        { kFileCopyIfAbsent, true, !bPortable, g_strInstDir },
    };
    CInstallLogReader list(pszList);
    while (list.ReadLine())
        ProcessLine(list.Line(), rules);
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
    strPath.Trim(kPathTrim);
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
