#include <afxmt.h>

CSingleLock::CSingleLock(CSyncObject* pObject, BOOL bInitialLock) : m_pObject(pObject), m_bAcquired(FALSE)
{
    if (bInitialLock)
        m_bAcquired = pObject->Lock();
}

CSingleLock::~CSingleLock()
{
    if (m_bAcquired)
        m_pObject->Unlock();
}
