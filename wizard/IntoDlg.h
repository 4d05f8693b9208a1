// The welcome page, with the version that is about to be installed.
#pragma once

#include <afxwin.h>

class CIntoDlg : public CDialog
{
public:
    virtual ~CIntoDlg() {}

protected:
    DECLARE_MESSAGE_MAP()
    virtual void DoDataExchange(CDataExchange* pDX) override;
    virtual BOOL OnInitDialog() override;

private:
    CStatic m_version;
};
