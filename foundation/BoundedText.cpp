#include "foundation/BoundedText.h"

#include "foundation/ProcessStop.h"

int FormatBoundedList(wchar_t* pszBuffer, size_t cchCapacity, const wchar_t* pszFormat, va_list arguments)
{
    return vswprintf_s(pszBuffer, cchCapacity, pszFormat, arguments);
}

int FormatBounded(wchar_t* pszBuffer, size_t cchCapacity, const wchar_t* pszFormat, ...)
{
    va_list arguments;
    va_start(arguments, pszFormat);
    const int nWritten = FormatBoundedList(pszBuffer, cchCapacity, pszFormat, arguments);
    va_end(arguments);
    return nWritten;
}

void CopyBounded(wchar_t* pszBuffer, size_t cchCapacity, const wchar_t* pszText)
{
    const size_t cch = wcslen(pszText);
    if (cch >= cchCapacity)
        StopProcess();
    wmemcpy(pszBuffer, pszText, cch + 1);
}
