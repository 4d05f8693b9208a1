// The benchmark's own program: `measure WHAT FOLDER [NUMBER...] [FOLDER...]` measures one thing in a new folder.
#include <afx.h>

#include <stdio.h>
#include <stdlib.h>
#include <wchar.h>

#include "app/InstanceManager.h"
#include "app/RunState.h"
#include "bench/Measurements.h"

void Report(const char* pszName, int nSize, double dProgram, double dPlain)
{
    printf("%s\t%d\t%.1f\t%.1f\n", pszName, nSize, dProgram, dPlain);
    fflush(stdout);
}

namespace
{
struct MEASUREMENT
{
    const wchar_t* pszName;
    int nArguments;
    void (*pfnMeasure)(wchar_t** argv);
};
} // namespace

static constexpr MEASUREMENT kMeasurements[] = {
    { L"files", 3, [](wchar_t** argv) { MeasureFiles(argv[0], _wtoi(argv[1]), _wtoi(argv[2])); } },
    { L"calls", 2, [](wchar_t** argv) { MeasureCalls(argv[0], _wtoi(argv[1])); } },
    { L"lines", 3, [](wchar_t** argv) { MeasureLines(argv[0], _wtoi(argv[1]), _wtoi(argv[2])); } },
    { L"processes", 5,
      [](wchar_t** argv) { MeasureProcesses(argv[0], _wtoi(argv[1]), _wtoi(argv[2]), argv[3], argv[4]); } },
    { L"installers-package", 3, [](wchar_t** argv) { MakeInstallersPackage(argv[0], _wtoi(argv[1]), argv[2]); } },
    { L"installers", 3, [](wchar_t** argv) { MeasureInstallers(argv[0], _wtoi(argv[1]), _wtoi(argv[2])); } },
    { L"download", 5,
      [](wchar_t** argv) { MeasureDownload(argv[0], _wtoi(argv[1]), _wtoi(argv[2]), argv[3], argv[4]); } },
    { L"list-memory", 3, [](wchar_t** argv) { MeasureListMemory(argv[0], argv[1], _wtoi(argv[2])); } },
    { L"memory", 3, [](wchar_t** argv) { MeasureMemory(argv[0], argv[1], argv[2]); } },
};

int wmain(int argc, wchar_t** argv)
{
    // The engine's objects have entered this process in the list of instances, which each setup closes by force.
    g_InstanceManager.RemoveInstance(GetCurrentProcessId());
    // The desktop comes up with its first user; it must not be the child of a measured program, which is waited for.
    GetDesktopWindow();
    for (const MEASUREMENT& row : kMeasurements)
    {
        if (argc != row.nArguments + 2 || wcscmp(argv[1], row.pszName) != 0)
            continue;
        CreateDirectoryW(argv[2], nullptr);
        row.pfnMeasure(argv + 2);
        return 0;
    }
    fprintf(stderr, "measure: no such measurement\n");
    return 1;
}
