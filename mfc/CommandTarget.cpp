// Looks commands up in message maps, from the most derived class down.
#include <afxwin.h>

IMPLEMENT_DYNAMIC(CCmdTarget, CObject)

const AFX_MSGMAP* CCmdTarget::GetMessageMap() const
{
    return GetThisMessageMap();
}

const AFX_MSGMAP* PASCAL CCmdTarget::GetThisMessageMap()
{
    static const AFX_MSGMAP_ENTRY entries[] = { { 0, 0, 0, 0, AfxSig_end, nullptr } };
    static const AFX_MSGMAP messageMap = { nullptr, entries };
    return &messageMap;
}

BOOL CCmdTarget::OnCmdMsg(UINT nID, int nCode, void*, AFX_CMDHANDLERINFO*)
{
    for (const AFX_MSGMAP* pMap = GetMessageMap(); pMap; pMap = pMap->pfnGetBaseMap ? pMap->pfnGetBaseMap() : nullptr)
    {
        for (const AFX_MSGMAP_ENTRY* pEntry = pMap->lpEntries; pEntry->nSig != AfxSig_end; ++pEntry)
        {
            if (pEntry->nMessage != WM_COMMAND || pEntry->nCode != static_cast<UINT>(nCode) || nID < pEntry->nID ||
                nID > pEntry->nLastID)
                continue;
            (this->*pEntry->pfn)();
            return TRUE;
        }
    }
    return FALSE;
}
