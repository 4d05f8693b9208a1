// The wizard's frame: the side picture, the three buttons, and one page at a time. All movement goes through OnOK, the
// step forward; Back is made of it too. The install itself runs inside it, when the sixth page comes up.
#pragma once

#include <afxwin.h>

// The wizard's pages, in their order.
enum PageNumber
{
    PAGE_NONE = -1,
    PAGE_INTRO = 0,
    PAGE_AGREEMENT = 1,
    PAGE_FOLDER = 2,
    PAGE_GROUP = 3,
    PAGE_READY = 4,
    PAGE_INSTALL = 5,
};

class CSetupDlg : public CDialog
{
public:
    // With m_nPage set to PAGE_READY before DoModal, the frame opens on its report, with no earlier page.
    CSetupDlg();
    virtual ~CSetupDlg() {}

protected:
    DECLARE_MESSAGE_MAP()
    virtual void DoDataExchange(CDataExchange* pDX) override;
    virtual BOOL OnInitDialog() override;
    virtual BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    virtual void OnOK() override;
    virtual void OnCancel() override;

private:
    struct Page;

    void OnBack();
    bool LeavePage();
    void ChooseNextPage();
    void CreatePage();
    void ShowAgreement();
    void RunInstallPage();
    void ShowReport();
    void PlacePage();
    void EndWizard();
    void ShowIcon();

    CButton m_cancel;
    CStatic m_side;
    CButton m_back;
    CButton m_next;

public:
    int m_nPage; // the current page

private:
    CDialog* m_pPage; // the page that is shown. The last one isn't deleted: its window goes with the frame's
    CString m_strTitle;
};
