// setup.exe and LumUnInst.exe as a script starts them, with packages that differ in their files alone: what a package
// without files costs is the fixed part, the pauses of a removal among it.
#include "bench/Processes.h"

#include <stdio.h>
#include <stdlib.h>

#include "app/Product.h"
#include "bench/Measurements.h"
#include "bench/Package.h"
#include "bench/PlainWork.h"
#include "bench/Stopwatch.h"

CProgram::CProgram(const std::wstring& strCommandLine) : m_job(CreateJobObjectW(nullptr, nullptr))
{
    std::wstring strBuffer = strCommandLine; // the call may write into it
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES; // none: what it tells doesn't belong among the results
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(nullptr, &strBuffer[0], nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr, nullptr, &startup,
                        &process))
    {
        fprintf(stderr, "can't be started: %ls\n", strCommandLine.c_str());
        exit(1);
    }
    *m_process.Receive() = process.hProcess;
    m_nId = process.dwProcessId;
    AssignProcessToJobObject(m_job, process.hProcess);
    ResumeThread(process.hThread);
    CloseHandle(process.hThread);
}

DWORD CProgram::ExitCode() const
{
    DWORD nCode = 0;
    WaitForEnd();
    GetExitCodeProcess(m_process, &nCode);
    return nCode;
}

void CProgram::WaitForFamily() const
{
    JOBOBJECT_BASIC_ACCOUNTING_INFORMATION info = {};
    while (QueryInformationJobObject(m_job, JobObjectBasicAccountingInformation, &info, sizeof(info), nullptr) &&
           info.ActiveProcesses > 0)
        Sleep(1);
}

void CProgram::End() const
{
    TerminateJobObject(m_job, 0);
    WaitForEnd();
}

static std::wstring Quoted(const std::wstring& strPath)
{
    return L"\"" + strPath + L"\" ";
}

void MakeProductPackage(const std::wstring& strFolder, const std::wstring& strProduct, int nFiles)
{
    MakePackageFiles(strFolder, nFiles);
    for (const wchar_t* pszName : { L"\\setup.exe", kUninstallerPath, kProductExePath })
        CopyFileW((strProduct + pszName).c_str(), (strFolder + pszName).c_str(), FALSE);
    WritePackageList(strFolder + kFileListPath, strFolder, 0, nFiles, BY_MASKS);
}

namespace
{
struct WHOLE_RUN
{
    std::wstring strFolder;
    std::wstring strPlain; // the plain program
    int nFiles;
    const char* pszInstall;
    const char* pszRemoval;
};
} // namespace

static void MeasureWhole(const WHOLE_RUN& run, int nPair)
{
    const std::wstring strPackage = run.strFolder + L"\\package" + std::to_wstring(run.nFiles);
    const std::wstring strTarget = run.strFolder + L"\\target1";
    const std::wstring strOther = run.strFolder + L"\\target2";
    const std::wstring strFiles = std::to_wstring(run.nFiles);
    const auto install = [&]
    {
        const CProgram setup(Quoted(strPackage + L"\\setup.exe") + L"-install -s -instdir " + Quoted(strTarget));
        setup.WaitForFamily();
    };
    const auto copy = [&]
    { CProgram(Quoted(run.strPlain) + L"copy " + Quoted(strPackage) + Quoted(strOther) + strFiles).WaitForEnd(); };
    const PAIR installed = TimePair(nPair, install, copy);
    RequireThere(strTarget + kUninstallerPath);
    const auto remove = [&] { CProgram(Quoted(strTarget + kUninstallerPath)).WaitForFamily(); };
    const auto erase = [&] { CProgram(Quoted(run.strPlain) + L"remove " + Quoted(strOther) + strFiles).WaitForEnd(); };
    const PAIR removed = TimePair(nPair, remove, erase);
    RequireGone(strTarget);
    RequireGone(strOther);
    Report(run.pszInstall, run.nFiles, installed.dProgram, installed.dPlain);
    Report(run.pszRemoval, run.nFiles, removed.dProgram, removed.dPlain);
}

void MeasureProcesses(const std::wstring& strFolder, int nFiles, int nPairs, const std::wstring& strProduct,
                      const std::wstring& strPrograms)
{
    const std::wstring strPlain = strPrograms + L"\\plain.exe";
    CreateDirectoryW(strFolder.c_str(), nullptr);
    const WHOLE_RUN runs[] = { { strFolder, strPlain, nFiles, "setup-files", "uninstall-files" },
                               { strFolder, strPlain, 0, "setup-none", "uninstall-none" } };
    for (const WHOLE_RUN& run : runs)
        MakeProductPackage(strFolder + L"\\package" + std::to_wstring(run.nFiles), strProduct, run.nFiles);
    for (int i = 0; i < nPairs; ++i)
        for (const WHOLE_RUN& run : runs)
            MeasureWhole(run, i);
}
