// What waits for the next start of the machine: the system's list of pending operations and, where that was blocked,
// the profile file that the engine writes in its place.
#pragma once

#include <afx.h>

#include <map>

class CPendingList
{
public:
    CPendingList();

    // True if the next start deletes or moves what stands under the path: of a folder, if all that it holds goes too.
    bool Takes(const CString& strPath) const;

    // The file that takes the path's place; empty if there is none.
    CString ReplacementOf(const wchar_t* pszPath) const;

private:
    void Add(CString strFrom, CString strTo);

    std::map<CString, CString> m_ends; // what comes to stand under a folded path; empty for nothing
};
