// The start of a run: switches, role, the question about other instances and their end. In this process the run is
// stopped where its role shows itself; the built program shows the same from outside.
#include <afxwin.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "app/RunState.h"
#include "foundation/FolderPaths.h"
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

const wchar_t kSetup[] = L"C:\\package\\setup.exe";
const wchar_t kUninstaller[] = L"C:\\product\\LumUnInst.exe";

const wchar_t kConfirmUninstall[] = L"This will completely uninstall Lumacap 8.\nDo you want to continue?";
const wchar_t kOneInstance[] =
    L"1 instance of Lumacap is currently opened. If you click \"Yes\" button, SETUP will try to close it without "
    L"saving any editing work you may have done. \n\nContinue installation?";
const wchar_t kThreeInstances[] =
    L"3 instances of Lumacap are currently opened. ff you click \"Yes\" button, SETUP will try to close them without "
    L"saving any editing work you may have done. \n\nContinue installation?";
const wchar_t kAborted[] =
    L"Setup of Lumacap aborted. Please close other instances of Lumacap manually, saving any editing work you have "
    L"done in them, then restart this setup program.";
const wchar_t kDamaged[] = L"This setup files are damaged, installation aborted.\n\nPlease download the product again "
                           L"from http://www.lumacap.example/ and re-try the setup.";

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
            {
                wcsncpy(pszPath, m_strModule.c_str(), cch);
                return static_cast<DWORD>(m_strModule.size());
            });
        m_exit.Replace([](int nCode) { throw std::make_pair(INSTALLS, nCode); });
        m_browse.Replace([](HWND, LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR, int) { return HINSTANCE(); });
        m_tempName.FailAll(ERROR_ACCESS_DENIED);
        m_sleep.Replace(
            [this](DWORD nTime)
            {
                if (nTime == 1000) // the second stage waits for the first one
                    throw std::make_pair(REMOVES, 0);
                m_acts.push_back(L"sleep " + std::to_wstring(nTime));
            });
        m_owner.Replace(
            [this](HWND hWnd, DWORD* pnProcessId)
            {
                *pnProcessId = m_owners[hWnd];
                return DWORD(1);
            });
        m_post.Replace(
            [this](HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
            {
                EXPECT_TRUE(nMessage == WM_CLOSE && wParam == 1001 && lParam == 0) << nMessage;
                m_acts.push_back(L"close " + std::to_wstring(m_owners[hWnd]));
                return TRUE;
            });
        m_open.Replace(
            [this](DWORD nAccess, BOOL bInherit, DWORD nId)
            {
                EXPECT_TRUE(nAccess == PROCESS_TERMINATE && !bInherit);
                const bool bOpens = nId != m_nProtected;
                m_acts.push_back((bOpens ? L"open " : L"fail to open ") + std::to_wstring(nId));
                return bOpens ? reinterpret_cast<HANDLE>(INT_PTR(nId)) : nullptr;
            });
        m_terminate.Replace(
            [this](HANDLE hProcess, UINT nCode)
            {
                const std::wstring strId = std::to_wstring(reinterpret_cast<INT_PTR>(hProcess));
                m_acts.push_back(L"terminate " + strId + L" " + std::to_wstring(nCode));
                return TRUE;
            });
    }
    ~StartUp() { ResetProgramState(); }

    END Run(const std::wstring& strModule, TEXTS arguments)
    {
        m_bRuns = false;
        ResetProgramState();
        m_list.Set(m_listed);
        m_acts.clear();
        m_strModule = strModule;
        m_nResult = -1;
        s_relaunch.clear();
        arguments.insert(arguments.begin(), strModule);
        const CArguments commandLine(arguments);
        m_bRuns = true;
        try
        {
            m_nResult = theApp.InitInstance();
        }
        catch (const std::pair<END, int>& end)
        {
            m_nResult = end.second;
            return end.first;
        }
        return s_relaunch.empty() ? RETURNED : RELAUNCHES;
    }

    // A process in the list that dies as the setup asks it to.
    static TEXTS Closed(std::initializer_list<DWORD> ids, DWORD nWithoutWindow = 0)
    {
        TEXTS acts;
        for (const DWORD nId : ids)
        {
            const std::wstring strId = std::to_wstring(nId);
            acts.push_back(L"close " + (nId == nWithoutWindow ? L"0" : strId));
            acts.insert(acts.end(), { L"sleep 10", L"open " + strId, L"terminate " + strId + L" 0" });
        }
        return acts;
    }

    static intptr_t __cdecl Relaunch(const wchar_t*, const wchar_t*, const wchar_t* pszSwitch, const wchar_t* pszPath,
                                     const wchar_t* pszSilent, const wchar_t*)
    {
        s_relaunch = { pszSwitch, pszPath, pszSilent == nullptr ? L"" : pszSilent };
        return -1;
    }

    static inline TEXTS s_relaunch;
    std::wstring m_strModule;
    int m_nResult = -1;
    DWORD m_nProtected = 0;
    bool m_bRuns = false;
    TEXTS m_acts; // what was done to other processes
    std::map<HWND, DWORD> m_owners;
    IDS m_listed{ kSelf };
    CSharedList m_list{ L"Lumacap.Tests" }; // the one of this program

    CCallHook<decltype(&GetModuleFileNameW)> m_module{ "KERNEL32.dll", "GetModuleFileNameW", &GetModuleFileNameW };
    CCallHook<void (*)(int)> m_exit{ "msvcrt.dll", "exit", static_cast<void (*)(int)>(nullptr) };
    CCallHook<decltype(&ShellExecuteW)> m_browse{ "SHELL32.dll", "ShellExecuteW", &ShellExecuteW };
    CCallHook<decltype(&GetTempFileNameW)> m_tempName{ "KERNEL32.dll", "GetTempFileNameW", &GetTempFileNameW };
    CCallHook<decltype(&Sleep)> m_sleep{ "KERNEL32.dll", "Sleep", &Sleep };
    CCallHook<decltype(&GetWindowThreadProcessId)> m_owner{ "USER32.dll", "GetWindowThreadProcessId",
                                                            &GetWindowThreadProcessId };
    CCallHook<decltype(&PostMessageW)> m_post{ "USER32.dll", "PostMessageW", &PostMessageW };
    CCallHook<decltype(&OpenProcess)> m_open{ "KERNEL32.dll", "OpenProcess", &OpenProcess };
    CCallHook<decltype(&TerminateProcess)> m_terminate{ "KERNEL32.dll", "TerminateProcess", &TerminateProcess };
    CImportHook m_relaunch{ "msvcrt.dll", "_wexecl", &Relaunch };
};

// The built program in a folder of its own, without a package: it gets as far as the look at the package.
class StartUpProgram : public MachineCorner
{
protected:
    void SetUp() override
    {
        MachineCorner::SetUp();
        // The web page that a damaged package opens leads nowhere.
        m_registry.Keep(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes\\http");
        SetKeyText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes\\http\\shell\\open\\command", L"", L"cmd.exe /c rem");
    }

    std::wstring PutProgram(const std::wstring& strName)
    {
        CopyOneFile(BuildFolder() + L"\\setup.exe", At(strName));
        return L"\"" + At(strName) + L"\" ";
    }

    // A running product that stands in the list.
    void StartProduct(CProcessRun& product)
    {
        const size_t nListed = m_list.Ids().size();
        ASSERT_TRUE(product.Start());
        ASSERT_TRUE(WaitUntil([&] { return m_list.Ids().size() > nListed; }));
    }

    const std::wstring m_strProduct = L"\"" + PackageFolder() + L"\\Lumacap8.exe\" ";
    CProductList m_list{ {} };
    CRegistryCorner m_registry;
};

void ExpectBoxIs(const BOX& box, const wchar_t* pszCaption, const wchar_t* pszText, UINT nIcon)
{
    EXPECT_EQ(box.strCaption, pszCaption);
    EXPECT_EQ(box.strText, pszText);
    EXPECT_EQ(box.nIcon, nIcon);
}

} // namespace

TEST_F(StartUp, SwitchesSetTheSilentModeOfEachRoleAndThePackagesFolder)
{
    const struct
    {
        TEXTS switches;
        int nInstall;
        int nUninstall;
        const wchar_t* pszSfxFolder;
    } cases[] = {
        { {}, 0, 1, L"" },
        { { L"-s" }, 1, 1, L"" },
        { { L"-S" }, 1, 1, L"" },
        { { L"-V", L"-s" }, 0, 0, L"" },
        { { L"-s", L"-v" }, 0, 0, L"" },
        { { L"-sconf" }, 2, 2, L"" },
        { { L"-s", L"-SConf" }, 2, 2, L"" },
        { { L"-sconf", L"-v" }, 2, 2, L"" },
        { { L"-v", L"-sconf" }, 0, 0, L"" },
        { { L"/s" }, 0, 1, L"" },
        { { L"-silent", L"-delself" }, 0, 1, L"" },
        { { L"-delself" }, 0, 1, L"" },
        { { L"-sfxname=c:\\pkg\\setup.exe", L"-v" }, 0, 0, L"c:\\pkg" },
        { { L"-v", L"-sfxname=c:\\pkg\\setup.exe" }, 0, 0, L"" },
        { { L"-sconf", L"-sfxname=c:\\pkg\\setup.exe" }, 2, 2, L"" },
        { { L"-s", L"-sfxname=c:\\a\\b.exe", L"-sfxname=c:\\pkg\\setup.exe" }, 1, 1, L"c:\\pkg" },
        { { L"-sfxname=c:\\a\\b.exe", L"-sfxname=" }, 0, 1, L"" },
        { { L"-SFXNAME=c:\\a\\b.exe", L"x-sfxname=c:\\a\\b.exe" }, 0, 1, L"" },
        { { L"-sfxname=setup.exe" }, 0, 1, L"" },
    };
    const CBoxRecorder boxes({ IDYES });
    for (const auto& c : cases)
    {
        EXPECT_EQ(Run(kSetup, c.switches), INSTALLS);
        EXPECT_EQ(g_nSilent, c.nInstall) << "install " << &c - cases;
        EXPECT_STREQ(g_strSfxName, c.pszSfxFolder) << &c - cases;
        EXPECT_EQ(Run(kUninstaller, c.switches), RELAUNCHES);
        EXPECT_EQ(g_nSilent, c.nUninstall) << "uninstall " << &c - cases;
        EXPECT_EQ(s_relaunch, (TEXTS{ L"-delself", kUninstaller, c.nUninstall > 0 ? L"-s" : L"" }));
    }
    EXPECT_TRUE(m_acts.empty());
}

TEST_F(StartUp, RoleComesFromTheFirstArgumentOrTheWholePath)
{
    const wchar_t kCopy[] = L"C:\\temp\\uni1.tmp";
    const struct
    {
        const wchar_t* pszModule;
        TEXTS arguments;
        END end;
        int nSilent;
    } cases[] = {
        { L"C:\\Package\\SETUP.EXE", { L"/s", L"/s" }, INSTALLS, 0 },
        { L"C:\\setup.exe.d\\LumUnInst.exe", { L"-s", L"-s" }, INSTALLS, 1 },
        { kUninstaller, { L"-INSTALL", L"/s" }, INSTALLS, 0 },
        { kUninstaller, { L"-s", L"-install" }, RELAUNCHES, 1 },
        { kUninstaller, { L"-installer" }, RELAUNCHES, 1 },
        { L"C:\\product\\setup8.exe", {}, RELAUNCHES, 1 },
        { kCopy, { L"-delself", kUninstaller, L"-s" }, REMOVES, 1 },
        { kCopy, { L"-delself", kUninstaller }, REMOVES, 1 },
        { kCopy, { L"-delself", kUninstaller, L"-v" }, REMOVES, 0 },
        { kSetup, { L"-delself", kUninstaller, L"-s" }, REMOVES, 1 },
        { kSetup, { L"-DELSELF", L"x", L"y", L"/s" }, INSTALLS, 0 },
        { kSetup, { L"-s", L"-delself", L"x", L"/s" }, INSTALLS, 1 },
    };
    for (const auto& c : cases)
    {
        const CBoxRecorder boxes;
        m_listed = { kFirst, kSelf };
        EXPECT_EQ(Run(c.pszModule, c.arguments), c.end) << &c - cases;
        EXPECT_EQ(g_nSilent, c.nSilent) << &c - cases;
        EXPECT_EQ(m_acts.empty(), c.end == REMOVES) << "other instances are no matter of the second stage";
        EXPECT_EQ(boxes.Boxes().size(), c.end == INSTALLS ? 1u : 0u) << "of the damaged package";
    }
}

TEST_F(StartUp, UninstallAsksOnlyInWizardModeAndOnlyYesGoesOn)
{
    const struct
    {
        TEXTS switches;
        int nAnswer;
        END end;
        size_t nBoxes;
    } cases[] = {
        { {}, IDNO, RELAUNCHES, 0 },      { { L"-sconf" }, IDNO, RELAUNCHES, 0 }, { { L"-v" }, IDYES, RELAUNCHES, 1 },
        { { L"-v" }, IDNO, RETURNED, 1 }, { { L"-v" }, IDCANCEL, RETURNED, 1 },
    };
    for (const auto& c : cases)
    {
        const CBoxRecorder boxes({ c.nAnswer });
        m_listed = { kFirst, kSelf };
        // Whatever the framework's resources are before: the program takes its own.
        AfxSetResourceHandle(GetModuleHandleW(L"ntdll.dll"));
        EXPECT_EQ(Run(kUninstaller, c.switches), c.end) << &c - cases;
        EXPECT_EQ(m_nResult, 0);
        EXPECT_EQ(m_acts, c.end == RETURNED ? TEXTS() : Closed({ kFirst }, kFirst)) << "nobody asks about them";
        ASSERT_EQ(boxes.Boxes().size(), c.nBoxes);
        if (c.nBoxes == 0)
            continue;
        EXPECT_EQ(boxes.Boxes()[0].hOwner, nullptr);
        EXPECT_EQ(boxes.Boxes()[0].strText, kConfirmUninstall);
        EXPECT_EQ(boxes.Boxes()[0].strCaption, L"Lumacap Setup");
        EXPECT_EQ(boxes.Boxes()[0].nStyle, UINT(MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2));
    }
}

TEST_F(StartUp, InstallAsksBeforeItClosesOthersUnlessASwitchBehindTheFirstForbids)
{
    const struct
    {
        TEXTS arguments;
        IDS others;
        const wchar_t* pszQuestion; // null: none
    } cases[] = {
        { {}, {}, nullptr },
        { {}, { kFirst }, kOneInstance },
        { { L"-s" }, { kFirst }, kOneInstance },
        { { L"/s" }, { kFirst, kSecond, kThird }, kThreeInstances },
        { { L"-install", L"-v" }, { kFirst }, kOneInstance },
        { { L"-install", L"-sconf" }, { kFirst }, kOneInstance },
        { { L"-install", L"-s" }, { kFirst }, nullptr },
        { { L"-x", L"/S" }, { kFirst }, nullptr },
        { { L"-install", L"-v", L"-s" }, { kFirst }, nullptr },
    };
    for (const auto& c : cases)
    {
        for (const int nAnswer : { IDYES, IDNO, IDCANCEL })
        {
            const CBoxRecorder boxes({ nAnswer, IDOK });
            IDS listed = c.others;
            listed.push_back(kSelf);
            m_listed = listed;
            const bool bGoesOn = c.pszQuestion == nullptr || nAnswer == IDYES;
            EXPECT_EQ(Run(kSetup, c.arguments), bGoesOn ? INSTALLS : RETURNED) << &c - cases;
            EXPECT_EQ(m_nResult, 1); // as exit code of the damaged package, too
            EXPECT_EQ(m_acts.size(), bGoesOn ? 4 * c.others.size() : 0);
            if (c.pszQuestion == nullptr)
                continue;
            ASSERT_EQ(boxes.Boxes().size(), 2u);
            EXPECT_EQ(boxes.Boxes()[0].strText, c.pszQuestion);
            EXPECT_EQ(boxes.Boxes()[0].strCaption, L"Lumacap Setup");
            EXPECT_EQ(boxes.Boxes()[0].nStyle, UINT(MB_YESNO | MB_ICONEXCLAMATION));
            EXPECT_EQ(boxes.Boxes()[1].strText, bGoesOn ? kDamaged : kAborted);
            EXPECT_EQ(boxes.Boxes()[1].strCaption, bGoesOn ? L"Lumacap 8" : L"Lumacap Setup");
            EXPECT_EQ(boxes.Boxes()[1].nStyle, UINT(bGoesOn ? MB_ICONERROR : MB_ICONINFORMATION));
        }
    }
}

TEST_F(StartUp, OthersAreClosedInTheListsOrderAndTheLastEntryIsSpared)
{
    const CTestWindow first(L"Lumacap 8 - first");
    const CTestWindow second(L"Lumacap 8 - second");
    m_owners = { { first, kFirst }, { second, kSecond } };
    m_nProtected = kThird;
    const struct
    {
        IDS listed;
        TEXTS acts;
    } cases[] = {
        { { kSecond, kFirst, kSelf }, Closed({ kSecond, kFirst }) },
        { { kFirst, kSelf, kSecond }, Closed({ kFirst }) },
        { { kSelf, kSecond, kFirst }, Closed({ kSecond }) },
        { { 80001, kSelf }, Closed({ 80001 }, 80001) },
        { { kSelf }, {} },
        { { kThird, kSelf }, { L"close 0", L"sleep 10", L"fail to open 70005" } },
    };
    for (const auto& c : cases)
    {
        m_listed = c.listed;
        EXPECT_EQ(Run(kUninstaller, {}), RELAUNCHES);
        EXPECT_EQ(m_acts, c.acts) << &c - cases;
    }
}

TEST_F(StartUp, InstancesThatLeaveDuringTheQuestionEndInTheFrameworksException)
{
    const struct
    {
        IDS left;
        bool bThrows;
    } cases[] = { { { kFirst, kSecond, kSelf }, false }, { { kFirst, kSelf }, false }, { { kSelf }, true } };
    for (const auto& c : cases)
    {
        CCallHook box("USER32.dll", "MessageBoxW", &MessageBoxW);
        box.Replace([&](HWND, LPCWSTR, LPCWSTR, UINT) { return m_list.Set(c.left), IDYES; });
        m_listed = { kFirst, kSecond, kSelf };
        bool bThrown = false;
        try
        {
            Run(kSetup, {});
        }
        catch (CInvalidArgException* pException)
        {
            bThrown = true;
            pException->Delete();
        }
        EXPECT_EQ(bThrown, c.bThrows) << c.left.size();
    }
}

TEST_F(StartUp, WithoutAListTheRunGoesOnAsIfAlone)
{
    m_listed = { kFirst, kSelf };
    for (const int nFailing : { 1, 2 }) // the count, or the copy
    {
        const CBoxRecorder boxes({ IDYES });
        CCallHook map("KERNEL32.dll", "MapViewOfFile", &MapViewOfFile);
        int nCalls = 0;
        map.Replace([&](auto... arguments)
                    { return m_bRuns && ++nCalls >= nFailing ? nullptr : map.Original()(arguments...); });
        EXPECT_EQ(Run(kSetup, {}), INSTALLS);
        EXPECT_TRUE(m_acts.empty());
        EXPECT_EQ(boxes.Boxes().size(), size_t(nFailing)) << "asked only if others were counted";
    }
}

TEST(StartUpPaths, PathsAreCutAtTheirBackslashes)
{
    const struct
    {
        const wchar_t* pszPath;
        const wchar_t* pszParent;
        const wchar_t* pszWithoutLast;
        const wchar_t* pszWithSeparator;
    } cases[] = {
        { nullptr, L"", L"", L"\\" },
        { L"", L"", L"", L"\\" },
        { L"c:\\a\\b", L"c:\\a", L"c:\\a", L"c:\\a\\b\\" },
        { L"c:\\a\\b\\", L"c:\\a", L"c:\\a", L"c:\\a\\b\\" },
        { L"c:\\a\\\\", L"c:\\a", L"c:\\a", L"c:\\a\\\\" },
        { L"c:\\", L"", L"c:", L"c:\\" },
        { L"\\a", L"", L"", L"\\a\\" },
        { L"a", L"", L"a", L"a\\" },
        { L"a/b/", L"", L"a/b/", L"a/b/" },
    };
    for (const auto& c : cases)
    {
        EXPECT_STREQ(ParentFolder(c.pszPath), c.pszParent) << &c - cases;
        EXPECT_STREQ(CutLastPart(c.pszPath), c.pszWithoutLast) << &c - cases;
        EXPECT_STREQ(WithSeparator(c.pszPath), c.pszWithSeparator) << &c - cases;
    }
}

TEST_F(StartUpProgram, SilentInstallAsksAboutARunningProductAndObeys)
{
    const std::wstring strSetup = PutProgram(L"setup.exe") + L"-s";
    for (const wchar_t* pszKind : { L"", L"-nowindow", L"-ignoreclose" })
    {
        CProcessRun product(m_strProduct + pszKind);
        StartProduct(product);
        CProcessRun refused(L"\"" + PackageFolder() + L"\\setup.exe\" -s");
        ASSERT_TRUE(refused.Start());
        ExpectBoxIs(ExpectBox(refused.Id(), IDNO), L"Lumacap Setup", kOneInstance, MB_ICONEXCLAMATION);
        ExpectBoxIs(ExpectBox(refused.Id(), IDOK), L"Lumacap Setup", kAborted, MB_ICONINFORMATION);
        EXPECT_TRUE(refused.WaitForFamily());
        EXPECT_EQ(refused.ExitCode(), 0u);
        EXPECT_FALSE(IsThere(L"C:\\Program Files\\Lumacap 8"));
        EXPECT_EQ(product.ExitCode(), DWORD(STILL_ACTIVE));

        CProcessRun accepted(strSetup);
        ASSERT_TRUE(accepted.Start());
        ExpectBox(accepted.Id(), IDYES);
        EXPECT_TRUE(product.WaitForEnd());
        ExpectBoxIs(ExpectBox(accepted.Id(), IDOK), L"Lumacap 8", kDamaged, MB_ICONERROR);
        EXPECT_TRUE(accepted.WaitForEnd());
        EXPECT_EQ(accepted.ExitCode(), 1u);
        m_list.Set({});
    }
}

TEST_F(StartUpProgram, FirstBoxOfARunBesideThreeProductsTellsItsRole)
{
    const struct
    {
        const wchar_t* pszName;
        const wchar_t* pszSwitches;
        const wchar_t* pszText;
        int nAnswer;
        bool bCloses;
        DWORD nExitCode;
    } cases[] = {
        { L"setup.exe", L"-install -s", kDamaged, IDOK, true, 1 },
        { L"setup.exe", L"-x /S", kDamaged, IDOK, true, 1 },
        { L"setup.exe", L"/s", kThreeInstances, IDNO, false, 0 },
        { L"setup.exe.d\\LumUnInst.exe", L"", kThreeInstances, IDNO, false, 0 },
        { L"LumUnInst.exe", L"-install -s", kDamaged, IDOK, true, 1 },
        { L"LumUnInst.exe", L"-v", kConfirmUninstall, IDNO, false, 0 },
    };
    for (const auto& c : cases)
    {
        CProcessRun first(m_strProduct);
        CProcessRun second(m_strProduct + L"-nowindow");
        CProcessRun third(m_strProduct + L"-ignoreclose");
        for (CProcessRun* pProduct : { &first, &second, &third })
            StartProduct(*pProduct);
        CProcessRun run(PutProgram(c.pszName) + c.pszSwitches);
        ASSERT_TRUE(run.Start());
        EXPECT_EQ(ExpectBox(run.Id(), c.nAnswer).strText, c.pszText);
        if (c.pszText == kThreeInstances)
            ExpectBox(run.Id(), IDOK);
        EXPECT_TRUE(run.WaitForEnd());
        EXPECT_EQ(run.ExitCode(), c.nExitCode) << &c - cases;
        for (CProcessRun* pProduct : { &first, &second, &third })
            EXPECT_EQ(pProduct->WaitForEnd(c.bCloses ? kPatience : 0), c.bCloses);
        m_list.Set({});
    }
}

TEST_F(StartUpProgram, ResourcesAskForTheAdministratorAndNameTheSetup)
{
    const HMODULE hSetup = LoadLibraryExW((BuildFolder() + L"\\setup.exe").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    const auto read = [hSetup](const wchar_t* pszType)
    {
        const HRSRC hResource = FindResourceW(hSetup, MAKEINTRESOURCEW(1), pszType);
        const auto* pData = static_cast<const char*>(LockResource(LoadResource(hSetup, hResource)));
        return std::string(pData == nullptr ? "" : pData, SizeofResource(hSetup, hResource));
    };
    const std::string strManifest = read(MAKEINTRESOURCEW(24));
    for (const char* pszText : { "level=\"requireAdministrator\"", "uiAccess=\"false\"", ">true</dpiAware>",
                                 "{e2011457-1546-43c5-a5fe-008deee3d3f0}", "{35138b9a-5d96-4fbd-8e2d-a2440225f93a}" })
        EXPECT_NE(strManifest.find(pszText), std::string::npos) << pszText;
    const std::wstring strName = L"Lumacap Setup";
    EXPECT_NE(read(RT_VERSION).find(std::string(reinterpret_cast<const char*>(strName.c_str()), 2 * strName.size())),
              std::string::npos);
    FreeLibrary(hSetup);
}
