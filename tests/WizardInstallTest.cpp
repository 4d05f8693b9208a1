// The built setup as a user meets it: a process of its own, its windows driven by control id; then what it left on the
// machine, looked at from outside.
#include <thread>

#include "install/InstallRun.h"
#include "tests/support/MachineState.h"
#include "tests/support/PendingList.h"
#include "tests/support/WizardProcess.h"

namespace
{

const wchar_t kProduct[] = L"SOFTWARE\\Tandrel\\Lumacap 8";

class WizardInstall : public WizardProcess
{
};

} // namespace

TEST_F(WizardInstall, ClicksAloneInstallForAllUsersOpenTheWebPageAndStartTheProductInItsFolder)
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
    m_wizard->Click(IDC_START_RUN);
    Finish();

    EXPECT_TRUE(ReadBytes(m_strTarget + L"\\Lumacap8.exe") == ReadBytes(m_package.At(L"Lumacap8.exe")));
    EXPECT_EQ(Links(), L"all\\Desktop\\Lumacap 8.lnk|all\\Programs\\Lumacap 8\\Lumacap 8 Help.lnk|"
                       L"all\\Programs\\Lumacap 8\\Lumacap 8.lnk");
    EXPECT_EQ(KeyText(HKEY_LOCAL_MACHINE, kProduct, L"AllUsers"), L"B");
    const std::string strPage = "\"http://www.lumacap.example/lcdx/InstScript.asp?src=setup&Lang=EN\"\r\n";
    EXPECT_TRUE(WaitUntil([&] { return IsThere(At(L"web.txt")) && ReadBytes(At(L"web.txt")) == strPage; }));
    EXPECT_TRUE(AwaitStarts({ L" -regonly", L"" }));
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
    EXPECT_TRUE(AwaitStarts({ L" -regonly" })) << "the box wasn't ticked";
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
    EXPECT_TRUE(AwaitStarts({ L" -regonly" })); // it would end with the run that started it

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
    EXPECT_TRUE(AwaitStarts({ L" -regonly", L" -regonly" }));
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
