// Text in buffers of fixed capacity, and texts of the string table.
#include "foundation/BoundedText.h"

#include <windows.h>

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
        StopOnRangeViolation();
    wmemcpy(pszBuffer, pszText, cch + 1);
}

void StopOnRangeViolation()
{
    // Not abort(): that may ask the user about the error first.
    const DWORD dwStackBufferOverrun = 0xC0000409;
    TerminateProcess(GetCurrentProcess(), dwStackBufferOverrun);
    for (;;)
        Sleep(INFINITE);
}

CString LoadResString(UINT nId)
{
    CString strText;
    strText.LoadString(nId);
    return strText;
}

CString FormatResString(UINT nId, const wchar_t* pszArgument)
{
    CString strText;
    strText.Format(LoadResString(nId), pszArgument);
    return strText;
}
