// The framework's windows and dialogs: which object a window belongs to, what the dialog classes do by themselves, and
// the keyboard across a frame and its page. The templates are made in memory, as the product's own have other ids.
#include <gtest/gtest.h>
#include <afxwin.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace
{
enum Control : WORD
{
    kButtonClass = 0x80,
    kEditClass = 0x81,
    kStaticClass = 0x82
};

enum Id
{
    kNext = IDOK,
    kCancel = IDCANCEL,
    kBack = 3,
    kEdit = 1000,
    kBox = 1001,
    kRadio = 1002, // and the two behind it
    kBrowse = 1005,
    kLabel = 1006,
    kMissing = 4000
};

// A dialog template laid out in memory.
class CTemplate
{
public:
    CTemplate(DWORD dwStyle, short cx, short cy)
    {
        m_words.resize(sizeof(DLGTEMPLATE) / sizeof(WORD));
        Head() = { dwStyle, 0, 0, 0, 0, cx, cy };
        m_words.insert(m_words.end(), { 0, 0, 0 }); // no menu, class or caption
    }

    CTemplate& Add(Control nClass, WORD nId, DWORD dwStyle, const wchar_t* pszText)
    {
        m_words.resize((m_words.size() + 1) & ~size_t(1));
        const short y = static_cast<short>(Head().cdit * 14);
        const DLGITEMTEMPLATE item = { WS_CHILD | WS_VISIBLE | dwStyle, 0, 2, y, 60, 12, nId };
        const WORD* pItem = reinterpret_cast<const WORD*>(&item);
        m_words.insert(m_words.end(), pItem, pItem + sizeof(item) / sizeof(WORD));
        m_words.insert(m_words.end(), { 0xFFFF, nClass });
        m_words.insert(m_words.end(), pszText, pszText + wcslen(pszText) + 1);
        m_words.push_back(0); // no creation data
        ++Head().cdit;
        return *this;
    }

    operator LPCDLGTEMPLATE() const { return reinterpret_cast<LPCDLGTEMPLATE>(m_words.data()); }

private:
    DLGTEMPLATE& Head() { return *reinterpret_cast<DLGTEMPLATE*>(m_words.data()); }
    std::vector<WORD> m_words;
};

CTemplate FrameTemplate()
{
    CTemplate frame(WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_VISIBLE, 260, 160);
    frame.Add(kButtonClass, kBack, WS_TABSTOP, L"< &Back");
    frame.Add(kButtonClass, kNext, WS_TABSTOP | BS_DEFPUSHBUTTON, L"&Next >");
    frame.Add(kButtonClass, kCancel, WS_TABSTOP, L"Cancel");
    return frame;
}

CTemplate PageTemplate()
{
    CTemplate page(WS_CHILD | DS_CONTROL, 200, 120);
    page.Add(kEditClass, kEdit, WS_TABSTOP | WS_BORDER, L"");
    page.Add(kButtonClass, kBox, WS_TABSTOP | BS_AUTOCHECKBOX, L"&Icon");
    page.Add(kButtonClass, kRadio, WS_TABSTOP | WS_GROUP | BS_AUTORADIOBUTTON, L"first");
    page.Add(kStaticClass, kLabel, 0, L"label");
    page.Add(kButtonClass, kRadio + 1, BS_AUTORADIOBUTTON, L"second");
    page.Add(kButtonClass, kRadio + 2, BS_AUTORADIOBUTTON, L"third");
    page.Add(kButtonClass, kBrowse, WS_TABSTOP | WS_GROUP, L"B&rowse...");
    return page;
}

class CPage : public CDialog
{
public:
    explicit CPage(std::string* pstrEvents = nullptr) : m_pstrEvents(pstrEvents) {}
    ~CPage() override { Note("~"); }
    BOOL DestroyWindow() override { return m_bVeto ? FALSE : CDialog::DestroyWindow(); }
    BOOL OnInitDialog() override
    {
        CDialog::OnInitDialog();
        Note("init ");
        return TRUE;
    }

    CStatic m_label;
    CString m_strText;
    int m_bIcon = 0;
    int m_nKind = -1;
    int m_nBrowsed = 0;
    bool m_bVeto = false;
    bool m_bAskForMissing = false;

protected:
    void DoDataExchange(CDataExchange* pDX) override
    {
        CDialog::DoDataExchange(pDX);
        DDX_Control(pDX, kLabel, m_label);
        DDX_Text(pDX, kEdit, m_strText);
        DDX_Check(pDX, kBox, m_bIcon);
        DDX_Radio(pDX, kRadio, m_nKind);
        if (m_bAskForMissing)
            DDX_Text(pDX, kMissing, m_strText);
    }
    void PostNcDestroy() override { Note("gone "); }
    void OnBrowse() { ++m_nBrowsed; }
    DECLARE_MESSAGE_MAP()

private:
    void Note(const char* pszEvent)
    {
        if (m_pstrEvents)
            *m_pstrEvents += pszEvent;
    }
    std::string* m_pstrEvents;
};

BEGIN_MESSAGE_MAP(CPage, CDialog)
ON_BN_CLICKED(kBrowse, &CPage::OnBrowse)
END_MESSAGE_MAP()

// A modal frame that holds a page and works through the steps of a test, each after the messages of the one before.
class CFrame : public CDialog
{
public:
    typedef std::function<void(CFrame&)> Step;

    explicit CFrame(std::vector<Step> steps)
        : m_steps(std::move(steps)), m_frame(FrameTemplate()), m_page(PageTemplate())
    {
        InitModalIndirect(m_frame);
    }

    // Ends with kStuck if the steps don't end the dialog in time.
    static constexpr int kStuck = 1234;

    BOOL OnInitDialog() override
    {
        CDialog::OnInitDialog();
        EXPECT_TRUE(m_child.CreateIndirect(m_page, this));
        m_child.SetWindowPos(&wndTop, 4, 4, 0, 0, SWP_NOSIZE | SWP_SHOWWINDOW);
        SetTimer(m_hWnd, 1, 10000, nullptr);
        PostMessage(WM_APP);
        if (m_nFocus)
            ::SetFocus(::GetDlgItem(m_child, m_nFocus));
        return m_nFocus == 0;
    }

    int FocusId() const { return GetDlgCtrlID(GetFocus()); }
    static void Key(UINT nKey)
    {
        ::PostMessageW(GetFocus(), WM_KEYDOWN, nKey, 1);
        ::PostMessageW(GetFocus(), WM_KEYUP, nKey, 0xC0000001);
    }
    static void AccessKey(wchar_t ch) { ::PostMessageW(GetFocus(), WM_SYSCHAR, ch, 0x20000001); }
    // The ids that the focus visits under one Tab key after the other, as far as the steps go.
    std::string m_strVisited;
    std::string m_strCalls;
    int m_nFocus = 0;
    bool m_bStay = false;
    CPage m_child;

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        if (message == WM_TIMER)
            EndDialog(kStuck);
        if (message == WM_APP && m_iStep < m_steps.size())
        {
            m_steps[m_iStep++](*this);
            PostMessage(WM_APP);
        }
        return CDialog::WindowProc(message, wParam, lParam);
    }
    void OnOK() override
    {
        m_strCalls += "ok ";
        if (!m_bStay)
            CDialog::OnOK();
    }
    void OnCancel() override
    {
        m_strCalls += "cancel ";
        if (!m_bStay)
            CDialog::OnCancel();
    }
    void OnBack() { m_strCalls += "back "; }
    DECLARE_MESSAGE_MAP()

private:
    std::vector<Step> m_steps;
    size_t m_iStep = 0;
    CTemplate m_frame;
    CTemplate m_page;
};

BEGIN_MESSAGE_MAP(CFrame, CDialog)
ON_BN_CLICKED(kBack, &CFrame::OnBack)
END_MESSAGE_MAP()

// The application of a test, in the place of the program's own.
class CHelpApp : public CWinApp
{
public:
    CHelpApp() : CHelpApp(AfxGetApp()) {}
    ~CHelpApp() override { AfxGetModuleState()->m_pCurrentWinApp = m_pBefore; }
    int m_nHelped = 0;

protected:
    void OnHelpAsked() { ++m_nHelped; }
    DECLARE_MESSAGE_MAP()

private:
    explicit CHelpApp(CWinApp* pBefore) : m_pBefore(pBefore) {}
    CWinApp* m_pBefore;
};

BEGIN_MESSAGE_MAP(CHelpApp, CWinApp)
ON_COMMAND(ID_HELP, &CHelpApp::OnHelpAsked)
END_MESSAGE_MAP()

void End(CFrame& frame)
{
    frame.EndDialog(77);
}

class WindowDialog : public testing::Test
{
protected:
    void TearDown() override
    {
        MSG msg;
        while (PeekMessageW(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE))
            continue;
    }
};

typedef WindowDialog WindowKeyboard;
typedef WindowDialog WindowObject;
} // namespace

TEST_F(WindowDialog, ModalResultIsWhatEndedIt)
{
    const struct
    {
        CFrame::Step step;
        INT_PTR nResult;
        const char* pszCalls;
    } cases[] = {
        { [](CFrame& f) { f.EndDialog(77); }, 77, "" },
        { [](CFrame& f) { f.SendDlgItemMessage(kNext, BM_CLICK); }, IDOK, "ok " },
        { [](CFrame& f) { f.SendDlgItemMessage(kCancel, BM_CLICK); }, IDCANCEL, "cancel " },
        { [](CFrame& f) { f.PostMessage(WM_COMMAND, IDCANCEL); }, IDCANCEL, "cancel " },
        { [](CFrame& f) { f.PostMessage(WM_CLOSE); }, IDCANCEL, "cancel " },
    };
    for (const auto& c : cases)
    {
        CFrame frame({ c.step });
        EXPECT_EQ(c.nResult, frame.DoModal());
        EXPECT_EQ(c.pszCalls, frame.m_strCalls);
        EXPECT_EQ(nullptr, frame.m_hWnd);
        EXPECT_EQ(nullptr, frame.m_child.m_hWnd);
    }
}

TEST_F(WindowDialog, MissingTemplateShowsNothing)
{
    EXPECT_EQ(-1, CDialog(60000).DoModal());
    CDialog dialog;
    EXPECT_FALSE(dialog.Create(60000));
    EXPECT_EQ(nullptr, dialog.m_hWnd);
}

TEST_F(WindowDialog, ResultOfInitialisationDecidesTheFocus)
{
    for (const int nFocus : { 0, static_cast<int>(kBox) })
    {
        int nSeen = -1;
        CFrame frame({ [&](CFrame& f) { nSeen = f.FocusId(); }, End });
        frame.m_nFocus = nFocus;
        frame.DoModal();
        // The page stands first in the order of controls.
        EXPECT_EQ(nFocus ? nFocus : static_cast<int>(kEdit), nSeen);
    }
}

TEST_F(WindowDialog, ExchangesDataBothWays)
{
    CFrame frame({ [](CFrame& f)
                   {
                       CPage& page = f.m_child;
                       page.m_strText = L"text";
                       page.m_bIcon = 1;
                       page.m_nKind = 2;
                       EXPECT_TRUE(page.UpdateData(FALSE));
                       CString strText;
                       EXPECT_EQ(4, page.GetDlgItemText(kEdit, strText));
                       EXPECT_STREQ(L"text", strText);
                       EXPECT_EQ(1u, page.IsDlgButtonChecked(kBox));
                       EXPECT_EQ(0u, page.IsDlgButtonChecked(kRadio));
                       EXPECT_EQ(1u, page.IsDlgButtonChecked(kRadio + 2));
                   },
                   [](CFrame& f)
                   {
                       CPage& page = f.m_child;
                       page.SetDlgItemText(kEdit, CString(L'x', 5000));
                       page.SendDlgItemMessage(kBox, BM_CLICK);
                       page.SendDlgItemMessage(kRadio + 1, BM_CLICK);
                       EXPECT_TRUE(page.UpdateData(TRUE));
                       EXPECT_EQ(5000, page.m_strText.GetLength());
                       EXPECT_EQ(0, page.m_bIcon);
                       EXPECT_EQ(1, page.m_nKind);
                       page.CheckDlgButton(kRadio + 1, BST_UNCHECKED);
                       EXPECT_TRUE(page.UpdateData());
                       EXPECT_EQ(-1, page.m_nKind);
                   },
                   [](CFrame& f)
                   {
                       f.m_child.m_bAskForMissing = true;
                       EXPECT_FALSE(f.m_child.UpdateData(FALSE));
                       EXPECT_FALSE(f.m_child.UpdateData(TRUE));
                   },
                   End });
    EXPECT_EQ(77, frame.DoModal());
}

TEST_F(WindowDialog, PageVetoKeepsItsWindow)
{
    CFrame frame({ [](CFrame& f)
                   {
                       const HWND hPage = f.m_child.m_hWnd;
                       f.m_child.m_bVeto = true;
                       EXPECT_FALSE(f.m_child.DestroyWindow());
                       EXPECT_TRUE(IsWindow(hPage));
                       f.m_child.m_bVeto = false;
                       EXPECT_TRUE(f.m_child.DestroyWindow());
                       EXPECT_FALSE(IsWindow(hPage));
                       EXPECT_EQ(nullptr, f.m_child.m_hWnd);
                       EXPECT_EQ(nullptr, f.m_child.m_label.m_hWnd);
                       EXPECT_FALSE(f.m_child.DestroyWindow());
                   },
                   End });
    EXPECT_EQ(77, frame.DoModal());
}

TEST_F(WindowDialog, DeletedObjectTakesItsWindowAlong)
{
    std::string strEvents;
    const CTemplate page = PageTemplate();
    CFrame frame({ [&](CFrame& f)
                   {
                       CPage* pPage = new CPage(&strEvents);
                       EXPECT_TRUE(pPage->CreateIndirect(page, &f));
                       const HWND hPage = pPage->m_hWnd;
                       EXPECT_EQ(&f, pPage->GetParent());
                       EXPECT_EQ(&pPage->m_label, pPage->GetDlgItem(kLabel));
                       delete pPage;
                       EXPECT_FALSE(IsWindow(hPage));
                   },
                   End });
    EXPECT_EQ(77, frame.DoModal());
    EXPECT_EQ("init ~", strEvents);
}

TEST_F(WindowDialog, MainWindowIsForgottenAtItsEndAndTheThreadQuits)
{
    ASSERT_NE(nullptr, AfxGetApp());
    CFrame frame({ [](CFrame& f) { EXPECT_EQ(&f, AfxGetMainWnd()); }, End });
    AfxGetApp()->m_pMainWnd = &frame;
    EXPECT_EQ(77, frame.DoModal());
    EXPECT_EQ(nullptr, AfxGetApp()->m_pMainWnd);
    MSG msg;
    EXPECT_TRUE(PeekMessageW(&msg, nullptr, WM_QUIT, WM_QUIT, PM_NOREMOVE));
}

TEST_F(WindowDialog, OtherWindowLeavesTheThreadAlone)
{
    CFrame frame({ End });
    EXPECT_EQ(77, frame.DoModal());
    MSG msg;
    EXPECT_FALSE(PeekMessageW(&msg, nullptr, WM_QUIT, WM_QUIT, PM_NOREMOVE));
}

TEST_F(WindowDialog, ModalDialogDisablesItsOwner)
{
    CFrame frame({ [](CFrame& f)
                   {
                       CFrame inner({ [&](CFrame& g)
                                      {
                                          EXPECT_FALSE(f.IsWindowEnabled());
                                          EXPECT_EQ(&f, g.GetParent());
                                      },
                                      End });
                       EXPECT_EQ(77, inner.DoModal());
                       EXPECT_TRUE(f.IsWindowEnabled());
                   },
                   End });
    AfxGetApp()->m_pMainWnd = &frame;
    EXPECT_EQ(77, frame.DoModal());
}

TEST_F(WindowDialog, CommandsGoOnToTheApplicationButNotificationsStay)
{
    CHelpApp app;
    CFrame frame({ [](CFrame& f)
                   {
                       f.m_child.SendMessage(WM_COMMAND, ID_HELP);
                       f.SendMessage(WM_COMMAND, ID_HELP);
                       f.m_child.SendMessage(WM_COMMAND, kBack);
                   },
                   End });
    EXPECT_EQ(77, frame.DoModal());
    EXPECT_EQ(2, app.m_nHelped);
    EXPECT_EQ("", frame.m_strCalls);
}

TEST_F(WindowKeyboard, TabVisitsFrameAndPage)
{
    const CFrame::Step tab = [](CFrame& f)
    {
        f.m_strVisited += std::to_string(f.FocusId()) + " ";
        f.Key(VK_TAB);
    };
    CFrame frame({ tab, tab, tab, tab, tab, tab, tab, tab, End });
    frame.m_nFocus = kEdit;
    frame.m_child.m_nKind = 0; // a group without a set button has no tab stop
    EXPECT_EQ(77, frame.DoModal());
    EXPECT_EQ("1000 1001 1002 1005 3 1 2 1000 ", frame.m_strVisited);
}

TEST_F(WindowKeyboard, KeysReachTheButtonsOfFrameAndPage)
{
    const struct
    {
        int nFocus;
        CFrame::Step press;
        const char* pszCalls;
        int nBrowsed;
        UINT nBox;
    } cases[] = {
        { kEdit, [](CFrame& f) { f.Key(VK_RETURN); }, "ok ", 0, 0 },
        { kBox, [](CFrame& f) { f.Key(VK_RETURN); }, "ok ", 0, 0 },
        { kEdit, [](CFrame& f) { f.Key(VK_ESCAPE); }, "cancel ", 0, 0 },
        { kBrowse, [](CFrame& f) { f.Key(VK_ESCAPE); }, "cancel ", 0, 0 },
        { kBrowse, [](CFrame& f) { f.Key(VK_SPACE); }, "", 1, 0 },
        { kBox, [](CFrame& f) { f.AccessKey(L'n'); }, "ok ", 0, 0 },
        { kBox, [](CFrame& f) { f.AccessKey(L'b'); }, "back ", 0, 0 },
        { kBox, [](CFrame& f) { f.AccessKey(L'r'); }, "", 1, 0 },
        { 0, [](CFrame& f) { f.AccessKey(L'r'); }, "", 1, 0 },
        { 0, [](CFrame& f) { f.AccessKey(L'i'); }, "", 0, 1 },
    };
    for (size_t i = 0; i < sizeof(cases) / sizeof(cases[0]); ++i)
    {
        UINT nBox = 0;
        CFrame frame({ cases[i].press, [&](CFrame& f) { nBox = f.m_child.IsDlgButtonChecked(kBox); }, End });
        frame.m_nFocus = cases[i].nFocus;
        frame.m_bStay = true;
        EXPECT_EQ(77, frame.DoModal()) << "case " << i;
        EXPECT_EQ(cases[i].pszCalls, frame.m_strCalls) << "case " << i;
        EXPECT_EQ(cases[i].nBrowsed, frame.m_child.m_nBrowsed) << "case " << i;
        EXPECT_EQ(cases[i].nBox, nBox) << "case " << i;
    }
}

TEST_F(WindowKeyboard, EnterPressesThePageButtonThatTabLedTo)
{
    CFrame frame({ [](CFrame& f) { f.Key(VK_TAB); },
                   [](CFrame& f)
                   {
                       EXPECT_EQ(kBrowse, f.FocusId());
                       f.Key(VK_RETURN);
                   },
                   End });
    frame.m_nFocus = kRadio;
    EXPECT_EQ(77, frame.DoModal());
    EXPECT_EQ(1, frame.m_child.m_nBrowsed);
    EXPECT_EQ("", frame.m_strCalls);
}

TEST_F(WindowObject, HandleFindsItsObjectUntilDetached)
{
    HWND hWnd = CreateWindowW(L"STATIC", L"title", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(nullptr, CWnd::FromHandle(nullptr));
    EXPECT_EQ(nullptr, CWnd::FromHandlePermanent(hWnd));
    CWnd* pTemporary = CWnd::FromHandle(hWnd);
    EXPECT_EQ(hWnd, pTemporary->m_hWnd);
    EXPECT_EQ(pTemporary, CWnd::FromHandle(hWnd));
    {
        CWnd wnd;
        EXPECT_TRUE(wnd.Attach(hWnd));
        EXPECT_EQ(&wnd, CWnd::FromHandle(hWnd));
        EXPECT_FALSE(wnd.Attach(hWnd));
        EXPECT_EQ(hWnd, wnd.Detach());
        EXPECT_EQ(nullptr, CWnd::FromHandlePermanent(hWnd));
    }
    EXPECT_TRUE(IsWindow(hWnd));
    {
        CStatic wnd;
        EXPECT_TRUE(wnd.SubclassWindow(hWnd));
        CString strTitle;
        wnd.GetWindowText(strTitle);
        EXPECT_STREQ(L"title", strTitle);
        EXPECT_EQ(hWnd, wnd.UnsubclassWindow());
        wnd.Attach(hWnd);
    }
    EXPECT_FALSE(IsWindow(hWnd));
}
