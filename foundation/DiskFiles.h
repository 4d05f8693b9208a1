// What the flows ask of the disk, and do to it, by a path.
#pragma once

#include <afx.h>

// True if anything, a folder included, stands under the path.
bool PathExists(const wchar_t* pszPath);

// Deletes a file, also a read-only or hidden one. Where it can't be deleted it stays without these two attributes.
// Attributes that can't be read are masked and set all the same: the deletion decides.
bool DeleteProtectedFile(const wchar_t* pszPath);

// The full path of the running executable, at most 259 characters.
CString GetModulePath();

// Creates a folder for each part of the path that ends at a backslash at index nFirst or later, from the left, and not
// the whole path itself. Results are ignored: a part that exists is as good as one that was made.
void CreateFoldersAbove(const wchar_t* pszPath, int nFirst);
