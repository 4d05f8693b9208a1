// The start of a run: switches, role, the question about other instances and their end. In this process the run is
// stopped where its role shows itself; the built program shows the same from outside.
#include <afxwin.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <tuple>

#include "app/RunState.h"
#include "tests/support/BoxDriver.h"
#include "tests/support/Corner.h"
#include "tests/support/Environment.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ProcessRun.h"
#include "tests/support/RegistryCorner.h"
#include "tests/support/SharedList.h"
#include "tests/support/TestWindow.h"

namespace
{

using IDS = std::vector<DWORD>;
using TEXTS = std::vector<std::wstring>;

const DWORD kSelf = GetCurrentProcessId();
const DWORD kFirst = 70001; // ids that no process has
const DWORD kSecond = 70003;
const DWORD kThird = 70005;
const DWORD kProtected = kThird; // can't be opened

const wchar_t kSetup[] = L"C:\\package\\setup.exe";
const wchar_t kUninstaller[] = L"C:\\product\\LumUnInst.exe";
const wchar_t kCopy[] = L"C:\\temp\\uni1.tmp";

// Text, style and caption.
using TEXT_BOX = std::tuple<std::wstring, UINT, std::wstring>;
using BOXES = std::vector<TEXT_BOX>;

const wchar_t kCaption[] = L"Lumacap Setup";
const UINT kQuestion = MB_YESNO | MB_ICONEXCLAMATION;
const TEXT_BOX kConfirmUninstall{ L"This will completely uninstall Lumacap 8.\nDo you want to continue?",
                                  kQuestion | MB_DEFBUTTON2, kCaption };
const TEXT_BOX kOneInstance{
    L"1 instance of Lumacap is currently opened. If you click \"Yes\" button, SETUP will try to "
    L"close it without saving any editing work you may have done. \n\nContinue installation?",
    kQuestion, kCaption
};
const TEXT_BOX kThreeInstances{ L"3 instances of Lumacap are currently opened. ff you click \"Yes\" button, SETUP will "
                                L"try to close them without saving any editing work you may have done. \n\nContinue "
                                L"installation?",
                                kQuestion, kCaption };
const TEXT_BOX kAborted{
    L"Setup of Lumacap aborted. Please close other instances of Lumacap manually, saving any editing "
    L"work you have done in them, then restart this setup program.",
    MB_ICONINFORMATION, kCaption
};
const TEXT_BOX kDamaged{
    L"This setup files are damaged, installation aborted.\n\nPlease download the product again from "
    L"http://www.lumacap.example/ and re-try the setup.",
    MB_ICONERROR, L"Lumacap 8"
};

// Where a run ended.
enum END
{
    RETURNED,   // InitInstance came back without a hand-over
    INSTALLS,   // the install run looked at its package, which isn't there
    RELAUNCHES, // the first stage of a removal
    REMOVES,    // the second stage
};

// Runs InitInstance to its hand-over and no further. Other instances are ids in the list, and windows of the test.
class StartUp : public testing::Test
{
protected:
    StartUp()
    {
        m_module.Replace(
            [this](HMODULE, LPWSTR pszPath, DWORD cch)
            { return wcsncpy(pszPath, m_strModule.c_str(), cch), static_cast<DWORD>(m_strModule.size()); });
        m_browse.Replace([](auto...) -> HINSTANCE { throw INSTALLS; });
        m_tempName.FailAll(ERROR_ACCESS_DENIED);
        m_sleep.Replace(
            [this](DWORD nTime)
            {
                if (nTime == 1000) // the second stage waits for the first one
                    throw REMOVES;
                Act(L"sleep", nTime);
            });
        m_owner.Replace([this](HWND hWnd, DWORD* pnProcessId) { return *pnProcessId = m_owners[hWnd]; });
        m_post.Replace(
            [this](HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
            { return Act(nMessage == WM_CLOSE && wParam == 1001 && lParam == 0 ? L"close" : L"?", m_owners[hWnd]); });
        m_open.Replace(
            [this](DWORD nAccess, BOOL bInherit, DWORD nId)
            {
                Act(nAccess == PROCESS_TERMINATE && !bInherit ? L"open" : L"?", nId);
                return nId != kProtected ? reinterpret_cast<HANDLE>(INT_PTR(nId)) : nullptr;
            });
        m_terminate.Replace([this](HANDLE hProcess, UINT nCode)
                            { return Act(nCode == 0 ? L"terminate" : L"?", reinterpret_cast<INT_PTR>(hProcess)); });
    }
    ~StartUp() { ResetProgramState(); }

    END Run(const std::wstring& strModule, TEXTS arguments)
    {
        m_bRuns = false;
        ResetProgramState();
        m_list.Set(m_listed);
        m_strActs.clear();
        m_strModule = strModule;
        arguments.insert(arguments.begin(), strModule);
        const CArguments commandLine(arguments);
        m_bRuns = true;
        s_bRelaunches = false;
        try
        {
            EXPECT_EQ(theApp.InitInstance(), strModule == kSetup) << "an install that was turned down";
        }
        catch (const END end)
        {
            return end;
        }
        return s_bRelaunches ? RELAUNCHES : RETURNED;
    }

    static intptr_t Relaunch() { return s_bRelaunches = true, -1; }

    BOOL Act(const wchar_t* pszVerb, INT_PTR nObject)
    {
        m_strActs += pszVerb + (L" " + std::to_wstring(nObject)) + L", ";
        return TRUE;
    }

    static inline bool s_bRelaunches = false;
    std::wstring m_strModule;
    bool m_bRuns = false;
    std::wstring m_strActs; // what was done to other processes
    std::map<HWND, DWORD> m_owners;
    IDS m_listed{ kSelf };
    CSharedList m_list{ L"Lumacap.Tests" }; // the one of this program

    CCallHook<decltype(&GetModuleFileNameW)> m_module{ "KERNEL32.dll", "GetModuleFileNameW" };
    CCallHook<decltype(&ShellExecuteW)> m_browse{ "SHELL32.dll", "ShellExecuteW" };
    CCallHook<decltype(&GetTempFileNameW)> m_tempName{ "KERNEL32.dll", "GetTempFileNameW" };
    CCallHook<decltype(&Sleep)> m_sleep{ "KERNEL32.dll", "Sleep" };
    CCallHook<decltype(&GetWindowThreadProcessId)> m_owner{ "USER32.dll", "GetWindowThreadProcessId" };
    CCallHook<decltype(&PostMessageW)> m_post{ "USER32.dll", "PostMessageW" };
    CCallHook<decltype(&OpenProcess)> m_open{ "KERNEL32.dll", "OpenProcess" };
    CCallHook<decltype(&TerminateProcess)> m_terminate{ "KERNEL32.dll", "TerminateProcess" };
    CImportHook m_relaunch{ "msvcrt.dll", "_wexecl", &Relaunch };
};

// The built program in a folder of its own, without a package: it gets as far as the look at the package.
class StartUpProgram : public MachineCorner
{
protected:
    StartUpProgram()
    {
        // The web page that a damaged package opens leads nowhere.
        m_registry.Keep(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes\\http");
        SetKeyText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes\\http\\shell\\open\\command", L"", L"cmd.exe /c rem");
    }

    CProductList m_list{ {} };
    CRegistryCorner m_registry;
};

} // namespace

TEST_F(StartUp, RoleAndSilentModeComeFromTheArgumentsAndTheWholePath)
{
    const wchar_t* const kPackage = L"-sfxname=c:\\pkg\\setup.exe";
    const struct
    {
        const wchar_t* pszModule;
        TEXTS arguments;
        END end;
        int nSilent;
        const wchar_t* pszSfxFolder = L"";
    } cases[] = {
        { kSetup, {}, INSTALLS, 0 },
        { kSetup, { L"-V", L"-s" }, INSTALLS, 0 },
        { kSetup, { L"-S", L"-v" }, INSTALLS, 0 },
        { kSetup, { L"-s", L"-SConf", L"-v" }, INSTALLS, 2 },
        { kSetup, { L"-silent" }, INSTALLS, 0 },
        { kSetup, { L"-delself" }, INSTALLS, 0 },
        { kSetup, { kPackage, L"-v" }, INSTALLS, 0, L"c:\\pkg" },
        { kSetup, { L"-v", kPackage }, INSTALLS, 0 },
        { kSetup, { L"-sconf", kPackage }, INSTALLS, 2 },
        { kSetup, { L"-s", L"-sfxname=c:\\a\\b", kPackage }, INSTALLS, 1, L"c:\\pkg" },
        { kSetup, { kPackage, L"-sfxname=", L"-SFXNAME=c:\\a\\b.exe", L"x-sfxname=c:\\a\\b.exe" }, INSTALLS, 0 },
        { kSetup, { L"-DELSELF", L"x", L"y", L"/s" }, INSTALLS, 0 },
        { kSetup, { L"-s", L"-delself", L"x", L"/s" }, INSTALLS, 1 },
        { L"C:\\Package\\SETUP.EXE", { L"/s", L"/s" }, INSTALLS, 0 },
        { L"C:\\setup.exe.d\\LumUnInst.exe", { L"-s", L"-s" }, INSTALLS, 1 },
        { kUninstaller, { L"-INSTALL", L"/s" }, INSTALLS, 0 },
        { kUninstaller, { L"-s", L"-install" }, RELAUNCHES, 1 },
        { kUninstaller, { L"-sconf", L"-v" }, RELAUNCHES, 2 },
        { L"C:\\product\\setup8.exe", { L"-installer" }, RELAUNCHES, 1 },
        { kCopy, { L"-delself", kUninstaller, L"-v" }, REMOVES, 0 },
        { kSetup, { L"-delself", kUninstaller, L"-s" }, REMOVES, 1 },
    };
    m_listed = { kFirst, kSelf };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(&c - cases);
        const CBoxRecorder boxes({ IDYES });
        EXPECT_EQ(Run(c.pszModule, c.arguments), c.end);
        EXPECT_EQ(g_nSilent, c.nSilent);
        EXPECT_STREQ(g_strSfxName, c.pszSfxFolder);
        EXPECT_EQ(m_strActs.empty(), c.end == REMOVES) << "other instances are no matter of the second stage";
    }
}

TEST_F(StartUp, AsksBeforeItRemovesOrClosesOthersUnlessASwitchForbids)
{
    const IDS one{ kFirst, kSelf };
    const IDS three{ kFirst, kSecond, kThird, kSelf };
    const struct
    {
        const wchar_t* pszModule;
        TEXTS arguments;
        IDS listed;
        int nAnswer;
        END end;
        BOXES boxes;
    } cases[] = {
        { kUninstaller, { L"-sconf" }, one, IDNO, RELAUNCHES, {} },
        { kUninstaller, { L"-v" }, three, IDYES, RELAUNCHES, { kConfirmUninstall } },
        { kUninstaller, { L"-v" }, one, IDCANCEL, RETURNED, { kConfirmUninstall } },
        { kSetup, {}, { kSelf }, IDNO, INSTALLS, { kDamaged } },
        { kSetup, {}, one, IDYES, INSTALLS, { kOneInstance, kDamaged } },
        { kSetup, { L"-s" }, one, IDNO, RETURNED, { kOneInstance, kAborted } },
        { kSetup, { L"/s" }, three, IDYES, INSTALLS, { kThreeInstances, kDamaged } },
        { kSetup, { L"-install", L"-sconf" }, three, IDCANCEL, RETURNED, { kThreeInstances, kAborted } },
        { kSetup, { L"-x", L"/S" }, one, IDNO, INSTALLS, { kDamaged } },
        { kSetup, { L"-install", L"-v", L"-S" }, three, IDNO, INSTALLS, { kDamaged } },
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(&c - cases);
        const CBoxRecorder recorder({ c.nAnswer, IDOK });
        m_listed = c.listed;
        AfxSetResourceHandle(GetModuleHandleW(L"ntdll.dll")); // the program takes its own resources
        EXPECT_EQ(Run(c.pszModule, c.arguments), c.end);
        EXPECT_EQ(std::count(m_strActs.begin(), m_strActs.end(), L','),
                  c.end == RETURNED ? 0 : 4 * static_cast<int>(c.listed.size()) - 4 - (c.listed == three));
        BOXES boxes;
        for (const RECORDED_BOX& box : recorder.Boxes())
            boxes.emplace_back(box.strText, box.nStyle, box.hOwner == nullptr ? box.strCaption : L"owned");
        EXPECT_TRUE(boxes == c.boxes) << testing::PrintToString(boxes);
    }
}

TEST_F(StartUp, OthersAreClosedInTheListsOrderAndTheLastEntryIsSpared)
{
    const CTestWindow first(L"Lumacap 8 - first");
    const CTestWindow second(L"Lumacap 8 - second");
    m_owners = { { first, kFirst }, { second, kSecond } };
    const std::wstring kCloseFirst = L"close 70001, sleep 10, open 70001, terminate 70001, ";
    const std::wstring kCloseSecond = L"close 70003, sleep 10, open 70003, terminate 70003, ";
    const std::pair<IDS, std::wstring> cases[] = {
        { { kSecond, kFirst, kSelf }, kCloseSecond + kCloseFirst },
        { { kFirst, kSelf, kSecond }, kCloseFirst },
        { { kSelf, kSecond, kFirst }, kCloseSecond },
        { { 80001, kSelf }, L"close 0, sleep 10, open 80001, terminate 80001, " },
        { { kSelf }, L"" },
        { { kProtected, kSelf }, L"close 0, sleep 10, open 70005, " },
    };
    for (const auto& c : cases)
    {
        m_listed = c.first;
        EXPECT_EQ(Run(kUninstaller, {}), RELAUNCHES);
        EXPECT_EQ(m_strActs, c.second);
    }
}

TEST_F(StartUp, InstancesThatLeaveDuringTheQuestionEndInTheFrameworksException)
{
    m_listed = { kFirst, kSecond, kSelf };
    CCallHook box("USER32.dll", "MessageBoxW", &MessageBoxW);
    box.Replace([&](auto...) { return m_list.Set({ kFirst, kSelf }), IDYES; });
    EXPECT_EQ(Run(kSetup, {}), INSTALLS);
    box.Replace([&](auto...) { return m_list.Set({ kSelf }), IDYES; });
    EXPECT_THROW(Run(kSetup, {}), CInvalidArgException*);
}

TEST_F(StartUp, WithoutACopyOfTheListNothingIsClosed)
{
    const CBoxRecorder boxes({ IDYES });
    CCallHook map("KERNEL32.dll", "MapViewOfFile", &MapViewOfFile);
    m_listed = { kFirst, kSelf };
    int nCalls = 0; // the first one is the count
    map.Replace([&](auto... arguments) { return m_bRuns && ++nCalls > 1 ? nullptr : map.Original()(arguments...); });
    EXPECT_EQ(Run(kSetup, {}), INSTALLS);
    EXPECT_EQ(m_strActs, L"");
}

TEST_F(StartUpProgram, LeavesThreeProductsAloneAfterANoAndClosesThemAfterAYes)
{
    const std::wstring strProduct = L"\"" + PackageFolder() + L"\\Lumacap8.exe\" ";
    CProcessRun products[] = { CProcessRun(strProduct), CProcessRun(strProduct + L"-nowindow"),
                               CProcessRun(strProduct + L"-ignoreclose") };
    for (CProcessRun& product : products)
        ASSERT_TRUE(product.Start());
    ASSERT_TRUE(WaitUntil([&] { return m_list.Ids().size() == 3; }));
    const std::wstring strProgram = At(L"setup.exe.d\\LumUnInst.exe");
    CopyOneFile(BuildFolder() + L"\\setup.exe", strProgram);
    for (const int nAnswer : { IDNO, IDYES })
    {
        CProcessRun run(strProgram);
        ASSERT_TRUE(run.Start());
        const BOX question = ExpectBox(run.Id(), nAnswer);
        EXPECT_EQ(question.strText + question.strCaption, std::get<0>(kThreeInstances) + kCaption);
        EXPECT_EQ(ExpectBox(run.Id(), IDOK).strText, std::get<0>(nAnswer == IDNO ? kAborted : kDamaged));
        EXPECT_TRUE(run.WaitForFamily());
        EXPECT_EQ(run.ExitCode(), nAnswer == IDNO ? 0u : 1u);
        for (CProcessRun& product : products)
            EXPECT_EQ(product.WaitForEnd(nAnswer == IDNO ? 0 : kPatience), nAnswer == IDYES);
    }
}

TEST(StartUpResources, ProgramAsksForTheAdministratorAndNamesTheSetup)
{
    const std::string strProgram = ReadBytes(BuildFolder() + L"\\setup.exe");
    const std::wstring strName(L"FileDescription\0\0Lumacap Setup\0", 31);
    for (const std::string& strText :
         { std::string("level=\"requireAdministrator\""), std::string("uiAccess=\"false\""),
           std::string(">true</dpiAware>"), std::string("{e2011457-1546-43c5-a5fe-008deee3d3f0}"),
           std::string("{35138b9a-5d96-4fbd-8e2d-a2440225f93a}"),
           std::string(reinterpret_cast<const char*>(strName.c_str()), 2 * strName.size()) })
        EXPECT_NE(strProgram.find(strText), std::string::npos) << strText;
}
