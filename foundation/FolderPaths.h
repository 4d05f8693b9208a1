// Paths as texts; the disk isn't asked. Only the backslash separates, unless a function says otherwise; nothing is made
// canonical.
#pragma once

#include <afx.h>

// Trimmed off a path's ends before its folders are made.
inline constexpr wchar_t kPathTrim[] = L" \t\r\n\\";

// The path without the one backslash that it may end in.
CString CutTrailingBackslash(const wchar_t* pszPath);

// The folder that a path stands in, without a trailing backslash. One trailing backslash of the path itself is dropped
// first. Empty for a null path and a drive root, and where no backslash stands behind the first character.
CString ParentFolder(const wchar_t* pszPath);

// The path without its last part; one trailing backslash is dropped first. Without a backslash it stays. Empty where
// the only backslash stands at the start.
CString CutLastPart(const wchar_t* pszPath);

// The folder with a backslash behind it, unless it ends in a backslash or a slash; an empty folder gets one too.
CString WithSeparator(const wchar_t* pszFolder);

// True for "." and "..", the names that each search of a folder gives.
bool IsDotName(const wchar_t* pszName);
