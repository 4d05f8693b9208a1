// The wizard in this process, without its modal loop: a step returns when its page stands. Boxes, the folder browser,
// the web browser and the frame's end are recorded and don't happen. Controls go by their ids.
#include "wizard/SetupDlg.h"

#include <shlobj.h>

#include <optional>

#include "app/RunState.h"
#include "tests/support/Calls.h"
#include "tests/support/Windows.h"
#include "tests/support/World.h"
#include "wizard/WelcomePage.h"

namespace
{

// As the control's text is drawn, with room for a mark, in what of the control can be seen.
BOOL CALLBACK ExpectFits(HWND hWnd, LPARAM)
{
    wchar_t szText[500] = L"";
    GetWindowTextW(hWnd, szText, _countof(szText));
    const HDC hDC = GetDCEx(hWnd, nullptr, DCX_CACHE);
    RECT shown;
    GetClipBox(hDC, &shown);
    RECT text = { 20, 0, shown.right, 0 };
    // Only these buttons have lines, and only these labels break a word.
    const bool bStyle = (GetWindowLongW(hWnd, GWL_STYLE) & (BS_MULTILINE | SS_EDITCONTROL)) != 0;
    const bool bButton = (SendMessageW(hWnd, WM_GETDLGCODE, 0, 0) & DLGC_BUTTON) != 0;
    const DWORD nBreak = (bStyle || !bButton ? DT_WORDBREAK : 0) | (bStyle ? DT_EDITCONTROL : 0);
    SelectObject(hDC, reinterpret_cast<HFONT>(SendMessageW(hWnd, WM_GETFONT, 0, 0)));
    DrawTextW(hDC, szText, -1, &text, DT_CALCRECT | nBreak);
    ReleaseDC(hWnd, hDC);
    if (IsWindowVisible(hWnd) && szText[0] != 0)
    {
        EXPECT_LE(text.bottom, shown.bottom) << Bytes(szText);
        EXPECT_LE(text.right, shown.right) << Bytes(szText);
    }
    return TRUE;
}

class Wizard : public World
{
protected:
    void SetUp() override
    {
        World::SetUp();
        Make(L"package\\LumUnInst.log|package\\a.txt|empty\\|x\\a.txt|own\\Lumacap8.exe|"
             L"5\\Lumacap5.exe|6\\Lumacap6.exe|7\\Lumacap7.exe|D\xE9mo\\",
             "File Copy: a.txt\r\n");
        MoveFolder(kMachine, L"Common Startup", At(L"D\xE9mo"));
    }

    void Open(int nKind, bool bFresh, int nPage = -1)
    {
        g_nSilent = nPage < 0 ? 0 : 2;
        g_bFreshInstall = bFresh;
        g_nInstallKind = nKind;
        g_strInstDir = m_strTarget.c_str();
        g_strSourceDir = At(L"package").c_str();
        g_strGroup = L"Old";
        g_nVerMajor = 9;
        g_nVerMinor = 5;
        g_nVerFix = 123;
        g_nVerBuild = 14;
        m_frame.emplace();
        m_frame->m_nPage = nPage;
        m_frame->Create(103);
        m_frame->ShowWindow(SW_SHOW);
    }
    CWindowDriver Frame() const { return CWindowDriver(m_frame->m_hWnd); }

    // A sign a step: 0 to 2 open the wizard with that kind of a first install, 3 to 5 with that of a repeated one. N
    // and B are the frame's buttons; C cancels with no answer, as of a box that can't be shown, and Y with Yes. u, a
    // and p choose the kind, s ticks auto-start, r the report's box; b and g choose a folder and enter a group, up to a
    // bar. The trail has a letter for the page behind each step, the first of its texts (a for the agreement), and
    // before it a word of a box, a web page and the frame's end. ? adds what the destination page shows, or else the
    // run's choices. After each step all texts must fit.
    std::wstring Walk(const std::wstring& strSteps)
    {
        m_strTrail.clear();
        for (size_t n = 0; n < strSteps.size(); n++)
        {
            const size_t nEnd = strSteps[n] == L'b' || strSteps[n] == L'g' ? strSteps.find(L'|', n) : n + 1;
            m_strStep = strSteps.substr(n, nEnd - n);
            n += m_strStep.size() - (strSteps[nEnd] != L'|');
            Take(m_strStep[0]);
            EnumChildWindows(m_frame->m_hWnd, ExpectFits, 0);
        }
        return Replaced(m_strTrail, At(L""), L"");
    }

    void Take(wchar_t chStep)
    {
        static const int kIds[] = { 1, 3, 2, 2, 1001, 1002, 1003, 1005, 1008, 1012 };
        const size_t nControl = std::wstring(L"NBCYuapbsrg?").find(chStep);
        if (nControl < 10)
            SendMessageW(Frame().Control(kIds[nControl]), BM_CLICK, 0, 0);
        else if (chStep == L'g')
            Frame().SetText(1000, m_strStep.substr(1));
        else if (chStep != L'?')
            Open((chStep - L'0') % 3, chStep < L'3');
        m_strTrail += chStep == L'?' ? State() : Frame().Look().substr(16, 1);
    }

    std::wstring State() const
    {
        if (Frame().IsVisible(1013))
            return L"[" + Frame().Text(1013) + L" " + Frame().Text(1006).substr(0, 2) + L"]";
        return L"[" + std::to_wstring(g_nInstallKind) + L" " + g_strInstDir.GetString() + L" " +
               g_strGroup.GetString() + L" " + std::to_wstring(g_bAutoStart * 100 + g_bDeskIcon * 10 + g_bRunAfter) +
               L"]";
    }

    std::wstring m_strTarget = At(L"target");
    std::optional<CSetupDlg> m_frame;
    std::wstring m_strTrail;
    std::wstring m_strStep;
    BFFCALLBACK m_pfnBrowse = nullptr;
    CCalls m_calls{ {
        { "MessageBoxW",
          [this](CALL& call)
          {
              m_strTrail += L"!" + std::wstring(call.Text(1)).substr(7, 4);
              EXPECT_EQ(call.args[3], m_strTrail.back() == L'l' ? 0x124u : 0x30u);
              return m_strStep == L"Y" ? IDYES : 0;
          } },
        { "EndDialog", [this](CALL& call) { return m_strTrail += L"#" + std::to_wstring(call.args[1]), TRUE; } },
        { "ShellExecuteW", [this](CALL& call) { return m_strTrail += call.Text(2), TRUE; } },
        { "SHBrowseForFolderW",
          [this](CALL& call)
          {
              const auto* pBrowse = reinterpret_cast<BROWSEINFOW*>(call.args[0]);
              EXPECT_EQ(pBrowse->ulFlags, 0x71u);
              EXPECT_TRUE(IsThere(g_strInstDir.GetString()));
              m_pfnBrowse = pBrowse->lpfn;
              const std::wstring strChosen = m_strStep == L"bC:" ? L"C:\\" : At(m_strStep.substr(1));
              return m_strStep == L"b" ? 0 : reinterpret_cast<INT_PTR>(ILCreateFromPathW(strChosen.c_str()));
          } },
    } };
};

} // namespace

TEST_F(Wizard, WaysThroughPages)
{
    const wchar_t* const kCases[][2] = {
        { L"1NNNNBBBBNNN", L"WaPEYEPaWaPE" },
        { L"2NNNBBBNNN", L"WaPYPaWaPY" },
        // A refused Back leaves the lowered number standing, and Next goes on from there; below the first page there is
        // only the first page.
        { L"1NNNgab|Bgabc|NN", L"WaPEE!PleaEEPE" },
        { L"1NNNg|BBBgabc|NNN", L"WaPEE!PleaE!PleaE!PleaEEWaP" },
        // What the destination page shows, and what it makes of the folder that is chosen
        { L"1NNb|?bown|?b5|?b7|?", L"WaPP[target To]P[own To]! verP[own To]P[7\\Lumacap 8 To]" },
        { L"3NN?bown|?p?a?BN?", L"WaP[target To]P[own Th]P[ Cl]P[own Th]aP[own Th]" },
        { L"4NNbC:|?bempty|?", L"WaPP[C:\\Lumacap 8 To]P[empty To]" },
        { L"1NNpNBb6|?bown|?N", L"WaPP!clicP!clicP! verP[ Cl]P[own\\Lumacap 8 Cl]a" },
        { L"1NNbx|p?bx|u?p?NB?p?uNBN?",
          L"WaPPP[ Cl]PP[x\\Lumacap 8 To]P[x\\Lumacap 8 Cl]YP[x\\Lumacap 8 To]P[ Cl]PEPE[0 x\\Lumacap 8 "
          L"Old 10]" },
        // The group page works on copies; a name is trimmed and isn't that of a Startup folder
        { L"1NNNsgab|N?gNew|BNBN?", L"WaPEEE!PleaE[1 target Old 10]EPEPE[1 target New 110]" },
        { L"1NNNg  \tab  |Ng startup\t|NgD\xE9MO|Ng \ta b |N?BgStartup\\x/y|N?",
          L"WaPEE!PleaEE!Can EE!Can EEY[1 target a b 10]EEY[1 target Startup\\x/y 10]" },
        // Cancel asks, and never the page
        { L"1CNCNpCuNg|Cgabc|NC?Y", L"W!realWa!realaPP!realPPEE!realEEY!realY[0 target abc 10]!real#2Y" },
    };
    for (const auto& row : kCases)
    {
        ResetProgramState();
        EXPECT_EQ(Walk(row[0]), row[1]) << Bytes(row[0]);
    }
    EXPECT_FALSE(IsThere(At(L"empty")));
    EXPECT_FALSE(IsThere(At(L"target")));
    Walk(L"");
    EXPECT_EQ(m_pfnBrowse(nullptr, BFFM_VALIDATEFAILEDW, 0, 0), 1); // which keeps the browser open
    EXPECT_EQ(m_strTrail, L"!e en");
}

TEST_F(Wizard, PagesDressFrameAndInstallOnce)
{
    // The side picture tells its number in place of a text: FFFF and 101, which is e.
    const wchar_t* const kLooks[] = {
        L"Lumacap Setup | \uFFFFe |  | &Next > | Cancel",
        L"Please read and accept the Lumacap license agreement | \xFEFF\x041A\x0A0D! | Do you accept this agreement? | "
        L" | < &Back | Yes | No",
        L"Lumacap Setup | \uFFFFe |  | < &Back | &Next > | Cancel",
    };
    WriteBytes(L"C:\\agreement.txt", std::string("\xFF\xFE\x1A\x04\r\n!\0?", 9));
    Walk(L"1");
    SYSTEMTIME now;
    GetLocalTime(&now);
    EXPECT_EQ(Frame().Text(1003).substr(0, 51),
              L"Lumacap ver. 9.05.123 Beta 14\nCopyright \u00A9 2004-" + std::to_wstring(now.wYear));
    for (int n = 0; n < 5; n++)
    {
        SCOPED_TRACE(n);
        std::wstring strLook = Frame().Look();
        RECT page;
        RECT side;
        GetWindowRect(GetTopWindow(m_frame->m_hWnd), &page);
        GetWindowRect(GetDlgItem(m_frame->m_hWnd, 1002), &side);
        EXPECT_LE(page.top, side.top);
        if (n != 1)
        {
            EXPECT_EQ(page.left, side.right + 4);
            strLook.erase(13, strLook.find(L" | \uFFFF") - 13);
        }
        EXPECT_EQ(strLook, kLooks[std::min(n, 2)]);
        EXPECT_EQ(Frame().FocusId(), IDOK);
        if (n < 4)
            Walk(L"N");
    }
    g_nInstallKind = 2;
    g_bRunAfter = 1;
    std::wstring strLook;
    const CCalls copies({ { "CopyFileW", [&](CALL& call) { return strLook = Frame().Look(), call.Pass(); } } });
    EXPECT_EQ(Walk(L"NYN?"), L"LLhttp://www.lumacap.example/lcdx/InstScript.asp#1L[2 target Old 10]");
    EXPECT_EQ(strLook,
              L"Lumacap Setup | \uFFFFe |  | (< &Back) | (&Next >) | (Cancel) | Installing Lumacap, please wait...");
    EXPECT_EQ(copies.Count("CopyFileW"), 2); // the file and the list
}

TEST_F(Wizard, ReportTellsWhatFollows)
{
    const std::wstring strRestart = L"It is necessary to restart your computer before using the product, otherwise it "
                                    L"may not work correctly. | ";
    const std::wstring strLong(240, L'x'); // must break
    m_strTarget = At(strLong + L"\\target");
    const std::wstring kLooks[] = {
        strRestart + L"(x) Restart the computer when I click \"Finish\"",
        L"Press the Finish button to exit this installation. | ( ) Run Lumacap",
        strRestart + L"To run portable Lumacap, double-click 'StartLC8' icon located at:\n" + At(strLong),
    };
    for (int nKind = 0; nKind < 3; nKind++)
    {
        SCOPED_TRACE(nKind);
        g_bRunAfter = 0;
        g_bRebootNeeded = nKind == 1 ? 0 : 2;
        Open(nKind, true, 4);
        EXPECT_EQ(Frame().Look(), L"Lumacap Setup | Lumacap 8.05.123 has been successfully installed. | " +
                                      kLooks[nKind] + L" | \uFFFFe |  | (< &Back) | &Finish > | (Cancel)");
        EXPECT_EQ(Walk(nKind == 1 ? L"rN" : L"N"), nKind == 1 ? L"L#1L" : L"#1L");
        EXPECT_EQ(g_bRunAfter, 1);
    }
    EXPECT_EQ(m_calls.Count("CopyFileW"), 0); // the install ran before this page
}

TEST_F(Wizard, WebPageHasItsQuery)
{
    const std::wstring kCases[][2] = {
        { L"URL=http://w/?x=1\r\nUpdate=http://w/de", L"?x=1&Lang=DE" },
        { L"Update=http://w/a1\nUpdate=http://w/1a\n \tUpdate=http://w/d/ \t\nUpdate=https://w/de", L"?Lang=D/" },
        { L"Update=http://w/de\nURL=http://w/?x\nURL=http://w/?y?z\nURL=http://w/\nURL=https://w/?x", L"?y?z" },
    };
    g_nSilent = 0;
    g_strInstDir = m_strFolder.c_str();
    for (const auto& row : kCases)
    {
        Make(L"HomePage.url", Bytes(row[0]));
        Walk(L"");
        OpenWelcomePage(); // a mere repetition
        g_bUpgrade = 1;
        OpenWelcomePage();
        g_bSettingsCopied = 1;
        OpenWelcomePage();
        g_bUpgrade = g_bSettingsCopied = 0;
        EXPECT_EQ(m_strTrail, L"http://www.lumacap.example/lcdx/InstScript.asp" + row[1]);
    }
}
