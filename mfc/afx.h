// The framework's base: objects with run-time class information, exceptions and strings. Only what the program uses.
#pragma once

// The framework sets the platform's headers up, and refuses to come after them.
#ifdef _WINDOWS_
#error windows.h is included ahead of the framework
#endif
#include <windows.h>
#include <tchar.h>

#ifndef _UNICODE
#error The framework subset is wide only
#endif

#define AFXAPI __stdcall

class CObject;

struct CRuntimeClass
{
    LPCSTR m_lpszClassName;
    int m_nObjectSize;
    CRuntimeClass* m_pBaseClass;
};

#define RUNTIME_CLASS(class_name) (const_cast<CRuntimeClass*>(&class_name::class##class_name))

// Ends in public access, as in the framework.
#define DECLARE_DYNAMIC(class_name)                                                                                    \
public:                                                                                                                \
    static const CRuntimeClass class##class_name;                                                                      \
    virtual CRuntimeClass* GetRuntimeClass() const;

#define IMPLEMENT_DYNAMIC(class_name, base_class_name)                                                                 \
    const CRuntimeClass class_name::class##class_name = { #class_name, sizeof(class class_name),                       \
                                                          RUNTIME_CLASS(base_class_name) };                            \
    CRuntimeClass* class_name::GetRuntimeClass() const                                                                 \
    {                                                                                                                  \
        return RUNTIME_CLASS(class_name);                                                                              \
    }

class CObject
{
public:
    static const CRuntimeClass classCObject;

    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;
    virtual ~CObject() {}

    virtual CRuntimeClass* GetRuntimeClass() const;

protected:
    CObject() {}
};

// Exceptions are thrown and caught by pointer. All are permanent objects: whoever catches one has nothing to delete.
class CException : public CObject
{
    DECLARE_DYNAMIC(CException)
};

class CSimpleException : public CException
{
    DECLARE_DYNAMIC(CSimpleException)
};

// An argument or index out of range.
class CInvalidArgException : public CSimpleException
{
    DECLARE_DYNAMIC(CInvalidArgException)
};

// A system resource that couldn't be had.
class CResourceException : public CSimpleException
{
    DECLARE_DYNAMIC(CResourceException)
};

[[noreturn]] void AFXAPI AfxThrowInvalidArgException();
[[noreturn]] void AFXAPI AfxThrowResourceException();

HINSTANCE AFXAPI AfxGetInstanceHandle();
// The module that strings and dialog templates are taken from: the executable, until the module state says otherwise.
HINSTANCE AFXAPI AfxGetResourceHandle();

#include <afxstr.h>
