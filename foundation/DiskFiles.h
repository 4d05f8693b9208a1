// What the flows ask of the disk, and do to it, by a path.
#pragma once

#include <afx.h>

// True if anything, a folder included, stands under the path.
bool PathExists(const wchar_t* pszPath);

// Deletes a file, also a read-only or hidden one. Where it can't be deleted it stays without these two attributes.
bool DeleteProtectedFile(const wchar_t* pszPath);

// Creates, from the left, the folder in front of each backslash at index nFirst or later; not the whole path itself.
// Results are ignored: a folder that exists is as good as one that was made.
void CreateFoldersAbove(const wchar_t* pszPath, int nFirst);
