// What belongs to the module rather than to an object. It must serve before any global object has been built, so it
// has no constructor.
#include <afxwin.h>

AFX_MODULE_STATE* AFXAPI AfxGetModuleState()
{
    static AFX_MODULE_STATE state;
    if (!state.m_hCurrentInstanceHandle)
        state.m_hCurrentInstanceHandle = GetModuleHandleW(nullptr);
    if (!state.m_hCurrentResourceHandle)
        state.m_hCurrentResourceHandle = state.m_hCurrentInstanceHandle;
    return &state;
}

CWinApp* AFXAPI AfxGetApp()
{
    return AfxGetModuleState()->m_pCurrentWinApp;
}

HINSTANCE AFXAPI AfxGetInstanceHandle()
{
    return AfxGetModuleState()->m_hCurrentInstanceHandle;
}

HINSTANCE AFXAPI AfxGetResourceHandle()
{
    return AfxGetModuleState()->m_hCurrentResourceHandle;
}
