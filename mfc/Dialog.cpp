// Dialogs. The platform's dialog manager makes the windows, runs the modal loop and drives the keyboard.
#include <afxwin.h>

IMPLEMENT_DYNAMIC(CDialog, CWnd)

BEGIN_MESSAGE_MAP(CDialog, CWnd)
ON_COMMAND(IDOK, &CDialog::OnOK)
ON_COMMAND(IDCANCEL, &CDialog::OnCancel)
END_MESSAGE_MAP()

namespace
{
LPCDLGTEMPLATE LoadTemplate(LPCTSTR lpszTemplateName)
{
    HINSTANCE hModule = AfxGetResourceHandle();
    HRSRC hResource = FindResourceW(hModule, lpszTemplateName, RT_DIALOG);
    return hResource ? static_cast<LPCDLGTEMPLATE>(LockResource(LoadResource(hModule, hResource))) : nullptr;
}
} // namespace

CDialog::CDialog() : m_lpszTemplateName(nullptr), m_pParentWnd(nullptr) {}

CDialog::CDialog(UINT nIDTemplate, CWnd* pParentWnd) : CDialog(MAKEINTRESOURCEW(nIDTemplate), pParentWnd) {}

CDialog::CDialog(LPCTSTR lpszTemplateName, CWnd* pParentWnd)
    : m_lpszTemplateName(lpszTemplateName), m_pParentWnd(pParentWnd)
{
}

CDialog::~CDialog()
{
    // While the object is still a dialog to those that its window's end calls.
    if (m_hWnd)
        CDialog::DestroyWindow();
}

BOOL CDialog::Create(UINT nIDTemplate, CWnd* pParentWnd)
{
    return Create(MAKEINTRESOURCEW(nIDTemplate), pParentWnd);
}

BOOL CDialog::Create(LPCTSTR lpszTemplateName, CWnd* pParentWnd)
{
    m_lpszTemplateName = lpszTemplateName;
    const LPCDLGTEMPLATE lpTemplate = LoadTemplate(lpszTemplateName);
    if (!lpTemplate)
        return FALSE;
    m_pParentWnd = pParentWnd ? pParentWnd : AfxGetMainWnd();
    return CreateDialogIndirectParamW(AfxGetInstanceHandle(), lpTemplate, m_pParentWnd ? m_pParentWnd->m_hWnd : nullptr,
                                      Initialize, reinterpret_cast<LPARAM>(this)) != nullptr;
}

INT_PTR CDialog::DoModal()
{
    const LPCDLGTEMPLATE lpTemplate = LoadTemplate(m_lpszTemplateName);
    if (!lpTemplate)
        return -1;
    const CWnd* pOwner = GetSafeOwner(m_pParentWnd);
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
