#include "foundation/TextEnds.h"

#include <afx.h>
#include <wchar.h>

bool StartsWith(const wchar_t* pszText, const wchar_t* pszBeginning)
{
    return wcsncmp(pszText, pszBeginning, wcslen(pszBeginning)) == 0;
}

bool EndsWith(const wchar_t* pszText, const wchar_t* pszEnd)
{
    const size_t cchText = wcslen(pszText);
    const size_t cchEnd = wcslen(pszEnd);
    return cchText >= cchEnd && wcscmp(pszText + cchText - cchEnd, pszEnd) == 0;
}
