// The framework's exceptions. Those that it throws itself are permanent objects, so that throwing needs no memory.
#include <afx.h>

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
