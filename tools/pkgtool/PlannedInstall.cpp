// What an install of a package would make. The functions bear the names of the engine's own, and follow them step by
// step: what looks odd here is odd there.
#include "tools/pkgtool/PlannedInstall.h"

#include <algorithm>

#include "app/Product.h"
#include "foundation/DiskFiles.h"
#include "foundation/FolderPaths.h"
#include "foundation/InstallLog.h"
#include "foundation/Owners.h"
#include "foundation/TextEnds.h"

const wchar_t* ProgramsPlace(InstallKind nKind)
{
    return nKind == KIND_ALL_USERS ? L"<common programs>" : L"<user's programs>";
}

const wchar_t* DesktopPlace(InstallKind nKind)
{
    return nKind == KIND_ALL_USERS ? L"<common desktop>" : L"<user's desktop>";
}

namespace
{
// One record on its way.
struct RecordCopy
{
    const Package& package;
    Plan& plan;
    const ListLine& line;
    bool bIfLibraryAbsent;

    void Report(FindingKind nKind, const CString& strDetail = CString()) const
    {
        plan.findings.Add(nKind, line.nNumber, line.strText, strDetail);
    }
};

struct PlannedAction
{
    const wchar_t* pszPrefix;
    bool bPortableOnly;
    bool bIfLibraryAbsent; // a portable install doesn't ask
    void (*pfnAct)(const RecordCopy& copy, const wchar_t* pszValue);
};
} // namespace

bool IsRealFolder(const wchar_t* pszPath)
{
    const DWORD dwAttributes = GetFileAttributesW(pszPath);
    return dwAttributes != INVALID_FILE_ATTRIBUTES && (dwAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// The path as the user wrote it: without the place, unless it is all.
static CString WithoutPlace(const wchar_t* pszPath)
{
    const wchar_t* pszRest = wcschr(pszPath, L'\\');
    return pszRest != nullptr ? pszRest + 1 : pszPath;
}

static bool CopyOneFile(const RecordCopy& copy, const CString& strSource, const CString& strTarget)
{
    const TreeEntry file = { strTarget, false, strSource, copy.line.nNumber, copy.bIfLibraryAbsent };
    return !IsRealFolder(strSource) && copy.plan.tree.PutFile(file);
}

static void LeaveForReboot(const RecordCopy& copy, const CString& strSource, const CString& strTarget)
{
    CFileTree& tree = copy.plan.tree;
    tree.RemoveAtBoot(strTarget);
    const CString strNew = strTarget + L".new";
    tree.RemoveFile(strNew);
    if (CopyOneFile(copy, strSource, strNew))
        tree.MoveAtBoot(strNew, strTarget);
}

// Nothing is in use, so that only a folder in the file's place is ever renamed.
static void ClearTarget(const RecordCopy& copy, const CString& strSource, const CString& strTarget)
{
    CFileTree& tree = copy.plan.tree;
    if (!tree.Exists(strTarget) || tree.RemoveFile(strTarget))
        return;
    CString strOld = strTarget + L".old";
    if (tree.Exists(strOld) && !tree.RemoveFile(strOld))
    {
        tree.RemoveAtBoot(strOld);
        strOld += L"2";
        tree.RemoveFile(strOld);
    }
    if (tree.Move(strTarget, strOld))
        tree.RemoveAtBoot(strOld);
    else
        LeaveForReboot(copy, strSource, strTarget);
}

static bool IsPortableOnly(const wchar_t* pszLine)
{
    return StartsWith(pszLine, kFileCopyX64) || StartsWith(pszLine, kFileCopyPortable);
}

// A portable install may have a build of its own: the record for all installs first, and its own over that.
static bool IsPortableBuild(const RecordCopy& copy, const TreeEntry& earlier)
{
    for (const ListLine& line : copy.package.list.lines)
    {
        if (line.nNumber == earlier.nLine && IsPortableOnly(line.strText))
            return false;
    }
    return IsPortableOnly(copy.line.strText);
}

// A file that landed under the name before, but not of the same source. A folder is no source, and reported as such.
static void ReportOverwritten(const RecordCopy& copy, const CString& strSource, const CString& strTarget)
{
    const TreeEntry* pEarlier = copy.plan.tree.Find(strTarget);
    if (pEarlier == nullptr || IsRealFolder(strSource))
        return;
    if (pEarlier->bFolder)
        copy.Report(FINDING_TARGET_IS_FOLDER, WithoutPlace(pEarlier->strPath));
    else if (FoldPath(pEarlier->strSource) != FoldPath(strSource) && !IsPortableBuild(copy, *pEarlier))
        copy.Report(FINDING_WRITTEN_TWICE, pEarlier->strSource.Mid(copy.package.strFolder.GetLength() + 1));
}

static bool ReplaceOneFile(const RecordCopy& copy, const CString& strSource, const CString& strTarget)
{
    if (!PathExists(strSource))
        return false;
    ReportOverwritten(copy, strSource, strTarget);
    ClearTarget(copy, strSource, strTarget);
    return CopyOneFile(copy, strSource, strTarget);
}

static void ReportRenamed(const RecordCopy& copy, const CString& strSource, const CString& strTarget)
{
    const CFileTree& tree = copy.plan.tree;
    const CString strFolder = CutLastPart(strTarget);
    if (!PathExists(strSource) || IsRealFolder(strSource))
        copy.Report(FINDING_NO_MATCH);
    else if (!tree.IsFolder(kTarget) && StartsWith(FoldPath(strTarget), FoldPath(kTarget)))
        copy.Report(FINDING_RENAMED_FIRST);
    else if (!tree.IsFolder(strFolder))
        copy.Report(FINDING_RENAMED_TOO_EARLY, WithoutPlace(strFolder));
    else if (tree.IsFolder(strTarget))
        copy.Report(FINDING_TARGET_IS_FOLDER, WithoutPlace(strTarget));
}

static void NoteNamed(const RecordCopy& copy, const CString& strFile)
{
    copy.plan.named.insert(FoldPath(strFile));
}

// A name in UTF-8 meets no file, but the one that it was meant for isn't forgotten.
static void NoteMeant(const RecordCopy& copy, const CString& strName)
{
    NoteNamed(copy, WithSeparator(copy.package.strFolder) + DecodeUtf8(strName));
}

static void CopyRenamed(const RecordCopy& copy, const CString& strName, const CString& strTarget)
{
    const CString strSource = WithSeparator(copy.package.strFolder) + strName;
    ReportRenamed(copy, strSource, strTarget);
    NoteNamed(copy, strSource);
    NoteMeant(copy, strName);
    ReplaceOneFile(copy, strSource, strTarget);
}

static CString GetMatchTarget(const CString& strMask, const wchar_t* pszTargetFolder)
{
    CString strTarget = WithSeparator(pszTargetFolder) + strMask;
    strTarget.Replace(L'/', L'\\');
    return strTarget.Left(strTarget.ReverseFind(L'\\') + 1);
}

static void MakeFolders(const RecordCopy& copy, CString strFolder)
{
    strFolder.Trim(kPathTrim);
    for (int i = strFolder.Find(L'\\'); i >= 0; i = strFolder.Find(L'\\', i + 1))
        copy.plan.tree.MakeFolder(strFolder.Left(i), copy.line.nNumber);
    copy.plan.tree.MakeFolder(strFolder, copy.line.nNumber);
}

// The files behind one that failed aren't copied, but the record names them.
static void CopyMatches(const RecordCopy& copy, HANDLE hFind, WIN32_FIND_DATAW match, const CString& strPattern,
                        const CString& strSourceFolder, const CString& strTarget)
{
    const CString strFound = strPattern.Left(std::max(strPattern.ReverseFind(L'\\'), strPattern.ReverseFind(L'/')) + 1);
    bool bMet = false;
    bool bGoesOn = true;
    do
    {
        const bool bFolder = (match.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if (IsDotName(match.cFileName))
            continue;
        bMet = true;
        if (bFolder)
            copy.Report(FINDING_FOLDER_CAUGHT, match.cFileName);
        else
            NoteNamed(copy, strFound + match.cFileName);
        bGoesOn = bGoesOn &&
                  ReplaceOneFile(copy, WithSeparator(strSourceFolder) + match.cFileName, strTarget + match.cFileName);
    } while (FindNextFileW(hFind, &match));
    if (!bMet)
        copy.Report(FINDING_NO_MATCH);
}

// A search for one name opens its folder, and lists may have a record for each file: each folder is read once instead.
static bool FindInFolder(Plan& plan, const CString& strPath, WIN32_FIND_DATAW& match)
{
    const CString strFolder = CutLastPart(strPath);
    const auto [folder, bNew] = plan.folders.try_emplace(strFolder);
    if (bNew)
    {
        const CFindOwner find(FindFirstFileW(strFolder + L"\\*", &match));
        for (BOOL bMore = find.IsOpen(); bMore; bMore = FindNextFileW(find, &match))
            folder->second[FoldCase(match.cFileName)] = match;
    }
    const auto file = folder->second.find(FoldCase(strPath.Mid(strFolder.GetLength() + 1)));
    if (file == folder->second.end())
        return false;
    match = file->second;
    return true;
}

static void CopyMatchingFiles(const RecordCopy& copy, const CString& strMask, const wchar_t* pszTargetFolder)
{
    const CString strPattern = WithSeparator(copy.package.strFolder) + strMask;
    WIN32_FIND_DATAW match;
    const bool bKnown = FindInFolder(copy.plan, strPattern, match);
    const CFindOwner find(bKnown ? INVALID_HANDLE_VALUE : FindFirstFileW(strPattern, &match));
    if (!bKnown && !find.IsOpen())
    {
        copy.Report(FINDING_NO_MATCH);
        NoteMeant(copy, strMask);
        return;
    }

    const CString strTarget = GetMatchTarget(strMask, pszTargetFolder);
    if (!copy.plan.tree.Exists(strTarget))
        MakeFolders(copy, strTarget);
    const CString strSourceFolder =
        strMask.Find(L'\\') >= 0 ? strPattern.Left(strPattern.ReverseFind(L'\\')) : copy.package.strFolder;
    CopyMatches(copy, find, match, strPattern, strSourceFolder, strTarget);
}

static void CopyRecord(const RecordCopy& copy, const wchar_t* pszValue, const wchar_t* pszTargetFolder)
{
    CString strSource;
    CString strTarget;
    if (SplitFileValue(pszValue, strSource, strTarget))
        CopyRenamed(copy, strSource, WithSeparator(pszTargetFolder) + strTarget);
    else
        CopyMatchingFiles(copy, strSource, pszTargetFolder);
}

static void CopyToTarget(const RecordCopy& copy, const wchar_t* pszValue)
{
    CopyRecord(copy, pszValue, kTarget);
}

static void CopyBesideTarget(const RecordCopy& copy, const wchar_t* pszValue)
{
    CopyRecord(copy, pszValue, kBeside);
}

// A file where a folder is needed: behind it nothing lands.
static void ReportTaken(const RecordCopy& copy, const CString& strFolder)
{
    const TreeEntry* pEarlier = copy.plan.tree.Find(strFolder);
    if (pEarlier != nullptr && !pEarlier->bFolder)
        copy.Report(FINDING_NAME_TAKEN, WithoutPlace(pEarlier->strPath));
}

// A portable install carries all records out: a parent that is missing there is missing in every install, and one that
// it alone has is made for its own files.
static void MakeDirectory(const RecordCopy& copy, const wchar_t* pszValue)
{
    CString strFolder = CString(kTarget) + L"\\" + pszValue;
    strFolder.Replace(L'/', L'\\');
    const CString strParent = CutLastPart(strFolder);
    if (copy.plan.nKind == KIND_PORTABLE && !copy.plan.tree.IsFolder(strParent))
        copy.Report(FINDING_MADE_TOO_EARLY, WithoutPlace(strParent));
    ReportTaken(copy, strParent);
    ReportTaken(copy, CutTrailingBackslash(strFolder));
    copy.plan.tree.MakeFolder(strFolder, copy.line.nNumber);
}

// The 64-bit records are for portable installs too: no 64-bit program takes itself for a 32-bit one.
static constexpr PlannedAction kActions[] = {
    { kFileCopy, false, false, CopyToTarget },
    { kFileCopyX64, true, false, CopyToTarget },
    { kFileCopyPortable, true, false, CopyBesideTarget },
    { kFileCopyIfAbsent, false, true, CopyToTarget },
    { kMakeDir, false, false, MakeDirectory },
};

static void ProcessLine(const Package& package, Plan& plan, const ListLine& line)
{
    const bool bPortable = plan.nKind == KIND_PORTABLE;
    for (const PlannedAction& row : kActions)
    {
        const wchar_t* pszValue = FindRecordValue(line.strText, row.pszPrefix);
        if (pszValue != nullptr && (bPortable || !row.bPortableOnly))
            row.pfnAct({ package, plan, line, row.bIfLibraryAbsent && !bPortable }, pszValue);
    }
}

static void MakeLink(CFileTree& tree, const CString& strFolder, const wchar_t* pszName)
{
    tree.PutFile({ strFolder + L"\\" + pszName + kLinkExtension, false, CString() });
}

static void MakeLinks(Plan& plan)
{
    const CString strGroup = CString(ProgramsPlace(plan.nKind)) + L"\\" + kProductName;
    plan.tree.MakeFolder(strGroup);
    MakeLink(plan.tree, strGroup, kProductName);
    MakeLink(plan.tree, strGroup, kHelpLinkName);
    MakeLink(plan.tree, DesktopPlace(plan.nKind), kProductName);
}

void PlanInstall(const Package& package, Plan& plan)
{
    for (const ListLine& line : package.list.lines)
        ProcessLine(package, plan, line);

    // The list goes along whether a record names it or not.
    const CString strSource = package.strFolder + kFileListPath;
    const CString strList = CString(kTarget) + kFileListPath;
    const ListLine noLine = { 0, false, CString() };
    plan.tree.MakeFolder(kTarget);
    ClearTarget({ package, plan, noLine, false }, strSource, strList);
    plan.tree.PutFile({ strList, false, strSource });
    if (plan.nKind != KIND_PORTABLE)
        MakeLinks(plan);
}
