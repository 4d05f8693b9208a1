// Text in buffers of fixed capacity. The capacities are part of the behaviour, so nothing here truncates.
#pragma once

#include <afx.h>
#include <stdarg.h>

// Formats into a buffer of cchCapacity characters, the terminator included; %s takes wide text. Returns the number of
// characters written, or -1 on a formatting error. A result that doesn't fit goes to the C runtime's
// invalid-parameter handler.
int FormatBounded(wchar_t* pszBuffer, size_t cchCapacity, const wchar_t* pszFormat, ...);
int FormatBoundedList(wchar_t* pszBuffer, size_t cchCapacity, const wchar_t* pszFormat, va_list arguments);

// Copies a text into a buffer of cchCapacity characters, the terminator included. A text that doesn't fit ends the
// process, as StopProcess does.
void CopyBounded(wchar_t* pszBuffer, size_t cchCapacity, const wchar_t* pszText);

// The same for an array, whose capacity is its own.
template <size_t cchCapacity, typename... Arguments>
int FormatBounded(wchar_t (&szBuffer)[cchCapacity], const wchar_t* pszFormat, Arguments... arguments)
{
    return FormatBounded(szBuffer, cchCapacity, pszFormat, arguments...);
}

template <size_t cchCapacity>
void CopyBounded(wchar_t (&szBuffer)[cchCapacity], const wchar_t* pszText)
{
    CopyBounded(szBuffer, cchCapacity, pszText);
}
