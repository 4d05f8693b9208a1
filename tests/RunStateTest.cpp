// The program's state before anything has run, what is found out by name, and the end of a process. A fresh process
// tells of its own start and end.
#include "app/RunState.h"

#include <gtest/gtest.h>

#include <stdio.h>
#include <stdlib.h>

#include "app/StartBindings.h"
#include "tests/support/BoxDriver.h"
#include "tests/support/ChildRole.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Machine.h"
#include "tests/support/ProcessRun.h"
#include "tests/support/ProgramState.h"
#include "tests/support/SharedList.h"

namespace
{

int TellState()
{
    printf("silent %d, kind %d, desktop icon %d, name %ls, restart support %lu\n", g_nSilent, g_nInstallKind,
           g_bDeskIcon, theApp.m_pszAppName, theApp.m_dwRestartManagerSupportFlags);
    printf("flags %d%d%d%d%d%d, version %u%u%u%u\n", g_bFreshInstall, g_bUpgrade, g_bRunAfter, g_bAutoStart,
           g_bRebootNeeded, g_bSettingsCopied, g_nVerMajor, g_nVerMinor, g_nVerFix, g_nVerBuild);
    for (const CString* pText :
         { &g_strInstDir, &g_strSourceDir, &g_strGroup, &g_strSfxName, &g_strNextText, &g_strCancelText })
        printf("[%ls]", pText->GetString());
    printf("\nbound %d%d%d%d%d\n", g_pfnLookupPrivilegeValue != nullptr, g_pfnAdjustTokenPrivileges != nullptr,
           g_pfnOpenProcessToken != nullptr, g_pfnIsWow64Process != nullptr, g_pfnIsWow64ProcessOf != nullptr);
    printf("Windows %lu.%lu in %lu bytes\n", g_osVersion.dwMajorVersion, g_osVersion.dwMinorVersion,
           g_osVersion.dwOSVersionInfoSize);
    return 0;
}

// The process's leaving of the list shows by the message to those that remain.
BOOL WINAPI TellOfPost(HWND, UINT nMessage, WPARAM, LPARAM)
{
    printf("message %u, the application is %s\n", nMessage, AfxGetApp() == nullptr ? "gone" : "there");
    return TRUE;
}

void WatchTeardown()
{
    new CImportHook("USER32.dll", "PostMessageW", &TellOfPost); // never removed: it has to outlast all else
}

const CChildRole s_state(L"state", TellState);
const CChildRole s_return(L"return", [] { return WatchTeardown(), 5; });
const CChildRole s_exit(L"exit", []() -> int { WatchTeardown(), exit(5); });
const CChildRole s_quickExit(L"quick-exit", []() -> int { WatchTeardown(), _exit(5); });

} // namespace

TEST(RunState, StartsWithTheDefaultsAndTheSystemsFacts)
{
    const struct
    {
        const wchar_t* pszVersion;
        const char* pszNumber;
    } cases[] = { { L"winxp64", "5.2" }, { L"vista", "6.0" }, { L"win10", "10.0" } };
    for (const auto& c : cases)
    {
        const CWindowsVersion version(c.pszVersion);
        CProcessRun child(CChildRole::CommandLine(L"state"));
        ASSERT_TRUE(child.Start() && child.WaitForEnd());
        EXPECT_EQ(child.Output(), std::string("silent 1, kind 1, desktop icon 1, name Lumacap 8, restart support 0\r\n"
                                              "flags 000000, version 0000\r\n"
                                              "[][][][][][]\r\n"
                                              "bound 11111\r\n"
                                              "Windows ") +
                                      c.pszNumber + " in 284 bytes\r\n");
    }
}

TEST(RunState, EveryEndButTheAbruptLeavesTheListAfterTheApplication)
{
    const struct
    {
        const wchar_t* pszRole;
        bool bLeaves;
    } cases[] = { { L"return", true }, { L"exit", true }, { L"quick-exit", false } };
    for (const auto& c : cases)
    {
        CProductList list({ 70001 });
        CProcessRun child(CChildRole::CommandLine(c.pszRole));
        ASSERT_TRUE(child.Start() && child.WaitForEnd());
        EXPECT_EQ(child.ExitCode(), 5u);
        EXPECT_EQ(child.Output(), c.bLeaves ? "message 1947, the application is gone\r\n" : "");
        const std::vector<DWORD> left =
            c.bLeaves ? std::vector<DWORD>{ 70001 } : std::vector<DWORD>{ 70001, child.Id() };
        EXPECT_EQ(list.Ids(), left) << testing::PrintToString(std::wstring(c.pszRole));
    }
}

TEST(RunState, BoxesOfTheFrameworkBearTheProductsName)
{
    const CBoxRecorder boxes;
    AfxMessageBox(L"text");
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    EXPECT_EQ(boxes.Boxes()[0].strCaption, L"Lumacap 8");
}

TEST(RunState, EachFunctionIsBoundByItselfOrStaysNull)
{
    const struct
    {
        const char* pszMissing; // a function, or a module
        const char* pszBound;
        const char* pszBoundForLibrary;
    } cases[] = {
        { "LookupPrivilegeValueW", "0111", "1" }, { "AdjustTokenPrivileges", "1011", "1" },
        { "OpenProcessToken", "1101", "1" },      { "IsWow64Process", "1110", "0" },
        { "Advapi32.dll", "0001", "1" },
    };
    CCallHook lookup("KERNEL32.dll", "GetProcAddress", &GetProcAddress);
    CCallHook module("KERNEL32.dll", "GetModuleHandleA", &GetModuleHandleA);
    const auto digit = [](auto pfn) { return pfn == nullptr ? "0" : "1"; };
    for (const auto& c : cases)
    {
        std::string strNames;
        lookup.Replace(
            [&](HMODULE hModule, const char* pszName) -> FARPROC
            {
                strNames += std::string(pszName) + " ";
                return strcmp(pszName, c.pszMissing) == 0 ? nullptr : lookup.Original()(hModule, pszName);
            });
        module.Replace([&](const char* pszName)
                       { return strcmp(pszName, c.pszMissing) == 0 ? nullptr : module.Original()(pszName); });
        BindDynamicApis();
        EXPECT_EQ(strNames, "LookupPrivilegeValueW AdjustTokenPrivileges OpenProcessToken IsWow64Process ");
        BindLibraryApi();
        EXPECT_EQ(std::string(digit(g_pfnLookupPrivilegeValue)) + digit(g_pfnAdjustTokenPrivileges) +
                      digit(g_pfnOpenProcessToken) + digit(g_pfnIsWow64Process),
                  c.pszBound);
        EXPECT_STREQ(digit(g_pfnIsWow64ProcessOf), c.pszBoundForLibrary) << c.pszMissing;
    }
    ResetProgramState();
}

TEST(RunState, WindowsVersionIsZeroWhereTheSystemDoesNotTell)
{
    using GetVersionFunction = LONG(WINAPI*)(RTL_OSVERSIONINFOEXW*);
    static const GetVersionFunction kRefuse = [](RTL_OSVERSIONINFOEXW*) -> LONG { return -1; };
    static const GetVersionFunction kAnswer = [](RTL_OSVERSIONINFOEXW* pVersion) -> LONG
    {
        EXPECT_EQ(pVersion->dwOSVersionInfoSize, 284u);
        pVersion->dwMajorVersion = 42;
        return 0;
    };
    const struct
    {
        GetVersionFunction pfnGetVersion;
        bool bResult;
        DWORD nMajor;
    } cases[] = { { nullptr, false, 0 }, { kRefuse, false, 0 }, { kAnswer, true, 42 } };
    CCallHook hook("KERNEL32.dll", "GetProcAddress", &GetProcAddress);
    for (const auto& c : cases)
    {
        hook.Replace(
            [&](HMODULE hModule, const char* pszName)
            {
                EXPECT_EQ(hModule, GetModuleHandleW(L"ntdll.dll"));
                EXPECT_STREQ(pszName, "RtlGetVersion");
                return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(c.pfnGetVersion));
            });
        RTL_OSVERSIONINFOEXW version;
        memset(&version, 0xCC, sizeof version);
        EXPECT_EQ(ReadOsVersion(&version) != 0, c.bResult);
        RTL_OSVERSIONINFOEXW expected = {};
        expected.dwOSVersionInfoSize = 284;
        expected.dwMajorVersion = c.nMajor;
        EXPECT_EQ(memcmp(&version, &expected, sizeof expected), 0) << &c - cases;
    }
}
