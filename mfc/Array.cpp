// The one place where the arrays' code is made.
#include <afxcoll.h>

template class CArray<DWORD, DWORD>;
template class CArray<CString, const CString&>;

IMPLEMENT_DYNAMIC(CDWordArray, CObject)
IMPLEMENT_DYNAMIC(CStringArray, CObject)
