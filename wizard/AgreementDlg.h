// The page that shows the agreement. Going on is the acceptance; no record of it is kept.
#pragma once

#include <afxwin.h>

// The box of a long text that is only read. Enter and Esc are the frame's, as everywhere else: a box of many lines
// would keep them, and close the page on Esc. Tab doesn't select the text, which would scroll it to its end.
class CReadingBox : public CEdit
{
protected:
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
};

class CAgreementDlg : public CDialog
{
public:
    virtual ~CAgreementDlg() {}

protected:
    DECLARE_MESSAGE_MAP()
    virtual void DoDataExchange(CDataExchange* pDX) override;
    virtual BOOL OnInitDialog() override;

private:
    CReadingBox m_box;
    CString m_strText;
};
