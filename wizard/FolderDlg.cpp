#include "wizard/FolderDlg.h"

#include <shlobj.h>

#include "app/Product.h"
#include "app/RunState.h"
#include "foundation/DiskFiles.h"
#include "foundation/Owners.h"
#include "foundation/StringTable.h"
#include "foundation/TextEnds.h"
#include "res/resource.h"
#include "uninstall/LogReplay.h"

bool g_bPortableChosen;

BEGIN_MESSAGE_MAP(CFolderDlg, CDialog)
ON_BN_CLICKED(IDC_FOLDER_BROWSE, &CFolderDlg::OnBrowse)
ON_BN_CLICKED(IDC_FOLDER_USER, &CFolderDlg::OnKindChanged)
ON_BN_CLICKED(IDC_FOLDER_ALL, &CFolderDlg::OnKindChanged)
ON_BN_CLICKED(IDC_FOLDER_PORTABLE, &CFolderDlg::OnKindChanged)
END_MESSAGE_MAP()

CFolderDlg::CFolderDlg() : m_nKind(-1) {}

void CFolderDlg::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_FOLDER_PATH, m_path);
    DDX_Radio(pDX, IDC_FOLDER_USER, m_nKind);
}

// The texts are brought up to date while no button is set, so that a portable kind from the command line starts with
// its folder shown and the plain hint.
BOOL CFolderDlg::OnInitDialog()
{
    CDialog::OnInitDialog();
    g_bPortableChosen = false;
    GetDlgItemText(IDC_FOLDER_HINT, m_strHint);
    UpdateTexts();
    m_path.SetWindowText(g_strInstDir);
    m_nKind = g_nInstallKind;
    UpdateData(FALSE);
    return TRUE;
}

void CFolderDlg::OnKindChanged()
{
    UpdateTexts();
}

void CFolderDlg::UpdateTexts()
{
    UpdateData(TRUE);
    if (m_nKind != KIND_PORTABLE)
    {
        m_path.SetWindowText(g_strInstDir);
        const bool bRepeated = !g_bFreshInstall && PathExists(g_strInstDir + kProductExePath);
        SetDlgItemText(IDC_FOLDER_HINT, bRepeated ? LoadResString(IDS_FOLDER_HAS_PRODUCT) : m_strHint);
        return;
    }
    if (!g_bPortableChosen)
        m_path.SetWindowText(L"");
    SetDlgItemText(IDC_FOLDER_HINT, LoadResString(IDS_PORTABLE_HINT));
}

static int CALLBACK BrowseCallback(HWND hWindow, UINT nMessage, LPARAM, LPARAM)
{
    if (nMessage == BFFM_INITIALIZED)
    {
        SendMessageW(hWindow, BFFM_SETSELECTIONW, TRUE,
                     reinterpret_cast<LPARAM>(static_cast<const wchar_t*>(g_strInstDir)));
    }
    else if (nMessage == BFFM_VALIDATEFAILEDW)
    {
        AfxMessageBox(IDS_INVALID_FOLDER);
        return 1; // keeps the browser open
    }
    return 0;
}

static LPITEMIDLIST BrowseForFolder(HWND hOwner)
{
    const CString strTitle = LoadResString(IDS_SELECT_FOLDER);
    wchar_t szDisplayName[MAX_PATH] = L"";
    BROWSEINFOW browse = {};
    browse.hwndOwner = hOwner;
    browse.pszDisplayName = szDisplayName;
    browse.lpszTitle = strTitle;
    browse.ulFlags = BIF_RETURNONLYFSDIRS | BIF_EDITBOX | BIF_VALIDATE | BIF_NEWDIALOGSTYLE;
    browse.lpfn = BrowseCallback;

    // The target is made so that it can be preselected, and goes again if it is empty.
    CreateDirectoryW(g_strInstDir, nullptr);
    const LPITEMIDLIST pItems = SHBrowseForFolderW(&browse);
    RemoveDirectoryW(g_strInstDir);
    return pItems;
}

static void FreeItemList(LPITEMIDLIST pItems)
{
    CInterfaceOwner<IMalloc> memory;
    if (SUCCEEDED(SHGetMalloc(memory.Receive())))
        memory->Free(pItems);
}

void CFolderDlg::OnBrowse()
{
    const LPITEMIDLIST pItems = BrowseForFolder(GetSafeHwnd());
    if (pItems == nullptr)
        return;
    wchar_t szFolder[MAX_PATH] = L"";
    if (SHGetPathFromIDListW(pItems, szFolder))
        TakeFolder(szFolder);
    FreeItemList(pItems);
}

static bool HoldsOlderVersion(const CString& strFolder)
{
    return PathExists(strFolder + kVersion5ExePath) || PathExists(strFolder + kVersion6ExePath);
}

// An empty folder and one that holds the product are taken as they stand; a portable install gets its own folder
// always.
static bool WantsProductFolder(const CString& strFolder, int nKind)
{
    if (nKind == KIND_PORTABLE)
        return true;
    return !PathExists(strFolder + kProductExePath) && CountFolderEntries(L"*", strFolder) != 0;
}

void CFolderDlg::TakeFolder(CString strFolder)
{
    // A folder just made in the browser doesn't stay behind before the install has begun.
    RemoveDirectoryW(strFolder);
    if (HoldsOlderVersion(strFolder))
    {
        AfxMessageBox(IDS_OLD_VERSION_FOLDER);
        return;
    }
    if (WantsProductFolder(strFolder, m_nKind))
    {
        if (!EndsWith(strFolder, L"\\"))
            strFolder += L'\\';
        strFolder += kProductName;
    }
    g_strInstDir = strFolder;
    m_path.SetWindowText(strFolder);
    if (m_nKind == KIND_PORTABLE)
        g_bPortableChosen = true;
    UpdateTexts();
}

BOOL CFolderDlg::DestroyWindow()
{
    CString strPath;
    m_path.GetWindowText(strPath);
    if (strPath.IsEmpty())
    {
        AfxMessageBox(IDS_NO_PORTABLE_FOLDER);
        return FALSE;
    }
    UpdateData(TRUE);
    g_nInstallKind = m_nKind;
    return CDialog::DestroyWindow();
}
