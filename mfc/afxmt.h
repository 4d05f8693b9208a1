// The framework's locks: a mutex and the guard that holds one.
#pragma once

#include <afx.h>

class CSyncObject : public CObject
{
    DECLARE_DYNAMIC(CSyncObject)

public:
    CSyncObject();
    virtual ~CSyncObject();

    // Waits until the object is had. True also where its owner died with it.
    virtual BOOL Lock();
    virtual BOOL Unlock() = 0;

    HANDLE m_hObject;
};

class CMutex : public CSyncObject
{
    DECLARE_DYNAMIC(CMutex)

public:
    // Opens the mutex of that name or makes it; ends in AfxThrowResourceException if there is none to be had.
    CMutex(BOOL bInitiallyOwn, LPCTSTR lpszName);

    virtual BOOL Unlock();
};

// Holds a lock for as long as it lives, unless bInitialLock says not to take it. It belongs to one thread.
class CSingleLock
{
public:
    CSingleLock(CSyncObject* pObject, BOOL bInitialLock);
    ~CSingleLock();
    CSingleLock(const CSingleLock&) = delete;
    CSingleLock& operator=(const CSingleLock&) = delete;

private:
    CSyncObject* m_pObject;
    BOOL m_bAcquired;
};
