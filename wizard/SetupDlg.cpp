#include "wizard/SetupDlg.h"

#include "app/RunState.h"
#include "foundation/StringTable.h"
#include "install/InstallDriver.h"
#include "res/resource.h"
#include "wizard/AgreementDlg.h"
#include "wizard/FolderDlg.h"
#include "wizard/GroupDlg.h"
#include "wizard/InstallReport.h"
#include "wizard/IntoDlg.h"
#include "wizard/StartDlg.h"
#include "wizard/WelcomePage.h"

static constexpr int kPageGap = 4; // pixels between the side picture and the page

template <typename PageDlg>
static CDialog* NewPage()
{
    return new PageDlg;
}

struct CSetupDlg::Page
{
    CDialog* (*pfnNew)();
    UINT nTemplate;
};

BEGIN_MESSAGE_MAP(CSetupDlg, CDialog)
ON_BN_CLICKED(IDC_SETUP_BACK, &CSetupDlg::OnBack)
END_MESSAGE_MAP()

CSetupDlg::CSetupDlg() : CDialog(IDD_SETUP), m_nPage(PAGE_NONE), m_pPage(nullptr) {}

void CSetupDlg::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDCANCEL, m_cancel);
    DDX_Control(pDX, IDC_SETUP_SIDE, m_side);
    DDX_Control(pDX, IDC_SETUP_BACK, m_back);
    DDX_Control(pDX, IDOK, m_next);
}

BOOL CSetupDlg::OnInitDialog()
{
    CDialog::OnInitDialog();
    m_next.GetWindowText(g_strNextText);
    m_cancel.GetWindowText(g_strCancelText);
    SetWindowText(LoadResString(IDS_SETUP_CAPTION));
    OnOK();
    ShowIcon();
    return FALSE; // the step forward has set the focus
}

// For the caption's menu, the taskbar and the list of windows.
void CSetupDlg::ShowIcon()
{
    const auto show = [this](int nType, int nWidth, int nHeight)
    {
        const HANDLE hIcon = LoadImageW(AfxGetResourceHandle(), MAKEINTRESOURCEW(IDI_SETUP), IMAGE_ICON,
                                        GetSystemMetrics(nWidth), GetSystemMetrics(nHeight), LR_SHARED);
        SendMessage(WM_SETICON, nType, reinterpret_cast<LPARAM>(hIcon));
    };
    show(ICON_BIG, SM_CXICON, SM_CYICON);
    show(ICON_SMALL, SM_CXSMICON, SM_CYSMICON);
}

// Enter on a page's focused button comes here, since it is the frame's dialog manager that reads the key.
BOOL CSetupDlg::OnCommand(WPARAM wParam, LPARAM lParam)
{
    const HWND hControl = reinterpret_cast<HWND>(lParam);
    if (hControl == nullptr || m_pPage == nullptr || ::GetParent(hControl) != m_pPage->GetSafeHwnd())
        return CDialog::OnCommand(wParam, lParam);
    m_pPage->SendMessage(WM_COMMAND, wParam, lParam);
    return TRUE;
}

// The page's own DestroyWindow is its veto. False if the page refuses to go.
bool CSetupDlg::LeavePage()
{
    if (m_pPage == nullptr || m_nPage >= PAGE_INSTALL)
        return true;
    if (!m_pPage->DestroyWindow())
        return false;
    delete m_pPage;
    m_pPage = nullptr;
    return true;
}

void CSetupDlg::ChooseNextPage()
{
    ++m_nPage;
    if (m_nPage == PAGE_GROUP && g_nInstallKind == KIND_PORTABLE)
        m_nPage = PAGE_READY;
    // Repeated vetoes of Back can lower the number without a page to match it.
    if (m_nPage < PAGE_INTRO)
        m_nPage = PAGE_INTRO;
}

void CSetupDlg::OnOK()
{
    if (!LeavePage())
        return;
    ChooseNextPage();
    if (m_strTitle.IsEmpty())
        GetWindowText(m_strTitle);
    if (m_nPage != PAGE_AGREEMENT)
    {
        m_next.SetWindowText(g_strNextText);
        m_cancel.SetWindowText(g_strCancelText);
    }

    if (m_nPage > PAGE_INSTALL)
    {
        EndWizard();
        return;
    }
    if (m_nPage == PAGE_AGREEMENT)
    {
        ShowAgreement();
        return;
    }
    CreatePage();
    if (m_nPage == PAGE_INTRO)
        m_back.ShowWindow(SW_HIDE);
    if (m_nPage == PAGE_INSTALL)
        RunInstallPage();
    PlacePage();
}

void CSetupDlg::CreatePage()
{
    static constexpr Page kPages[] = {
        { NewPage<CIntoDlg>, IDD_INTRO },    { NewPage<CAgreementDlg>, IDD_AGREEMENT },
        { NewPage<CFolderDlg>, IDD_FOLDER }, { NewPage<CGroupDlg>, IDD_GROUP },
        { NewPage<CStartDlg>, IDD_START },   { NewPage<CStartDlg>, IDD_START },
    };
    m_pPage = kPages[m_nPage].pfnNew();
    m_pPage->Create(kPages[m_nPage].nTemplate, this);
}

// The agreement covers the side picture's place, and places itself.
void CSetupDlg::ShowAgreement()
{
    m_next.SetWindowText(LoadResString(IDS_YES_BUTTON));
    m_cancel.SetWindowText(LoadResString(IDS_NO_BUTTON));
    m_back.ShowWindow(SW_SHOW);
    m_side.ShowWindow(SW_HIDE);
    CreatePage();
    SetWindowText(LoadResString(IDS_ACCEPT_AGREEMENT));
}

void CSetupDlg::PlacePage()
{
    SetWindowText(m_strTitle);
    m_side.ShowWindow(SW_SHOW);
    m_next.EnableWindow(TRUE);
    m_next.SetFocus();

    CRect rectSide;
    m_side.GetWindowRect(&rectSide);
    ScreenToClient(&rectSide);
    m_pPage->SetWindowPos(&wndTop, rectSide.right + kPageGap, rectSide.top, 0, 0, SWP_NOSIZE | SWP_SHOWWINDOW);
}

// No message is handled while the install runs: the disabled buttons are what the user sees.
void CSetupDlg::RunInstallPage()
{
    m_pPage->GetDlgItem(IDC_START_HEADLINE)->ShowWindow(SW_HIDE);
    m_pPage->GetDlgItem(IDC_START_TEXT)->ShowWindow(SW_HIDE);
    m_pPage->GetDlgItem(IDC_START_PROGRESS)->ShowWindow(SW_SHOW);
    m_pPage->UpdateWindow();
    m_back.EnableWindow(FALSE);
    m_next.EnableWindow(FALSE);
    m_cancel.EnableWindow(FALSE);

    if (g_nSilent == SILENT_OFF)
    {
        SetCursor(LoadCursorW(nullptr, IDC_WAIT));
        PerformInstall();
        SetCursor(LoadCursorW(nullptr, IDC_ARROW));
    }
    m_next.EnableWindow(TRUE);
    ShowReport();
}

void CSetupDlg::ShowReport()
{
    m_next.SetWindowText(LoadResString(IDS_FINISH_BUTTON));
    FillReport(*m_pPage);
    m_next.SetFocus();
}

void CSetupDlg::EndWizard()
{
    g_bRunAfter = static_cast<int>(m_pPage->GetDlgItem(IDC_START_RUN)->SendMessage(BM_GETCHECK, 0, 0));
    OpenWelcomePage();
    CDialog::OnOK();
}

// After a veto the lowered number stays, and the next step forward leads to the page before this one. Not to be tidied
// away.
void CSetupDlg::OnBack()
{
    m_nPage -= 2;
    if (m_nPage == PAGE_FOLDER && g_nInstallKind == KIND_PORTABLE)
        m_nPage = PAGE_AGREEMENT;
    OnOK();
}

void CSetupDlg::OnCancel()
{
    // Windows sends nothing for a disabled button; under Wine, Esc and the system menu come through.
    if (!m_cancel.IsWindowEnabled())
        return;
    if (AfxMessageBox(IDS_CONFIRM_CANCEL, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES)
        CDialog::OnCancel();
}
