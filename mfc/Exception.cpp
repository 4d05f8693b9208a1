// The framework's exceptions. Those that it throws itself are permanent objects, so that throwing needs no memory.
#include <afx.h>

#include <stdlib.h>

// What the library calls for an exception that nothing catches. Its own handler first tells the exception's type on
// a console that a Windows program hasn't got, and brings a demangler of 60 KB for that.
namespace __gnu_cxx
{
void __verbose_terminate_handler()
{
    abort();
}
} // namespace __gnu_cxx

IMPLEMENT_DYNAMIC(CException, CObject)
IMPLEMENT_DYNAMIC(CSimpleException, CException)
IMPLEMENT_DYNAMIC(CInvalidArgException, CSimpleException)
IMPLEMENT_DYNAMIC(CResourceException, CSimpleException)

CException::CException(BOOL bAutoDelete) : m_bAutoDelete(bAutoDelete) {}

void CException::Delete()
{
    if (m_bAutoDelete)
        delete this;
}

CSimpleException::CSimpleException(BOOL bAutoDelete) : CException(bAutoDelete) {}

CInvalidArgException::CInvalidArgException() : CSimpleException(FALSE) {}

CResourceException::CResourceException() : CSimpleException(FALSE) {}

void AFXAPI AfxThrowInvalidArgException()
{
    static CInvalidArgException exception;
    throw &exception;
}

void AFXAPI AfxThrowResourceException()
{
    static CResourceException exception;
    throw &exception;
}
