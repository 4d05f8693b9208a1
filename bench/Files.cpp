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

static constexpr int kFilesInSlice = 200;

namespace
{
struct TREES
{
    std::wstring strPackage;
    std::wstring strProgram; // the engine's target
    std::wstring strPlain;   // the loop's
};

// Of all that is measured the names end in this.
struct COUNTERPART
{
    const char* pszEnd;
    void (*pfnCopy)(const std::wstring&, const std::wstring&, int, int, ListForm);
    void (*pfnRemove)(const std::wstring&, int, int, ListForm);
};

struct ROUND
{
    const COUNTERPART& counterpart;
    ListForm form;
    int nFiles;
    int nPair;

    std::string Name(const char* pszWork) const
    {
        return std::string(pszWork) + (form == BY_MASKS ? "-masks" : "-records") + counterpart.pszEnd;
    }
};
} // namespace

static constexpr COUNTERPART kCounterparts[] = {
    { "",
      [](const std::wstring& strFrom, const std::wstring& strTo, int nFirst, int nLast, ListForm)
      { PlainCopy(strFrom, strTo, nFirst, nLast); },
      [](const std::wstring& strFolder, int nFirst, int nLast, ListForm) { PlainRemove(strFolder, nFirst, nLast); } },
    { "-demanded", DemandedCopy, DemandedRemove },
};

static void MakeSliceLists(const TREES& trees, int nFiles, ListForm form)
{
    for (int i = 0; i < nFiles; i += kFilesInSlice)
        WritePackageList(SliceList(trees.strPackage, i), trees.strPackage, i, i + kFilesInSlice, form);
}

// Times a slice after the other, and reports each and their sum.
template <typename Program, typename Plain>
static void TimeSlices(const ROUND& round, const char* pszWork, Program program, Plain plain)
{
    PAIR sum = {};
    for (int i = 0; i < round.nFiles; i += kFilesInSlice)
    {
        const PAIR slice = TimePair(
            round.nPair + i / kFilesInSlice, [&] { program(i); }, [&] { plain(i, i + kFilesInSlice); });
        Report((round.Name(pszWork) + "-slice").c_str(), round.nFiles, slice.dProgram, slice.dPlain);
        sum.dProgram += slice.dProgram;
        sum.dPlain += slice.dPlain;
    }
    Report(round.Name(pszWork).c_str(), round.nFiles, sum.dProgram, sum.dPlain);
}

static void MeasureRound(const TREES& trees, const ROUND& round)
{
    g_nInstallKind = KIND_ALL_USERS;
    g_strSourceDir = trees.strPackage.c_str();
    g_strInstDir = trees.strProgram.c_str();
    TimeSlices(
        round, "install", [&](int nFirst) { ProcessPackageList(SliceList(trees.strPackage, nFirst).c_str()); },
        [&](int nFirst, int nLast)
        { round.counterpart.pfnCopy(trees.strPackage, trees.strPlain, nFirst, nLast, round.form); });
    for (const std::wstring& strTarget : { trees.strProgram, trees.strPlain })
        RequireThere(strTarget + L"\\" + FileName(round.nFiles - 1));

    const std::wstring strFolder = trees.strProgram + L"\\";
    TimeSlices(
        round, "removal",
        [&](int nFirst) { RemoveLoggedFiles(SliceList(trees.strPackage, nFirst).c_str(), strFolder.c_str()); },
        [&](int nFirst, int nLast) { round.counterpart.pfnRemove(trees.strPlain, nFirst, nLast, round.form); });
    for (const std::wstring& strTarget : { trees.strProgram, trees.strPlain })
    {
        RemoveDirectoryW(strTarget.c_str());
        RequireGone(strTarget);
    }
}

void MeasureFiles(const std::wstring& strFolder, int nFiles, int nPairs)
{
    const TREES trees = { strFolder + L"\\package", strFolder + L"\\target1", strFolder + L"\\target2" };
    MakePackageFiles(trees.strPackage, nFiles);
    for (const ListForm form : { BY_MASKS, BY_RECORDS })
    {
        MakeSliceLists(trees, nFiles, form);
        for (int i = 0; i < nPairs; ++i)
            for (const COUNTERPART& counterpart : kCounterparts)
                MeasureRound(trees, { counterpart, form, nFiles, i });
    }
    for (int i = 0; i < nFiles; i += kFilesInSlice)
        DeleteFileW(SliceList(trees.strPackage, i).c_str());
    PlainRemove(trees.strPackage, 0, nFiles);
    RemoveDirectoryW(trees.strPackage.c_str());
}
