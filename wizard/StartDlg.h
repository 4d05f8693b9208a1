// The ready page, which is also the page of the install and the report. All that happens on it is the frame's doing.
#pragma once

#include <afxwin.h>

class CStartDlg : public CDialog
{
protected:
    DECLARE_MESSAGE_MAP()
};
