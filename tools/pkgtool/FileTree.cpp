#include "tools/pkgtool/FileTree.h"

#include <afx.h>

#include "foundation/FolderPaths.h"
#include "foundation/TextEnds.h"

CString FoldCase(const wchar_t* pszText)
{
    CString strFolded(pszText);
    const int cch = strFolded.GetLength();
    LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, pszText, cch, strFolded.GetBufferSetLength(cch), cch, nullptr,
                  nullptr, 0);
    strFolded.ReleaseBuffer(cch);
    return strFolded;
}

bool IsMask(const wchar_t* pszText)
{
    return wcspbrk(pszText, L"*?") != nullptr;
}

CString FindForbidden(const CString& strPath, bool bMask)
{
    for (int i = 0; i < strPath.GetLength(); ++i)
    {
        const wchar_t chName = strPath[i];
        if (chName < L' ')
            return L"a control character";
        if (wcschr(bMask ? L"<>:\"|" : L"<>:\"|?*", chName) != nullptr)
            return CString(L"the character ") + chName;
    }
    return CString();
}

// "..": the target's parent is the place beside it, and above that everything keeps its "..".
static CString Climb(const CString& strPath)
{
    if (strPath == kTarget)
        return kBeside;
    if (strPath == kBeside || EndsWith(strPath, L"\\.."))
        return strPath + L"\\..";
    return CutLastPart(strPath);
}

static CString AddPart(const CString& strPath, const CString& strPart)
{
    if (strPart.IsEmpty() || strPart == L".")
        return strPath;
    if (strPart == L"..")
        return Climb(strPath);
    return strPath.IsEmpty() ? strPart : strPath + L"\\" + strPart;
}

// The path as it is told to the user: backslashes alone, and no parts that lead nowhere.
static CString Normalize(const wchar_t* pszPath)
{
    CString strRest(pszPath);
    strRest.Replace(L'/', L'\\');
    CString strPath;
    for (int nEnd; (nEnd = strRest.Find(L'\\')) >= 0; strRest = strRest.Mid(nEnd + 1))
        strPath = AddPart(strPath, strRest.Left(nEnd));
    if (strRest != L".." && strRest != L".")
        strRest.TrimRight(L" .");
    return AddPart(strPath, strRest);
}

CString FoldPath(const wchar_t* pszPath)
{
    return FoldCase(Normalize(pszPath));
}

// The places around the target, and the folders above them.
static bool IsPlace(const CString& strPath)
{
    if (EndsWith(strPath, L"\\.."))
        return true;
    return EndsWith(strPath, L">") && strPath != kTarget && strPath.Find(L'\\') < 0;
}

static CString NameOf(const CString& strPath)
{
    return strPath.Mid(strPath.ReverseFind(L'\\') + 1);
}

static CString ParentOf(const CString& strPath)
{
    return strPath == kTarget ? CString(kBeside) : CutLastPart(strPath);
}

// A path with a separator at its end leads to folders alone.
static bool IsForFolders(const CString& strPath)
{
    return EndsWith(strPath, L"\\") || EndsWith(strPath, L"/");
}

const TreeEntry* CFileTree::Find(const wchar_t* pszPath) const
{
    const auto entry = m_entries.find(FoldPath(pszPath));
    if (entry == m_entries.end() || (IsForFolders(pszPath) && !entry->second.bFolder))
        return nullptr;
    return &entry->second;
}

bool CFileTree::Exists(const wchar_t* pszPath) const
{
    return IsPlace(Normalize(pszPath)) || Find(pszPath) != nullptr;
}

bool CFileTree::IsFolder(const wchar_t* pszPath) const
{
    const TreeEntry* pEntry = Find(pszPath);
    return IsPlace(Normalize(pszPath)) || (pEntry != nullptr && pEntry->bFolder);
}

// The keys that begin with a folder lie together.
std::vector<TreeEntry> CFileTree::Below(const wchar_t* pszFolder) const
{
    const CString strBelow = FoldPath(pszFolder) + L"\\";
    std::vector<TreeEntry> entries;
    for (auto i = m_entries.lower_bound(strBelow); i != m_entries.end(); ++i)
    {
        if (!StartsWith(i->first, strBelow))
            break;
        entries.push_back(i->second);
    }
    return entries;
}

bool CFileTree::HoldsFile(const wchar_t* pszFolder) const
{
    for (const TreeEntry& entry : Below(pszFolder))
    {
        if (!entry.bFolder)
            return true;
    }
    return false;
}

std::vector<TreeEntry> CFileTree::Entries() const
{
    std::vector<TreeEntry> entries;
    for (const auto& [strKey, entry] : m_entries)
        entries.push_back(entry);
    return entries;
}

// A new entry needs a folder above it, and a name that the platform allows.
bool CFileTree::CanHold(const CString& strPath) const
{
    const CString strName = strPath == kTarget ? CString() : NameOf(strPath);
    return IsFolder(ParentOf(strPath)) && FindForbidden(strName, false).IsEmpty();
}

// A folder keeps the letters that it was made with.
void CFileTree::Enter(TreeEntry entry)
{
    const TreeEntry* pParent = Find(ParentOf(entry.strPath));
    if (pParent != nullptr)
        entry.strPath = pParent->strPath + L"\\" + NameOf(entry.strPath);
    m_entries[FoldCase(entry.strPath)] = entry;
}

bool CFileTree::MakeFolder(const wchar_t* pszPath, int nLine)
{
    const CString strPath = Normalize(pszPath);
    if (Exists(strPath) || !CanHold(strPath))
        return false;
    Enter({ strPath, true, CString(), nLine });
    return true;
}

bool CFileTree::PutFile(TreeEntry file)
{
    const bool bForFolders = IsForFolders(file.strPath);
    file.strPath = Normalize(file.strPath);
    if (bForFolders || IsFolder(file.strPath) || !CanHold(file.strPath))
        return false;
    Enter(file);
    return true;
}

bool CFileTree::RemoveFile(const wchar_t* pszPath)
{
    return Find(pszPath) != nullptr && !IsFolder(pszPath) && m_entries.erase(FoldPath(pszPath)) > 0;
}

bool CFileTree::RemoveFolder(const wchar_t* pszPath)
{
    const TreeEntry* pEntry = Find(pszPath);
    return pEntry != nullptr && pEntry->bFolder && Below(pszPath).empty() && m_entries.erase(FoldPath(pszPath)) > 0;
}

bool CFileTree::Move(const wchar_t* pszFrom, const wchar_t* pszTo)
{
    const CString strFrom = FoldPath(pszFrom);
    const CString strTo = Normalize(pszTo);
    const CString strBelow = strFrom + L"\\";
    if (Find(pszFrom) == nullptr || Exists(strTo) || !CanHold(strTo) || StartsWith(FoldCase(strTo), strBelow))
        return false;

    std::map<CString, TreeEntry> moved;
    for (auto& [strKey, entry] : m_entries)
    {
        if (strKey == strFrom || StartsWith(strKey, strBelow))
            entry.strPath = strTo + entry.strPath.Mid(strFrom.GetLength());
        moved[FoldCase(entry.strPath)] = entry;
    }
    m_entries.swap(moved);
    return true;
}

// Both texts in upper case. At the end of a name, a rest of dots and asterisks asks for nothing more: "a.*" meets "a".
static bool Meets(const wchar_t* pszName, const wchar_t* pszMask)
{
    for (; *pszMask != L'*'; ++pszName, ++pszMask)
    {
        if (*pszName == 0)
            return pszMask[wcsspn(pszMask, L".*")] == 0;
        if (*pszMask != L'?' && *pszMask != *pszName)
            return false;
    }
    for (const wchar_t* pszRest = pszName;; ++pszRest)
    {
        if (Meets(pszRest, pszMask + 1))
            return true;
        if (*pszRest == 0)
            return false;
    }
}

static bool IsMatch(const wchar_t* pszName, const CString& strMask)
{
    return Meets(FoldCase(pszName), FoldCase(strMask));
}

std::vector<CString> CFileTree::MatchMask(const CString& strFolder, const CString& strMask) const
{
    std::vector<CString> names;
    for (const wchar_t* pszDots : { L".", L".." })
    {
        if (IsMatch(pszDots, strMask))
            names.push_back(pszDots);
    }
    const int nName = Normalize(strFolder).GetLength() + 1;
    for (const TreeEntry& entry : Below(strFolder))
    {
        if (entry.strPath.Find(L'\\', nName) < 0 && IsMatch(NameOf(entry.strPath), strMask))
            names.push_back(NameOf(entry.strPath));
    }
    return names;
}

std::vector<CString> CFileTree::Match(const wchar_t* pszPattern) const
{
    CString strPattern(pszPattern);
    strPattern.Replace(L'/', L'\\');
    const CString strFolder = CutLastPart(strPattern);
    const CString strMask = NameOf(strPattern);
    if (strMask.IsEmpty() || !IsFolder(strFolder))
        return {};
    if (IsMask(strMask))
        return MatchMask(strFolder, strMask);
    // The platform gives the folder that "." or ".." leads to, under its own name.
    const TreeEntry* pEntry = Find(strPattern);
    return pEntry != nullptr ? std::vector<CString>{ NameOf(pEntry->strPath) } : std::vector<CString>{};
}

void CFileTree::Boot()
{
    for (const auto& [strFrom, strTo] : m_bootList)
    {
        if (!strTo.IsEmpty())
            Move(strFrom, strTo);
        else if (!RemoveFile(strFrom))
            RemoveFolder(strFrom);
    }
    m_bootList.clear();
}
