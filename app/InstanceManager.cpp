#include "app/InstanceManager.h"

#include <string.h>

#include "app/Product.h"
#include "foundation/TextEnds.h"

IMPLEMENT_DYNAMIC(COXInstanceManager, CObject)

// "Local\" keeps the list to one logon session.
static constexpr wchar_t kListMutexName[] = L"Local\\COXInstanceManager_InstanceList_Mutex_";
static constexpr wchar_t kAdditionalMutexName[] = L"Local\\COXInstanceManager_Additional_Mutex_";
static constexpr wchar_t kMappingName[] = L"Local\\COXInstanceManager_FileMap_";

// One operation's view of the list, locked against other processes. Without a view nothing is locked.
class COXInstanceManager::CListAccess
{
public:
    explicit CListAccess(COXInstanceManager& manager)
        : m_manager(manager), m_lock(&manager.m_listMutex, MapList(manager))
    {
    }

    // Unmaps the view; m_lock then lets go.
    ~CListAccess()
    {
        if (m_manager.m_pList != nullptr)
            UnmapViewOfFile(m_manager.m_pList);
        m_manager.m_pList = nullptr;
    }

    CListAccess(const CListAccess&) = delete;
    CListAccess& operator=(const CListAccess&) = delete;

    explicit operator bool() const { return m_manager.m_pList != nullptr; }
    InstanceList* operator->() const { return m_manager.m_pList; }
    InstanceList& operator*() const { return *m_manager.m_pList; }

private:
    static BOOL MapList(COXInstanceManager& manager)
    {
        if (manager.m_hMapping != nullptr)
            manager.m_pList = static_cast<InstanceList*>(
                MapViewOfFile(manager.m_hMapping, FILE_MAP_READ | FILE_MAP_WRITE, 0, 0, manager.m_cbList));
        return manager.m_pList != nullptr;
    }

    COXInstanceManager& m_manager;
    CSingleLock m_lock;
};

// An exact multiple of the granularity comes out as the plain quotient. The product rounds in the same way, and both
// share the mapping.
static DWORD RoundAreaSize(DWORD cb, DWORD cbGranularity)
{
    return cb / cbGranularity + (cb % cbGranularity != 0 ? cbGranularity : 0);
}

COXInstanceManager::COXInstanceManager(const CString& strInstanceName, DWORD cbAdditional, bool bAddSelf)
    : m_strInstanceName(strInstanceName), m_cbList(sizeof(InstanceList)), m_cbAdditional(cbAdditional),
      m_listMutex(FALSE, kListMutexName + strInstanceName),
      m_additionalMutex(FALSE, kAdditionalMutexName + strInstanceName), m_hMapping(nullptr), m_pList(nullptr),
      m_pAdditional(nullptr)
{
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    m_cbList = RoundAreaSize(m_cbList, system.dwAllocationGranularity);
    m_cbAdditional = RoundAreaSize(m_cbAdditional, system.dwAllocationGranularity);

    // Nothing may come between the call and GetLastError, not even the end of a temporary text.
    const CString strMapping = kMappingName + m_strInstanceName;
    m_hMapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE | SEC_COMMIT, 0,
                                    m_cbList + m_cbAdditional, strMapping);
    // A failed creation comes here too, and finds no list to reset.
    if (GetLastError() != ERROR_ALREADY_EXISTS)
        ResetInstanceList();
    if (bAddSelf)
        AddInstance(GetCurrentProcessId());
}

COXInstanceManager::~COXInstanceManager()
{
    RemoveInstance(GetCurrentProcessId());
    if (m_pAdditional != nullptr)
        UnmapViewOfFile(m_pAdditional);
    if (m_hMapping != nullptr)
        CloseHandle(m_hMapping);
}

bool COXInstanceManager::ResetInstanceList()
{
    const CListAccess list(*this);
    if (list)
    {
        list->nMaxInstances = 1;
        list->nCount = 0;
        memset(list->anIds, 0, sizeof list->anIds);
    }
    return false;
}

// A process without a main window gives a null handle. The post then goes to this thread's own queue, where nothing
// takes it up.
void COXInstanceManager::TellInstances(const InstanceList& list, UINT nMessage, DWORD nProcessId)
{
    for (DWORD i = 0; i < list.nCount; ++i)
        PostMessageW(FindMainWindow(list.anIds[i]), nMessage, 0, static_cast<LPARAM>(nProcessId));
}

bool COXInstanceManager::AddInstance(DWORD nProcessId)
{
    const CListAccess list(*this);
    if (!list || list->nCount >= kMaxListedInstances)
        return false;

    TellInstances(*list, kInstanceAddedMessage, nProcessId);
    list->anIds[list->nCount] = nProcessId;
    ++list->nCount;
    return true;
}

bool COXInstanceManager::RemoveInstance(DWORD nProcessId)
{
    const CListAccess list(*this);
    if (!list)
        return false;

    DWORD nIndex = 0;
    while (nIndex < list->nCount && list->anIds[nIndex] != nProcessId)
        ++nIndex;
    if (nIndex >= list->nCount)
        return false;

    --list->nCount;
    memmove(&list->anIds[nIndex], &list->anIds[nIndex + 1], (list->nCount - nIndex) * sizeof list->anIds[0]);
    list->anIds[list->nCount] = 0;
    TellInstances(*list, kInstanceRemovedMessage, nProcessId);
    return true;
}

DWORD COXInstanceManager::GetInstanceCount()
{
    const CListAccess list(*this);
    return list ? list->nCount : 0;
}

int COXInstanceManager::GetInstanceIds(CDWordArray& anIds)
{
    const CListAccess list(*this);
    if (!list)
        return 0;
    anIds.SetSize(list->nCount);
    memcpy(anIds.GetData(), list->anIds, list->nCount * sizeof list->anIds[0]);
    return 1;
}

bool COXInstanceManager::HasOtherInstances()
{
    return GetInstanceCount() > 1;
}

DWORD COXInstanceManager::GetMaxInstances()
{
    const CListAccess list(*this);
    return list ? list->nMaxInstances : 0;
}

int COXInstanceManager::SetMaxInstances(DWORD nMaxInstances, bool bCloseSurplus)
{
    DWORD anIds[kMaxListedInstances];
    DWORD nCount;
    {
        const CListAccess list(*this);
        if (!list)
            return 0;
        list->nMaxInstances = nMaxInstances;
        nCount = list->nCount;
        memcpy(anIds, list->anIds, sizeof anIds);
    }

    // The lock is free again: the processes that close leave through RemoveInstance, which needs it.
    long long nSurplus = static_cast<long long>(nCount) - nMaxInstances;
    if (!bCloseSurplus || nSurplus < 1)
        return 1;
    for (DWORD i = nCount; i > 0 && nSurplus >= 1; --i)
    {
        if (anIds[i - 1] != GetCurrentProcessId() && CloseInstance(anIds[i - 1]))
            --nSurplus;
    }
    if (nSurplus >= 1)
        CloseInstance(GetCurrentProcessId());
    return 1;
}

// The first listed process, or the second if the first is this one; 0 if there is no second.
DWORD COXInstanceManager::FindActivationTarget(const InstanceList& list)
{
    if (list.anIds[0] != GetCurrentProcessId())
        return list.anIds[0];
    return list.nCount < 2 ? 0 : list.anIds[1];
}

bool COXInstanceManager::ActivateOtherInstance(bool bActivate)
{
    const CListAccess list(*this);
    if (!list || list->nMaxInstances >= list->nCount)
        return false;

    const DWORD nTarget = bActivate ? FindActivationTarget(*list) : 0;
    const HWND hWindow = nTarget != 0 ? FindMainWindow(nTarget) : nullptr;
    if (hWindow != nullptr)
    {
        SetForegroundWindow(hWindow);
        if (GetWindowLongW(hWindow, GWL_STYLE) & WS_MINIMIZE)
            ShowWindow(hWindow, SW_RESTORE);
    }
    return true;
}

void* COXInstanceManager::GetAdditionalData()
{
    if (m_pAdditional == nullptr && m_hMapping != nullptr)
        m_pAdditional = MapViewOfFile(m_hMapping, FILE_MAP_READ | FILE_MAP_WRITE, 0, m_cbList, m_cbAdditional);
    return m_pAdditional;
}

namespace
{
struct MainWindowSearch
{
    DWORD nProcessId;
    HWND hFound;
};
} // namespace

static bool IsMainWindow(HWND hWindow, DWORD nProcessId)
{
    DWORD nOwnerId = 0;
    GetWindowThreadProcessId(hWindow, &nOwnerId);
    if (nOwnerId != nProcessId)
        return false;
    if (GetWindow(hWindow, GW_OWNER) != nullptr)
        return false;
    if (GetWindowLongW(hWindow, GWL_EXSTYLE) & WS_EX_TOOLWINDOW)
        return false;

    wchar_t szCaption[512] = L"";
    GetWindowTextW(hWindow, szCaption, _countof(szCaption));
    if (wcscmp(szCaption, L"DDE Server Window") == 0 || wcscmp(szCaption, L"OleMainThreadWndName") == 0)
        return false;
    return StartsWith(szCaption, kProductWord);
}

static BOOL CALLBACK FindMainWindowCallback(HWND hWindow, LPARAM lParam)
{
    MainWindowSearch& search = *reinterpret_cast<MainWindowSearch*>(lParam);
    if (!IsMainWindow(hWindow, search.nProcessId))
        return TRUE;
    search.hFound = hWindow;
    return FALSE;
}

HWND COXInstanceManager::FindMainWindow(DWORD nProcessId)
{
    MainWindowSearch search = { nProcessId, nullptr };
    EnumWindows(FindMainWindowCallback, reinterpret_cast<LPARAM>(&search));
    return search.hFound;
}

bool COXInstanceManager::CloseInstance(DWORD nProcessId)
{
    const HWND hWindow = FindMainWindow(nProcessId);
    if (hWindow == nullptr || !IsWindowEnabled(hWindow))
        return false;
    PostMessageW(hWindow, WM_CLOSE, 0, 0);
    return true;
}
