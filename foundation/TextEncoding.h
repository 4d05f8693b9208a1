// Conversions between wide text and its narrow or escaped forms, and the system's text for an error code.
// Utility code that no flow calls. Nothing here keeps state or reports a failure but by its result.
#pragma once

#include <afx.h>

// FormatBounded for a buffer whose capacity the caller vouches for: no limit is tested. Returns the number of
// characters written, -1 on a formatting error.
int FormatUnbounded(wchar_t* pszBuffer, const wchar_t* pszFormat, ...);

// Wide form of a text in the ANSI code page. The text is right when read up to its first zero, but the stored length is
// two more than the text's.
CString AnsiToString(const char* pszText);

// Narrow form of a text in the ANSI code page, combining marks composed; what the code page lacks becomes its default
// character. The stored length is two more than the text's, as above.
CStringA StringToAnsi(const wchar_t* pszText);

// Escapes a text for the body of a form: a space becomes "+", anything outside the alphabet "%" and the hexadecimal
// value of its 16 bits (at least two digits; there is no UTF-8 in between).
CString EncodeForPost(const wchar_t* pszText);

// Escapes a text for a query, by the same rules but for two characters: a space stays, an ampersand becomes "(AND)".
CString EncodeForQuery(const wchar_t* pszText);

// The system's text for an error code in the user's language, with the line end that the system puts after it. Codes of
// network management and of WinINet are also looked up in their own libraries. Empty if there is no text.
CString GetErrorText(int nError);
