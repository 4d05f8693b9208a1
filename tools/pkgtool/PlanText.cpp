#include "tools/pkgtool/PlanText.h"

#include "app/Product.h"
#include "tools/pkgtool/Output.h"
#include "tools/pkgtool/PlannedRemoval.h"

static const wchar_t* TypeOf(const TreeEntry& entry)
{
    if (entry.bFolder)
        return L"folder";
    if (entry.strSource.IsEmpty())
        return L"link";
    if (entry.strPath.CompareNoCase(CString(kTarget) + kFileListPath) == 0)
        return L"log";
    if (entry.strPath.CompareNoCase(CString(kTarget) + kUninstallerPath) == 0)
        return L"uninstaller";
    return entry.bIfLibraryAbsent ? L"library" : L"file";
}

static void PrintEntries(const wchar_t* pszTitle, const CFileTree& tree)
{
    PrintLine(stdout, pszTitle);
    const std::vector<TreeEntry> entries = tree.Entries();
    for (const TreeEntry& entry : entries)
    {
        CString strLine;
        strLine.Format(L"  %-11s  ", TypeOf(entry));
        PrintLine(stdout, strLine + entry.strPath);
    }
    if (entries.empty())
        PrintLine(stdout, L"  nothing");
}

void PrintPlan(const Package& package, InstallKind nKind)
{
    CFindings findings; // of a check, and not told here
    Plan plan = { nKind, {}, {}, findings };
    PlanInstall(package, plan);
    PrintEntries(L"An install creates:", plan.tree);
    const CString strUninstaller = CString(kTarget) + kUninstallerPath;
    if (plan.tree.Exists(strUninstaller) && !plan.tree.IsFolder(strUninstaller))
    {
        PlanRemoval(package, plan);
        PrintEntries(L"A removal leaves:", plan.tree);
    }
    else
        PrintEntries(L"No record brings " UNINSTALLER_NAME L": there is no removal, and this stays:", plan.tree);
    plan.tree.Boot();
    PrintEntries(L"The next start of the machine leaves:", plan.tree);
}
