// The files and folders of a planned machine, in memory: what the platform would do with the same calls, on a machine
// where nothing is in use. The target folder isn't there at first; the places around it are, and are nobody's to
// remove. Names meet a mask as on the platform, but for short names and for what Windows alone does: here a question
// mark always stands for one character, and "*." meets all names.
#pragma once

#include <afx.h>

#include <map>
#include <utility>
#include <vector>

inline constexpr wchar_t kTarget[] = L"<target>";
inline constexpr wchar_t kBeside[] = L"<beside>"; // the folder that the target stands in

struct TreeEntry
{
    CString strPath;
    bool bFolder;
    CString strSource; // the package's file that a file is a copy of
    int nLine = 0;     // of the record that made it
    bool bIfLibraryAbsent = false;
};

class CFileTree
{
public:
    // Paths begin with a place in pointed brackets. They are taken as the platform takes them: either separator, "."
    // and "..", blanks and dots at the end, without regard to case.
    bool Exists(const wchar_t* pszPath) const;
    bool IsFolder(const wchar_t* pszPath) const;
    bool HoldsFile(const wchar_t* pszFolder) const;              // at any depth
    const TreeEntry* Find(const wchar_t* pszPath) const;         // null for a path that isn't there
    std::vector<TreeEntry> Entries() const;                      // sorted by their paths
    std::vector<CString> Match(const wchar_t* pszPattern) const; // names, "." and ".." among them

    // Each gives false, and changes nothing, where the platform fails.
    bool MakeFolder(const wchar_t* pszPath, int nLine = 0);
    bool PutFile(TreeEntry file);
    bool RemoveFile(const wchar_t* pszPath);
    bool RemoveFolder(const wchar_t* pszPath);
    bool Move(const wchar_t* pszFrom, const wchar_t* pszTo);

    // The boot list, and the start that works through it.
    void RemoveAtBoot(const wchar_t* pszPath) { m_bootList.push_back({ pszPath, CString() }); }
    void MoveAtBoot(const wchar_t* pszFrom, const wchar_t* pszTo) { m_bootList.push_back({ pszFrom, pszTo }); }
    void Boot();

private:
    bool CanHold(const CString& strPath) const;
    void Enter(TreeEntry entry);
    std::vector<TreeEntry> Below(const wchar_t* pszFolder) const; // at any depth
    std::vector<CString> MatchMask(const CString& strFolder, const CString& strMask) const;

    std::map<CString, TreeEntry> m_entries; // by their paths in upper case
    std::vector<std::pair<CString, CString>> m_bootList;
};

// The same text for all writings of a path or name.
CString FoldCase(const wchar_t* pszText);
CString FoldPath(const wchar_t* pszPath);

// True for a text with an asterisk or a question mark.
bool IsMask(const wchar_t* pszText);

// What the path holds that no name of a file or folder may, in words for the user: the first such character. Empty if
// there is none. In a mask, the asterisk and the question mark are allowed.
CString FindForbidden(const CString& strPath, bool bMask);
