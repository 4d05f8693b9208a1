// Kernel objects that can be waited for.
#include <afxmt.h>

IMPLEMENT_DYNAMIC(CSyncObject, CObject)
IMPLEMENT_DYNAMIC(CMutex, CSyncObject)

CSyncObject::CSyncObject() : m_hObject(nullptr) {}

CSyncObject::~CSyncObject()
{
    if (m_hObject)
        CloseHandle(m_hObject);
}

BOOL CSyncObject::Lock()
{
    const DWORD dwResult = WaitForSingleObject(m_hObject, INFINITE);
    return dwResult == WAIT_OBJECT_0 || dwResult == WAIT_ABANDONED;
}

CMutex::CMutex(BOOL bInitiallyOwn, LPCTSTR lpszName)
{
    m_hObject = CreateMutexW(nullptr, bInitiallyOwn, lpszName);
    if (!m_hObject)
        AfxThrowResourceException();
}

BOOL CMutex::Unlock()
{
    return ReleaseMutex(m_hObject);
}
