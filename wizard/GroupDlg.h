// The page of the program group, auto-start and the desktop icon. It works on copies, and writes the run state only
// when it is left with a valid name.
#pragma once

#include <afxwin.h>

class CGroupDlg : public CDialog
{
public:
    CGroupDlg();
    virtual ~CGroupDlg() {}
    virtual BOOL DestroyWindow() override;

protected:
    DECLARE_MESSAGE_MAP()
    virtual void DoDataExchange(CDataExchange* pDX) override;
    virtual BOOL OnInitDialog() override;

private:
    CEdit m_group;
    int m_bAutoStart;
    int m_bDeskIcon;
    CString m_strGroup;
};
