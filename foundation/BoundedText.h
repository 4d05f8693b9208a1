// Text in buffers of fixed capacity, and texts of the string table. The capacities are part of the behaviour, so
// nothing here truncates.
#pragma once

#include <afx.h>
#include <stdarg.h>

// Formats into a buffer of cchCapacity characters, the terminator included; %s takes wide text. Returns the number of
// characters written, or -1 on a formatting error. A result that doesn't fit goes to the C runtime's
// invalid-parameter handler.
int FormatBounded(wchar_t* pszBuffer, size_t cchCapacity, const wchar_t* pszFormat, ...);
int FormatBoundedList(wchar_t* pszBuffer, size_t cchCapacity, const wchar_t* pszFormat, va_list arguments);

// Copies a text into a buffer of cchCapacity characters, the terminator included. A text that doesn't fit ends the
// process, as StopOnRangeViolation does.
void CopyBounded(wchar_t* pszBuffer, size_t cchCapacity, const wchar_t* pszText);

// Ends the process at once and abnormally, with no message and no clean-up: what a failed range test gives.
[[noreturn]] void StopOnRangeViolation();

// The text of a string table id; empty if the id has none.
CString LoadResString(UINT nId);

// The text of a string table id whose one placeholder is a text.
CString FormatResString(UINT nId, const wchar_t* pszArgument);
