// The start of other programs, the one privilege and the restart, which is never let through to the machine.
#include "foundation/ProcessLaunch.h"

#include <gtest/gtest.h>

#include "app/RunState.h"
#include "foundation/Owners.h"
#include "tests/support/Corner.h"
#include "tests/support/ImportHook.h"

namespace
{

using ProcessLaunch = MachineCorner;

const HANDLE kProcess = reinterpret_cast<HANDLE>(0x7FF00010);
const HANDLE kThread = reinterpret_cast<HANDLE>(0x7FF00020);
const wchar_t kShutdown[] = L"SeShutdownPrivilege";

bool HasShutdownPrivilege()
{
    CHandleOwner token;
    OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.Receive());
    PRIVILEGE_SET wanted = { 1, PRIVILEGE_SET_ALL_NECESSARY, {} };
    LookupPrivilegeValueW(nullptr, kShutdown, &wanted.Privilege[0].Luid);
    BOOL bEnabled = FALSE;
    EXPECT_TRUE(PrivilegeCheck(token, &wanted, &bEnabled));
    return bEnabled;
}

// The result, and what was written to standard output.
std::string Set(HANDLE hToken, const wchar_t* pszPrivilege, bool bEnable)
{
    testing::internal::CaptureStdout();
    const int nResult = SetPrivilege(hToken, pszPrivilege, bEnable);
    return std::to_string(nResult) + " " + testing::internal::GetCapturedStdout();
}

} // namespace

TEST_F(ProcessLaunch, CallIsMadeWaitedForAndClosedInThisOrder)
{
    const std::wstring strLongest(519, L'x');
    const struct
    {
        const wchar_t* pszFolder;
        DWORD nWait;
        BOOL nResult;
        std::string strActs;
        std::wstring strCommandLine = L"\"C:\\a program.exe\" -x";
    } cases[] = {
        { L"C:\\given", 0, 7, "create in C:\\given, close thread, close process, " },
        { nullptr, 5000, 7, "create in C:\\target, wait 5000, close thread, close process, " },
        { L"", INFINITE, 1, "create in , wait 4294967295, close thread, close process, ", strLongest },
        { nullptr, 5000, 0, "create in C:\\target, " },
        { nullptr, 5000, 0, "", strLongest + L"x" },
    };
    for (const auto& c : cases)
    {
        std::string strActs;
        CCallHook create("KERNEL32.dll", "CreateProcessW", &CreateProcessW);
        create.Replace(
            [&](LPCWSTR pszProgram, LPWSTR pszCommandLine, SECURITY_ATTRIBUTES* pProcess, SECURITY_ATTRIBUTES* pThread,
                BOOL bInherit, DWORD nFlags, void* pEnvironment, LPCWSTR pszFolder, STARTUPINFOW* pStartup,
                PROCESS_INFORMATION* pInfo)
            {
                EXPECT_TRUE(!pszProgram && !pProcess && !pThread && !bInherit && nFlags == 0 && !pEnvironment);
                const std::string strStartup(reinterpret_cast<const char*>(pStartup), 104);
                EXPECT_EQ(strStartup, char(104) + std::string(103, '\0')) << "zero but for its size";
                EXPECT_EQ(pszCommandLine, c.strCommandLine);
                pszCommandLine[0] = L'!'; // the platform may write there
                strActs += "create in " + std::string(pszFolder, pszFolder + wcslen(pszFolder)) + ", ";
                return *pInfo = { kProcess, kThread, 1, 2 }, c.nResult;
            });
        CCallHook wait("KERNEL32.dll", "WaitForSingleObject", &WaitForSingleObject);
        wait.Replace([&](HANDLE handle, DWORD nWait)
                     { return strActs += (handle == kProcess ? "wait " : "?") + std::to_string(nWait) + ", ", 0u; });
        CCallHook close("KERNEL32.dll", "CloseHandle", &CloseHandle);
        close.Replace([&](HANDLE handle)
                      { return strActs += handle == kProcess ? "close process, " : "close thread, ", TRUE; });
        std::wstring strCommandLine = c.strCommandLine;
        g_strInstDir = L"C:\\target";
        EXPECT_EQ(RunAndWait(strCommandLine.c_str(), c.pszFolder, c.nWait), c.nResult);
        EXPECT_EQ(strActs, c.strActs);
        EXPECT_EQ(strCommandLine, c.strCommandLine) << "the platform gets a copy";
    }
}

TEST_F(ProcessLaunch, PrivilegeIsSetOrTheReasonPrinted)
{
    CHandleOwner token;
    CHandleOwner readOnly;
    OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, token.Receive());
    OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, readOnly.Receive());
    const struct
    {
        HANDLE hToken;
        const wchar_t* pszPrivilege;
        bool bEnable;
        const char* pszOutcome;
        bool bPrivilegedThen;
    } cases[] = {
        { token, kShutdown, true, "1 ", true },
        { readOnly, kShutdown, false, "0 AdjustTokenPrivileges error: 5\n", true },
        { token, kShutdown, false, "1 ", false },
        { token, L"SeNoSuchPrivilege", true, "0 LookupPrivilegeValue error: 1313\n", false },
        { token, L"SeCreateTokenPrivilege", true, "0 The token does not have the specified privilege. \n", false },
    };
    for (const auto& c : cases)
    {
        EXPECT_EQ(Set(c.hToken, c.pszPrivilege, c.bEnable), c.pszOutcome);
        EXPECT_EQ(HasShutdownPrivilege(), c.bPrivilegedThen) << c.pszOutcome;
    }
    g_pfnLookupPrivilegeValue = nullptr;
    EXPECT_EQ(Set(token, kShutdown, true), "0 ");
    ResetProgramState();
    g_pfnAdjustTokenPrivileges = nullptr;
    EXPECT_EQ(Set(token, kShutdown, true), "0 ");
}

TEST_F(ProcessLaunch, RestartIsAskedForWithOrWithoutThePrivilege)
{
    static HANDLE s_hToken;
    const decltype(g_pfnOpenProcessToken) functions[] = { nullptr, [](HANDLE, DWORD, HANDLE*) { return FALSE; },
                                                          [](HANDLE hProcess, DWORD nAccess, HANDLE* phToken) -> BOOL {
                                                              return nAccess == 0x20 &&
                                                                     OpenProcessToken(hProcess, nAccess, &s_hToken) &&
                                                                     (*phToken = s_hToken);
                                                          } };
    std::string strRestarts;
    CCallHook restart("USER32.dll", "ExitWindowsEx", &ExitWindowsEx);
    restart.Replace(
        [&](UINT nFlags, DWORD nReason)
        {
            EXPECT_TRUE(nFlags == 2 && nReason == 0x80040002) << nFlags << " " << nReason;
            strRestarts += HasShutdownPrivilege() ? "with " : "without ";
            return FALSE;
        });
    for (const auto pfnOpen : functions)
    {
        g_pfnOpenProcessToken = pfnOpen;
        RestartComputer();
    }
    EXPECT_EQ(strRestarts, "without without with ");
    DWORD nInformation = 0;
    EXPECT_FALSE(GetHandleInformation(s_hToken, &nInformation)) << "the token is closed";
    CHandleOwner token;
    OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, token.Receive());
    SetPrivilege(token, kShutdown, false);
}
