// Paths as texts. Only the backslash separates, unless a function says otherwise; nothing is made canonical.
#pragma once

#include <afx.h>

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

// True if anything, a folder included, stands under the path.
bool PathExists(const wchar_t* pszPath);

// True for "." and "..", the names that each search of a folder gives.
bool IsDotName(const wchar_t* pszName);

// Deletes a file, also a read-only or hidden one. Where it can't be deleted it stays without these two attributes.
// Attributes that can't be read are masked and set all the same: the deletion decides.
bool DeleteProtectedFile(const wchar_t* pszPath);

// The full path of the running executable, at most 259 characters.
CString GetModulePath();

// Creates a folder for each part of the path that ends at a backslash at index nFirst or later, from the left, and not
// the whole path itself. Results are ignored: a part that exists is as good as one that was made.
void CreateFoldersAbove(const wchar_t* pszPath, int nFirst);
