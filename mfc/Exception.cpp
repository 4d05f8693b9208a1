// The framework's exceptions: permanent objects, so that throwing needs no memory.
#include <afx.h>

#include <stdlib.h>

// The library's default for an exception that nothing catches, where a program sets no handler. Its own first tells the
// exception's type on a console that a Windows program hasn't got, and brings a demangler, 60 KB of setup.exe's code.
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
