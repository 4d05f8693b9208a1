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

// The product's. It goes, with what ended programs left in it, when nobody has it any more.
const wchar_t kProductList[] = L"Tandrel.Lumacap-DX.v4";

class CSharedList
{
public:
    // The list of that name as it stands, without entering it; one of zeros if there is none.
    explicit CSharedList(const std::wstring& strName)
        : m_mapping(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE | SEC_COMMIT, 0, 131072,
                                       (L"Local\\COXInstanceManager_FileMap_" + strName).c_str())),
          m_pList(static_cast<LIST*>(MapViewOfFile(m_mapping, FILE_MAP_WRITE, 0, 0, sizeof(LIST))))
    {
    }
    ~CSharedList() { UnmapViewOfFile(m_pList); }

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

private:
    struct LIST
    {
        DWORD nLimit;
        DWORD nCount;
        DWORD anIds[1000];
    };

    const CHandleOwner m_mapping;
    LIST* const m_pList;
};
