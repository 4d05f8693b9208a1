// Dialogs. The platform's dialog manager makes the windows, runs the modal loop and drives the keyboard.
#include <afxwin.h>

IMPLEMENT_DYNAMIC(CDialog, CWnd)

BEGIN_MESSAGE_MAP(CDialog, CWnd)
ON_COMMAND(IDOK, &CDialog::OnOK)
ON_COMMAND(IDCANCEL, &CDialog::OnCancel)
END_MESSAGE_MAP()

static LPCDLGTEMPLATE LoadTemplate(UINT nIDTemplate)
{
    HINSTANCE hModule = AfxGetResourceHandle();
    HRSRC hResource = FindResourceW(hModule, MAKEINTRESOURCEW(nIDTemplate), RT_DIALOG);
    return hResource ? static_cast<LPCDLGTEMPLATE>(LockResource(LoadResource(hModule, hResource))) : nullptr;
}

CDialog::CDialog() : CDialog(0) {}

CDialog::CDialog(UINT nIDTemplate) : m_nIDTemplate(nIDTemplate) {}

CDialog::~CDialog()
{
    // Here and not in the base class: what the window's end calls must still meet a dialog.
    if (m_hWnd)
        CDialog::DestroyWindow();
}

BOOL CDialog::Create(UINT nIDTemplate, CWnd* pParentWnd)
{
    const LPCDLGTEMPLATE lpTemplate = LoadTemplate(nIDTemplate);
    if (!lpTemplate)
        return FALSE;
    const CWnd* pOwner = pParentWnd ? pParentWnd : AfxGetMainWnd();
    return CreateDialogIndirectParamW(AfxGetInstanceHandle(), lpTemplate, pOwner ? pOwner->m_hWnd : nullptr, Initialize,
                                      reinterpret_cast<LPARAM>(this)) != nullptr;
}

INT_PTR CDialog::DoModal()
{
    const LPCDLGTEMPLATE lpTemplate = LoadTemplate(m_nIDTemplate);
    if (!lpTemplate)
        return -1;
    const CWnd* pOwner = GetSafeOwner();
    return DialogBoxIndirectParamW(AfxGetInstanceHandle(), lpTemplate, pOwner ? pOwner->m_hWnd : nullptr, Initialize,
                                   reinterpret_cast<LPARAM>(this));
}

void CDialog::EndDialog(int nResult)
{
    ::EndDialog(m_hWnd, nResult);
}

INT_PTR CALLBACK CDialog::Initialize(HWND hWnd, UINT message, WPARAM, LPARAM lParam)
{
    if (message != WM_INITDIALOG)
        return FALSE;
    CDialog* pDialog = reinterpret_cast<CDialog*>(lParam);
    return pDialog->SubclassWindow(hWnd) && pDialog->OnInitDialog();
}

BOOL CDialog::OnInitDialog()
{
    if (UpdateData(FALSE))
        return TRUE;
    EndDialog(-1);
    return FALSE;
}

BOOL CDialog::OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo)
{
    if (CWnd::OnCmdMsg(nID, nCode, pExtra, pHandlerInfo))
        return TRUE;
    // Commands go on to the parent and the application, controls' notifications don't: their ids belong to one dialog.
    const bool bCommand = nCode == CN_COMMAND && (nID & 0x8000) != 0 && nID < 0xF000;
    if (!bCommand)
        return FALSE;
    CWnd* pParent = GetParent();
    return (pParent && pParent->OnCmdMsg(nID, nCode, pExtra, pHandlerInfo)) ||
           (AfxGetApp() && AfxGetApp()->OnCmdMsg(nID, nCode, pExtra, pHandlerInfo));
}

void CDialog::OnOK()
{
    if (UpdateData(TRUE))
        EndDialog(IDOK);
}

void CDialog::OnCancel()
{
    EndDialog(IDCANCEL);
}
