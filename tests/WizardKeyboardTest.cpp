// The wizard by the keyboard alone. The keys go the whole way, from the input queue of the desktop through the window
// in front, so that a page that can't be reached or left shows.
#include <algorithm>

#include "tests/support/WizardProcess.h"

namespace
{

class WizardKeyboard : public WizardProcess
{
protected:
    void OpenByKeyboard()
    {
        Start();
        MeetWizard();
        AwaitPage(IDC_INTRO_VERSION);
        SetForegroundWindow(m_wizard->Window());
    }

    // Presses the key, while another one is held, as soon as a window of the setup is in front and has nothing else to
    // do.
    void Press(WORD nKey, WORD nHeldKey = 0) const
    {
        ASSERT_TRUE(WaitUntil([&] { return IsSetupInFront(); })) << "key " << nKey << " would go astray";
        std::vector<WORD> keys = { nKey };
        if (nHeldKey != 0)
            keys.insert(keys.begin(), nHeldKey);
        for (const WORD n : keys)
            Send(n, 0);
        std::reverse(keys.begin(), keys.end());
        for (const WORD n : keys)
            Send(n, KEYEVENTF_KEYUP);
    }
    void PressAll(const std::string& strKeys) const // letters, digits and blanks
    {
        for (const char ch : strKeys)
            Press(static_cast<WORD>(ch));
    }

    void AwaitFocus(int nId) const
    {
        EXPECT_TRUE(WaitUntil([&] { return m_wizard->FocusId() == nId; }, 5000))
            << "the focus is on " << m_wizard->FocusId() << ", not on " << nId;
    }

    // From Next on by Tab, and all the way back.
    void ExpectRing(std::vector<int> ring) const
    {
        AwaitFocus(IDOK);
        for (const int nId : ring)
        {
            Press(VK_TAB);
            AwaitFocus(nId);
        }
        std::rotate(ring.begin(), ring.end() - 1, ring.end());
        std::reverse(ring.begin(), ring.end());
        for (const int nId : ring)
        {
            Press(VK_TAB, VK_SHIFT);
            AwaitFocus(nId);
        }
    }

    // The box is there, and goes by the key.
    void AnswerByKey(WORD nKey) const
    {
        BOX box;
        ASSERT_TRUE(FindBox(m_run->Id(), box));
        Press(nKey);
        EXPECT_TRUE(WaitUntil([&] { return !IsWindow(box.hWnd); }));
    }

private:
    static void Send(WORD nKey, DWORD nFlags)
    {
        INPUT input = {};
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = nKey;
        input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(nKey, MAPVK_VK_TO_VSC));
        input.ki.dwFlags = nFlags;
        EXPECT_EQ(SendInput(1, &input, sizeof(input)), 1u);
    }
    bool IsSetupInFront() const
    {
        const HWND hFront = GetForegroundWindow();
        DWORD nProcessId = 0;
        GetWindowThreadProcessId(hFront, &nProcessId);
        DWORD_PTR nResult = 0;
        return nProcessId == m_run->Id() && SendMessageTimeoutW(hFront, WM_NULL, 0, 0, SMTO_NORMAL, 1000, &nResult);
    }
};

} // namespace

TEST_F(WizardKeyboard, TabGoesThroughEachPageAndTheButtonsBothWaysAndEnterIsNext)
{
    const struct
    {
        int nPage;
        std::vector<int> ring; // from Next on
    } kPages[] = {
        { IDC_INTRO_VERSION, { IDCANCEL, IDOK } },
        { IDC_AGREEMENT_TEXT, { IDCANCEL, IDC_AGREEMENT_TEXT, IDC_SETUP_BACK, IDOK } },
        { IDC_FOLDER_BROWSE, { IDCANCEL, IDC_FOLDER_ALL, IDC_FOLDER_BROWSE, IDC_SETUP_BACK, IDOK } },
        { IDC_GROUP_AUTOSTART,
          { IDCANCEL, IDC_GROUP_NAME, IDC_GROUP_AUTOSTART, IDC_GROUP_DESKTOP, IDC_SETUP_BACK, IDOK } },
        { IDC_START_TEXT, { IDCANCEL, IDC_SETUP_BACK, IDOK } },
    };
    OpenByKeyboard();
    for (const auto& page : kPages)
    {
        SCOPED_TRACE(page.nPage);
        AwaitPage(page.nPage);
        ExpectRing(page.ring);
        Press(VK_RETURN);
    }
    AwaitReportPage();
    ExpectRing({ IDC_START_RUN, IDOK });
    Press(VK_RETURN);
    ExpectEnd();
    EXPECT_TRUE(IsThere(m_strTarget + L"\\Lumacap8.exe"));
}

TEST_F(WizardKeyboard, KeysAloneMakeEveryChoice)
{
    OpenByKeyboard();
    Press(L'N', VK_MENU);
    AwaitPage(IDC_AGREEMENT_TEXT);
    Press(VK_ESCAPE);
    AnswerByKey(VK_RETURN); // No is the default
    Press(VK_RETURN);       // Yes has no key of its own
    AwaitPage(IDC_FOLDER_BROWSE);
    Press(L'B', VK_MENU);
    AwaitPage(IDC_AGREEMENT_TEXT);
    AwaitFocus(IDC_SETUP_BACK);
    Press(VK_TAB);
    Press(VK_RETURN);
    AwaitPage(IDC_FOLDER_BROWSE);

    Press(VK_TAB);
    Press(VK_TAB);
    Press(VK_DOWN);
    EXPECT_TRUE(m_wizard->AwaitText(IDC_FOLDER_PATH, L""));
    Press(VK_UP);
    EXPECT_TRUE(m_wizard->AwaitText(IDC_FOLDER_PATH, m_strTarget));
    Press(VK_UP);
    AwaitFocus(IDC_FOLDER_USER);
    Press(L'R', VK_MENU);
    const CDialogDriver browser(m_run->Id(), L"Browse for Folder");
    Press(VK_ESCAPE);
    EXPECT_TRUE(browser.AwaitGone());
    AwaitFocus(IDC_FOLDER_BROWSE);
    EXPECT_TRUE(m_wizard->IsChecked(IDC_FOLDER_USER));
    Press(L'N', VK_MENU);

    AwaitPage(IDC_GROUP_AUTOSTART);
    Press(VK_TAB);
    Press(VK_TAB);
    PressAll("XY");
    Press(VK_RETURN); // is Next in a text too
    AnswerByKey(VK_RETURN);
    PressAll("Z 1");
    Press(VK_TAB);
    Press(VK_SPACE);
    Press(VK_TAB);
    Press(VK_SPACE);
    Press(VK_RETURN);
    AwaitPage(IDC_START_TEXT);
    Press(VK_RETURN);
    AwaitReportPage();
    Press(VK_TAB);
    Press(VK_SPACE);
    Press(L'F', VK_MENU);
    ExpectEnd();
    EXPECT_EQ(Links(), L"user\\Programs\\Startup\\Lumacap 8.lnk|user\\Programs\\xyz 1\\Lumacap 8 Help.lnk|"
                       L"user\\Programs\\xyz 1\\Lumacap 8.lnk");
    EXPECT_TRUE(AwaitStarts({ L" -regonly", L"" }));
}
