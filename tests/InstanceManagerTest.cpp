// The shared list of running instances: its bytes, its kernel objects, its messages, and what the class does with other
// processes' windows. The other processes are ids without a process.
#include "app/InstanceManager.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <tuple>
#include <utility>

#include "foundation/Owners.h"
#include "tests/support/ImportHook.h"
#include "tests/support/SharedList.h"
#include "tests/support/TestWindow.h"

namespace
{

using IDS = std::vector<DWORD>;

const DWORD kSelf = GetCurrentProcessId();
const DWORD kFirst = 70001; // ids that no process has
const DWORD kSecond = 70003;
const DWORD kThird = 70005;
const DWORD kNobody = 70007; // one without a window

// A list of its own for each test. Windows of the test can count as another process's, and posts are noted, not made.
class InstanceManager : public testing::Test
{
protected:
    InstanceManager()
    {
        m_ownerHook.Replace([this](HWND hWnd, DWORD* pnProcessId) { return *pnProcessId = m_owners[hWnd]; });
        m_postHook.Replace(
            [this](HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
            {
                EXPECT_EQ(wParam, 0u);
                m_told.push_back(m_owners[hWnd]);
                m_message = { nMessage, lParam };
                m_strActs += "post ";
                return TRUE;
            });
    }

    HWND AddWindow(DWORD nProcessId, const wchar_t* pszCaption = L"Lumacap 8", DWORD nStyle = WS_OVERLAPPED,
                   DWORD nExStyle = 0, HWND hOwner = nullptr)
    {
        m_windows.push_back(std::make_unique<CTestWindow>(pszCaption, nStyle, nExStyle, hOwner));
        m_owners[*m_windows.back()] = nProcessId;
        return *m_windows.back();
    }

    // Whose windows were posted the message since the last call, in order: 0 stands for no window.
    IDS Told(UINT nMessage, LPARAM lParam)
    {
        EXPECT_TRUE(m_told.empty() || m_message == std::make_pair(nMessage, lParam));
        return std::exchange(m_told, IDS());
    }

    const std::wstring m_strName = L"Test.List.v1";
    std::map<HWND, DWORD> m_owners;
    IDS m_told;
    std::pair<UINT, LPARAM> m_message; // the last one
    std::string m_strActs;             // what was done to the list and its lock
    std::vector<std::unique_ptr<CTestWindow>> m_windows;
    CCallHook<decltype(&GetWindowThreadProcessId)> m_ownerHook{ "USER32.dll", "GetWindowThreadProcessId" };
    CCallHook<decltype(&PostMessageW)> m_postHook{ "USER32.dll", "PostMessageW" };
};

// A test that begins with a list in a certain state.
class InstanceManagerList : public InstanceManager
{
protected:
    COXInstanceManager m_manager{ m_strName.c_str(), 1024, false };
    CSharedList m_list{ m_strName };
};

} // namespace

TEST_F(InstanceManager, FirstProcessMakesListAndMutexesAndTheLastTakesThemAway)
{
    AddWindow(kSelf);
    AddWindow(kFirst);
    const auto openMutex = [this](const wchar_t* pszKind)
    { return OpenMutexW(MUTEX_ALL_ACCESS, FALSE, (L"Local\\COXInstanceManager_" + (pszKind + m_strName)).c_str()); };
    char* pData;
    {
        COXInstanceManager first(m_strName.c_str(), 1024, true);
        CSharedList list(m_strName);
        ASSERT_TRUE(list.IsThere());
        EXPECT_EQ(list.Limit(), 1u);
        EXPECT_EQ(list.Ids(), IDS{ kSelf });
        EXPECT_TRUE(m_told.empty() && !first.HasOtherInstances()) << "there is nobody to tell";
        const CHandleOwner listMutex(openMutex(L"InstanceList_Mutex_"));
        const CHandleOwner additionalMutex(openMutex(L"Additional_Mutex_"));
        first.GetAdditionalDataMutex().Lock();
        EXPECT_TRUE(ReleaseMutex(additionalMutex)) << "it is this thread's";
        EXPECT_TRUE(listMutex.IsOpen() && !ReleaseMutex(listMutex));
        EXPECT_STREQ(static_cast<CObject&>(first).GetRuntimeClass()->m_lpszClassName, "COXInstanceManager");

        // The additional area lies behind the list.
        const CHandleOwner mapping(
            OpenFileMappingW(FILE_MAP_READ, FALSE, (L"Local\\COXInstanceManager_FileMap_" + m_strName).c_str()));
        const auto* pWhole = static_cast<const char*>(MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0));
        pData = static_cast<char*>(first.GetAdditionalData());
        EXPECT_EQ(first.GetAdditionalData(), pData);
        pData[0] = pData[65535] = 'x';
        EXPECT_TRUE(pWhole[65536] == 'x' && pWhole[131071] == 'x');
        UnmapViewOfFile(pWhole);

        list.Set({ kFirst, kNobody }, 7);
        {
            const COXInstanceManager second(m_strName.c_str(), 1024, true);
            EXPECT_EQ(list.Limit(), 7u) << "a later one takes the list as it stands";
            EXPECT_EQ(list.Ids(), (IDS{ kFirst, kNobody, kSelf }));
            EXPECT_TRUE(first.HasOtherInstances());
            EXPECT_EQ(Told(1946, kSelf), (IDS{ kFirst, 0 })) << "without a window the post goes nowhere";
        }
        EXPECT_EQ(list.Ids(), (IDS{ kFirst, kNobody }));
        EXPECT_EQ(Told(1947, kSelf), (IDS{ kFirst, 0 }));
    }
    EXPECT_FALSE(CSharedList(m_strName).IsThere());
    MEMORY_BASIC_INFORMATION memory = {};
    VirtualQuery(pData, &memory, sizeof memory);
    EXPECT_EQ(memory.State, static_cast<DWORD>(MEM_FREE));
    EXPECT_TRUE(!openMutex(L"InstanceList_Mutex_") && !openMutex(L"Additional_Mutex_"));
}

TEST_F(InstanceManager, AreaSizesRoundByTheAgreedFormulaSlipIncluded)
{
    const DWORD cases[][3] = {
        { 65536, 1024, 65536 }, { 65536, 131072, 2 }, { 65536, 65537, 65537 }, { 4096, 1024, 4096 }
    };
    CCallHook hook("KERNEL32.dll", "GetSystemInfo", &GetSystemInfo);
    for (const auto& c : cases)
    {
        hook.Replace([&](SYSTEM_INFO* pInfo) { pInfo->dwAllocationGranularity = c[0]; });
        EXPECT_EQ(COXInstanceManager(m_strName.c_str(), c[1], false).GetAdditionalDataSize(), c[2]);
    }
}

TEST_F(InstanceManager, WithoutSharedMemoryEveryOperationFailsAndLocksNothing)
{
    CCallHook create("KERNEL32.dll", "CreateFileMappingW", &CreateFileMappingW);
    CCallHook map("KERNEL32.dll", "MapViewOfFile", &MapViewOfFile);
    CCallHook lock("KERNEL32.dll", "WaitForSingleObject", &WaitForSingleObject);
    create.FailAll(ERROR_NOT_ENOUGH_MEMORY);
    COXInstanceManager manager(m_strName.c_str(), 1024, true);
    CDWordArray anIds;
    EXPECT_FALSE(manager.AddInstance(kFirst) || manager.RemoveInstance(kSelf) || manager.ResetInstanceList() ||
                 manager.GetInstanceCount() != 0 || manager.GetInstanceIds(anIds) != 0 || manager.HasOtherInstances() ||
                 manager.GetMaxInstances() != 0 || manager.SetMaxInstances(0, true) != 0 ||
                 manager.ActivateOtherInstance(true) || manager.GetAdditionalData() != nullptr);
    EXPECT_EQ(map.Calls() + lock.Calls(), 0);
    EXPECT_TRUE(m_told.empty());
}

TEST_F(InstanceManagerList, EveryOperationMapsLocksUnmapsAndUnlocks)
{
    const std::pair<std::function<void()>, const char*> cases[] = {
        { [&] { m_manager.AddInstance(kThird); }, "map lock post post unmap unlock " },
        { [&] { m_manager.RemoveInstance(kThird); }, "map lock post post unmap unlock " },
        { [&] { m_manager.GetInstanceCount(); }, "map lock unmap unlock " },
        // Who closes needs the lock to leave.
        { [&] { m_manager.SetMaxInstances(0, true); }, "map lock unmap unlock post post " },
        { [&] { m_manager.ResetInstanceList(); }, "map lock unmap unlock " },
    };
    const auto trace = [this](auto& hook, const char* pszName)
    { hook.Replace([=, &hook](auto... arguments) { return m_strActs += pszName, hook.Original()(arguments...); }); };
    CCallHook map("KERNEL32.dll", "MapViewOfFile", &MapViewOfFile);
    CCallHook lock("KERNEL32.dll", "WaitForSingleObject", &WaitForSingleObject);
    CCallHook unmap("KERNEL32.dll", "UnmapViewOfFile", &UnmapViewOfFile);
    CCallHook unlock("KERNEL32.dll", "ReleaseMutex", &ReleaseMutex);
    trace(map, "map ");
    trace(lock, "lock ");
    trace(unmap, "unmap ");
    trace(unlock, "unlock ");
    AddWindow(kFirst);
    AddWindow(kSecond);
    m_list.Set({ kFirst, kSecond }, 9);
    for (const auto& c : cases)
    {
        m_strActs.clear();
        c.first();
        EXPECT_EQ(m_strActs, c.second) << &c - cases;
    }
    EXPECT_EQ(m_list.Ids(), IDS()) << "the last one was the reset";
    EXPECT_TRUE(m_list.IsClearBehindIds());
    EXPECT_EQ(m_list.Limit(), 1u);
}

TEST_F(InstanceManagerList, RemovalClosesTheGapAndTellsThoseThatRemain)
{
    const std::tuple<DWORD, IDS, IDS> cases[] = {
        { kFirst, { kSecond, kNobody, kThird, kSecond }, { kSecond, 0, kThird, kSecond } },
        { kSecond, { kFirst, kNobody, kThird, kSecond }, { kFirst, 0, kThird, kSecond } },
        { 0, { kFirst, kSecond, kNobody, kThird, kSecond }, {} },
    };
    CDWordArray anIds;
    for (const DWORD nId : { kFirst, kSecond, kThird })
        AddWindow(nId);
    for (const auto& [nRemoved, left, told] : cases)
    {
        m_list.Set({ kFirst, kSecond, kNobody, kThird, kSecond });
        EXPECT_EQ(m_manager.RemoveInstance(nRemoved), !told.empty());
        EXPECT_EQ(m_list.Ids(), left) << nRemoved;
        EXPECT_EQ(m_manager.GetInstanceIds(anIds), 1);
        EXPECT_EQ(IDS(anIds.GetData(), anIds.GetData() + anIds.GetSize()), left);
        EXPECT_TRUE(m_list.IsClearBehindIds()) << nRemoved;
        EXPECT_EQ(Told(1947, nRemoved), told) << nRemoved;
    }
}

TEST_F(InstanceManagerList, ThousandStandInItAndNoMore)
{
    IDS ids(999, kNobody);
    m_list.Set(ids);
    ids.push_back(kFirst);
    EXPECT_TRUE(m_manager.AddInstance(kFirst));
    EXPECT_FALSE(m_manager.AddInstance(kSecond));
    EXPECT_EQ(m_postHook.Calls(), 999);
    EXPECT_EQ(m_list.Ids(), ids);
    EXPECT_EQ(m_manager.GetInstanceCount(), 1000u);
    EXPECT_TRUE(m_manager.RemoveInstance(kFirst));
    EXPECT_TRUE(m_list.IsClearBehindIds());
}

TEST_F(InstanceManagerList, LowerLimitClosesTheNewestFirstAndThisProcessLast)
{
    const DWORD kDisabled = 70009;
    const std::tuple<IDS, DWORD, bool, IDS> cases[] = {
        { { kFirst, kSecond, kThird }, 1, true, { kThird, kSecond } },
        { { kFirst, kSecond, kThird }, 1, false, {} },
        { { kFirst, kSecond, kThird }, 3, true, {} },
        { { kFirst, kSelf, kThird }, 1, true, { kThird, kFirst } },
        { { kFirst, kNobody, kThird, kDisabled }, 2, true, { kThird, kFirst } },
        { { kNobody, kSelf, kThird }, 1, true, { kThird, kSelf } },
        { { kSelf, kThird }, 0, true, { kThird, kSelf } },
        { { kFirst, kDisabled }, 1, true, { kFirst } },
    };
    for (const DWORD nId : { kFirst, kSecond, kThird, kSelf })
        AddWindow(nId);
    EnableWindow(AddWindow(kDisabled), FALSE);
    for (const auto& [ids, nLimit, bClose, closed] : cases)
    {
        m_list.Set(ids);
        EXPECT_EQ(m_manager.SetMaxInstances(nLimit, bClose), 1);
        EXPECT_TRUE(m_list.Limit() == nLimit && m_manager.GetMaxInstances() == nLimit);
        EXPECT_EQ(m_list.Ids(), ids) << "those who close leave by themselves";
        EXPECT_EQ(Told(WM_CLOSE, 0), closed) << testing::PrintToString(ids);
    }
}

TEST_F(InstanceManagerList, AboveTheLimitTheFirstOtherComesToTheFront)
{
    const DWORD kMinimized = 70009;
    const std::tuple<IDS, DWORD, bool, bool, std::string> cases[] = {
        { { kFirst, kSecond }, 1, true, true, "front 70001 " },
        { { kFirst, kSecond }, 1, false, true, "" },
        { { kFirst, kSecond }, 2, true, false, "" },
        { { kSelf, kSecond }, 1, true, true, "front 70003 " },
        { { kSecond, kSelf }, 1, true, true, "front 70003 " },
        { { kSelf }, 0, true, true, "" },
        { { kNobody, kSecond }, 1, true, true, "" },
        { { 0, kSecond }, 1, true, true, "" },
        { { kMinimized }, 0, true, true, "front 70009 show 9" },
    };
    for (const DWORD nId : { kFirst, kSecond, kSelf, DWORD(0) })
        AddWindow(nId);
    AddWindow(kMinimized, L"Lumacap 8", WS_OVERLAPPEDWINDOW | WS_MINIMIZE);
    CCallHook front("USER32.dll", "SetForegroundWindow", &SetForegroundWindow);
    front.Replace([&](HWND hWnd) { return m_strActs += "front " + std::to_string(m_owners[hWnd]) + " ", TRUE; });
    CCallHook show("USER32.dll", "ShowWindow", &ShowWindow);
    show.Replace([&](HWND, int nShow) { return m_strActs += "show " + std::to_string(nShow), TRUE; });
    for (const auto& [ids, nLimit, bActivate, bAbove, strActs] : cases)
    {
        m_list.Set(ids, nLimit);
        m_strActs.clear();
        EXPECT_EQ(m_manager.ActivateOtherInstance(bActivate), bAbove) << testing::PrintToString(ids);
        EXPECT_EQ(m_strActs, strActs) << testing::PrintToString(ids);
    }
}

TEST_F(InstanceManager, MainWindowPassesSixFilters)
{
    const HWND hOwner = AddWindow(kThird, L"an owner");
    const struct
    {
        bool bFound;
        const wchar_t* pszCaption = L"Lumacap 8";
        DWORD nStyle = WS_OVERLAPPED;
        DWORD nExStyle = 0;
        HWND hOwner = nullptr;
        DWORD nProcessId = kFirst;
    } cases[] = {
        { true, L"Lumacap", WS_POPUP },
        { true, L"Lumacapture", WS_VISIBLE, WS_EX_TOPMOST },
        { false, L"lumacap 8" },
        { false, L"Lumaca" },
        { false, L"A picture - Lumacap" },
        { false, L"" },
        { false, L"Lumacap 8", WS_POPUP, WS_EX_TOOLWINDOW },
        { false, L"Lumacap 8", WS_POPUP, 0, hOwner },
        { false, L"Lumacap 8", WS_OVERLAPPED, 0, nullptr, kSecond },
        { false, L"OleMainThreadWndName" },
    };
    for (const auto& c : cases)
    {
        const HWND hWnd = AddWindow(c.nProcessId, c.pszCaption, c.nStyle, c.nExStyle, c.hOwner);
        EXPECT_EQ(COXInstanceManager::FindMainWindow(kFirst), c.bFound ? hWnd : nullptr) << &c - cases;
        m_windows.pop_back();
    }
    AddWindow(kFirst, L"a document");
    const HWND windows[] = { AddWindow(kFirst), AddWindow(kFirst) };
    for (const HWND hWnd : windows)
    {
        SetWindowPos(hWnd, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        EXPECT_EQ(COXInstanceManager::FindMainWindow(kFirst), hWnd) << "the first one counts";
    }
}
