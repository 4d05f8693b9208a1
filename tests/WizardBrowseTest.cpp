// Browse with the platform's own folder dialog: the wizard as a process of its own, both windows driven from outside.
// The dialog lets its tree be walked and a folder be made; that a typed name doesn't exist it never tells.
#include "tests/support/WizardProcess.h"

namespace
{

// Controls of the platform's dialog
const int kBrowserTitle = 0x3742;
const int kBrowserName = 0x3745;
const int kNewFolder = 0x3746;

const int kOpenings = 8; // at most; more than two in a row are rare

class WizardBrowse : public WizardProcess
{
protected:
    WizardBrowse() { MakeFolder(At(L"Program Files")); }

    std::wstring InPrograms(const std::wstring& strName) const { return At(L"Program Files\\" + strName); }
    std::wstring FolderLine() const { return m_wizard->Text(IDC_FOLDER_PATH); }

    // Opens the dialog, which must stand on the folder of that name.
    std::unique_ptr<CDialogDriver> OpenBrowser(const wchar_t* pszAtFirst) const
    {
        // Wine's dialog tells folders apart by their times of access too, and doesn't find one whose time its own first
        // look has changed. So all are looked into before, and a dialog that stands elsewhere, which shows as soon as
        // it is visible, is opened anew.
        for (int i = 0; i < kOpenings; i++)
        {
            ListTree(Folder());
            m_wizard->Click(IDC_FOLDER_BROWSE);
            auto browser = std::make_unique<CDialogDriver>(m_run->Id(), L"Browse for Folder");
            if (browser->AwaitText(kBrowserName, pszAtFirst, 500))
                return browser;
            browser->Click(IDCANCEL);
            EXPECT_TRUE(browser->AwaitGone());
        }
        ADD_FAILURE() << "the dialog never stands on " << testing::PrintToString(pszAtFirst);
        return nullptr;
    }

    // Walks on in the open dialog by the keys to the folder of that name, and ends the dialog by the button.
    void Browse(const wchar_t* pszAtFirst, const std::vector<WPARAM>& keys, const wchar_t* pszChosen, int nButton) const
    {
        const auto browser = OpenBrowser(pszAtFirst);
        ASSERT_TRUE(browser);
        for (const WPARAM nKey : keys)
            browser->PressKey(nKey);
        EXPECT_TRUE(browser->AwaitText(kBrowserName, pszChosen));
        browser->Click(nButton);
        EXPECT_TRUE(browser->AwaitGone());
    }
};

} // namespace

TEST_F(WizardBrowse, PortableInstallPutsItsStarterIntoTheChosenFolder)
{
    const std::wstring strStick = InPrograms(L"Stick");
    MakeFolder(strStick);
    OpenOn(IDC_FOLDER_BROWSE);
    m_wizard->Click(IDC_FOLDER_PORTABLE);
    ASSERT_TRUE(m_wizard->AwaitText(IDC_FOLDER_PATH, L""));
    Browse(L"Lumacap 8", { VK_DOWN }, L"Stick", IDOK);
    ASSERT_TRUE(m_wizard->AwaitText(IDC_FOLDER_PATH, strStick + L"\\Lumacap 8"));
    EXPECT_EQ(TreeText(At(L"Program Files")), L"") << "an empty folder goes until the install makes it";
    Step(IDC_START_TEXT);
    Install();
    EXPECT_EQ(m_wizard->Text(IDC_START_PROGRESS),
              L"To run portable Lumacap, double-click 'StartLC8' icon located at:\n" + strStick);
    EXPECT_TRUE(m_wizard->IsVisible(IDC_START_PROGRESS) && !m_wizard->IsVisible(IDC_START_RUN));
    Finish();
    EXPECT_TRUE(ReadBytes(strStick + L"\\StartLC8.exe") == ReadBytes(m_package.At(L"StartLC8.exe")));
    EXPECT_TRUE(IsThere(strStick + L"\\Lumacap 8\\Lumacap8.exe"));
    EXPECT_FALSE(IsThere(m_strTarget));
    EXPECT_EQ(Links(), L"");
}

TEST_F(WizardBrowse, FolderIsTakenExtendedOrRefusedAndACancelledChoiceIsNone)
{
    for (const wchar_t* pszFile : { L"Full\\a.txt", L"Old\\Lumacap6.exe", L"Product\\Lumacap8.exe" })
        WriteBytes(InPrograms(pszFile), "");
    const std::wstring strTree = TreeText(At(L"Program Files"));
    OpenOn(IDC_FOLDER_BROWSE);
    Browse(L"Lumacap 8", { VK_UP }, L"Full", IDCANCEL);
    EXPECT_EQ(FolderLine(), m_strTarget);
    Browse(L"Lumacap 8", { VK_DOWN }, L"Old", IDOK);
    ExpectWarning(L"Lumacap ver. 8 can not be installed into the same folder where the older version is. Please select "
                  L"a different folder.");
    EXPECT_EQ(FolderLine(), m_strTarget);
    Browse(L"Lumacap 8", { VK_DOWN, VK_DOWN }, L"Product", IDOK);
    EXPECT_TRUE(m_wizard->AwaitText(IDC_FOLDER_PATH, InPrograms(L"Product")));
    Browse(L"Product", { VK_UP, VK_UP }, L"Full", IDOK);
    EXPECT_TRUE(m_wizard->AwaitText(IDC_FOLDER_PATH, InPrograms(L"Full\\Lumacap 8")));
    EXPECT_EQ(TreeText(At(L"Program Files")), strTree);
}

TEST_F(WizardBrowse, FolderMadeInTheDialogIsTakenAsItStandsAndWaitsForTheInstall)
{
    OpenOn(IDC_FOLDER_BROWSE);
    const auto browser = OpenBrowser(L"Lumacap 8");
    ASSERT_TRUE(browser);
    EXPECT_EQ(browser->Text(kBrowserTitle), L"Select the folder where where Lumacap should be installed.");
    browser->Click(kNewFolder);
    ASSERT_TRUE(browser->AwaitText(kBrowserName, L"New Folder"));
    browser->PressKey(VK_RETURN); // takes the name
    browser->Click(IDOK);
    EXPECT_TRUE(m_wizard->AwaitText(IDC_FOLDER_PATH, m_strTarget + L"\\New Folder"));
    EXPECT_FALSE(IsThere(m_strTarget + L"\\New Folder"));
}
