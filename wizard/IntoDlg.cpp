#include "wizard/IntoDlg.h"

#include <time.h>

#include "app/RunState.h"
#include "foundation/StringTable.h"
#include "res/resource.h"

BEGIN_MESSAGE_MAP(CIntoDlg, CDialog)
END_MESSAGE_MAP()

void CIntoDlg::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_INTRO_VERSION, m_version);
}

static int GetPresentYear()
{
    const __time64_t now = _time64(nullptr);
    const tm* pLocal = _localtime64(&now);
    return pLocal != nullptr ? pLocal->tm_year + 1900 : 1900;
}

// The template's text is the format of the line; the build part of the version shows only as the label of a beta.
BOOL CIntoDlg::OnInitDialog()
{
    CDialog::OnInitDialog();
    CString strFormat;
    m_version.GetWindowText(strFormat);
    CString strLabel;
    if (g_nVerBuild != 0)
        strLabel.Format(L"Beta %d", g_nVerBuild);

    CString strText;
    strText.Format(strFormat, static_cast<const wchar_t*>(LoadResString(IDS_PRODUCT_WORD)), g_nVerMajor, g_nVerMinor,
                   g_nVerFix, static_cast<const wchar_t*>(strLabel), GetPresentYear());
    m_version.SetWindowText(strText);
    return TRUE;
}
