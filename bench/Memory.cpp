// Peak working sets, read again and again until a program ends: the peak only grows, so that the last reading misses
// no more than the last millisecond.
#include <afx.h>

#include <psapi.h>

#include <algorithm>

#include "app/InstanceManager.h"
#include "app/Product.h"
#include "app/RunState.h"
#include "bench/Measurements.h"
#include "bench/Package.h"
#include "bench/Processes.h"

static constexpr int kRounds = 3;

// 0 for a process that has just ended.
static double PeakOf(HANDLE hProcess)
{
    PROCESS_MEMORY_COUNTERS counters = {};
    return K32GetProcessMemoryInfo(hProcess, &counters, sizeof(counters))
               ? static_cast<double>(counters.PeakWorkingSetSize)
               : 0;
}

static double PeakUntilEnd(const CProgram& program)
{
    double dPeak = 0;
    do
        dPeak = std::max(dPeak, PeakOf(program.Process()));
    while (WaitForSingleObject(program.Process(), 1) == WAIT_TIMEOUT);
    program.WaitForFamily();
    Require(dPeak != 0, L"no peak working set");
    return dPeak;
}

static BOOL CALLBACK FindVisibleWindow(HWND hWnd, LPARAM lParam)
{
    DWORD nId = 0;
    GetWindowThreadProcessId(hWnd, &nId);
    if (nId != *reinterpret_cast<DWORD*>(lParam) || !IsWindowVisible(hWnd))
        return TRUE;
    *reinterpret_cast<DWORD*>(lParam) = 0;
    return FALSE;
}

// Ten seconds at most until the first page stands, and a second for it to be painted.
static double PeakOfFirstPage(const std::wstring& strSetup)
{
    const CProgram wizard(L"\"" + strSetup + L"\"");
    DWORD nId = wizard.Id();
    for (int i = 0; i < 500 && nId != 0; ++i)
    {
        Sleep(20);
        EnumWindows(FindVisibleWindow, reinterpret_cast<LPARAM>(&nId));
    }
    WaitForInputIdle(wizard.Process(), 1000);
    Sleep(1000);
    const double dPeak = PeakOf(wizard.Process());
    Require(nId == 0 && dPeak != 0, L"no first page of the wizard");
    wizard.End();
    g_InstanceManager.ResetInstanceList(); // the ended wizard is still in it
    return dPeak;
}

// The file is one that the install has to bring; it is taken away before.
static double PeakOfInstall(const std::wstring& strCommand, const std::wstring& strFile)
{
    DeleteFileW(strFile.c_str());
    const double dPeak = PeakUntilEnd(CProgram(strCommand));
    RequireThere(strFile);
    return dPeak;
}

void MeasureMemory(const std::wstring& strFolder, const std::wstring& strProduct, const std::wstring& strPrograms)
{
    const std::wstring strTarget = strFolder + L"\\target";
    const std::wstring strSetup = strFolder + L"\\package\\setup.exe";
    const std::wstring strSilent = L"\"" + strSetup + L"\" -install -s -instdir \"" + strTarget + L"\"";
    const std::wstring strPortable = L"\"" + strSetup + L"\" -install -s -instport \"" + strTarget + L"\"";
    CreateDirectoryW(strFolder.c_str(), nullptr);
    MakeProductPackage(strFolder + L"\\package", strProduct, 100);
    for (int i = 0; i < kRounds; ++i)
    {
        const double dEmpty = PeakUntilEnd(CProgram(strPrograms + L"\\empty.exe"));
        const double dSilent = PeakOfInstall(strSilent, strTarget + L"\\" + FileName(99));
        const double dPortable = PeakOfInstall(strPortable, strTarget + L"\\" + FileName(99));
        Report("peak-silent", 100, dSilent, dEmpty);
        Report("peak-portable", 100, dPortable, dEmpty);
        const double dPage = PeakOfFirstPage(strSetup);
        Report("peak-page", 100, dPage, dEmpty);
        Report("peak-page-to-window", 100, dPage, PeakUntilEnd(CProgram(strPrograms + L"\\empty.exe window")));
    }
}

void MeasureListMemory(const std::wstring& strFolder, const std::wstring& strProduct, int nLines)
{
    const std::wstring strPackage = strFolder + L"\\package";
    CreateDirectoryW(strFolder.c_str(), nullptr);
    MakeProductPackage(strPackage, strProduct, 0);
    WriteIdleList(strPackage + kFileListPath, nLines);
    const std::wstring strTarget = strFolder + L"\\target";
    const std::wstring strSetup = L"\"" + strPackage + L"\\setup.exe\" -install -s -instport \"" + strTarget + L"\"";
    for (int i = 0; i < kRounds; ++i)
        Report("peak-list", nLines, PeakOfInstall(strSetup, strTarget + kFileListPath), 0);
}
