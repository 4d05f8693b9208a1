// The program's state before anything has run, what is found out by name, and the end of a process. A fresh process
// tells of its own start and end.
#include "app/RunState.h"

#include <gtest/gtest.h>

#include <stdio.h>
#include <stdlib.h>

#include "app/StartBindings.h"
#include "tests/support/ChildRole.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Machine.h"
#include "tests/support/ProcessRun.h"
#include "tests/support/ProgramState.h"
#include "tests/support/SharedList.h"

namespace
{

std::string BoundFunctions()
{
    std::string strBound;
    for (const bool bBound :
         { g_pfnLookupPrivilegeValue != nullptr, g_pfnAdjustTokenPrivileges != nullptr,
           g_pfnOpenProcessToken != nullptr, g_pfnIsWow64Process != nullptr, g_pfnIsWow64ProcessOf != nullptr })
        strBound += bBound ? '1' : '0';
    return strBound;
}

int TellState()
{
    printf("silent %d, kind %d, desktop icon %d, name %ls, restart support %lu\n", g_nSilent, g_nInstallKind,
           g_bDeskIcon, theApp.m_pszAppName, theApp.m_dwRestartManagerSupportFlags);
    printf("flags %d%d%d%d%d%d, version %u%u%u%u\n", g_bFreshInstall, g_bUpgrade, g_bRunAfter, g_bAutoStart,
           g_bRebootNeeded, g_bSettingsCopied, g_nVerMajor, g_nVerMinor, g_nVerFix, g_nVerBuild);
    for (const CString* pText :
         { &g_strInstDir, &g_strSourceDir, &g_strGroup, &g_strSfxName, &g_strNextText, &g_strCancelText })
        printf("[%ls]", pText->GetString());
    printf(" bound %s, Windows %lu.%lu in %lu bytes", BoundFunctions().c_str(), g_osVersion.dwMajorVersion,
           g_osVersion.dwMinorVersion, g_osVersion.dwOSVersionInfoSize);
    return 0;
}

// The process's leaving of the list shows by the message to those that remain.
BOOL WINAPI TellOfPost(HWND, UINT nMessage, WPARAM, LPARAM)
{
    printf("message %u, the application is %s", nMessage, AfxGetApp() == nullptr ? "gone" : "there");
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
    const std::pair<const wchar_t*, std::string> cases[] = { { L"winxp64", "5.2" }, { L"win10", "10.0" } };
    for (const auto& c : cases)
    {
        const CWindowsVersion version(c.first);
        CProcessRun child(CChildRole::CommandLine(L"state"));
        ASSERT_TRUE(child.Start() && child.WaitForEnd());
        EXPECT_EQ(child.Output(), "silent 1, kind 1, desktop icon 1, name Lumacap 8, restart support 0\r\n"
                                  "flags 000000, version 0000\r\n"
                                  "[][][][][][] bound 11111, Windows " +
                                      c.second + " in 284 bytes");
    }
}

TEST(RunState, EveryEndButTheAbruptLeavesTheListAfterTheApplication)
{
    for (const wchar_t* pszRole : { L"return", L"exit", L"quick-exit" })
    {
        const bool bLeaves = pszRole[0] != L'q';
        CProductList list({ 70001 });
        CProcessRun child(CChildRole::CommandLine(pszRole));
        ASSERT_TRUE(child.Start() && child.WaitForEnd());
        EXPECT_EQ(child.ExitCode(), 5u);
        EXPECT_EQ(child.Output(), bLeaves ? "message 1947, the application is gone" : "");
        EXPECT_EQ(list.Ids(), (bLeaves ? std::vector<DWORD>{ 70001 } : std::vector<DWORD>{ 70001, child.Id() }));
    }
}

TEST(RunState, EachFunctionIsBoundByItselfOrStaysNullAndItsFactsZero)
{
    const std::pair<const char*, const char*> cases[] = {
        // what is missing, a function or a module
        { "LookupPrivilegeValueW", "01111" }, { "AdjustTokenPrivileges", "10111" }, { "OpenProcessToken", "11011" },
        { "IsWow64Process", "11100" },        { "Advapi32.dll", "00011" },          { "RtlGetVersion", "11111" }
    };
    CCallHook lookup("KERNEL32.dll", "GetProcAddress", &GetProcAddress);
    CCallHook module("KERNEL32.dll", "GetModuleHandleA", &GetModuleHandleA);
    for (const auto& c : cases)
    {
        lookup.Replace([&](HMODULE hModule, const char* pszName)
                       { return strcmp(pszName, c.first) == 0 ? nullptr : lookup.Original()(hModule, pszName); });
        module.Replace([&](const char* pszName)
                       { return strcmp(pszName, c.first) == 0 ? nullptr : module.Original()(pszName); });
        BindDynamicApis();
        BindLibraryApi();
        EXPECT_EQ(BoundFunctions(), c.second) << c.first;
        RTL_OSVERSIONINFOEXW version;
        memset(&version, 0xCC, sizeof version);
        const bool bTold = ReadOsVersion(&version) != 0;
        EXPECT_EQ(bTold, strcmp(c.first, "RtlGetVersion") != 0);
        EXPECT_EQ(version.dwOSVersionInfoSize, 284u);
        EXPECT_EQ(version.dwMajorVersion, bTold ? g_osVersion.dwMajorVersion : 0);
    }
    ResetProgramState();
}
