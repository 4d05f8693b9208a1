// Small questions and services of the system: clipboard, parent process, free file names.
// Utility code that no flow calls; a failure shows in the result and nowhere else.
#pragma once

#include <afx.h>

// Puts a text on the clipboard in place of what is there. Non-zero when the clipboard took it.
int CopyTextToClipboard(const wchar_t* pszText);

// Whether a process is a 32-bit one on a 64-bit system; null stands for the current process. 0 when that can't be
// asked.
int IsWow64Of(HANDLE hProcess);

// Full path of a file that doesn't exist at this moment; nothing is made on disk. Null arguments stand for "TMP", "LUM"
// and the temporary folder, which also replaces a folder that doesn't exist. The extension may begin with a full stop.
// An existing folder whose path has more than 260 characters ends the process, as CopyBounded does.
CString MakeTempName(const wchar_t* pszExtension, const wchar_t* pszPrefix, const wchar_t* pszFolder);

// Process id of the parent, 0 when not found. With a buffer (capacity in characters), the path of the parent's program
// goes into it; the buffer is left as it is where that can't be read.
DWORD GetParentProcess(wchar_t* pszPath, DWORD cchCapacity);
