// The frame: its steps through the pages, what it shows on each, the vetoes, Cancel, the run of the install inside it
// and the report.
#include "wizard/WizardRun.h"

#include "tests/support/WizardCorner.h"

namespace
{

const wchar_t kVersionText[] = L"Lumacap 8.20.01 has been successfully installed.";
const wchar_t kPressFinish[] = L"Press the Finish button to exit this installation.";
const wchar_t kRestart[] = L"It is necessary to restart your computer before using the product, otherwise it may not "
                           L"work correctly.";

class WizardFrame : public WizardCorner
{
protected:
    // Goes through the steps and gives the page after each, with a ! if a box came. N and B are Next and Back, P and U
    // choose a portable kind and the current user, b browses, x and o enter a bad group name and a good one.
    std::string Walk(const std::string& strSteps)
    {
        std::string strPages;
        for (const char chStep : strSteps)
        {
            const size_t nBoxes = Boxes().size();
            Take(chStep);
            strPages += Page();
            if (Boxes().size() > nBoxes)
                strPages += '!';
        }
        return strPages;
    }

    void Take(char chStep)
    {
        if (chStep == 'N')
            Next();
        else if (chStep == 'B')
            Back();
        else if (chStep == 'P' || chStep == 'U')
            Click(chStep == 'P' ? IDC_FOLDER_PORTABLE : IDC_FOLDER_USER);
        else if (chStep == 'b')
            Browse(At(L"package"));
        else
            Type(IDC_GROUP_NAME, chStep == 'x' ? L"ab" : L"abc");
    }

    // The frame as a user sees it: title, side picture, buttons; what is disabled stands in parentheses.
    std::wstring Look() const
    {
        std::wstring strLook = Title() + (IsShown(Side()) ? L" | side" : L" |");
        for (const int nButton : { IDC_SETUP_BACK, IDOK, IDCANCEL })
            if (IsShown(nButton))
                strLook += IsWindowEnabled(Item(nButton)) ? L" " + Text(nButton) : L" (" + Text(nButton) + L")";
        return strLook;
    }

    std::wstring TextIfShown(int nId) const { return IsShown(nId) ? Text(nId) : L""; }
    bool IsTargetThere() const { return IsThere(At(L"target")); }

    RECT PlaceOf(HWND hWnd) const
    {
        RECT place;
        GetWindowRect(hWnd, &place);
        MapWindowPoints(nullptr, m_pFrame->m_hWnd, reinterpret_cast<POINT*>(&place), 2);
        return place;
    }

    void OpenReport(int nKind)
    {
        g_nSilent = SILENT_REPORT;
        g_nInstallKind = nKind;
        Open(4);
    }
};

} // namespace

TEST_F(WizardFrame, StepsForwardAndBackFollowTheKindAndTheVetoes)
{
    const struct
    {
        int nKind;
        const char* pszSteps;
        const char* pszPages;
    } kCases[] = {
        { KIND_ALL_USERS, "NNNNBBBBNN", "AFGRGFAIAF" },
        { KIND_CURRENT_USER, "NNNNBBBBNN", "AFGRGFAIAF" },
        { KIND_PORTABLE, "NNNBBBNNN", "AFRFAIAFR" },
        { KIND_ALL_USERS, "NNPbNBUNNBB", "AFFFRFFGRGF" },
        // A failed Back leaves the lowered number standing, and Next goes on from there.
        { KIND_ALL_USERS, "NNNxNoN", "AFGGG!GR" },
        { KIND_ALL_USERS, "NNNxBoNNN", "AFGGG!GFGR" },
        { KIND_ALL_USERS, "NNNxBNoN", "AFGGG!G!GF" },
        { KIND_ALL_USERS, "NNNxBoBN", "AFGGG!GIA" },
        { KIND_ALL_USERS, "NNPNbN", "AFFF!FR" },
        { KIND_ALL_USERS, "NNPBbN", "AFFF!FA" },
        // Below the first page there is only the first page.
        { KIND_ALL_USERS, "NNNxBBoNNN", "AFGGG!G!GIAF" },
        { KIND_ALL_USERS, "NNNxBBBBBoNNN", "AFGGG!G!G!G!G!GIAF" },
        { KIND_ALL_USERS, "NNNxBBoBN", "AFGGG!G!GIA" },
        { KIND_ALL_USERS, "NNPBBbNN", "AFFF!F!FIA" },
    };
    for (const auto& test : kCases)
    {
        SCOPED_TRACE(test.pszSteps);
        g_nInstallKind = test.nKind;
        g_strInstDir = At(kTargetName).c_str();
        g_strGroup = L"Lumacap 8";
        Open();
        EXPECT_EQ(Page(), 'I');
        EXPECT_EQ(Walk(test.pszSteps), test.pszPages);
        EXPECT_TRUE(m_ends.empty());
        EXPECT_FALSE(IsTargetThere());
    }
}

TEST_F(WizardFrame, EachPageDressesTheFrameInItsOwnWay)
{
    const std::wstring strBack = L"Lumacap Setup | side < &Back &Next > Cancel";
    const std::wstring kLooks[] = {
        L"Lumacap Setup | side &Next > Cancel",
        L"Please read and accept the Lumacap license agreement | < &Back Yes No",
        strBack,
        strBack,
        strBack,
    };
    Open();
    for (const std::wstring& strLook : kLooks)
    {
        SCOPED_TRACE(Page());
        EXPECT_EQ(Look(), strLook);
        EXPECT_EQ(GetFocus(), Item(IDOK));
        const RECT side = PlaceOf(Side());
        const RECT page = PlaceOf(PageWindow());
        EXPECT_EQ(page.left, Page() == 'A' ? 4 : side.right + 4);
        EXPECT_EQ(page.top, Page() == 'A' ? 4 : side.top);
        Next();
    }
    Open();
    Walk("NNB");
    EXPECT_EQ(Look(), kLooks[1]);
    Walk("B");
    EXPECT_EQ(Look(), kLooks[0]);
    Walk("N");
    SetFocus(Item(IDC_SETUP_BACK));
    Walk("N");
    EXPECT_EQ(GetFocus(), Item(IDOK));
}

TEST_F(WizardFrame, CancelAsksOnEachPageAndNeverThePage)
{
    for (const char chPage : { 'I', 'A', 'F', 'G', 'R' })
    {
        SCOPED_TRACE(chPage);
        OpenOn(chPage);
        if (chPage == 'F')
            Click(IDC_FOLDER_PORTABLE); // without a folder: a veto, if it were asked
        const std::wstring strLook = Look();
        AnswerBoxes(IDNO);
        Command(IDCANCEL);
        m_pFrame->SendMessage(WM_CLOSE);
        Press(VK_ESCAPE);
        ASSERT_EQ(Boxes().size(), 3u);
        for (const RECORDED_BOX& box : Boxes())
        {
            EXPECT_EQ(box.strText, L"Do you really want to cancel Lumacap setup?");
            EXPECT_EQ(box.strCaption, L"Lumacap 8");
            EXPECT_EQ(box.nStyle, UINT(MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2));
        }
        EXPECT_EQ(Page(), chPage);
        EXPECT_EQ(Look(), strLook);
        EXPECT_TRUE(m_ends.empty());

        AnswerBoxes(0); // as of a box that can't be shown
        Command(IDCANCEL);
        EXPECT_TRUE(m_ends.empty());

        AnswerBoxes(IDYES);
        Command(IDCANCEL);
        EXPECT_EQ(Boxes().size(), 1u);
        EXPECT_EQ(m_ends, std::vector<INT_PTR>{ IDCANCEL });
        m_ends.clear();
        EXPECT_FALSE(IsTargetThere());
    }
}

TEST_F(WizardFrame, DisabledCancelIsDeafToKeysAndTheSystemMenu)
{
    OpenReport(KIND_ALL_USERS);
    AnswerBoxes(IDYES);
    Command(IDCANCEL);
    m_pFrame->SendMessage(WM_CLOSE);
    m_pFrame->SendMessage(WM_SYSCOMMAND, SC_CLOSE);
    Press(VK_ESCAPE);
    EXPECT_TRUE(Boxes().empty());
    EXPECT_TRUE(m_ends.empty());
    EXPECT_EQ(Page(), 'D');
}

TEST_F(WizardFrame, InstallRunsOnceOnTheSixthPageWithEveryButtonDisabled)
{
    g_nInstallKind = KIND_PORTABLE;
    OpenOn('R');
    CCallHook copy("KERNEL32.dll", "CopyFileW", &CopyFileW);
    std::wstring strLook;
    copy.Replace(
        [&](LPCWSTR pszFrom, LPCWSTR pszTo, BOOL bFail)
        {
            strLook = Look();
            EXPECT_EQ(Text(IDC_START_PROGRESS), L"Installing Lumacap, please wait...");
            EXPECT_TRUE(IsShown(IDC_START_PROGRESS) && !IsShown(PageWindow()));
            EXPECT_FALSE(IsShown(IDC_START_HEADLINE) || IsShown(IDC_START_TEXT) || IsShown(IDC_START_RUN));
            EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_WAIT));
            return copy.Original()(pszFrom, pszTo, bFail);
        });
    Next();
    EXPECT_EQ(strLook, L"Lumacap Setup | side (< &Back) (&Next >) (Cancel)");
    EXPECT_EQ(copy.Calls(), 2); // the file and the list
    EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_ARROW));
    EXPECT_EQ(ReadBytes(At(kTargetName) + L"\\a.txt"), "a");
    EXPECT_EQ(Page(), 'D');
    EXPECT_EQ(Look(), L"Lumacap Setup | side (< &Back) &Finish > (Cancel)");
    EXPECT_EQ(GetFocus(), Item(IDOK));
    Next();
    EXPECT_EQ(copy.Calls(), 2);
    EXPECT_EQ(m_ends, std::vector<INT_PTR>{ IDOK });
    EXPECT_EQ(m_addresses.size(), 1u);
}

TEST_F(WizardFrame, ReportTellsTheVersionTheRestartAndWhereAPortableProductIs)
{
    const std::wstring strStarter = L"To run portable Lumacap, double-click 'StartLC8' icon located at:\n";
    const struct
    {
        int nKind;
        const wchar_t* pszFolder;
        int bReboot;         // what the platform returned: any number but 0
        std::wstring strBox; // this and the next are empty where they are hidden
        std::wstring strProgress;
        const wchar_t* pszText;
    } kCases[] = {
        { KIND_ALL_USERS, L"C:\\P\\Lumacap 8", 0, L"Run Lumacap", L"", kPressFinish },
        { KIND_CURRENT_USER, L"C:\\P", 1, L"Restart the computer when I click \"Finish\"", L"", kRestart },
        { KIND_CURRENT_USER, L"C:\\P", 2, L"Restart the computer when I click \"Finish\"", L"", kRestart },
        { KIND_PORTABLE, L"E:\\Tools\\Lumacap 8", 0, L"", strStarter + L"E:\\Tools", kPressFinish },
        { KIND_PORTABLE, L"E:\\Lumacap 8\\", 0, L"", strStarter + L"E:", kPressFinish },
        { KIND_PORTABLE, L"E:\\R&D\\L", 1, L"", strStarter + L"E:\\R&D", kRestart },
    };
    for (const auto& test : kCases)
    {
        SCOPED_TRACE(testing::PrintToString(test.pszFolder) + " " + std::to_string(test.bReboot));
        g_strInstDir = test.pszFolder;
        g_bRebootNeeded = test.bReboot;
        CCallHook copy("KERNEL32.dll", "CopyFileW", &CopyFileW);
        OpenReport(test.nKind);
        EXPECT_EQ(copy.Calls(), 0) << "the driver ran";
        EXPECT_EQ(Page(), 'D');
        EXPECT_EQ(Look(), L"Lumacap Setup | side (< &Back) &Finish > (Cancel)");
        EXPECT_EQ(GetFocus(), Item(IDOK));
        EXPECT_EQ(TextIfShown(IDC_START_HEADLINE), kVersionText);
        EXPECT_EQ(TextIfShown(IDC_START_TEXT), test.pszText);
        EXPECT_EQ(TextIfShown(IDC_START_RUN), test.strBox);
        EXPECT_EQ(TextIfShown(IDC_START_PROGRESS), test.strProgress);
        EXPECT_EQ(IsTicked(IDC_START_RUN), test.bReboot != 0);
        EXPECT_TRUE(m_addresses.empty());

        g_bRunAfter = 1;
        Next();
        EXPECT_EQ(g_bRunAfter, test.bReboot != 0);
        EXPECT_EQ(m_ends, std::vector<INT_PTR>{ IDOK });
        m_ends.clear();
    }
}

TEST_F(WizardFrame, ReportBoxDecidesWhatFollowsAndTheVersionKeepsTwoDigits)
{
    g_nVerMajor = 9; // the 8 is fixed text
    g_nVerMinor = 5;
    g_nVerFix = 123;
    OpenReport(KIND_ALL_USERS);
    EXPECT_EQ(Text(IDC_START_HEADLINE), L"Lumacap 8.05.123 has been successfully installed.");
    Click(IDC_START_RUN);
    Next();
    EXPECT_EQ(g_bRunAfter, 1);

    g_bRebootNeeded = 1;
    OpenReport(KIND_ALL_USERS);
    Click(IDC_START_RUN);
    Next();
    EXPECT_EQ(g_bRunAfter, 0);
    EXPECT_TRUE(m_addresses.empty()) << "no web page after a report alone";
}

TEST_F(WizardFrame, WithoutItsTemplateTheWizardCountsAsCancelledAndIsntTheMainWindow)
{
    CCallHook find("KERNEL32.dll", "FindResourceW", &FindResourceW);
    find.FailAll(ERROR_RESOURCE_NAME_NOT_FOUND);
    EXPECT_FALSE(ShowWizard());
    EXPECT_EQ(AfxGetMainWnd(), nullptr);
}
