// The engine's own functions, called in this process: so only the copying and deleting is timed, and not the start of
// a process, the registry or the links. The list is worked through in slices, and the bare loop takes its turn between
// them, so that what else the machine does meets both.
#include <afx.h>

#include "app/RunState.h"
#include "bench/Measurements.h"
#include "bench/Package.h"
#include "bench/PlainWork.h"
#include "bench/Stopwatch.h"
#include "install/PackageList.h"
#include "uninstall/LogReplay.h"

const int kFilesInSlice = 200;

struct TREES
{
    std::wstring strPackage;
    std::wstring strProgram; // the engine's target
    std::wstring strPlain;   // the bare loop's
};

static void MakeSliceLists(const TREES& trees, int nFiles, ListForm form)
{
    for (int i = 0; i < nFiles; i += kFilesInSlice)
        WritePackageList(SliceList(trees.strPackage, i), trees.strPackage, i, i + kFilesInSlice, form);
}

static void AddSlice(PAIR& sum, const std::string& strName, int nFiles, const PAIR& slice)
{
    Report((strName + "-slice").c_str(), nFiles, slice.dProgram, slice.dPlain);
    sum.dProgram += slice.dProgram;
    sum.dPlain += slice.dPlain;
}

static PAIR InstallSlices(const TREES& trees, int nFiles, int nPair, const std::string& strName)
{
    g_nInstallKind = KIND_ALL_USERS;
    g_strSourceDir = trees.strPackage.c_str();
    g_strInstDir = trees.strProgram.c_str();
    PAIR sum = {};
    for (int i = 0; i < nFiles; i += kFilesInSlice)
    {
        const std::wstring strList = SliceList(trees.strPackage, i);
        AddSlice(sum, strName, nFiles,
                 TimePair(
                     nPair + i / kFilesInSlice, [&] { ProcessPackageList(strList.c_str()); },
                     [&] { PlainCopy(trees.strPackage, trees.strPlain, i, i + kFilesInSlice); }));
    }
    return sum;
}

static PAIR RemoveSlices(const TREES& trees, int nFiles, int nPair, const std::string& strName)
{
    const std::wstring strFolder = trees.strProgram + L"\\";
    PAIR sum = {};
    for (int i = 0; i < nFiles; i += kFilesInSlice)
    {
        const std::wstring strList = SliceList(trees.strPackage, i);
        AddSlice(sum, strName, nFiles,
                 TimePair(
                     nPair + i / kFilesInSlice, [&] { RemoveLoggedFiles(strList.c_str(), strFolder.c_str()); },
                     [&] { PlainRemove(trees.strPlain, i, i + kFilesInSlice); }));
    }
    return sum;
}

static void MeasureForm(const TREES& trees, int nFiles, int nPairs, const char* pszInstall, const char* pszRemoval)
{
    for (int i = 0; i < nPairs; ++i)
    {
        const PAIR installed = InstallSlices(trees, nFiles, i, pszInstall);
        RequireThere(trees.strProgram + L"\\" + FileName(nFiles - 1));
        RequireThere(trees.strPlain + L"\\" + FileName(nFiles - 1));
        const PAIR removed = RemoveSlices(trees, nFiles, i, pszRemoval);
        for (const std::wstring& strTarget : { trees.strProgram, trees.strPlain })
        {
            RemoveDirectoryW(strTarget.c_str());
            RequireGone(strTarget);
        }
        Report(pszInstall, nFiles, installed.dProgram, installed.dPlain);
        Report(pszRemoval, nFiles, removed.dProgram, removed.dPlain);
    }
}

void MeasureFiles(const std::wstring& strFolder, int nFiles, int nPairs)
{
    const TREES trees = { strFolder + L"\\package", strFolder + L"\\target1", strFolder + L"\\target2" };
    MakePackageFiles(trees.strPackage, nFiles);
    MakeSliceLists(trees, nFiles, BY_MASKS);
    MeasureForm(trees, nFiles, nPairs, "install-masks", "removal-masks");
    MakeSliceLists(trees, nFiles, BY_RECORDS);
    MeasureForm(trees, nFiles, nPairs, "install-records", "removal-records");
    for (int i = 0; i < nFiles; i += kFilesInSlice)
        DeleteFileW(SliceList(trees.strPackage, i).c_str());
    PlainRemove(trees.strPackage, 0, nFiles);
    RemoveDirectoryW(trees.strPackage.c_str());
}
