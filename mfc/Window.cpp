// Window objects: which object a handle belongs to, and the way of its messages.
#include <afxwin.h>

IMPLEMENT_DYNAMIC(CWnd, CCmdTarget)

BEGIN_MESSAGE_MAP(CWnd, CCmdTarget)
END_MESSAGE_MAP()

// HWND_TOP is the null handle, so an object without a window stands for it.
const CWnd CWnd::wndTop;

CWnd* CWnd::s_pAttached;
CWnd* CWnd::s_pTemporary;

CWnd::CWnd() : m_hWnd(nullptr), m_pNext(nullptr), m_pfnSuper(nullptr) {}

CWnd::~CWnd()
{
    if (m_hWnd)
        CWnd::DestroyWindow();
}

CWnd* CWnd::FindIn(CWnd* pList, HWND hWnd)
{
    while (pList && pList->m_hWnd != hWnd)
        pList = pList->m_pNext;
    return pList;
}

// Temporary objects go once their windows are gone.
void CWnd::DropTemporary()
{
    CWnd** ppNext = &s_pTemporary;
    while (CWnd* pWnd = *ppNext)
    {
        if (IsWindow(pWnd->m_hWnd))
        {
            ppNext = &pWnd->m_pNext;
            continue;
        }
        *ppNext = pWnd->m_pNext;
        pWnd->m_hWnd = nullptr;
        delete pWnd;
    }
}

CWnd* PASCAL CWnd::FromHandlePermanent(HWND hWnd)
{
    return hWnd ? FindIn(s_pAttached, hWnd) : nullptr;
}

CWnd* PASCAL CWnd::FromHandle(HWND hWnd)
{
    if (!hWnd)
        return nullptr;
    CWnd* pWnd = FindIn(s_pAttached, hWnd);
    if (!pWnd)
        pWnd = FindIn(s_pTemporary, hWnd);
    if (!pWnd)
    {
        DropTemporary();
        pWnd = new CWnd;
        pWnd->m_hWnd = hWnd;
        pWnd->m_pNext = s_pTemporary;
        s_pTemporary = pWnd;
    }
    return pWnd;
}

CWnd* PASCAL CWnd::GetSafeOwner()
{
    const CWnd* pWnd = AfxGetMainWnd();
    return pWnd && pWnd->m_hWnd ? FromHandle(GetLastActivePopup(GetAncestor(pWnd->m_hWnd, GA_ROOT))) : nullptr;
}

BOOL CWnd::Attach(HWND hWndNew)
{
    if (!hWndNew || m_hWnd)
        return FALSE;
    m_hWnd = hWndNew;
    m_pNext = s_pAttached;
    s_pAttached = this;
    return TRUE;
}

HWND CWnd::Detach()
{
    const HWND hWnd = m_hWnd;
    CWnd** ppNext = &s_pAttached;
    while (*ppNext && *ppNext != this)
        ppNext = &(*ppNext)->m_pNext;
    if (*ppNext)
        *ppNext = m_pNext;
    m_hWnd = nullptr;
    m_pNext = nullptr;
    m_pfnSuper = nullptr;
    return hWnd;
}

BOOL CWnd::SubclassWindow(HWND hWnd)
{
    if (!Attach(hWnd))
        return FALSE;
    m_pfnSuper = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Dispatch)));
    return TRUE;
}

HWND CWnd::UnsubclassWindow()
{
    if (m_pfnSuper)
        SetWindowLongPtrW(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuper));
    return Detach();
}

BOOL CWnd::DestroyWindow()
{
    return m_hWnd && ::DestroyWindow(m_hWnd);
}

LRESULT CALLBACK CWnd::Dispatch(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CWnd* pWnd = FromHandlePermanent(hWnd);
    return pWnd ? pWnd->WindowProc(message, wParam, lParam) : ::DefWindowProcW(hWnd, message, wParam, lParam);
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_COMMAND && OnCommand(wParam, lParam))
        return 0;
    if (message != WM_NCDESTROY)
        return DefWindowProc(message, wParam, lParam);
    OnNcDestroy();
    return 0;
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    return m_pfnSuper ? CallWindowProcW(m_pfnSuper, m_hWnd, message, wParam, lParam)
                      : ::DefWindowProcW(m_hWnd, message, wParam, lParam);
}

BOOL CWnd::OnCommand(WPARAM wParam, LPARAM lParam)
{
    return OnCmdMsg(LOWORD(wParam), lParam ? HIWORD(wParam) : CN_COMMAND, nullptr, nullptr);
}

void CWnd::OnNcDestroy()
{
    CWinApp* pApp = AfxGetApp();
    if (pApp && pApp->m_pMainWnd == this)
    {
        pApp->m_pMainWnd = nullptr;
        PostQuitMessage(0);
    }
    const WNDPROC pfnSuper = m_pfnSuper;
    const HWND hWnd = UnsubclassWindow();
    CallWindowProcW(pfnSuper, hWnd, WM_NCDESTROY, 0, 0);
}
