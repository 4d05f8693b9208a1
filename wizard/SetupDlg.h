// The wizard's frame: the side picture, the three buttons, and one page at a time. All movement goes through OnOK, the
// step forward; Back is made of it too. The install itself runs inside it, when the sixth page comes up.
#pragma once

#include <afxwin.h>

class CSetupDlg : public CDialog
{
public:
    // With m_nPage set to 4 before DoModal, the frame opens on its report, with no earlier page.
    CSetupDlg();
    virtual ~CSetupDlg() {}

protected:
    DECLARE_MESSAGE_MAP()
    virtual void DoDataExchange(CDataExchange* pDX) override;
    virtual BOOL OnInitDialog() override;
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

    CButton m_cancel;
    CStatic m_side;
    CButton m_back;
    CButton m_next;

public:
    int m_nPage; // number of the current page; -1 before the first one

private:
    CDialog* m_pPage; // the page that is shown. The last one isn't deleted: its window goes with the frame's
    CString m_strTitle;
};
