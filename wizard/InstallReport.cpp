#include "wizard/InstallReport.h"

#include "app/Product.h"
#include "app/RunState.h"
#include "foundation/FolderPaths.h"
#include "foundation/StringTable.h"
#include "res/resource.h"

// Puts the version behind the name, whose own digit 8 stands for the major part.
static CString GetInstalledText()
{
    CString strVersion;
    strVersion.Format(PRODUCT_NAME L".%02d.%02d", g_nVerMinor, g_nVerFix);
    CString strText = LoadResString(IDS_INSTALLED);
    strText.Replace(kProductName, strVersion);
    return strText;
}

void FillReport(const CWnd& page)
{
    const bool bReboot = g_bRebootNeeded != 0;
    CWnd* pBox = page.GetDlgItem(IDC_START_RUN);
    if (bReboot)
    {
        pBox->SetWindowText(LoadResString(IDS_RESTART_BOX));
        pBox->SendMessage(BM_SETCHECK, BST_CHECKED, 0);
    }

    CWnd* pProgress = page.GetDlgItem(IDC_START_PROGRESS);
    if (g_nInstallKind != KIND_PORTABLE)
    {
        pProgress->ShowWindow(SW_HIDE);
        pBox->ShowWindow(SW_SHOW);
    }
    else
    {
        pProgress->SetWindowText(FormatResString(IDS_RUN_PORTABLE, CutLastPart(g_strInstDir)));
    }

    CWnd* pHeadline = page.GetDlgItem(IDC_START_HEADLINE);
    CWnd* pText = page.GetDlgItem(IDC_START_TEXT);
    pHeadline->SetWindowText(GetInstalledText());
    pText->SetWindowText(LoadResString(bReboot ? IDS_RESTART_NEEDED : IDS_PRESS_FINISH));
    pHeadline->ShowWindow(SW_SHOW);
    pText->ShowWindow(SW_SHOW);
}
