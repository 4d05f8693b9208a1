// The framework's windows and dialogs: which object a window belongs to, what the dialog classes do by themselves, and
// the keyboard across a frame and its page. The product's own dialogs have tests of their own.
#include <gtest/gtest.h>
#include <afxwin.h>

#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/support/ImportHook.h"
#include "tests/support/TestDialogs.h"

namespace
{
const int kMissing = 4000; // id of no control
const int kEnded = 77;     // result of a frame that a test ends

class CPage : public CDialog
{
public:
    CStatic m_label;
    CString m_strText;
    int m_bIcon = 0;
    int m_nKind = -1;
    int m_nBrowsed = 0;
    bool m_bAskForMissing = false;

protected:
    void DoDataExchange(CDataExchange* pDX) override
    {
        CDialog::DoDataExchange(pDX);
        DDX_Control(pDX, IDC_TEST_LABEL, m_label);
        DDX_Text(pDX, IDC_TEST_EDIT, m_strText);
        DDX_Check(pDX, IDC_TEST_BOX, m_bIcon);
        DDX_Radio(pDX, IDC_TEST_RADIO, m_nKind);
        if (m_bAskForMissing)
            DDX_Text(pDX, kMissing, m_strText);
    }
    void OnBrowse() { ++m_nBrowsed; }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CPage, CDialog)
ON_BN_CLICKED(IDC_TEST_BROWSE, &CPage::OnBrowse)
END_MESSAGE_MAP()

// A modal frame that holds a page and works through the steps of a test, each after the messages of the one before.
class CFrame : public CDialog
{
public:
    typedef std::function<void(CFrame&)> Step;

    explicit CFrame(std::vector<Step> steps) : CDialog(IDD_TEST_FRAME), m_steps(std::move(steps)) {}

    BOOL OnInitDialog() override
    {
        CDialog::OnInitDialog();
        EXPECT_TRUE(m_child.Create(IDD_TEST_PAGE, this));
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
    std::string m_strCalls;
    int m_nFocus = 0;
    CPage m_child;

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        if (message == WM_TIMER)
            EndDialog(-1); // the steps don't
        if (message == WM_APP && m_iStep < m_steps.size())
        {
            m_steps[m_iStep++](*this);
            PostMessage(WM_APP);
        }
        return CDialog::WindowProc(message, wParam, lParam);
    }
    void OnOK() override { m_strCalls += "ok ", CDialog::OnOK(); }
    void OnCancel() override { m_strCalls += "cancel ", CDialog::OnCancel(); }
    void OnBack() { m_strCalls += "back "; }
    DECLARE_MESSAGE_MAP()

private:
    std::vector<Step> m_steps;
    size_t m_iStep = 0;
};

BEGIN_MESSAGE_MAP(CFrame, CDialog)
ON_BN_CLICKED(IDC_TEST_BACK, &CFrame::OnBack)
END_MESSAGE_MAP()

void End(CFrame& frame)
{
    frame.EndDialog(kEnded);
}

// Lacks a control when it is filled, or when it is read. The user presses OK, then Cancel.
class CIncomplete : public CDialog
{
public:
    explicit CIncomplete(BOOL bRead) : CDialog(IDD_TEST_FRAME), m_bRead(bRead) {}
    BOOL OnInitDialog() override
    {
        PostMessage(WM_COMMAND, IDOK);
        PostMessage(WM_COMMAND, IDCANCEL);
        return CDialog::OnInitDialog();
    }

protected:
    void DoDataExchange(CDataExchange* pDX) override
    {
        CString strText;
        if (pDX->m_bSaveAndValidate == m_bRead)
            DDX_Text(pDX, kMissing, strText);
    }

private:
    BOOL m_bRead;
};

// Shows a frame for the one step.
void RunFrame(CFrame::Step step)
{
    CFrame frame({ std::move(step), End });
    EXPECT_EQ(kEnded, frame.DoModal());
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

} // namespace

TEST_F(WindowDialog, ModalResultIsWhatEndedItAndAMissingTemplateShowsNothing)
{
    const std::tuple<CFrame::Step, INT_PTR, const char*> cases[] = {
        { [](CFrame& f) { f.SendDlgItemMessage(IDOK, BM_CLICK); }, IDOK, "ok " },
        { [](CFrame& f) { f.PostMessage(WM_CLOSE); }, IDCANCEL, "cancel " },
    };
    for (const auto& [step, nResult, pszCalls] : cases)
    {
        CFrame frame({ step });
        EXPECT_EQ(nResult, frame.DoModal());
        EXPECT_EQ(pszCalls, frame.m_strCalls);
        EXPECT_TRUE(frame.m_hWnd == nullptr && frame.m_child.m_hWnd == nullptr);
    }
    EXPECT_EQ(-1, CDialog(60000).DoModal());
    EXPECT_EQ(-1, CIncomplete(FALSE).DoModal());
    EXPECT_EQ(IDCANCEL, CIncomplete(TRUE).DoModal()) << "what can't be taken over keeps it open";
    CDialog dialog;
    EXPECT_FALSE(dialog.Create(60000));
    EXPECT_EQ(nullptr, dialog.m_hWnd);
}

TEST_F(WindowDialog, ExchangesDataBothWays)
{
    RunFrame(
        [](CFrame& f)
        {
            EXPECT_EQ(IDC_TEST_EDIT, f.FocusId()) << "the page stands first in the order of controls";
            CPage& page = f.m_child;
            page.m_strText = L"text";
            page.m_bIcon = 1;
            page.m_nKind = 2;
            EXPECT_TRUE(page.UpdateData(FALSE));
            CString strText;
            EXPECT_EQ(4, page.GetDlgItemText(IDC_TEST_EDIT, strText));
            EXPECT_STREQ(L"text", strText);
            EXPECT_EQ(1u, page.IsDlgButtonChecked(IDC_TEST_BOX));
            EXPECT_EQ(1u, page.IsDlgButtonChecked(IDC_TEST_RADIO + 2));

            page.SetDlgItemText(IDC_TEST_EDIT, CString(L'x', 5000));
            page.SendDlgItemMessage(IDC_TEST_BOX, BM_CLICK);
            page.SendDlgItemMessage(IDC_TEST_RADIO + 1, BM_CLICK);
            EXPECT_TRUE(page.UpdateData(TRUE));
            EXPECT_EQ(5000, page.m_strText.GetLength());
            EXPECT_EQ(0, page.m_bIcon);
            EXPECT_EQ(1, page.m_nKind);
            page.CheckDlgButton(IDC_TEST_RADIO + 1, BST_UNCHECKED);
            page.CheckDlgButton(IDC_TEST_OTHER, BST_CHECKED); // of another group
            EXPECT_TRUE(page.UpdateData());
            EXPECT_EQ(-1, page.m_nKind);
            page.m_bAskForMissing = true;
            EXPECT_FALSE(page.UpdateData(FALSE) || page.UpdateData(TRUE));
        });
}

TEST_F(WindowDialog, EndedWindowsLeaveTheirObjectsAndADeletedObjectTakesItsAlong)
{
    RunFrame(
        [](CFrame& f)
        {
            EXPECT_TRUE(f.m_child.DestroyWindow());
            EXPECT_TRUE(f.m_child.m_hWnd == nullptr && f.m_child.m_label.m_hWnd == nullptr);
            EXPECT_FALSE(f.m_child.DestroyWindow());

            CPage* pPage = new CPage;
            EXPECT_TRUE(pPage->Create(IDD_TEST_PAGE, &f));
            const HWND hPage = pPage->m_hWnd;
            EXPECT_EQ(&f, pPage->GetParent());
            EXPECT_EQ(&pPage->m_label, pPage->GetDlgItem(IDC_TEST_LABEL));
            delete pPage;
            EXPECT_FALSE(IsWindow(hPage));
        });
}

TEST_F(WindowDialog, DialogDisablesItsOwnerAndTheEndOfTheMainWindowAloneQuitsTheThread)
{
    for (const bool bMain : { false, true })
    {
        CFrame frame({ [](CFrame& f)
                       {
                           RunFrame(
                               [&f](CFrame& inner)
                               {
                                   EXPECT_TRUE(!f.IsWindowEnabled() && inner.GetParent() == &f);
                                   RunFrame([&inner](CFrame& last) { EXPECT_EQ(last.GetParent(), &inner); });
                               });
                           EXPECT_TRUE(f.IsWindowEnabled());
                           CPage page; // of the main window, where none is named
                           page.Create(IDD_TEST_PAGE);
                           EXPECT_EQ(page.GetParent(), &f);
                       },
                       End });
        AfxGetApp()->m_pMainWnd = bMain ? &frame : nullptr;
        EXPECT_EQ(kEnded, frame.DoModal());
        EXPECT_EQ(nullptr, AfxGetApp()->m_pMainWnd);
        MSG msg;
        EXPECT_EQ(bMain, PeekMessageW(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) != FALSE);
    }
}

TEST_F(WindowDialog, CommandsGoOnToTheApplicationButNotificationsStay)
{
    CCallHook help("USER32.dll", "WinHelpW", &WinHelpW);
    UINT nAsked = 0;
    help.Replace([&](HWND, LPCWSTR, UINT nCommand, ULONG_PTR) -> BOOL { return nAsked = nCommand; });
    const LPCTSTR pszBefore = std::exchange(AfxGetApp()->m_pszHelpFilePath, L"C:\\windows");
    RunFrame(
        [](CFrame& f)
        {
            f.m_child.SendMessage(WM_COMMAND, ID_HELP);
            f.SendMessage(WM_COMMAND, MAKEWPARAM(ID_HELP, 1)); // as of an accelerator
            f.m_child.SendMessage(WM_COMMAND, IDC_TEST_BACK);
            f.m_child.SendMessage(WM_COMMAND, MAKEWPARAM(IDC_TEST_BROWSE, BN_SETFOCUS),
                                  reinterpret_cast<LPARAM>(::GetDlgItem(f.m_child, IDC_TEST_BROWSE)));
            EXPECT_EQ("", f.m_strCalls);
            EXPECT_EQ(0, f.m_child.m_nBrowsed);
        });
    EXPECT_EQ(nAsked, UINT(HELP_FINDER));
    EXPECT_EQ(help.Texts(), std::vector<std::wstring>(2, AfxGetApp()->m_pszHelpFilePath));
    AfxGetApp()->m_pszHelpFilePath = L"C:\\missing";
    RunFrame([](CFrame& f) { f.SendMessage(WM_COMMAND, ID_HELP); });
    EXPECT_EQ(help.Calls(), 2);
    AfxGetApp()->m_pszHelpFilePath = pszBefore;
}

TEST_F(WindowDialog, EnterPressesThePageButtonThatTabLedTo)
{
    CFrame frame({ [](CFrame& f) { f.Key(VK_TAB); }, [](CFrame& f) { f.Key(VK_RETURN); }, End });
    frame.m_nFocus = IDC_TEST_RADIO;
    EXPECT_EQ(kEnded, frame.DoModal());
    EXPECT_EQ(1, frame.m_child.m_nBrowsed);
    EXPECT_EQ("", frame.m_strCalls);
}

TEST(WindowObject, HandleFindsItsObjectUntilDetached)
{
    const HWND hWnd = CreateWindowW(L"STATIC", L"title", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    EXPECT_TRUE(CWnd::FromHandle(nullptr) == nullptr && CWnd::FromHandlePermanent(hWnd) == nullptr);
    CWnd* pTemporary = CWnd::FromHandle(hWnd);
    EXPECT_TRUE(pTemporary->m_hWnd == hWnd && CWnd::FromHandle(hWnd) == pTemporary);
    {
        CWnd wnd;
        EXPECT_TRUE(wnd.Attach(hWnd) && CWnd::FromHandle(hWnd) == &wnd && !wnd.Attach(hWnd));
        EXPECT_TRUE(wnd.Detach() == hWnd && CWnd::FromHandlePermanent(hWnd) == nullptr);
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
        EXPECT_TRUE(wnd.DestroyWindow() && wnd.m_hWnd == nullptr);
    }
    EXPECT_FALSE(IsWindow(hWnd));
}
