// The built setup as a user meets it: a process of its own, its windows driven by control id; then what it left on the
// machine, looked at from outside.
#include <stdlib.h>

#include <thread>

#include "install/InstallRun.h"
#include "res/resource.h"
#include "app/RunState.h"
#include "tests/support/BoxDriver.h"
#include "tests/support/DialogDriver.h"
#include "tests/support/Environment.h"
#include "tests/support/InstallCorner.h"
#include "tests/support/MachineState.h"
#include "tests/support/PendingList.h"
#include "tests/support/ProcessRun.h"

namespace
{

const wchar_t kProduct[] = L"SOFTWARE\\Tandrel\\Lumacap 8";
const wchar_t kWebCommand[] = L"http\\shell\\open\\command";

class WizardInstall : public InstallCorner
{
protected:
    WizardInstall() : m_package(At(L"package")), m_strTarget(At(L"Program Files\\Lumacap 8"))
    {
        m_registry.Keep(HKEY_CLASSES_ROOT, kWebCommand);
        SetKeyText(HKEY_CLASSES_ROOT, kWebCommand, L"", L"cmd.exe /c echo \"%1\">" + At(L"web.txt"));
    }

    std::wstring Command(const std::wstring& strSwitches) const
    {
        return L"\"" + m_package.Setup() + L"\" " + strSwitches;
    }

    // Starts the setup in its own folder; the product reports each of its starts.
    void Start(const std::wstring& strSwitches = L"")
    {
        m_wizard.reset();
        m_run = std::make_unique<CProcessRun>(Command(strSwitches));
        m_run->SetFolder(m_package.Folder());
        m_run->AddEnvironment(L"LUMACAP_REPORT", At(L"report.txt"));
        ASSERT_TRUE(m_run->Start());
    }
    void MeetWizard() { m_wizard = std::make_unique<CDialogDriver>(m_run->Id(), L"Lumacap Setup"); }

    // Starts the wizard and steps forward until the page that has the control, at most to the ready page.
    void OpenOn(int nControl)
    {
        Start();
        MeetWizard();
        static const int kPages[] = { IDC_INTRO_VERSION, IDC_AGREEMENT_TEXT, IDC_FOLDER_BROWSE, IDC_GROUP_AUTOSTART,
                                      IDC_START_TEXT };
        for (const int nPage : kPages)
        {
            ASSERT_TRUE(m_wizard->AwaitVisible(nPage)) << nPage;
            if (nPage == nControl)
                return;
            m_wizard->Click(IDOK);
        }
    }

    void Step(int nControlOfNextPage) const
    {
        m_wizard->Click(IDOK);
        ASSERT_TRUE(m_wizard->AwaitVisible(nControlOfNextPage));
    }

    // From the ready page to the report.
    void Install() const
    {
        m_wizard->Click(IDOK);
        ASSERT_TRUE(m_wizard->AwaitText(IDOK, L"&Finish >"));
        ASSERT_TRUE(m_wizard->AwaitText(IDC_START_HEADLINE, L"Lumacap 8.20.01 has been successfully installed."));
    }

    void Finish() const
    {
        m_wizard->Click(IDOK);
        ExpectEnd();
    }
    void ExpectEnd() const
    {
        EXPECT_TRUE(m_run->WaitForEnd());
        EXPECT_EQ(m_run->ExitCode(), 0u);
    }

    void ExpectBox(const wchar_t* pszText, std::vector<int> buttons, int nDefault, int nAnswer) const
    {
        const BOX box = ::ExpectBox(m_run->Id(), nAnswer);
        EXPECT_EQ(box.strText, pszText);
        EXPECT_EQ(box.strCaption, L"Lumacap 8");
        EXPECT_EQ(box.buttons, buttons);
        EXPECT_EQ(box.nDefault, nDefault);
    }
    void ExpectWarning(const wchar_t* pszText) const { ExpectBox(pszText, { IDOK }, IDOK, IDOK); }
    void ExpectCancelBox(int nAnswer) const
    {
        ExpectBox(L"Do you really want to cancel Lumacap setup?", { IDYES, IDNO }, IDNO, nAnswer);
    }

    std::string RegistrationOf(const std::wstring& strFolder) const
    {
        return Bytes(L"\"" + strFolder + L"\\Lumacap8.exe\" -regonly\t" + strFolder + L"\r\n");
    }
    bool AwaitReport(const std::string& strReport) const
    {
        return WaitUntil([&] { return IsThere(At(L"report.txt")) && ReadBytes(At(L"report.txt")) == strReport; });
    }

    const CPackage m_package;
    const std::wstring m_strTarget;
    std::unique_ptr<CProcessRun> m_run;
    std::unique_ptr<CDialogDriver> m_wizard;

private:
    CRegistryCorner m_registry;
};

} // namespace

TEST_F(WizardInstall, ClicksAloneInstallForAllUsersAndOpenTheWebPage)
{
    OpenOn(IDC_AGREEMENT_TEXT);
    EXPECT_EQ(m_wizard->Text(IDC_AGREEMENT_TEXT).substr(0, 27), L"\xFEFFLUMACAP 8 LICENSE AGREEMEN");
    Step(IDC_FOLDER_BROWSE);
    EXPECT_TRUE(m_wizard->IsChecked(IDC_FOLDER_ALL));
    EXPECT_EQ(m_wizard->Text(IDC_FOLDER_PATH), m_strTarget);
    Step(IDC_GROUP_AUTOSTART);
    Step(IDC_START_TEXT);
    EXPECT_FALSE(IsThere(m_strTarget));
    Install();
    Finish();

    EXPECT_TRUE(ReadBytes(m_strTarget + L"\\Lumacap8.exe") == ReadBytes(m_package.At(L"Lumacap8.exe")));
    EXPECT_EQ(Links(), L"all\\Desktop\\Lumacap 8.lnk|all\\Programs\\Lumacap 8\\Lumacap 8 Help.lnk|"
                       L"all\\Programs\\Lumacap 8\\Lumacap 8.lnk");
    EXPECT_EQ(KeyText(HKEY_LOCAL_MACHINE, kProduct, L"AllUsers"), L"B");
    const std::string strPage = "\"http://www.lumacap.example/lcdx/InstScript.asp?src=setup&Lang=EN\"\r\n";
    EXPECT_TRUE(WaitUntil([&] { return IsThere(At(L"web.txt")) && ReadBytes(At(L"web.txt")) == strPage; }));
}

TEST_F(WizardInstall, ChoicesOfThePagesReachTheMachine)
{
    OpenOn(IDC_FOLDER_BROWSE);
    m_wizard->Click(IDC_FOLDER_USER);
    Step(IDC_GROUP_AUTOSTART);
    m_wizard->SetText(IDC_GROUP_NAME, L" Tools/Pictures ");
    m_wizard->Click(IDC_GROUP_AUTOSTART);
    m_wizard->Click(IDC_GROUP_DESKTOP);
    Step(IDC_START_TEXT);
    Install();
    Finish();
    EXPECT_EQ(Links(), L"user\\Programs\\Startup\\Lumacap 8.lnk|user\\Programs\\Tools\\Pictures\\Lumacap 8 Help.lnk|"
                       L"user\\Programs\\Tools\\Pictures\\Lumacap 8.lnk");
    EXPECT_EQ(KeyText(HKEY_LOCAL_MACHINE, kProduct, L"AllUsers"), L"A");
    EXPECT_TRUE(AwaitReport(RegistrationOf(m_strTarget))) << "the box wasn't ticked";
}

TEST_F(WizardInstall, VetoesSpeakInBoxesAndKeepThePage)
{
    OpenOn(IDC_FOLDER_BROWSE);
    m_wizard->Click(IDC_FOLDER_PORTABLE);
    m_wizard->Click(IDOK);
    ExpectWarning(L"Please click BROWSE button first and select the folder for portable installation.");
    m_wizard->Click(IDC_FOLDER_ALL);
    Step(IDC_GROUP_AUTOSTART);
    m_wizard->SetText(IDC_GROUP_NAME, L" ab ");
    m_wizard->Click(IDC_SETUP_BACK);
    ExpectWarning(L"Error: Please enter a valid group name, minimum 3 letters");
    m_wizard->SetText(IDC_GROUP_NAME, L"STARTUP");
    m_wizard->Click(IDOK);
    ExpectWarning(L"Error: Can not install shortcuts into this group, please select a different name.");
    m_wizard->SetText(IDC_GROUP_NAME, L"abc");
    Step(IDC_FOLDER_BROWSE); // on from the number that the failed Back has left
    m_wizard->PressKey(VK_ESCAPE);
    ExpectCancelBox(IDNO);
    EXPECT_TRUE(m_wizard->IsVisible(IDC_FOLDER_BROWSE));
}

TEST_F(WizardInstall, CancelOnAnyPageLeavesTheMachineAsItWas)
{
    OpenOn(IDC_START_TEXT); // what Windows notes when its folders are asked for first isn't the program's doing
    m_run.reset();
    const std::vector<std::wstring> before = TakeMachinePicture();
    for (const int nPage :
         { IDC_INTRO_VERSION, IDC_AGREEMENT_TEXT, IDC_FOLDER_BROWSE, IDC_GROUP_AUTOSTART, IDC_START_TEXT })
    {
        OpenOn(nPage);
        m_wizard->Click(IDCANCEL);
        ExpectCancelBox(IDYES);
        ExpectEnd();
    }
    m_run.reset();
    EXPECT_EQ(JoinLines(PictureDifference(before, TakeMachinePicture())), "");
}

TEST_F(WizardInstall, PackageThatIsntNewerIsAskedAbout)
{
    ASSERT_EQ(RunToEnd(Command(L"-s")), 0u);
    Start();
    ExpectBox(L"Lumacap ver. 8.20.01.00 is already installed on this machine.\n\nWould you like to run this setup "
              L"again to select different options or repair the files?",
              { IDYES, IDNO }, IDYES, IDNO);
    ExpectEnd();

    m_package.SetProductVersion(L"8.19.9.0");
    Start();
    ExpectBox(L"Lumacap v. 8.20.01.00 is already installed on this machine. You are trying to install an older version "
              L"8.19.09.00 .\n\nDo you still want to continue?",
              { IDYES, IDNO }, IDYES, IDYES);
    MeetWizard();
    EXPECT_EQ(m_wizard->Text(IDC_INTRO_VERSION).substr(0, 21), L"Lumacap ver. 8.19.09 ");
}

TEST_F(WizardInstall, SilentInstallWithReportOpensOnTheReportAlone)
{
    Start(L"-sconf");
    MeetWizard();
    EXPECT_TRUE(m_wizard->AwaitVisible(IDC_START_RUN));
    EXPECT_EQ(m_wizard->Text(IDC_START_RUN), L"Run Lumacap");
    EXPECT_TRUE(IsThere(m_strTarget + L"\\LumUnInst.log"));
    Finish();

    // A file in use: the restart isn't wanted, and then nothing follows at all.
    const CFileHold hold(m_strTarget + L"\\capff.json", FILE_SHARE_READ);
    Start(L"-sconf -runafter");
    MeetWizard();
    EXPECT_TRUE(m_wizard->AwaitVisible(IDC_START_RUN));
    EXPECT_EQ(m_wizard->Text(IDC_START_RUN), L"Restart the computer when I click \"Finish\"");
    EXPECT_TRUE(m_wizard->IsChecked(IDC_START_RUN));
    m_wizard->Click(IDC_START_RUN);
    Finish();
    EXPECT_EQ(PendingEntries().size(), 5u); // the three folders of the list that aren't empty, the file, its successor
    EXPECT_TRUE(m_run->WaitForFamily());
    EXPECT_TRUE(AwaitReport(RegistrationOf(m_strTarget) + RegistrationOf(m_strTarget)));
    EXPECT_FALSE(IsThere(At(L"web.txt")));
}

TEST_F(WizardInstall, TickedRestartBoxRestartsTheComputer)
{
    const CLaunchRecorder launches;
    CCallHook module("KERNEL32.dll", "GetModuleFileNameW", &GetModuleFileNameW);
    module.Replace([this](HMODULE, LPWSTR psz, DWORD)
                   { return static_cast<DWORD>(wcslen(wcscpy(psz, m_package.Setup().c_str()))); });
    CCallHook restart("USER32.dll", "ExitWindowsEx", &ExitWindowsEx);
    restart.Replace(
        [](UINT nFlags, DWORD nReason)
        {
            EXPECT_EQ(nFlags, UINT(EWX_REBOOT));
            EXPECT_EQ(nReason, 0x80040002);
            return TRUE;
        });
    WriteBytes(m_strTarget + L"\\capff.json", "");
    const CFileHold hold(m_strTarget + L"\\capff.json", FILE_SHARE_READ);
    const CArguments arguments({ L"setup.exe", L"-sconf" });
    g_nSilent = 2;
    std::thread user([] { CDialogDriver(GetCurrentProcessId(), L"Lumacap Setup").Click(IDOK); });
    EXPECT_EQ(RunInstall(), 0);
    user.join();
    EXPECT_EQ(restart.Calls(), 1);
    MSG msg;
    EXPECT_TRUE(PeekMessageW(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "the frame was the main window";
}
