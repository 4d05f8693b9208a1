#include <afx.h>

#include <stdlib.h>

// Replaces the library's handler. That one prints to a console that a Windows program hasn't got, and its demangler
// adds 60 KB to setup.exe.
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
