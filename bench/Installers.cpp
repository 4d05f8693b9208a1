// setup.exe and its uninstaller against a general installer of the same files, as a user or a script starts both.
#include <stdio.h>

#include "app/Product.h"
#include "bench/Measurements.h"
#include "bench/Package.h"
#include "bench/Processes.h"
#include "bench/Stopwatch.h"

void MakeInstallersPackage(const std::wstring& strFolder, int nFiles, const std::wstring& strProduct)
{
    CreateDirectoryW(strFolder.c_str(), nullptr);
    MakeProductPackage(strFolder + L"\\package", strProduct, nFiles);
}

// Both remove the files in the order of their names.
static double TimeFromFirstToLast(const std::wstring& strCommand, const std::wstring& strFolder, int nFiles)
{
    const auto await = [&](int nFile)
    {
        while (GetFileAttributesW((strFolder + L"\\" + FileName(nFile)).c_str()) != INVALID_FILE_ATTRIBUTES)
            SwitchToThread();
        return Microseconds();
    };
    RequireThere(strFolder + L"\\" + FileName(nFiles - 1));
    const CProgram removal(strCommand);
    const double dFirst = await(0);
    const double dLast = await(nFiles - 1);
    removal.WaitForFamily();
    RequireGone(strFolder);
    return dLast - dFirst;
}

void MeasureInstallers(const std::wstring& strFolder, int nFiles, int nPairs)
{
    const std::wstring strPackage = strFolder + L"\\package";
    const std::wstring strTarget = strFolder + L"\\target1";
    const std::wstring strOther = strFolder + L"\\target2";
    std::wstring strInstall = strPackage + L"\\setup.exe -install -s -instdir ";
    strInstall += strTarget;
    std::wstring strOtherInstall = strFolder + L"\\other.exe /S /D=";
    strOtherInstall += strOther;
    for (int i = 0; i < nPairs; ++i)
        for (const ListForm form : { BY_MASKS, BY_RECORDS })
        {
            const std::string strForm = form == BY_MASKS ? "masks" : "records";
            WritePackageList(strPackage + kFileListPath, strPackage, 0, nFiles, form);
            const PAIR installed = TimePair(
                i, [&] { CProgram(strInstall).WaitForFamily(); }, [&] { CProgram(strOtherInstall).WaitForFamily(); });
            Report(("other-install-" + strForm).c_str(), nFiles, installed.dProgram, installed.dPlain);
            double dProgram = 0;
            double dOther = 0;
            TimePair(
                i, [&] { dProgram = TimeFromFirstToLast(strTarget + kUninstallerPath, strTarget, nFiles); },
                [&] { dOther = TimeFromFirstToLast(strOther + L"\\remove.exe /S", strOther, nFiles); });
            Report(("other-removal-" + strForm).c_str(), nFiles, dProgram, dOther);
        }
}
