// Makes shell links and records them in the log, so that a repeated install and the uninstaller can take them away.
#pragma once

#include <afx.h>

// Makes the link file and appends its record to the log in the install folder. The target may stand in double quotes. A
// target that has 512 characters or more without its opening quote, or a link path of 260 or more, ends the process.
// Arguments and working folder may be null. Returns the code of the last shell operation, negative for failure; a link
// that wasn't saved isn't recorded. A target or description that the shell refuses is told in a box, in silent runs
// too.
HRESULT CreateShellLink(const wchar_t* pszTarget, const wchar_t* pszLinkPath, const wchar_t* pszDescription,
                        int nShowCommand, const wchar_t* pszArguments, const wchar_t* pszWorkingFolder);
