// The page that shows the agreement. Going on is the acceptance; no record of it is kept.
#pragma once

#include <afxwin.h>

class CAgreementDlg : public CDialog
{
public:
    virtual ~CAgreementDlg() {}

protected:
    DECLARE_MESSAGE_MAP()
    virtual void DoDataExchange(CDataExchange* pDX) override;
    virtual BOOL OnInitDialog() override;

private:
    CEdit m_box;
    CString m_strText;
};
