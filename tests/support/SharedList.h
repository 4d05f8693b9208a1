// The list of running instances as its format lays it down: read and written in the shared memory itself, with plain
// platform calls.
#pragma once

#include <afx.h>

#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "foundation/Owners.h"

using IDS = std::vector<DWORD>;

class CSharedList
{
public:
    // Opens the list of that name as it stands, without entering it.
    explicit CSharedList(const std::wstring& strName)
        : CSharedList(OpenFileMappingW(FILE_MAP_WRITE, FALSE, (kMappingName + strName).c_str()))
    {
    }
    ~CSharedList()
    {
        if (m_pList != nullptr)
            UnmapViewOfFile(m_pList);
    }

    bool IsThere() const { return m_pList != nullptr; }
    // "LIMIT: ID ID", with a + behind it if the room that no id takes isn't zero.
    std::string Text() const
    {
        std::string strText = std::to_string(m_pList->nLimit) + ":";
        for (DWORD n = 0; n < std::size(m_pList->anIds); n++)
            if (n < m_pList->nCount)
                strText += " " + std::to_string(m_pList->anIds[n]);
            else if (m_pList->anIds[n] != 0)
                return strText + "+";
        return strText;
    }

    // Nothing stands behind the ids afterwards.
    void Set(const IDS& ids, DWORD nLimit = 1)
    {
        memset(m_pList, 0, sizeof(LIST));
        m_pList->nLimit = nLimit;
        m_pList->nCount = static_cast<DWORD>(ids.size());
        std::copy(ids.begin(), ids.end(), m_pList->anIds);
    }

protected:
    explicit CSharedList(HANDLE hMapping)
        : m_mapping(hMapping), m_pList(static_cast<LIST*>(MapViewOfFile(m_mapping, FILE_MAP_WRITE, 0, 0, sizeof(LIST))))
    {
    }

    static inline const std::wstring kMappingName = L"Local\\COXInstanceManager_FileMap_";

private:
    struct LIST
    {
        DWORD nLimit;
        DWORD nCount;
        DWORD anIds[1000];
    };

    CHandleOwner m_mapping;
    LIST* m_pList;
};

// The product's list for one test, with entries of the test's choice. It goes, with what ended programs left in it,
// when the test is over and its programs have ended.
class CProductList : public CSharedList
{
public:
    explicit CProductList(const IDS& ids)
        : CSharedList(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE | SEC_COMMIT, 0, 131072,
                                         (kMappingName + L"Tandrel.Lumacap-DX.v4").c_str()))
    {
        Set(ids);
    }
};
