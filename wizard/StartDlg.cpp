#include "wizard/StartDlg.h"

BEGIN_MESSAGE_MAP(CStartDlg, CDialog)
END_MESSAGE_MAP()
