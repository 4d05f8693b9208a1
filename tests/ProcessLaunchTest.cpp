// The start of other programs, the one privilege and the restart, which is never let through to the machine.
#include "foundation/ProcessLaunch.h"

#include <gtest/gtest.h>

#include "app/RunState.h"
#include "foundation/Owners.h"
#include "tests/support/Corner.h"
#include "tests/support/Environment.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ProcessRun.h"
#include "tests/support/SharedList.h"

namespace
{

const HANDLE kProcess = reinterpret_cast<HANDLE>(0x7FF00010);
const HANDLE kThread = reinterpret_cast<HANDLE>(0x7FF00020);

// A start that starts nothing: what is asked of the platform is noted.
class ProcessLaunchCall : public MachineCorner
{
protected:
    ProcessLaunchCall()
    {
        m_create.Replace(
            [this](LPCWSTR pszProgram, LPWSTR pszCommandLine, SECURITY_ATTRIBUTES* pProcess,
                   SECURITY_ATTRIBUTES* pThread, BOOL bInherit, DWORD nFlags, void* pEnvironment, LPCWSTR pszFolder,
                   STARTUPINFOW* pStartup, PROCESS_INFORMATION* pInfo)
            {
                m_strActs += "create ";
                EXPECT_TRUE(!pszProgram && !pProcess && !pThread && !bInherit && nFlags == 0 && !pEnvironment);
                const std::string strStartup(reinterpret_cast<const char*>(pStartup), 104);
                EXPECT_EQ(strStartup, char(104) + std::string(103, '\0')) << "zero but for its size";
                m_strCommandLine = pszCommandLine;
                m_strFolder = pszFolder;
                pszCommandLine[0] = L'!'; // the platform may write there
                if (m_nResult != 0)
                    *pInfo = { kProcess, kThread, 1, 2 };
                return m_nResult;
            });
        m_wait.Replace(
            [this](HANDLE handle, DWORD nWait) -> DWORD
            {
                if (handle != kProcess)
                    return m_wait.Original()(handle, nWait);
                m_strActs += "wait " + std::to_string(nWait) + " ";
                return WAIT_TIMEOUT;
            });
        m_close.Replace(
            [this](HANDLE handle)
            {
                if (handle != kProcess && handle != kThread)
                    return m_close.Original()(handle);
                m_strActs += handle == kProcess ? "close process " : "close thread ";
                return TRUE;
            });
    }

    BOOL m_nResult = 7;
    std::string m_strActs;
    std::wstring m_strCommandLine;
    std::wstring m_strFolder;
    CCallHook<decltype(&CreateProcessW)> m_create{ "KERNEL32.dll", "CreateProcessW", &CreateProcessW };
    CCallHook<decltype(&WaitForSingleObject)> m_wait{ "KERNEL32.dll", "WaitForSingleObject", &WaitForSingleObject };
    CCallHook<decltype(&CloseHandle)> m_close{ "KERNEL32.dll", "CloseHandle", &CloseHandle };
};

// The calls of a restart, in order; the token is real.
class ProcessLaunchRestart : public MachineCorner
{
protected:
    ProcessLaunchRestart()
    {
        m_exit.Replace(
            [this](UINT nFlags, DWORD nReason)
            {
                m_nFlags = nFlags;
                m_nReason = nReason;
                m_bPrivileged = HasShutdownPrivilege();
                return FALSE;
            });
    }

    static bool HasShutdownPrivilege()
    {
        CHandleOwner token;
        LUID luid = {};
        OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.Receive());
        LookupPrivilegeValueW(nullptr, L"SeShutdownPrivilege", &luid);
        BYTE data[4096];
        DWORD cb = 0;
        EXPECT_TRUE(GetTokenInformation(token, TokenPrivileges, data, sizeof data, &cb));
        const auto* pPrivileges = reinterpret_cast<const TOKEN_PRIVILEGES*>(data);
        for (DWORD i = 0; i < pPrivileges->PrivilegeCount; i++)
            if (pPrivileges->Privileges[i].Luid.LowPart == luid.LowPart)
                return (pPrivileges->Privileges[i].Attributes & SE_PRIVILEGE_ENABLED) != 0;
        return false;
    }

    // The result, and what was written to standard output.
    static std::string Set(HANDLE hToken, const wchar_t* pszPrivilege, bool bEnable)
    {
        testing::internal::CaptureStdout();
        const int nResult = SetPrivilege(hToken, pszPrivilege, bEnable);
        return std::to_string(nResult) + " " + testing::internal::GetCapturedStdout();
    }

    UINT m_nFlags = 0;
    DWORD m_nReason = 0;
    bool m_bPrivileged = false;
    CCallHook<decltype(&ExitWindowsEx)> m_exit{ "USER32.dll", "ExitWindowsEx", &ExitWindowsEx };
};

const wchar_t kShutdown[] = L"SeShutdownPrivilege";

} // namespace

TEST_F(ProcessLaunchCall, IsMadeWaitedForAndClosedInThisOrder)
{
    const struct
    {
        const wchar_t* pszFolder;
        const wchar_t* pszInstallFolder;
        DWORD nWait;
        BOOL nResult;
        const wchar_t* pszExpectedFolder;
        const char* pszActs;
    } cases[] = {
        { L"C:\\given", L"C:\\target", 0, 7, L"C:\\given", "create close thread close process " },
        { nullptr, L"C:\\target", 5000, 7, L"C:\\target", "create wait 5000 close thread close process " },
        { nullptr, L"", 0, 1, L"", "create close thread close process " },
        { L"", L"C:\\target", INFINITE, 1, L"", "create wait 4294967295 close thread close process " },
        { nullptr, L"C:\\target", 5000, 0, L"C:\\target", "create " },
    };
    for (const auto& c : cases)
    {
        const wchar_t szCommandLine[] = L"\"C:\\a program.exe\" -x";
        m_strActs.clear();
        m_nResult = c.nResult;
        g_strInstDir = c.pszInstallFolder;
        EXPECT_EQ(RunAndWait(szCommandLine, c.pszFolder, c.nWait), c.nResult);
        EXPECT_EQ(m_strActs, c.pszActs);
        EXPECT_EQ(m_strFolder, c.pszExpectedFolder);
        EXPECT_EQ(m_strCommandLine, L"\"C:\\a program.exe\" -x");
        EXPECT_EQ(szCommandLine[0], L'"') << "the platform gets a copy";
    }
}

TEST_F(ProcessLaunchCall, TakesCommandLinesOf519Characters)
{
    EXPECT_EQ(RunAndWait(std::wstring(519, L'x').c_str(), L"", 0), 7);
    EXPECT_EQ(m_strCommandLine, std::wstring(519, L'x'));
    EXPECT_EQ(RunAndWait(std::wstring(520, L'x').c_str(), L"", 0), 0);
    EXPECT_EQ(m_create.Calls(), 1);
}

using ProcessLaunch = MachineCorner;

TEST_F(ProcessLaunch, WaitEndsWithItsTimeAndTheProgramGoesOn)
{
    CProductList list({});
    g_strInstDir = Folder().c_str();
    const std::wstring strReport = At(L"report.txt");
    const std::wstring strProduct = L"\"" + PackageFolder() + L"\\Lumacap8.exe\" -nowindow -report " + strReport;
    for (const DWORD nWait : { 300u, 0u })
    {
        const ULONGLONG nStart = GetTickCount64();
        EXPECT_NE(RunAndWait(strProduct.c_str(), nullptr, nWait), 0);
        EXPECT_GE(GetTickCount64() - nStart + 16, nWait); // a tick's length
        ASSERT_TRUE(WaitUntil([&] { return IsThere(strReport) && !ReadBytes(strReport).empty(); }));
        const std::vector<std::string> lines = ReadLines(strReport);
        EXPECT_EQ(lines[0].substr(lines[0].find('\t') + 1), std::string(Folder().begin(), Folder().end()));

        ASSERT_EQ(list.Ids().size(), 1u);
        const CHandleOwner product(OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, list.Ids()[0]));
        EXPECT_EQ(WaitForSingleObject(product, 0), static_cast<DWORD>(WAIT_TIMEOUT)) << "it still runs";
        TerminateProcess(product, 0);
        WaitForSingleObject(product, kPatience);
        RemoveTree(strReport);
        list.Set({});
    }
}

TEST_F(ProcessLaunch, WaitEndsWithTheProgram)
{
    const ULONGLONG nStart = GetTickCount64();
    const std::wstring strFile = At(L"made");
    EXPECT_NE(RunAndWait((L"cmd.exe /c echo x>" + strFile).c_str(), Folder().c_str(), 10 * kPatience), 0);
    EXPECT_TRUE(IsThere(strFile));
    EXPECT_LT(GetTickCount64() - nStart, kPatience);
    EXPECT_EQ(RunAndWait(At(L"missing.exe").c_str(), Folder().c_str(), kPatience), 0);
}

TEST_F(ProcessLaunchRestart, PrivilegeIsSetOrTheReasonPrinted)
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
    EXPECT_FALSE(HasShutdownPrivilege());
}

TEST_F(ProcessLaunchRestart, IsAskedForWithOrWithoutThePrivilege)
{
    static const auto kNoToken = [](HANDLE, DWORD, HANDLE*) -> BOOL { return FALSE; };
    static DWORD s_nAccess;
    static HANDLE s_hToken;
    static const auto kToken = [](HANDLE hProcess, DWORD nAccess, HANDLE* phToken) -> BOOL
    {
        s_nAccess = nAccess;
        return OpenProcessToken(hProcess, nAccess, &s_hToken) && (*phToken = s_hToken);
    };
    const struct
    {
        decltype(g_pfnOpenProcessToken) pfnOpen;
        bool bLookup;
        bool bPrivileged;
    } cases[] = {
        { kToken, true, true }, { kToken, false, false }, { kNoToken, true, false }, { nullptr, true, false }
    };
    for (const auto& c : cases)
    {
        ResetProgramState();
        m_nFlags = m_nReason = s_nAccess = 0;
        g_pfnOpenProcessToken = c.pfnOpen;
        if (!c.bLookup)
            g_pfnLookupPrivilegeValue = nullptr;
        RestartComputer();
        EXPECT_EQ(m_nFlags, 2u);
        EXPECT_EQ(m_nReason, 0x80040002u);
        EXPECT_EQ(m_bPrivileged, c.bPrivileged) << &c - cases;
        if (s_nAccess != 0)
        {
            DWORD nInformation = 0;
            EXPECT_EQ(s_nAccess, 0x20u);
            EXPECT_FALSE(GetHandleInformation(s_hToken, &nInformation)) << "the token is closed";
        }
        CHandleOwner token;
        OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, token.Receive());
        ResetProgramState();
        SetPrivilege(token, kShutdown, false);
    }
    EXPECT_EQ(m_exit.Calls(), 4);
}
