// Small operations on texts in memory: cutting, trimming, sorting.
// Utility code that no flow calls. Case is folded as CString folds it.
#pragma once

#include <afx.h>
#include <afxcoll.h>

// Cuts the first occurrence of a text, found without regard to case; the rest keeps its case. Non-zero when something
// was cut.
int RemoveSubstringNoCase(CString& strText, const wchar_t* pszCut);

// The same on a zero-terminated buffer, which only ever gets shorter.
int RemoveSubstringInPlace(wchar_t* pszText, const wchar_t* pszCut);

// Sorts in place without regard to case; equal texts keep their order.
void SortStringsNoCase(CStringArray& aStrings);

// Cut blanks and control characters (values up to 32) from the end and the start of the buffer, and return the buffer.
// A null pointer is returned as it is. The wide form also cuts one byte order mark, of either order, from the very
// start.
char* TrimBothA(char* pszText);
wchar_t* TrimBothW(wchar_t* pszText);
