// The start of a run up to its hand-over: switches, role, questions and the end of other instances. Also the state
// before anything has run, what is found out by name, and how a process ends.
#include <stdio.h>

#include "app/RunState.h"
#include "app/StartBindings.h"
#include "tests/support/Calls.h"
#include "tests/support/SharedList.h"
#include "tests/support/Windows.h"
#include "tests/support/World.h"

namespace
{

const DWORD kSelf = GetCurrentProcessId();

// What a run does from its hand-over on, with its result or exit code at the end
const std::wstring kInstall = L"0 This setu Lumacap 8 16, browse, 1"; // there is no package
const std::wstring kRelaunch = L"relaunch, 0";

class App : public World
{
protected:
    // All that others see of a run, and the folder that it was told. The first word is the executable's path.
    std::wstring Run(const wchar_t* pszCommandLine, const IDS& listed, int nAnswer)
    {
        ResetProgramState();
        CSharedList(L"Lumacap.Tests").Set(listed);
        const CArguments arguments(Split(pszCommandLine, L' '));
        m_strActs.clear();
        const CCalls calls({
            // Owner, beginning, caption and style
            { "MessageBoxW", Telling(L"%d %.9s %s %d, ", nAnswer) },
            // A window's number is also that of its process.
            { "GetWindowThreadProcessId",
              [](CALL& call) { return *reinterpret_cast<DWORD*>(call.args[1]) = call.args[0]; } },
            { "PostMessageW", Telling(L"post %d %d %d %d, ") },
            { "Sleep", Telling(L"sleep %d, ") },
            { "OpenProcess", Telling(L"open %d %d %d, ") },
            { "TerminateProcess", Telling(L"terminate %d %d, ") },
            { "ShellExecuteW", Telling(L"browse, ") },
            { "DialogBoxIndirectParamW", Telling(L"wizard, ") },
            { "_wexecl", Telling(L"relaunch, ") },
        });
        m_strActs += std::to_wstring(RunToExit([] { return theApp.InitInstance(); }));
        return m_strActs + g_strSfxName.GetString();
    }

    // The result is that or the third argument, which makes the id of a process its handle, too.
    HANDLER Telling(const wchar_t* pszFormat, INT_PTR nResult = 0)
    {
        return [=](CALL& call)
        {
            wchar_t szAct[100];
            wsprintfW(szAct, pszFormat, call.args[0], call.args[1], call.args[2], call.args[3]);
            m_strActs += szAct;
            return nResult != 0 ? nResult : call.args[2];
        };
    }

    std::wstring m_strActs;
};

// How the others of these are closed. 0 stands for one without a window that can't be opened.
std::wstring Closing(const IDS& ids)
{
    std::wstring strActs;
    for (const DWORD nId : ids)
        if (nId != kSelf)
            strActs += Replaced(nId == 0 ? L"post 0 16 1001 0, sleep 10, open 1 0 0, "
                                         : L"post * 16 1001 0, sleep 10, open 1 0 *, terminate * 0, ",
                                L"*", std::to_wstring(nId));
    return strActs;
}

std::string Bound()
{
    RTL_OSVERSIONINFOEXW version;
    memset(&version, 1, sizeof(version));
    std::string strBound;
    for (const bool bMissing : { !g_pfnLookupPrivilegeValue, !g_pfnAdjustTokenPrivileges, !g_pfnOpenProcessToken,
                                 !g_pfnIsWow64Process, !g_pfnIsWow64ProcessOf, ReadOsVersion(&version) == 0,
                                 version.dwMajorVersion == 0, version.dwOSVersionInfoSize != 284 })
        strBound += bMissing ? '-' : '+';
    return strBound;
}

// The process's leaving of the list shows by the message to those that remain.
int TellOfLife()
{
    printf("%ls %s %lu.%lu", theApp.m_pszAppName, Bound().c_str(), g_osVersion.dwMajorVersion,
           g_osVersion.dwMinorVersion);
    new CCalls({ { "PostMessageW",
                   [](CALL& call) { return printf(" %u %d", UINT(call.args[1]), AfxGetApp() != nullptr); } } });
    exit(5);
}

int LoseList()
{
    const CArguments arguments({ L"", L"-install" });
    const CCalls calls({ { "MessageBoxW", [](CALL&) { return g_InstanceManager.ResetInstanceList(), IDYES; } } });
    return AfxWinMain(nullptr, nullptr, nullptr, 0);
}

const CChildRole s_life(L"life", TellOfLife);
const CChildRole s_lose(L"lose", LoseList);

} // namespace

TEST_F(App, SwitchesAndPathDecideWhatIsAskedClosedAndDone)
{
    const CTestWindow windows[2];
    const DWORD nFirst = HandleToUlong(windows[0]);
    const DWORD nSecond = HandleToUlong(windows[1]);
    const IDS one = { nFirst, kSelf };
    const IDS two = { 0, nFirst, kSelf };
    const struct
    {
        const wchar_t* pszCommandLine;
        int nSilent;
        std::wstring strActs = kInstall;
        IDS listed = { kSelf };
        int nAnswer = IDYES;
    } cases[] = {
        { L"setup.exe", 0 },
        { L"setup.exe -sfxname=a\\b -sfxname=p\\x", 0, kInstall + L"p", {} },
        { L"setup.exe -V -s -sfxname=a\\b", 0 },
        { L"setup.exe -S -v", 0 },
        { L"setup.exe -SConf -s -v -sfxname=a\\b", 2 },
        { L"setup.exe -SFXNAME=a\\b x-sfxname=a\\b", 0 },
        { L"setup.exe -delself", 0 },
        { L"setup.exe -DELSELF x", 0 },
        { L"setup.exe -S -delself x", 1 },
        { L"SETUP.EXE\\x -s", 1, L"0 1 instanc Lumacap Setup 52, 0 Setup of  Lumacap Setup 64, 1", one, IDCANCEL },
        { L"setup.exe /s", 0, L"0 2 instanc Lumacap Setup 52, " + Closing(two) + kInstall, two },
        { L"setup.exe -x /S", 0, Closing(one) + kInstall, one },
        { L"x -INSTALL -v -S", 0, Closing(two) + kInstall, two },
        { L"x -s -install", 1, Closing({ nFirst }) + kRelaunch, { nFirst, kSelf, nSecond } },
        { L"x -sconf -v", 2, Closing(one) + kRelaunch, one },
        { L"x -s -v", 0, L"0 This will Lumacap Setup 308, " + Closing(two) + kRelaunch, two },
        { L" -v", 0, L"0 This will Lumacap Setup 308, 0", one, IDCANCEL }, // the path can't be had
        { L"setup.exe -delself c:\\x\\x", 1, L"sleep 1000, 0", one },
        { L"x -delself c:\\x\\x -v", 0, L"sleep 1000, 0 Lumacap 8 Lumacap 8 48, 0" },
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(Bytes(c.pszCommandLine));
        EXPECT_EQ(Run(c.pszCommandLine, c.listed, c.nAnswer), c.strActs);
        EXPECT_EQ(g_nSilent, c.nSilent);
    }
}

TEST_F(App, ExitLeavesTheListLastAndNothingCatchesAnException)
{
    const struct
    {
        const wchar_t* pszRole;
        const wchar_t* pszWindows;
        const char* pszOutcome;
    } cases[] = {
        { L"life", L"winxp64", "Lumacap 8 ++++++++ 5.2 1947 0 5" },
        { L"life", L"win10", "Lumacap 8 ++++++++ 10.0 1947 0 5" },
        { L"lose", L"win7", " 3221226505" },
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.pszOutcome);
        SetWindowsVersion(c.pszWindows);
        CSharedList list(kProductList);
        list.Set({ 70001 });
        CProcessRun child(CChildRole::CommandLine(c.pszRole));
        ASSERT_TRUE(child.Start());
        ASSERT_TRUE(child.WaitForEnd());
        EXPECT_EQ(child.Output() + " " + std::to_string(child.ExitCode()), c.pszOutcome);
    }
}

TEST_F(App, EachFunctionIsBoundByItselfOrStaysNull)
{
    const std::pair<const char*, const char*> cases[] = {
        { "LookupPrivilegeValueW", "-+++++++" }, { "AdjustTokenPrivileges", "+-++++++" },
        { "OpenProcessToken", "++-+++++" },      { "IsWow64Process", "+++--+++" },
        { "RtlGetVersion", "+++++--+" },
    };
    for (const auto& c : cases)
    {
        const auto find = [&c](CALL& call)
        { return strcmp(c.first, reinterpret_cast<char*>(call.args[1])) ? call.Pass() : 0; };
        const CCalls calls({ { "GetProcAddress", find } });
        BindDynamicApis();
        BindLibraryApi();
        EXPECT_EQ(Bound(), c.second) << c.first;
    }
}
