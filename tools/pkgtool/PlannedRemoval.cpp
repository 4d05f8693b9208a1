// What a removal would take of a planned installation. Like the install, it follows the engine step by step.
#include "tools/pkgtool/PlannedRemoval.h"

#include "app/Product.h"
#include "foundation/InstallLog.h"
#include "foundation/TextEnds.h"

// The name that a removal takes from the line; false for one that isn't a file record.
static bool FindNameToRemove(const ListLine& line, CString& strName)
{
    for (const wchar_t* pszPrefix : kRemovedPrefixes)
    {
        if (!StartsWith(line.strText, pszPrefix))
            continue;
        strName = GetNameToRemove(line.strText, pszPrefix);
        return true;
    }
    return false;
}

static CString InTarget(const wchar_t* pszName)
{
    return CString(kTarget) + L"\\" + pszName;
}

// The list that is being worked through is open and can't be removed. Like the engine, this loses the folder of a mask
// with a forward slash, and doesn't pass over "." and "..".
static void DeleteMatchingFiles(Plan& plan, const ListLine& line, const CString& strMask, const CString& strOpenList)
{
    const CString strFolder = InTarget(strMask.Left(strMask.ReverseFind(L'\\') + 1));
    for (const CString& strName : plan.tree.Match(InTarget(strMask)))
    {
        const CString strPath = strFolder + strName;
        const bool bOpen = FoldPath(strPath) == FoldPath(strOpenList);
        if (bOpen)
            plan.findings.Add(FINDING_LIST_NAMED, line.nNumber, line.strText);
        if (bOpen || !plan.tree.RemoveFile(strPath))
            plan.tree.RemoveAtBoot(strPath);
    }
}

static void ReportNamedFolder(Plan& plan, const ListLine& line, const CString& strName)
{
    const bool bRemovedOnly = StartsWith(line.strText, kFileDel) || StartsWith(line.strText, kFileOverwrite);
    if (bRemovedOnly && !IsMask(strName) && plan.tree.IsFolder(InTarget(strName)))
        plan.findings.Add(FINDING_FOLDER_DELETED, line.nNumber, line.strText, strName);
}

static void RemoveLoggedFolder(Plan& plan, const ListLine& line, const CString& strFolder, const CString& strOpenList)
{
    if (FoldPath(strFolder) == FoldPath(strOpenList))
        plan.findings.Add(FINDING_LIST_NAMED, line.nNumber, line.strText);
    if (!plan.tree.RemoveFolder(strFolder))
        plan.tree.RemoveAtBoot(strFolder);
}

static void RemoveLoggedFiles(Plan& plan, const CheckedList& list, const CString& strOpenList)
{
    CString strName;
    for (const ListLine& line : list.lines)
    {
        if (!FindNameToRemove(line, strName))
            continue;
        ReportNamedFolder(plan, line, strName);
        DeleteMatchingFiles(plan, line, strName, strOpenList);
    }
    for (const ListLine& line : list.lines)
    {
        if (const wchar_t* pszFolder = FindRecordValue(line.strText, kMakeDir))
            RemoveLoggedFolder(plan, line, InTarget(pszFolder), strOpenList);
    }
}

// A list of the second name that the package brought along. Its lines aren't those of the checked list, and what is
// found there isn't told.
static void RemoveBySecondList(Plan& plan)
{
    const CString strSecondList = CString(kTarget) + kSecondListPath;
    const TreeEntry* pSecondList = plan.tree.Find(strSecondList);
    if (pSecondList == nullptr)
        return;
    CFindings untold;
    Plan second = { plan.nKind, plan.tree, {}, untold };
    RemoveLoggedFiles(second, ReadCheckedList(CString(pSecondList->strSource)), strSecondList);
    plan.tree = second.tree;
}

static void RemoveLinks(Plan& plan)
{
    for (const TreeEntry& entry : plan.tree.Entries())
    {
        if (EndsWith(entry.strPath, kLinkExtension) && entry.strSource.IsEmpty())
            plan.tree.RemoveFile(entry.strPath);
    }
    plan.tree.RemoveFolder(CString(ProgramsPlace(plan.nKind)) + L"\\" + kProductName);
}

static void RemoveFolders(CFileTree& tree)
{
    if (!tree.RemoveFolder(InTarget(kX64Folder)))
        tree.RemoveAtBoot(InTarget(kX64Folder));
    if (!tree.RemoveFolder(InTarget(kX32Folder)) && tree.Exists(InTarget(kX32Folder)))
        tree.RemoveAtBoot(InTarget(kX32Folder));
    if (!tree.RemoveFolder(kTarget) && tree.Exists(InTarget(kX32Folder)))
        tree.RemoveAtBoot(kTarget);
}

// The last record of a folder that lies in the given one; null if the given one is named behind the line as well.
static const ListLine* FindRecordBelow(const CheckedList& list, const CString& strFolder, int nBehindLine)
{
    const CString strGiven = FoldPath(strFolder);
    const CString strBelow = strGiven + L"\\";
    const ListLine* pBelow = nullptr;
    for (const ListLine& line : list.lines)
    {
        const wchar_t* pszFolder = FindRecordValue(line.strText, kMakeDir);
        if (pszFolder == nullptr || line.nNumber <= nBehindLine)
            continue;
        const CString strNamed = FoldPath(InTarget(pszFolder));
        if (strNamed == strGiven)
            return nullptr;
        if (StartsWith(strNamed, strBelow))
            pBelow = &line;
    }
    return pBelow;
}

// Folders that stay, though nothing is left in them, since another one was in them when it was their turn.
static void ReportParentsFirst(const CheckedList& list, Plan& plan)
{
    for (const ListLine& line : list.lines)
    {
        const wchar_t* pszFolder = FindRecordValue(line.strText, kMakeDir);
        const CString strFolder = pszFolder != nullptr ? InTarget(pszFolder) : CString();
        if (pszFolder == nullptr || !plan.tree.IsFolder(strFolder) || plan.tree.HoldsFile(strFolder))
            continue;
        if (const ListLine* pBelow = FindRecordBelow(list, strFolder, line.nNumber))
            plan.findings.Add(FINDING_PARENT_FIRST, line.nNumber, line.strText,
                              FindRecordValue(pBelow->strText, kMakeDir));
    }
}

static bool IsNamedFolder(const CheckedList& list, const CString& strFolder)
{
    for (const ListLine& line : list.lines)
    {
        const wchar_t* pszFolder = FindRecordValue(line.strText, kMakeDir);
        if (pszFolder != nullptr && FoldPath(InTarget(pszFolder)) == FoldPath(strFolder))
            return true;
    }
    return false;
}

// The line of the copy that made the folder; null if it was another record, or none.
static const ListLine* FindCopyThatMade(const CheckedList& list, const TreeEntry& folder)
{
    for (const ListLine& line : list.lines)
    {
        if (line.nNumber == folder.nLine && !StartsWith(line.strText, kMakeDir))
            return &line;
    }
    return nullptr;
}

static void ReportUnnamedFolders(const CheckedList& list, Plan& plan)
{
    const CString strBelow = InTarget(L"");
    for (const TreeEntry& entry : plan.tree.Entries())
    {
        const ListLine* pLine = entry.bFolder ? FindCopyThatMade(list, entry) : nullptr;
        if (pLine != nullptr && StartsWith(entry.strPath, strBelow) && !plan.tree.HoldsFile(entry.strPath) &&
            !IsNamedFolder(list, entry.strPath))
            plan.findings.Add(FINDING_FOLDER_UNNAMED, pLine->nNumber, pLine->strText,
                              entry.strPath.Mid(strBelow.GetLength()));
    }
}

void PlanRemoval(const Package& package, Plan& plan)
{
    const CString strList = CString(kTarget) + kFileListPath;
    plan.tree.RemoveFile(CString(kTarget) + kUninstallerPath);
    RemoveLinks(plan);
    RemoveBySecondList(plan);
    // That one may have taken the list away: then nothing is left to go by.
    const bool bListed = plan.tree.Exists(strList);
    if (bListed)
        RemoveLoggedFiles(plan, package.list, strList);
    plan.tree.RemoveFile(strList);
    RemoveFolders(plan.tree);
    if (!bListed)
        return;
    ReportParentsFirst(package.list, plan);
    ReportUnnamedFolders(package.list, plan);
}
