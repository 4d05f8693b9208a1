// The main thread's message loop.
#include <afxwin.h>

IMPLEMENT_DYNAMIC(CWinThread, CCmdTarget)

CWinThread::CWinThread() : m_pMainWnd(nullptr), m_nQuitCode(0) {}

BOOL CWinThread::InitInstance()
{
    return FALSE;
}

int CWinThread::Run()
{
    MSG msg;
    while (GetMessageW(&msg, nullptr, 0, 0) > 0)
    {
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
    }
    m_nQuitCode = static_cast<int>(msg.wParam);
    return ExitInstance();
}

int CWinThread::ExitInstance()
{
    return m_nQuitCode;
}

CWnd* CWinThread::GetMainWnd()
{
    return m_pMainWnd ? m_pMainWnd : CWnd::FromHandle(GetActiveWindow());
}

CWnd* AFXAPI AfxGetMainWnd()
{
    return AfxGetApp() ? AfxGetApp()->GetMainWnd() : nullptr;
}
