// Paths as texts; the disk isn't asked. Only the backslash separates, unless a function says otherwise; nothing is made
// canonical.
#pragma once

#include <afx.h>

// True if the text begins, or ends, with the other one, case included.
bool StartsWith(const wchar_t* pszText, const wchar_t* pszBeginning);
bool EndsWith(const CString& strText, wchar_t ch);

// The path without the one backslash that it may end in.
CString CutTrailingBackslash(const wchar_t* pszPath);

// The folder that a path stands in, without a trailing backslash. One trailing backslash of the path itself is dropped
// first. Empty for a null path, a drive root, and a path whose only backslash stands at its start or that has none.
CString ParentFolder(const wchar_t* pszPath);

// The path less one trailing backslash and then cut at its last backslash; without a backslash nothing is cut.
// Empty where the only backslash stands at the start.
CString CutLastPart(const wchar_t* pszPath);

// The folder with a backslash behind it, unless it ends in a backslash or a slash; an empty folder gets one too.
CString WithSeparator(const wchar_t* pszFolder);

// True for "." and "..", the names that each search of a folder gives.
bool IsDotName(const wchar_t* pszName);
