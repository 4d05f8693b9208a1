// The one file that people download against the unpacked package, and the look at what it installed.
#include <filesystem>

#include "bench/Measurements.h"
#include "bench/Package.h"
#include "bench/Processes.h"
#include "bench/Stopwatch.h"

void MeasureDownload(const std::wstring& strFolder, int nFiles, int nPairs, const std::wstring& strPrograms,
                     const std::wstring& strPkgtool)
{
    const std::wstring strPackage = strFolder + L"\\package";
    const std::wstring strTarget = strFolder + L"\\target1";
    const std::wstring strOther = strFolder + L"\\target2";
    const std::wstring strDownload = strFolder + L"\\download.exe -s -instdir " + strTarget;
    const std::wstring strSetup = strPackage + L"\\setup.exe -install -s -instdir " + strOther;
    const std::wstring strVerify = strPkgtool + L" verify " + strPackage;
    const std::wstring strRead =
        strPrograms + L"\\plain.exe read " + strPackage + L" " + strOther + L" " + std::to_wstring(nFiles);
    for (int i = 0; i < nPairs; ++i)
    {
        std::filesystem::remove_all(strTarget);
        std::filesystem::remove_all(strOther);
        const PAIR installed = TimePair(
            i, [&] { CProgram(strDownload).WaitForFamily(); }, [&] { CProgram(strSetup).WaitForFamily(); });
        RequireThere(strTarget + L"\\" + FileName(nFiles - 1));
        RequireThere(strOther + L"\\" + FileName(nFiles - 1));
        Report("download", nFiles, installed.dProgram, installed.dPlain);
        const PAIR read = TimePair(
            i, [&] { Require(CProgram(strVerify).ExitCode() == 0, L"the install doesn't stand whole"); },
            [&] { Require(CProgram(strRead).ExitCode() == 0, L"the files can't be read"); });
        Report("verify", nFiles, read.dProgram, read.dPlain);
    }
}
