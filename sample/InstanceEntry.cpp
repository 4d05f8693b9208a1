// Enters this process in the shared list of instances, tells the others of it, and takes it out again at the end.
// Only what the product does to the list: it neither counts nor closes others.

#include "sample/InstanceEntry.h"

#include <wchar.h>

namespace
{

const wchar_t kMutexName[] = L"Local\\COXInstanceManager_InstanceList_Mutex_Tandrel.Lumacap-DX.v4";
const wchar_t kMappingName[] = L"Local\\COXInstanceManager_FileMap_Tandrel.Lumacap-DX.v4";
const DWORD kMaxIds = 1000;
const UINT kMessageAdded = 1946;
const UINT kMessageRemoved = 1947;

struct InstanceList
{
    DWORD dwMaxInstances;
    DWORD dwCount;
    DWORD aIds[kMaxIds];
};
static_assert(sizeof(InstanceList) == 4008, "the list's size is agreed with the setup program");

struct WindowSearch
{
    DWORD dwProcessId;
    HWND hWnd;
};

BOOL CALLBACK TakeMainWindow(HWND hWnd, LPARAM lParam)
{
    WindowSearch* pSearch = reinterpret_cast<WindowSearch*>(lParam);
    DWORD dwProcessId = 0;
    wchar_t szCaption[8] = L"";
    GetWindowThreadProcessId(hWnd, &dwProcessId);
    if (dwProcessId != pSearch->dwProcessId || GetWindow(hWnd, GW_OWNER) != nullptr ||
        (GetWindowLongW(hWnd, GWL_EXSTYLE) & WS_EX_TOOLWINDOW) != 0)
        return TRUE;
    GetWindowTextW(hWnd, szCaption, 8);
    if (wcscmp(szCaption, L"Lumacap") != 0)
        return TRUE;
    pSearch->hWnd = hWnd;
    return FALSE;
}

void TellOthers(const InstanceList& list, UINT nMessage, DWORD dwSubject)
{
    for (DWORD i = 0; i < list.dwCount; ++i)
    {
        WindowSearch search = { list.aIds[i], nullptr };
        EnumWindows(TakeMainWindow, reinterpret_cast<LPARAM>(&search));
        if (search.hWnd != nullptr)
            PostMessageW(search.hWnd, nMessage, 0, static_cast<LPARAM>(dwSubject));
    }
}

void Enter(InstanceList& list, DWORD dwId)
{
    if (list.dwCount >= kMaxIds)
        return;
    TellOthers(list, kMessageAdded, dwId);
    list.aIds[list.dwCount++] = dwId;
}

void Leave(InstanceList& list, DWORD dwId)
{
    DWORD i = 0;
    while (i < list.dwCount && list.aIds[i] != dwId)
        ++i;
    if (i == list.dwCount)
        return;
    for (--list.dwCount; i < list.dwCount; ++i)
        list.aIds[i] = list.aIds[i + 1];
    list.aIds[list.dwCount] = 0;
    TellOthers(list, kMessageRemoved, dwId);
}

// Lets one change have the list to itself. A mutex that a terminated process left behind counts as taken.
void ChangeList(HANDLE hMutex, HANDLE hMapping, void (*pfnChange)(InstanceList&, DWORD))
{
    InstanceList* pList = static_cast<InstanceList*>(
        hMapping != nullptr ? MapViewOfFile(hMapping, FILE_MAP_READ | FILE_MAP_WRITE, 0, 0, sizeof(InstanceList))
                            : nullptr);
    if (pList == nullptr)
        return;
    WaitForSingleObject(hMutex, INFINITE);
    pfnChange(*pList, GetCurrentProcessId());
    UnmapViewOfFile(pList);
    ReleaseMutex(hMutex);
}

void Reset(InstanceList& list, DWORD)
{
    list = {};
    list.dwMaxInstances = 1;
}

} // namespace

CInstanceEntry::CInstanceEntry() : m_hMutex(CreateMutexW(nullptr, FALSE, kMutexName)), m_hMapping(nullptr)
{
    // One unit of granularity for the list, one for the area behind it that both programs may use freely.
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    m_hMapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE | SEC_COMMIT, 0,
                                    2 * info.dwAllocationGranularity, kMappingName);
    if (GetLastError() != ERROR_ALREADY_EXISTS)
        ChangeList(m_hMutex, m_hMapping, Reset);
    ChangeList(m_hMutex, m_hMapping, Enter);
}

CInstanceEntry::~CInstanceEntry()
{
    ChangeList(m_hMutex, m_hMapping, Leave);
    if (m_hMapping != nullptr)
        CloseHandle(m_hMapping);
    if (m_hMutex != nullptr)
        CloseHandle(m_hMutex);
}
