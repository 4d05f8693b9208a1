#include "wizard/GroupDlg.h"

#include <shlobj.h>

#include "app/RunState.h"
#include "foundation/SystemFacts.h"
#include "res/resource.h"

static constexpr int kShortestGroupName = 3; // characters

BEGIN_MESSAGE_MAP(CGroupDlg, CDialog)
END_MESSAGE_MAP()

CGroupDlg::CGroupDlg() : m_bAutoStart(0), m_bDeskIcon(0) {}

void CGroupDlg::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_GROUP_NAME, m_group);
    DDX_Check(pDX, IDC_GROUP_AUTOSTART, m_bAutoStart);
    DDX_Check(pDX, IDC_GROUP_DESKTOP, m_bDeskIcon);
    DDX_Text(pDX, IDC_GROUP_NAME, m_strGroup);
}

BOOL CGroupDlg::OnInitDialog()
{
    CDialog::OnInitDialog();
    m_bAutoStart = g_bAutoStart;
    m_bDeskIcon = g_bDeskIcon;
    m_strGroup = g_strGroup;
    UpdateData(FALSE);
    return TRUE;
}

// The Startup folder has another name in each language of the system.
static bool IsStartupName(CString strName)
{
    strName.MakeLower();
    const int startupFolders[] = { CSIDL_STARTUP, CSIDL_COMMON_STARTUP };
    for (const int nFolder : startupFolders)
    {
        CString strStartup = GetSpecialFolder(nFolder);
        strStartup = strStartup.Mid(strStartup.ReverseFind(L'\\') + 1);
        strStartup.MakeLower();
        if (strName == strStartup)
            return true;
    }
    return false;
}

BOOL CGroupDlg::DestroyWindow()
{
    if (!UpdateData(TRUE))
        return FALSE;
    m_strGroup.TrimLeft();
    m_strGroup.TrimRight();
    if (m_strGroup.GetLength() < kShortestGroupName)
    {
        AfxMessageBox(IDS_SHORT_GROUP_NAME);
        return FALSE;
    }
    if (IsStartupName(m_strGroup))
    {
        AfxMessageBox(IDS_STARTUP_GROUP_NAME);
        return FALSE;
    }
    g_bAutoStart = m_bAutoStart;
    g_bDeskIcon = m_bDeskIcon;
    g_strGroup = m_strGroup;
    return CDialog::DestroyWindow();
}
