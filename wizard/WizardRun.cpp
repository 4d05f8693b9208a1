#include "wizard/WizardRun.h"

#include "wizard/SetupDlg.h"

// The framework clears the main window when the dialog's window goes; a dialog that never had one leaves that to us.
static INT_PTR Open(CSetupDlg& dialog)
{
    AfxGetApp()->m_pMainWnd = &dialog;
    const INT_PTR nResult = dialog.DoModal();
    AfxGetApp()->m_pMainWnd = nullptr;
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
    dialog.m_nPage = PAGE_READY; // the step forward leads to the report
    Open(dialog);
}
