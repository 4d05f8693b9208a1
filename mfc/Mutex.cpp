// Kernel objects that can be waited for.
#include <afxmt.h>

IMPLEMENT_DYNAMIC(CSyncObject, CObject)
IMPLEMENT_DYNAMIC(CMutex, CSyncObject)

CSyncObject::CSyncObject(LPCTSTR) : m_hObject(nullptr) {}

CSyncObject::~CSyncObject()
{
    if (m_hObject)
        CloseHandle(m_hObject);
}

BOOL CSyncObject::Lock(DWORD dwTimeout)
{
    const DWORD dwResult = WaitForSingleObject(m_hObject, dwTimeout);
    return dwResult == WAIT_OBJECT_0 || dwResult == WAIT_ABANDONED;
}

BOOL CSyncObject::Unlock(LONG, LPLONG)
{
    return TRUE;
}

CMutex::CMutex(BOOL bInitiallyOwn, LPCTSTR lpszName, LPSECURITY_ATTRIBUTES lpsaAttribute) : CSyncObject(lpszName)
{
    m_hObject = CreateMutexW(lpsaAttribute, bInitiallyOwn, lpszName);
    if (!m_hObject)
        AfxThrowResourceException();
}

BOOL CMutex::Unlock()
{
    return ReleaseMutex(m_hObject);
}
