#include "tools/pkgtool/PendingList.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "foundation/FolderPaths.h"
#include "foundation/Owners.h"
#include "tools/pkgtool/FileTree.h"
#include "uninstall/BootList.h"

// Source and target, which is empty for a deletion, each behind marks of the system's own; in the profile file the
// target comes first.
CPendingList::CPendingList()
{
    static constexpr wchar_t kKey[] = L"System\\CurrentControlSet\\Control\\Session Manager";
    std::vector<wchar_t> list(0x80000);
    DWORD cb = (list.size() - 2) * sizeof(wchar_t);
    RegGetValueW(HKEY_LOCAL_MACHINE, kKey, L"PendingFileRenameOperations", RRF_RT_REG_MULTI_SZ, nullptr, list.data(),
                 &cb);
    for (const wchar_t* psz = list.data(); *psz != 0;)
    {
        const wchar_t* pszTo = psz + wcslen(psz) + 1;
        Add(psz, pszTo);
        psz = pszTo + wcslen(pszTo) + 1;
    }
    std::fill(list.begin(), list.end(), L'\0');
    GetPrivateProfileSectionW(kBootSection, list.data(), kBootSectionCapacity, kBootProfile);
    for (const wchar_t* psz = list.data(); *psz != 0; psz += wcslen(psz) + 1)
    {
        const CString strEntry(psz);
        const CString strTo = strEntry.Left(strEntry.Find(L'='));
        Add(strEntry.Mid(strTo.GetLength() + 1), strTo.CompareNoCase(L"NUL") == 0 ? CString() : strTo);
    }
}

// The operations are carried out in their order: what an earlier one took is nothing to a later one.
void CPendingList::Add(CString strFrom, CString strTo)
{
    for (CString* pstrPath : { &strFrom, &strTo })
    {
        const int nMark = pstrPath->Find(L"\\??\\");
        *pstrPath = nMark >= 0 ? pstrPath->Mid(nMark + 4) : *pstrPath;
    }
    CString& strEnd = m_ends.try_emplace(FoldPath(strFrom), strFrom).first->second;
    const CString strSource = std::exchange(strEnd, CString());
    if (!strTo.IsEmpty() && !strSource.IsEmpty())
        m_ends[FoldPath(strTo)] = strSource;
}

bool CPendingList::Takes(const CString& strPath) const
{
    const auto end = m_ends.find(FoldPath(strPath));
    if (end == m_ends.end() || !end->second.IsEmpty())
        return false;
    WIN32_FIND_DATAW found;
    const CFindOwner find(FindFirstFileW(strPath + L"\\*", &found));
    for (BOOL bMore = find.IsOpen(); bMore; bMore = FindNextFileW(find, &found))
    {
        if (!IsDotName(found.cFileName) && !Takes(strPath + L"\\" + found.cFileName))
            return false;
    }
    return true;
}

CString CPendingList::ReplacementOf(const wchar_t* pszPath) const
{
    const auto end = m_ends.find(FoldPath(pszPath));
    return end != m_ends.end() ? end->second : CString();
}
