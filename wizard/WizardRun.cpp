// The wizard as the install run sees it.
#include "wizard/WizardRun.h"

#include "app/RunState.h"
#include "wizard/SetupDlg.h"

// The frame's number of the page before the report.
const int kPageBeforeReport = 4;

// The framework clears the main window when the dialog's window goes; a dialog that never had one leaves that to us.
static INT_PTR Open(CSetupDlg& dialog)
{
    theApp.m_pMainWnd = &dialog;
    const INT_PTR nResult = dialog.DoModal();
    theApp.m_pMainWnd = nullptr;
    return nResult;
}

bool ShowWizard()
{
    CSetupDlg dialog;
    return Open(dialog) == IDOK;
}

void ShowReportPage()
{
    CSetupDlg dialog;
    dialog.m_nPage = kPageBeforeReport;
    Open(dialog);
}
