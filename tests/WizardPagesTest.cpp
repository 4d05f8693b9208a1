// What the pages show and what they take: the version line, the agreement, the kind and the folder, the group.
#include "tests/support/Machine.h"
#include "tests/support/WizardCorner.h"

namespace
{

const wchar_t kPlainHint[] = L"To install into a different folder, click Browse, and select another one.";
const wchar_t kRepeatedHint[] = L"This folder already contains a previous copy of Lumacap 8. To upgrade or re-install "
                                L"that copy, please do not change the destination folder.";
const wchar_t kPortableHint[] =
    L"Click the Browse button and select a folder on a removable disk/USB key or network drive.";
const wchar_t kOldVersion[] = L"Lumacap ver. 8 can not be installed into the same folder where the older version is. "
                              L"Please select a different folder.";
const wchar_t kNoFolder[] = L"Please click BROWSE button first and select the folder for portable installation.";
const wchar_t kShortName[] = L"Error: Please enter a valid group name, minimum 3 letters";
const wchar_t kStartupName[] = L"Error: Can not install shortcuts into this group, please select a different name.";
const wchar_t kInvalidFolder[] =
    L"You have entered and invalid folder name. Please correct.\nIf you want to create a new folder, select its parent "
    L"folder in the list and click \"Make New Foilder\" button.";

const int kKindButtons[] = { IDC_FOLDER_USER, IDC_FOLDER_ALL, IDC_FOLDER_PORTABLE };

class WizardPages : public WizardCorner
{
protected:
    std::wstring AgreementOf(const char* pszBytes, size_t cb)
    {
        WriteBytes(At(L"agreement.txt"), std::string(pszBytes, cb));
        OpenOn('A');
        return Text(IDC_AGREEMENT_TEXT);
    }

    // The kind that is set, by its digit, or - for none.
    std::wstring Kind() const
    {
        std::wstring strKinds;
        for (int i = 0; i < 3; i++)
            if (IsTicked(kKindButtons[i]))
                strKinds += std::to_wstring(i);
        return strKinds.empty() ? L"-" : strKinds;
    }

    void ExpectOneBox(const wchar_t* pszText)
    {
        ASSERT_EQ(Boxes().size(), 1u);
        EXPECT_EQ(Boxes()[0].strText, pszText);
        EXPECT_EQ(Boxes()[0].strCaption, L"Lumacap 8");
        EXPECT_EQ(Boxes()[0].nStyle, UINT(MB_OK | MB_ICONEXCLAMATION));
        AnswerBoxes(IDOK);
    }

    // In pixels, in the control's own font; a text that wraps has the control's width to do so.
    static SIZE NeededSize(HWND hItem, const std::wstring& strText, int nWidth)
    {
        wchar_t szClass[32] = L"";
        GetClassNameW(hItem, szClass, 32);
        if (std::wstring(szClass) == L"Edit")
            return {};
        const LONG nStyle = GetWindowLongW(hItem, GWL_STYLE);
        const bool bButton = std::wstring(szClass) == L"Button";
        const bool bWraps = bButton ? (nStyle & BS_MULTILINE) != 0 : (nStyle & SS_PATHELLIPSIS) != SS_PATHELLIPSIS;
        const int nMark = bButton && (nStyle & BS_TYPEMASK) != BS_GROUPBOX ? 20 : 0;
        const HDC hDC = GetDC(hItem);
        SelectObject(hDC, reinterpret_cast<HFONT>(SendMessageW(hItem, WM_GETFONT, 0, 0)));
        RECT box = { 0, 0, nWidth - nMark, 0 };
        DrawTextW(hDC, strText.c_str(), -1, &box, DT_CALCRECT | (bWraps ? DT_WORDBREAK : DT_SINGLELINE));
        ReleaseDC(hItem, hDC);
        return { box.right + nMark, box.bottom };
    }
};

} // namespace

TEST_F(WizardPages, VersionLineNamesABetaByItsBuildAndTheYearOfTheClock)
{
    SYSTEMTIME now;
    GetLocalTime(&now);
    const struct
    {
        unsigned int version[4];
        const wchar_t* pszLine;
    } kCases[] = {
        { { 8, 20, 1, 0 }, L"Lumacap ver. 8.20.01 " },
        { { 8, 20, 1, 3 }, L"Lumacap ver. 8.20.01 Beta 3" },
        { { 8, 2, 110, 14 }, L"Lumacap ver. 8.02.110 Beta 14" },
    };
    for (const auto& test : kCases)
    {
        g_nVerMajor = test.version[0];
        g_nVerMinor = test.version[1];
        g_nVerFix = test.version[2];
        g_nVerBuild = test.version[3];
        OpenOn('I');
        EXPECT_EQ(Text(IDC_INTRO_VERSION), test.pszLine + (L"\nCopyright (C) 2004-" + std::to_wstring(now.wYear)) +
                                               L" Tandrel Technology LLC\nAll rights reserved.");
    }
}

TEST_F(WizardPages, AgreementIsTheUtf16TextOfTheCurrentFolder)
{
    OpenOn('A');
    EXPECT_EQ(Text(IDC_AGREEMENT_TEXT), L"") << "without a file";
    EXPECT_EQ(AgreementOf("", 0), L"");
    EXPECT_EQ(AgreementOf("A", 1), L"");
    EXPECT_EQ(AgreementOf("A\0B", 3), L"A");
    EXPECT_EQ(AgreementOf("\xFF\xFEY\0e\0s\0", 8), L"\xFEFFYes");
    EXPECT_EQ(AgreementOf("\x42\x04\r\0\n\0!\0", 8), L"\x0442\r\n!");
    EXPECT_EQ(AgreementOf("\x1A\x04\r\n!\0", 6), L"\x041A\x0A0D!") << "no byte is a sign by itself";
    EXPECT_TRUE(IsWindowEnabled(Item(IDOK)));

    std::string strLong;
    for (int i = 0; i < 40000; i++)
        strLong += std::string(i % 60 == 59 ? "\r\0\n\0" : "x\0y\0", 4);
    EXPECT_EQ(AgreementOf(strLong.data(), strLong.size()).size(), strLong.size() / 2);
    EXPECT_NE(GetWindowLongW(Item(IDC_AGREEMENT_TEXT), GWL_STYLE) & ES_READONLY, 0);

    MakeFolder(At(L"elsewhere"));
    SetCurrentDirectoryW(At(L"elsewhere").c_str());
    OpenOn('A');
    EXPECT_EQ(Text(IDC_AGREEMENT_TEXT), L"");
    Next();
    EXPECT_EQ(Page(), 'F');
}

TEST_F(WizardPages, AgreementIsShownFromItsTopWithNothingSelected)
{
    CCallHook send("USER32.dll", "SendMessageW", &SendMessageW);
    std::wstring strSent;
    send.Replace(
        [&](HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
        {
            if (nMessage == EM_SETSEL)
                strSent += L"select " + std::to_wstring(static_cast<int>(wParam)) + L" " + std::to_wstring(lParam);
            if (nMessage == EM_SCROLLCARET)
                strSent += L", scroll";
            return send.Original()(hWnd, nMessage, wParam, lParam);
        });
    AgreementOf("A\0B\0", 4);
    EXPECT_EQ(strSent, L"select -1 0, scroll");
}

TEST_F(WizardPages, AgreementLeavesEnterAndEscToTheFrameAndIsntSelectedByTab)
{
    AgreementOf("A\0B\0", 4);
    Press(VK_TAB);
    Press(VK_TAB);
    EXPECT_EQ(GetFocus(), Item(IDC_AGREEMENT_TEXT));
    DWORD nStart = 0;
    DWORD nEnd = 0;
    SendMessageW(GetFocus(), EM_GETSEL, reinterpret_cast<WPARAM>(&nStart), reinterpret_cast<LPARAM>(&nEnd));
    EXPECT_EQ(nStart, nEnd);
    Press(VK_ESCAPE);
    EXPECT_EQ(Boxes().size(), 1u);
    EXPECT_EQ(Page(), 'A');
    Press(VK_RETURN);
    EXPECT_EQ(Page(), 'F');
}

// Each click names the radio button; the page is looked at after all of them.
TEST_F(WizardPages, HintAndFolderFollowTheKind)
{
    const struct
    {
        int nKind; // at the start
        bool bFresh;
        bool bProductThere;
        std::vector<int> clicks;
        const wchar_t* pszKind;
        bool bFolderShown;
        const wchar_t* pszHint;
    } kCases[] = {
        { KIND_ALL_USERS, true, false, {}, L"1", true, kPlainHint },
        { KIND_ALL_USERS, true, true, {}, L"1", true, kPlainHint },
        { KIND_CURRENT_USER, false, true, {}, L"0", true, kRepeatedHint },
        { KIND_CURRENT_USER, false, false, {}, L"0", true, kPlainHint },
        { KIND_CURRENT_USER, false, true, { 1 }, L"1", true, kRepeatedHint },
        { KIND_ALL_USERS, false, true, { 2 }, L"2", false, kPortableHint },
        { KIND_ALL_USERS, false, true, { 2, 0 }, L"0", true, kRepeatedHint },
        { KIND_CURRENT_USER, false, true, { 2, 1 }, L"1", true, kRepeatedHint },
        // From the command line: the hint is that of no kind until a button is clicked.
        { KIND_PORTABLE, false, false, {}, L"2", true, kPlainHint },
        { KIND_PORTABLE, false, true, {}, L"2", true, kRepeatedHint },
        { KIND_PORTABLE, false, false, { 2 }, L"2", false, kPortableHint },
    };
    for (const auto& test : kCases)
    {
        SCOPED_TRACE(std::to_string(&test - kCases));
        g_nInstallKind = test.nKind;
        g_bFreshInstall = test.bFresh;
        RemoveTree(At(L"target"));
        if (test.bProductThere)
            WriteBytes(At(kTargetName) + L"\\Lumacap8.exe", "");
        OpenOn('F');
        for (const int nClick : test.clicks)
            Click(kKindButtons[nClick]);
        EXPECT_EQ(Kind(), test.pszKind);
        EXPECT_EQ(Text(IDC_FOLDER_PATH), test.bFolderShown ? At(kTargetName) : L"");
        EXPECT_EQ(Text(IDC_FOLDER_HINT), test.pszHint);
        EXPECT_EQ(g_nInstallKind, test.nKind) << "before the page is left";
    }
}

TEST_F(WizardPages, PortableKindNeedsABrowsedFolderOnEachVisit)
{
    OpenOn('F');
    Click(IDC_FOLDER_PORTABLE);
    Next();
    ExpectOneBox(kNoFolder);
    Back();
    ExpectOneBox(kNoFolder);
    EXPECT_EQ(g_nInstallKind, KIND_ALL_USERS);

    OpenOn('F');
    Browse(At(L"package"));
    Click(IDC_FOLDER_PORTABLE);
    EXPECT_EQ(Text(IDC_FOLDER_PATH), L"") << "chosen for another kind";
    Browse(At(L"package"));
    const std::wstring strChosen = At(L"package\\Lumacap 8");
    EXPECT_EQ(Text(IDC_FOLDER_PATH), strChosen);
    Click(IDC_FOLDER_USER);
    EXPECT_EQ(Text(IDC_FOLDER_PATH), strChosen);
    Click(IDC_FOLDER_PORTABLE);
    EXPECT_EQ(Text(IDC_FOLDER_PATH), strChosen) << "chosen on this visit";
    Next();
    EXPECT_EQ(g_nInstallKind, KIND_PORTABLE);
    Back();
    EXPECT_EQ(Kind() + L" " + Text(IDC_FOLDER_PATH), L"2 " + strChosen);
    Click(IDC_FOLDER_PORTABLE);
    EXPECT_EQ(Text(IDC_FOLDER_PATH), L"");
    EXPECT_EQ(g_bFreshInstall, 1);

    g_nInstallKind = KIND_ALL_USERS;
    g_strInstDir = L"";
    OpenOn('F');
    Next();
    ExpectOneBox(kNoFolder);
}

TEST_F(WizardPages, BrowsedFolderIsTakenOrExtendedOrRefused)
{
    MakeFolder(At(L"empty"));
    MakeFolder(At(L"parent\\child"));
    for (const wchar_t* pszFile : { L"full\\a.txt", L"product\\Lumacap8.exe", L"five\\Lumacap5.exe",
                                    L"six\\Lumacap6.exe", L"seven\\Lumacap7.exe" })
        WriteBytes(At(pszFile), "");
    const struct
    {
        int nKind;
        const wchar_t* pszChosen; // below the corner, or a whole path
        const wchar_t* pszTaken;  // null: nothing changes, and a box says why
        bool bRepeated = false;
        const wchar_t* pszHint = kPlainHint; // at the end, unless the kind is portable
    } kCases[] = {
        { KIND_ALL_USERS, L"full", L"full\\Lumacap 8" },
        { KIND_ALL_USERS, L"parent", L"parent\\Lumacap 8" },
        { KIND_CURRENT_USER, L"product", L"product" },
        { KIND_CURRENT_USER, L"product", L"product", true, kRepeatedHint },
        { KIND_CURRENT_USER, L"full", L"full\\Lumacap 8", true, kPlainHint },
        { KIND_PORTABLE, L"product", L"product\\Lumacap 8" },
        { KIND_ALL_USERS, L"C:\\", L"C:\\Lumacap 8" },
        { KIND_PORTABLE, L"C:\\", L"C:\\Lumacap 8" },
        { KIND_ALL_USERS, L"five", nullptr },
        { KIND_PORTABLE, L"six", nullptr },
        { KIND_ALL_USERS, L"seven", L"seven\\Lumacap 8" },
        { KIND_ALL_USERS, L"empty", L"empty" },
        { KIND_PORTABLE, L"parent\\child", L"parent\\child\\Lumacap 8" },
    };
    const auto whole = [this](const std::wstring& strPath) { return strPath[1] == L':' ? strPath : At(strPath); };
    for (const auto& test : kCases)
    {
        SCOPED_TRACE(testing::PrintToString(test.pszChosen));
        g_strInstDir = At(kTargetName).c_str();
        g_bFreshInstall = !test.bRepeated;
        OpenOn('F');
        Click(kKindButtons[test.nKind]);
        const std::wstring strBefore = Text(IDC_FOLDER_PATH);
        Browse(whole(test.pszChosen));
        EXPECT_EQ(g_strInstDir.GetString(), test.pszTaken ? whole(test.pszTaken) : At(kTargetName));
        EXPECT_EQ(Text(IDC_FOLDER_PATH), test.pszTaken ? whole(test.pszTaken) : strBefore);
        if (test.pszTaken == nullptr)
            ExpectOneBox(kOldVersion);
        EXPECT_EQ(Text(IDC_FOLDER_HINT), test.nKind == KIND_PORTABLE ? kPortableHint : test.pszHint);
        EXPECT_TRUE(Boxes().empty());
    }
    EXPECT_FALSE(IsThere(At(L"empty")) || IsThere(At(L"parent\\child"))) << "empty folders are removed";
    EXPECT_TRUE(IsThere(At(L"full")) && IsThere(At(L"product\\Lumacap8.exe")));
}

TEST_F(WizardPages, BrowserStartsAtTheTargetWhichStandsOnlyMeanwhile)
{
    MakeFolder(At(L"target"));
    OpenOn('F');
    BFFCALLBACK pfnCallback = nullptr;
    m_browser = [&](BROWSEINFOW* pBrowse)
    {
        EXPECT_EQ(pBrowse->hwndOwner, PageWindow());
        EXPECT_TRUE(pBrowse->pidlRoot == nullptr && pBrowse->pszDisplayName != nullptr);
        EXPECT_STREQ(pBrowse->lpszTitle, L"Select the folder where where Lumacap should be installed.");
        EXPECT_EQ(pBrowse->ulFlags, 0x71u);
        EXPECT_TRUE(IsThere(At(kTargetName)));
        pfnCallback = pBrowse->lpfn;
    };
    Browse(L"");
    EXPECT_FALSE(IsThere(At(kTargetName)));
    EXPECT_EQ(Text(IDC_FOLDER_PATH), At(kTargetName));

    CCallHook unreadable("SHELL32.dll", "SHGetPathFromIDListW", &SHGetPathFromIDListW);
    unreadable.FailAll(0);
    CCallHook freed("SHELL32.dll", "SHGetMalloc", &SHGetMalloc);
    Browse(At(L"package"));
    EXPECT_EQ(unreadable.Calls(), 1);
    EXPECT_EQ(freed.Calls(), 1);
    EXPECT_EQ(g_strInstDir.GetString(), At(kTargetName));

    ASSERT_NE(pfnCallback, nullptr);
    CCallHook send("USER32.dll", "SendMessageW", &SendMessageW);
    std::wstring strSelected;
    send.Replace(
        [&](HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
        {
            if (nMessage != BFFM_SETSELECTIONW)
                return send.Original()(hWnd, nMessage, wParam, lParam);
            EXPECT_EQ(wParam, WPARAM(TRUE));
            strSelected = reinterpret_cast<const wchar_t*>(lParam);
            return LRESULT(0);
        });
    EXPECT_EQ(pfnCallback(nullptr, BFFM_INITIALIZED, 0, 0), 0);
    EXPECT_EQ(strSelected, At(kTargetName));
    EXPECT_EQ(pfnCallback(nullptr, BFFM_SELCHANGED, 0, 0), 0);
    EXPECT_TRUE(Boxes().empty());
    EXPECT_EQ(pfnCallback(nullptr, BFFM_VALIDATEFAILEDW, reinterpret_cast<LPARAM>(L"x"), 0), 1);
    ExpectOneBox(kInvalidFolder);
}

TEST_F(WizardPages, GroupNameIsTrimmedAndMeasuredAndNeverTheStartupFolders)
{
    const CFolderRedirection user(HKEY_CURRENT_USER, L"Startup", At(L"Autostart"));
    const CFolderRedirection all(HKEY_LOCAL_MACHINE, L"Common Startup", At(L"D\xE9marrage"));
    MakeFolder(At(L"Autostart"));
    MakeFolder(At(L"D\xE9marrage"));
    const struct
    {
        const wchar_t* pszName;
        const wchar_t* pszBox; // or null
        const wchar_t* pszGroup = L"";
    } kCases[] = {
        { L"", kShortName },
        { L"ab", kShortName },
        { L" \tab  ", kShortName },
        { L" abc\t ", nullptr, L"abc" },
        { L"a b", nullptr, L"a b" },
        { L"AutoStart", kStartupName },
        { L" autostart ", kStartupName },
        { L"D\xE9MARRAGE", kStartupName },
        { L"Autostart\\x", nullptr, L"Autostart\\x" },
        { L"Startup", nullptr, L"Startup" }, // not the name on this machine
        { L"a<b>:c|/d", nullptr, L"a<b>:c|/d" },
    };
    for (const auto& test : kCases)
    {
        SCOPED_TRACE(testing::PrintToString(test.pszName));
        g_strGroup = L"before";
        OpenOn('G');
        Type(IDC_GROUP_NAME, test.pszName);
        Next();
        if (test.pszBox != nullptr)
            ExpectOneBox(test.pszBox);
        EXPECT_TRUE(Boxes().empty());
        EXPECT_EQ(Page(), test.pszBox != nullptr ? 'G' : 'R');
        EXPECT_EQ(g_strGroup.GetString(), std::wstring(test.pszBox != nullptr ? L"before" : test.pszGroup));
    }
    const std::wstring strLong(400, L'n');
    OpenOn('G');
    Type(IDC_GROUP_NAME, strLong);
    Next();
    EXPECT_EQ(g_strGroup.GetString(), strLong);
}

TEST_F(WizardPages, GroupPageWorksOnCopies)
{
    OpenOn('G');
    EXPECT_EQ(Text(IDC_GROUP_NAME), L"Lumacap 8");
    EXPECT_TRUE(!IsTicked(IDC_GROUP_AUTOSTART) && IsTicked(IDC_GROUP_DESKTOP));
    Click(IDC_GROUP_AUTOSTART);
    Click(IDC_GROUP_DESKTOP);
    Type(IDC_GROUP_NAME, L"ab");
    Next();
    ExpectOneBox(kShortName);
    EXPECT_TRUE(!g_bAutoStart && g_bDeskIcon);
    Type(IDC_GROUP_NAME, L"Other");
    Back();
    EXPECT_TRUE(g_bAutoStart && !g_bDeskIcon && g_strGroup == L"Other");

    OpenOn('G');
    EXPECT_TRUE(IsTicked(IDC_GROUP_AUTOSTART) && !IsTicked(IDC_GROUP_DESKTOP));
    EXPECT_EQ(Text(IDC_GROUP_NAME), L"Other");
    g_strGroup = L"";
    OpenOn('G');
    EXPECT_EQ(Text(IDC_GROUP_NAME), L"");
    Next();
    ExpectOneBox(kShortName);
}

TEST_F(WizardPages, ReadyPageAnnouncesTheInstallAndOffersNoStart)
{
    OpenOn('R');
    EXPECT_EQ(Text(IDC_START_HEADLINE), L"You are now ready to install Lumacap.");
    EXPECT_EQ(Text(IDC_START_TEXT),
              L"Press the Next button to begin the installation or the Back button to change your selections.");
    EXPECT_EQ(Text(IDC_START_PROGRESS), L"Installing Lumacap, please wait...");
    EXPECT_TRUE(IsShown(IDC_START_HEADLINE) && IsShown(IDC_START_TEXT));
    EXPECT_FALSE(IsShown(IDC_START_PROGRESS) || IsShown(IDC_START_RUN) || IsTicked(IDC_START_RUN));
}

// Measured as the control draws it: a button's mark takes 20 pixels, a text that doesn't fit is cut off.
TEST_F(WizardPages, TextsFitTheirControlsAndControlsTheirPage)
{
    for (const char chPage : { 'I', 'A', 'F', 'G', 'R' })
    {
        OpenOn(chPage);
        RECT page;
        GetWindowRect(PageWindow(), &page);
        RECT frame;
        GetWindowRect(m_pFrame->m_hWnd, &frame);
        EXPECT_TRUE(page.left >= frame.left && page.right <= frame.right && page.bottom <= frame.bottom) << chPage;
        for (HWND hItem = nullptr; (hItem = FindWindowExW(PageWindow(), hItem, nullptr, nullptr)) != nullptr;)
        {
            const std::wstring strText = TextOf(hItem);
            RECT item;
            GetWindowRect(hItem, &item);
            EXPECT_TRUE(item.left >= page.left && item.right <= page.right && item.top >= page.top &&
                        item.bottom <= page.bottom)
                << chPage << testing::PrintToString(strText);
            const SIZE needed = NeededSize(hItem, strText, item.right - item.left);
            EXPECT_TRUE(needed.cx <= item.right - item.left && needed.cy <= item.bottom - item.top)
                << chPage << testing::PrintToString(strText);
        }
    }
}
