// Each started program lives in a job of its own, which its successors stay in: so a whole chain of programs can be
// waited for, and be ended, without a look at any other process.
#include "tests/support/Programs.h"

#include <map>

#include "tests/support/Machine.h"

bool WaitUntil(const std::function<bool()>& condition, DWORD nMilliseconds)
{
    const ULONGLONG nEnd = GetTickCount64() + nMilliseconds;
    while (!condition())
    {
        if (GetTickCount64() >= nEnd)
            return false;
        // Windows of this thread must answer meanwhile: programs send messages to all top-level windows.
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
        for (MSG msg; PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE);)
            DispatchMessageW(&msg);
    }
    return true;
}

CProcessRun::~CProcessRun()
{
    End();
    RemoveTree(m_strOutput);
}

// Standard output goes to a file of the run.
static HANDLE MakeOutput(std::wstring& strPath)
{
    wchar_t szFolder[MAX_PATH];
    wchar_t szFile[MAX_PATH];
    GetTempPathW(MAX_PATH, szFolder);
    GetTempFileNameW(szFolder, L"out", 0, szFile);
    strPath = szFile;
    SECURITY_ATTRIBUTES inheritable = { sizeof(inheritable), nullptr, TRUE };
    return CreateFileW(szFile, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable, CREATE_ALWAYS, 0,
                       nullptr);
}

bool CProcessRun::Start()
{
    const CFileOwner output(MakeOutput(m_strOutput));
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output;
    startup.hStdError = output;
    PROCESS_INFORMATION process = {};
    std::wstring strCommandLine = m_strCommandLine; // the call may write into it
    const auto create = [&]
    {
        return CreateProcessW(nullptr, &strCommandLine[0], nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr, nullptr,
                              &startup, &process);
    };
    // Once in some thousand starts on a busy host the call fails so, before any of the program has run.
    BOOL bStarted = create();
    if (!bStarted && GetLastError() == ERROR_INTERNAL_ERROR)
        bStarted = create();
    if (!bStarted)
    {
        Fail(Bytes(m_strCommandLine) + ": error " + std::to_string(GetLastError()));
        return false;
    }
    const CHandleOwner thread(process.hThread);
    *m_process.Receive() = process.hProcess;
    *m_job.Receive() = CreateJobObjectW(nullptr, nullptr);
    if (!AssignProcessToJobObject(m_job, m_process))
        Fail("no job for " + Bytes(m_strCommandLine));
    ResumeThread(thread);
    return true;
}

bool CProcessRun::WaitForEnd(DWORD nMilliseconds)
{
    return WaitUntil([this] { return WaitForSingleObject(m_process, 0) == WAIT_OBJECT_0; }, nMilliseconds);
}

bool CProcessRun::WaitForFamily()
{
    return WaitUntil([this] { return FamilyIds().empty(); });
}

DWORD CProcessRun::ExitCode() const
{
    DWORD nCode = STILL_ACTIVE;
    GetExitCodeProcess(m_process, &nCode);
    return nCode;
}

std::vector<DWORD> CProcessRun::FamilyIds() const
{
    const int kMostProcesses = 64;
    struct
    {
        JOBOBJECT_BASIC_PROCESS_ID_LIST list;
        ULONG_PTR more[kMostProcesses];
    } ids = {};
    QueryInformationJobObject(m_job, JobObjectBasicProcessIdList, &ids, sizeof(ids), nullptr);
    return std::vector<DWORD>(ids.list.ProcessIdList, ids.list.ProcessIdList + ids.list.NumberOfProcessIdsInList);
}

std::string CProcessRun::Output() const
{
    return ReadBytes(m_strOutput);
}

void CProcessRun::End()
{
    TerminateJobObject(m_job, 1);
    if (!WaitForFamily())
        Fail("programs stay after their end");
}

TOLD RunToEnd(const std::wstring& strCommandLine)
{
    CProcessRun run(strCommandLine);
    if (run.Start() && !run.WaitForFamily())
        Fail(Bytes(strCommandLine) + " takes too long");
    return { run.ExitCode(), Replaced(Wide(run.Output()), L"\r", L"") };
}

TOLD RunPkgtool(const std::wstring& strArguments)
{
    return RunToEnd(BuildFolder() + L"\\pkgtool.exe " + strArguments);
}

static const wchar_t kSwitch[] = L"--as";

static std::map<std::wstring, int (*)()>& Roles() // filled while the global objects come into being, in any order
{
    static std::map<std::wstring, int (*)()> s_roles;
    return s_roles;
}

CChildRole::CChildRole(const wchar_t* pszName, int (*pfnRole)())
{
    Roles()[pszName] = pfnRole;
}

bool CChildRole::Run(int argc, wchar_t** argv, int& nResult)
{
    if (argc < 3 || wcscmp(argv[1], kSwitch) != 0)
        return false;
    nResult = Roles().at(argv[2])();
    return true;
}

std::wstring CChildRole::CommandLine(const std::wstring& strName)
{
    wchar_t szProgram[MAX_PATH];
    GetModuleFileNameW(nullptr, szProgram, MAX_PATH);
    return L"\"" + std::wstring(szProgram) + L"\" " + kSwitch + L" " + strName;
}
