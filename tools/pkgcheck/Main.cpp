// pkgcheck: tells what the setup would silently do wrong with a package, and what an install of it would create. It
// reads the package and nothing else, and writes nothing.
#include <string.h>
#include <afx.h>

#include "app/Product.h"
#include "foundation/FolderPaths.h"
#include "tools/pkgcheck/Output.h"
#include "tools/pkgcheck/PackageCheck.h"
#include "tools/pkgcheck/PlanText.h"

enum ExitCode
{
    EXIT_CLEAN = 0,
    EXIT_FINDINGS = 1,
    EXIT_UNUSABLE = 2, // the command line, or the package
};

static const wchar_t kUsage[] =
    L"usage: pkgcheck FOLDER\n"
    L"       pkgcheck --plan user|all|portable FOLDER\n"
    L"       pkgcheck --help\n"
    L"\n"
    L"Checks the package in FOLDER: tells what an install or a removal would silently do wrong, line by line of its\n"
    L"LumUnInst.log. With --plan, tells instead what an install of that kind would create on a machine that never had\n"
    L"the product, and what a removal would leave; <target> is the product's folder, <beside> the one that it lies\n"
    L"in; a library is created only where the machine has none of its name. Nothing is written.\n"
    L"\n"
    L"Exit code: 0 no finding, or a plan; 1 findings; 2 wrong usage, or a package that can't be read.";

struct KindName
{
    const wchar_t* pszName;
    InstallKind nKind;
};

static const KindName kKindNames[] = {
    { L"user", KIND_CURRENT_USER },
    { L"all", KIND_ALL_USERS },
    { L"portable", KIND_PORTABLE },
};

static const KindName* FindKind(const wchar_t* pszName)
{
    for (const KindName& row : kKindNames)
    {
        if (wcscmp(pszName, row.pszName) == 0)
            return &row;
    }
    return nullptr;
}

static int Refuse(const wchar_t* pszReason, const wchar_t* pszSubject)
{
    PrintLine(stderr, CString(L"pkgcheck: ") + pszReason + pszSubject);
    return EXIT_UNUSABLE;
}

// A quoted folder that ends in a backslash arrives with its closing quote still on it, since the runtime reads the two
// as a literal quote.
static CString CleanFolderArgument(const wchar_t* pszArgument)
{
    CString strFolder(pszArgument);
    if (strFolder.Right(1) == L"\"")
        strFolder = strFolder.Left(strFolder.GetLength() - 1);
    strFolder.TrimRight(L"\\/");
    return strFolder;
}

static const wchar_t* WhyUnreadable(const CString& strFolder)
{
    const DWORD dwAttributes = GetFileAttributesW(strFolder.IsEmpty() ? L"\\" : strFolder.GetString());
    if (dwAttributes == INVALID_FILE_ATTRIBUTES)
        return L"there is no folder ";
    if ((dwAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
        return L"this is a file, and no package's folder: ";
    return L"there is no LumUnInst.log that can be read in ";
}

// A null kind asks for the check.
static int WorkOn(const wchar_t* pszArgument, const KindName* pKind)
{
    const CString strFolder = CleanFolderArgument(pszArgument);
    const Package package = { strFolder, ReadCheckedList(strFolder + kFileListPath) };
    if (!package.list.bReadable)
        return Refuse(WhyUnreadable(strFolder), pszArgument);
    if (pKind != nullptr)
    {
        PrintPlan(package, pKind->nKind);
        return EXIT_CLEAN;
    }

    CFindings findings;
    CheckPackage(package, findings);
    const int nFindings = findings.Print();
    CString strSum;
    strSum.Format(nFindings == 1 ? L"%d finding" : L"%d findings", nFindings);
    PrintLine(stdout, strSum);
    return nFindings > 0 ? EXIT_FINDINGS : EXIT_CLEAN;
}

int wmain(int argc, wchar_t** argv)
{
    if (argc == 2 && (wcscmp(argv[1], L"--help") == 0 || wcscmp(argv[1], L"/?") == 0))
    {
        PrintLine(stdout, kUsage);
        return EXIT_CLEAN;
    }
    if (argc == 2 && argv[1][0] != L'-' && argv[1][0] != 0)
        return WorkOn(argv[1], nullptr);
    if (argc != 4 || wcscmp(argv[1], L"--plan") != 0)
        return Refuse(kUsage, L"");
    const KindName* pKind = FindKind(argv[2]);
    return pKind != nullptr ? WorkOn(argv[3], pKind)
                            : Refuse(L"the kind of install is user, all or portable, and not ", argv[2]);
}
