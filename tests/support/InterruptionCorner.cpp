// The program's code runs in a role of the test program, whose import table counts the changes. The hooks take what
// they count for functions of ten whole registers: on this processor that passes on any call that the program makes.
#include "tests/support/InterruptionCorner.h"

#include <afxwin.h>
#include <shlobj.h>
#include <tlhelp32.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "app/RunState.h"
#include "foundation/Owners.h"
#include "tests/support/ChildRole.h"
#include "tests/support/MachineState.h"
#include "tests/support/PendingList.h"
#include "tests/support/ProcessRun.h"

namespace
{

const wchar_t kRole[] = L"interruptible";
const DWORD kInterrupted = 77; // exit codes
const DWORD kNotImported = 78;
const int kCountOnly = 0; // in the place of the change to end at: the number of changes becomes the exit code

// A link is written through an object, and a line of a log when its file is closed.
const struct
{
    const char* pszDll;
    const char* pszName;
} kChanges[] = {
    { "KERNEL32.dll", "CopyFileW" },
    { "KERNEL32.dll", "CreateDirectoryW" },
    { "KERNEL32.dll", "CreateProcessW" },
    { "KERNEL32.dll", "DeleteFileW" },
    { "KERNEL32.dll", "GetTempFileNameW" },
    { "KERNEL32.dll", "MoveFileExW" },
    { "KERNEL32.dll", "MoveFileW" },
    { "KERNEL32.dll", "RemoveDirectoryW" },
    { "ADVAPI32.dll", "RegCreateKeyW" },
    { "KERNEL32.dll", "SetFileAttributesW" },
    { "ADVAPI32.dll", "RegDeleteKeyW" },
    { "ADVAPI32.dll", "RegDeleteValueW" },
    { "ADVAPI32.dll", "RegSetValueExW" },
    { "ole32.dll", "CoCreateInstance" },
    { "msvcrt.dll", "fclose" },
};
const size_t kCopy = 0; // row

using REGISTER = void*;
using CALL = REGISTER (*)(REGISTER, REGISTER, REGISTER, REGISTER, REGISTER, REGISTER, REGISTER, REGISTER, REGISTER,
                          REGISTER);

CALL s_calls[std::size(kChanges)];
int s_nChanges;
int s_nLastChange;

[[noreturn]] void Interrupt(size_t nRow, REGISTER first, REGISTER second)
{
    if (nRow == kCopy)
    {
        const std::string strBytes = ReadBytes(static_cast<const wchar_t*>(first));
        WriteBytes(static_cast<const wchar_t*>(second), strBytes.substr(0, strBytes.size() / 2));
    }
    TerminateProcess(GetCurrentProcess(), kInterrupted);
    abort();
}

template <size_t nRow>
REGISTER Count(REGISTER a, REGISTER b, REGISTER c, REGISTER d, REGISTER e, REGISTER f, REGISTER g, REGISTER h,
               REGISTER i, REGISTER j)
{
    if (++s_nChanges == s_nLastChange)
        Interrupt(nRow, a, b);
    return s_calls[nRow](a, b, c, d, e, f, g, h, i, j);
}

void Hook(const char* pszDll, const char* pszName, void* pfn, CALL* ppfnOriginal)
{
    static std::vector<std::unique_ptr<CImportHook>> s_hooks;
    s_hooks.push_back(std::make_unique<CImportHook>(pszDll, pszName, pfn));
    if (s_hooks.back()->Original() == nullptr)
        TerminateProcess(GetCurrentProcess(), kNotImported);
    if (ppfnOriginal != nullptr)
        *ppfnOriginal = reinterpret_cast<CALL>(s_hooks.back()->Original());
}

template <size_t... nRows>
void CountChanges(std::index_sequence<nRows...>)
{
    (Hook(kChanges[nRows].pszDll, kChanges[nRows].pszName, reinterpret_cast<void*>(&Count<nRows>), &s_calls[nRows]),
     ...);
}

DWORD WINAPI NameProgram(HMODULE, wchar_t* pszPath, DWORD cch)
{
    wcscpy_s(pszPath, cch, __wargv[0]);
    return static_cast<DWORD>(wcslen(pszPath));
}

void WINAPI PassOver(DWORD) {}

void ReportCount()
{
    if (s_nLastChange == kCountOnly)
        TerminateProcess(GetCurrentProcess(), s_nChanges);
}

// setup_tests.exe --as interruptible CHANGE PROGRAM ARGUMENT...
int RunInterruptibly()
{
    s_nLastChange = _wtoi(__wargv[3]);
    const CArguments arguments({ __wargv + 4, __wargv + __argc });
    Hook("KERNEL32.dll", "GetModuleFileNameW", reinterpret_cast<void*>(&NameProgram), nullptr);
    Hook("KERNEL32.dll", "Sleep", reinterpret_cast<void*>(&PassOver), nullptr);
    CountChanges(std::make_index_sequence<std::size(kChanges)>());
    atexit(ReportCount);
    AfxWinInit(GetModuleHandleW(nullptr), nullptr, GetCommandLineW(), SW_SHOWNORMAL);
    return theApp.InitInstance();
}

const CChildRole s_role(kRole, RunInterruptibly);

DWORD RunRole(const std::wstring& strCommand, int nChange)
{
    return RunToEnd(CChildRole::CommandLine(kRole) + L" " + std::to_wstring(nChange) + L" " + strCommand);
}

// How many points a suite tries; a denser run than that of every day takes the number from its environment.
int CountPoints()
{
    const wchar_t* pszPoints = _wgetenv(L"LUMACAP_INTERRUPTIONS");
    return pszPoints != nullptr ? _wtoi(pszPoints) : 50;
}

// True for a program that never began: who was starting it ended between its making and its release.
bool IsUnborn(DWORD nProcessId)
{
    const CFileOwner snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof(entry);
    for (BOOL bMore = Thread32First(snapshot, &entry); bMore; bMore = Thread32Next(snapshot, &entry))
    {
        if (entry.th32OwnerProcessID != nProcessId)
            continue;
        const CHandleOwner thread(OpenThread(THREAD_SUSPEND_RESUME, FALSE, entry.th32ThreadID));
        const DWORD nSuspensions = SuspendThread(thread);
        ResumeThread(thread);
        if (nSuspensions == 0)
            return false;
    }
    return true;
}

// The built program, ended after the time. What it started goes on to its own end, but for an unborn program: that
// stays until somebody ends it or the machine restarts, and holds its file meanwhile. False if the program had ended by
// itself: the time then is what it took.
bool EndAfter(const std::wstring& strCommand, DWORD& nMilliseconds)
{
    const ULONGLONG nStart = GetTickCount64();
    CProcessRun run(strCommand);
    run.Start();
    const CHandleOwner process(OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, run.Id()));
    if (WaitForSingleObject(process, nMilliseconds) == WAIT_TIMEOUT)
        TerminateProcess(process, kInterrupted);
    else
        nMilliseconds = static_cast<DWORD>(GetTickCount64() - nStart);
    EXPECT_TRUE(WaitUntil(
        [&]
        {
            const std::vector<DWORD> ids = run.FamilyIds();
            return std::all_of(ids.begin(), ids.end(), IsUnborn);
        }));
    run.End();
    return run.ExitCode() == kInterrupted;
}

} // namespace

InterruptionCorner::InterruptionCorner() : m_package(At(L"package")), m_strTarget(At(L"Program Files\\Lumacap 8"))
{
    CopyOneFile(m_package.Setup(), At(L"temp\\uni1.tmp"));
}

// The system notes down each of its folders when somebody asks for it first, which not every run does.
static void AskForFolders()
{
    for (const int nFolder : { CSIDL_PROGRAMS, CSIDL_STARTUP, CSIDL_DESKTOP, CSIDL_COMMON_PROGRAMS,
                               CSIDL_COMMON_STARTUP, CSIDL_COMMON_DESKTOPDIRECTORY })
    {
        wchar_t szFolder[MAX_PATH];
        EXPECT_EQ(SHGetFolderPathW(nullptr, nFolder, nullptr, SHGFP_TYPE_CURRENT, szFolder), S_OK);
    }
}

void InterruptionCorner::SetUp()
{
    InstallCorner::SetUp();
    AskForFolders();
    Run(Setup());
    m_installed = TakePicture();
    EXPECT_TRUE(IsThere(m_strTarget + L"\\Lumacap8.exe"));
    Run(Setup());
    m_strRepeatPending = PendingText(Folder());
    ClearPending();
    Run(SecondStage());
    m_removed = TakePicture();
    EXPECT_FALSE(IsThere(m_strTarget));
    ClearPending();
}

void InterruptionCorner::Run(const std::wstring& strCommand, int nChange)
{
    EXPECT_EQ(RunRole(strCommand, nChange), nChange == kNever ? 0 : kInterrupted);
}

void InterruptionCorner::InterruptBeforeChanges(const std::wstring& strCommand, const ATTEMPT& attempt)
{
    int nChanges = 0;
    attempt([&] { nChanges = static_cast<int>(RunRole(strCommand, kCountOnly)); });
    ASSERT_GT(nChanges, 50) << "the exit code of a run that failed";
    const std::vector<std::wstring> machine = TakeMachinePicture();
    const int nPoints = std::min(CountPoints() * 7 / 10, nChanges);
    for (int i = 0; i < nPoints; i++)
    {
        const int nChange = 1 + i * nChanges / nPoints;
        SCOPED_TRACE("ended before change " + std::to_string(nChange));
        attempt([&] { Run(strCommand, nChange); });
    }
    EXPECT_EQ(JoinLines(PictureDifference(machine, TakeMachinePicture())), "");
    printf("%d points among %d changes\n", nPoints, nChanges);
}

void InterruptionCorner::InterruptAfterTimes(const std::wstring& strCommand, DWORD nPause, const ATTEMPT& attempt)
{
    DWORD nTaken = kPatience;
    attempt([&] { EndAfter(strCommand, nTaken); });
    const std::vector<std::wstring> machine = TakeMachinePicture();
    const int nPoints = CountPoints() * 3 / 10;
    int nMet = 0;
    for (int nTries = 0; nMet < nPoints && nTries < 3 * nPoints; nTries++)
    {
        DWORD nTime = nPause + (nTaken - nPause) * (nMet + 1) / (nPoints + 1);
        SCOPED_TRACE("ended after " + std::to_string(nTime) + " of " + std::to_string(nTaken) + " ms");
        attempt(
            [&]
            {
                if (EndAfter(strCommand, nTime))
                    nMet++;
                else
                    nTaken = nTime; // it was quicker this time
            });
    }
    EXPECT_EQ(nMet, nPoints);
    EXPECT_EQ(JoinLines(PictureDifference(machine, TakeMachinePicture())), "");
    printf("%d points in %lu ms\n", nPoints, nTaken);
}

std::vector<std::wstring> InterruptionCorner::TakePicture() const
{
    return TakeProductPicture(Folder());
}

void InterruptionCorner::ExpectPicture(const std::vector<std::wstring>& expected) const
{
    EXPECT_EQ(JoinLines(PictureDifference(expected, TakePicture())), "");
}

void InterruptionCorner::ExpectRemoved() const
{
    ExpectPicture(m_removed);
    for (const PENDING& entry : PendingEntries())
        EXPECT_TRUE(entry.strTarget.empty() && (entry.strSource == At(L"temp\\uni1.tmp") || !IsThere(entry.strSource)))
            << Bytes(entry.strSource);
    ClearPending();
}
