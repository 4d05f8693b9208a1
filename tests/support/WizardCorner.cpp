// Commands are sent, not posted, so that all that they lead to has happened when they return.
#include "tests/support/WizardCorner.h"

WizardCorner::WizardCorner()
    : m_end("USER32.dll", "EndDialog", &EndDialog), m_web("SHELL32.dll", "ShellExecuteW", &ShellExecuteW),
      m_browse("SHELL32.dll", "SHBrowseForFolderW", &SHBrowseForFolderW)
{
    m_end.Replace(
        [this](HWND, INT_PTR nResult)
        {
            m_ends.push_back(nResult);
            return TRUE;
        });
    m_web.Replace(
        [this](HWND, LPCWSTR pszVerb, LPCWSTR pszAddress, LPCWSTR pszArguments, LPCWSTR pszFolder, INT nShow)
        {
            EXPECT_STREQ(pszVerb, L"open");
            EXPECT_TRUE(pszArguments == nullptr && pszFolder == nullptr && nShow == SW_SHOW);
            m_addresses.push_back(pszAddress);
            return HINSTANCE();
        });
    m_browse.Replace(
        [this](BROWSEINFOW* pBrowse) -> LPITEMIDLIST
        {
            if (m_browser)
                m_browser(pBrowse);
            return m_strChosen.empty() ? nullptr : ILCreateFromPathW(m_strChosen.c_str());
        });
}

void WizardCorner::SetUp()
{
    MachineCorner::SetUp();
    AnswerBoxes(IDNO);
    SetCurrentDirectoryW(Folder().c_str());
    WriteBytes(At(L"package\\LumUnInst.log"), "File Copy: a.txt\r\n");
    WriteBytes(At(L"package\\a.txt"), "a");
    g_nSilent = SILENT_OFF;
    g_bFreshInstall = 1;
    g_strInstDir = At(kTargetName).c_str();
    g_strSourceDir = At(L"package").c_str();
    g_strGroup = L"Lumacap 8";
    g_nVerMajor = 8;
    g_nVerMinor = 20;
    g_nVerFix = 1;
}

void WizardCorner::TearDown()
{
    m_pFrame.reset();
    m_boxes.reset();
    MachineCorner::TearDown();
}

void WizardCorner::AnswerBoxes(int nAnswer)
{
    m_boxes.reset();
    m_boxes.emplace(std::vector<int>{ nAnswer });
}

void WizardCorner::Open(int nPage)
{
    m_pFrame = std::make_unique<CSetupDlg>();
    m_pFrame->m_nPage = nPage;
    ASSERT_TRUE(m_pFrame->Create(IDD_SETUP));
    m_pFrame->ShowWindow(SW_SHOW);
}

void WizardCorner::OpenOn(char chPage)
{
    Open();
    for (int i = 0; i < 5 && Page() != chPage; i++)
        Next();
    ASSERT_EQ(Page(), chPage);
}

void WizardCorner::Command(int nId) const
{
    m_pFrame->SendMessage(WM_COMMAND, MAKEWPARAM(nId, BN_CLICKED),
                          reinterpret_cast<LPARAM>(GetDlgItem(m_pFrame->m_hWnd, nId)));
}

void WizardCorner::Press(WPARAM nKey) const
{
    MSG msg = { GetFocus(), WM_KEYDOWN, nKey, 1, 0, {} };
    if (!IsDialogMessageW(m_pFrame->m_hWnd, &msg))
        DispatchMessageW(&msg);
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&msg);
}

HWND WizardCorner::PageWindow() const
{
    HWND hPage = nullptr;
    for (HWND hChild = nullptr;
         (hChild = FindWindowExW(m_pFrame->m_hWnd, hChild, L"#32770", nullptr)) != nullptr && hPage == nullptr;)
        hPage = hChild;
    const bool bOne = hPage != nullptr && FindWindowExW(m_pFrame->m_hWnd, hPage, L"#32770", nullptr) == nullptr;
    return bOne ? hPage : nullptr;
}

char WizardCorner::Page() const
{
    static const struct
    {
        int nControl; // that no page before it in the table has
        char chPage;
    } kPages[] = {
        { IDC_FOLDER_BROWSE, 'F' }, { IDC_START_RUN, 'R' },      { IDC_GROUP_AUTOSTART, 'G' },
        { IDC_INTRO_VERSION, 'I' }, { IDC_AGREEMENT_TEXT, 'A' },
    };
    const HWND hPage = PageWindow();
    if (!IsShown(hPage))
        return '?';
    for (const auto& page : kPages)
        if (GetDlgItem(hPage, page.nControl) != nullptr)
            return page.chPage == 'R' && Text(IDOK) == L"&Finish >" ? 'D' : page.chPage;
    return '?';
}

HWND WizardCorner::Item(int nId) const
{
    const HWND hItem = GetDlgItem(PageWindow(), nId);
    return hItem != nullptr ? hItem : GetDlgItem(m_pFrame->m_hWnd, nId);
}

std::wstring WizardCorner::TextOf(HWND hWnd)
{
    std::wstring strText(GetWindowTextLengthW(hWnd) + 1, L'\0');
    strText.resize(GetWindowTextW(hWnd, &strText[0], static_cast<int>(strText.size())));
    return strText;
}

std::wstring WizardCorner::Text(int nId) const
{
    return TextOf(Item(nId));
}

std::wstring WizardCorner::Title() const
{
    return TextOf(m_pFrame->m_hWnd);
}

bool WizardCorner::IsShown(HWND hWnd)
{
    return (GetWindowLongW(hWnd, GWL_STYLE) & WS_VISIBLE) != 0;
}

void WizardCorner::Browse(const std::wstring& strFolder)
{
    m_strChosen = strFolder;
    Click(IDC_FOLDER_BROWSE);
}
