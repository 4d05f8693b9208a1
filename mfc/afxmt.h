// The framework's locks: a mutex and the guard that holds one.
#pragma once

#include <afx.h>

class CSyncObject : public CObject
{
    DECLARE_DYNAMIC(CSyncObject)

public:
    explicit CSyncObject(LPCTSTR pstrName);
    virtual ~CSyncObject();

    operator HANDLE() const { return m_hObject; }

    // Waits at most so many milliseconds. True when the object was had, also from an owner that died with it.
    virtual BOOL Lock(DWORD dwTimeout = INFINITE);
    virtual BOOL Unlock() = 0;
    virtual BOOL Unlock(LONG lCount, LPLONG lpPrevCount = NULL);

    HANDLE m_hObject;
};

class CMutex : public CSyncObject
{
    DECLARE_DYNAMIC(CMutex)

public:
    // Opens the mutex of that name or makes it; ends in AfxThrowResourceException if there is none to be had.
    explicit CMutex(BOOL bInitiallyOwn = FALSE, LPCTSTR lpszName = NULL, LPSECURITY_ATTRIBUTES lpsaAttribute = NULL);

    virtual BOOL Unlock();
    using CSyncObject::Unlock;
};

// Holds a lock for as long as it lives or until Unlock. It belongs to one thread.
class CSingleLock
{
public:
    explicit CSingleLock(CSyncObject* pObject, BOOL bInitialLock = FALSE);
    ~CSingleLock();
    CSingleLock(const CSingleLock&) = delete;
    CSingleLock& operator=(const CSingleLock&) = delete;

    BOOL Lock(DWORD dwTimeOut = INFINITE);
    // True when the lock isn't held any more.
    BOOL Unlock();

private:
    CSyncObject* m_pObject;
    BOOL m_bAcquired;
};
