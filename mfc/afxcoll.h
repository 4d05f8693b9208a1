// The framework's ready-made arrays, of which the program uses those of numbers and of strings.
#pragma once

#include <afxtempl.h>

extern template class CArray<DWORD, DWORD>;
extern template class CArray<CString, const CString&>;

class CDWordArray : public CArray<DWORD, DWORD>
{
    DECLARE_DYNAMIC(CDWordArray)
};

class CStringArray : public CArray<CString, const CString&>
{
    DECLARE_DYNAMIC(CStringArray)
};
