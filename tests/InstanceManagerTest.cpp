// The shared list of running instances: its bytes, its kernel objects, its messages, and what the class does with other
// processes' windows. Most other processes are ids without a process; what only real ones show, real ones show.
#include "app/InstanceManager.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <thread>

#include "foundation/Owners.h"
#include "tests/support/ChildRole.h"
#include "tests/support/Environment.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ProcessRun.h"
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

// Whether somebody else could take the mutex now. It belongs to a thread, so another one has to try.
bool IsFree(const std::wstring& strMutex)
{
    const CHandleOwner mutex(OpenMutexW(SYNCHRONIZE, FALSE, strMutex.c_str()));
    DWORD nResult = WAIT_FAILED;
    std::thread([&] { nResult = WaitForSingleObject(mutex, 0); }).join(); // its end lets the mutex go
    return nResult != WAIT_TIMEOUT;
}

// A list of its own for each test. Windows of the test can count as another process's, and posts are noted, not made.
class InstanceManager : public testing::Test
{
protected:
    InstanceManager()
    {
        m_ownerHook.Replace(
            [this](HWND hWnd, DWORD* pnProcessId)
            {
                const DWORD nThread = m_ownerHook.Original()(hWnd, pnProcessId);
                if (m_owners.count(hWnd) != 0)
                    *pnProcessId = m_owners[hWnd];
                return nThread;
            });
        m_postHook.Replace(
            [this](HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
            {
                m_posts.emplace_back(m_owners[hWnd], CTestWindow::MESSAGE(nMessage, wParam, lParam));
                m_bFreeAtPost = IsFree(m_strListMutex);
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
        IDS ids;
        for (const auto& post : m_posts)
        {
            EXPECT_EQ(post.second, CTestWindow::MESSAGE(nMessage, 0, lParam));
            ids.push_back(post.first);
        }
        m_posts.clear();
        return ids;
    }

    const std::wstring m_strName = L"Test.List.v1";
    const std::wstring m_strMapping = L"Local\\COXInstanceManager_FileMap_" + m_strName;
    const std::wstring m_strListMutex = L"Local\\COXInstanceManager_InstanceList_Mutex_" + m_strName;
    const std::wstring m_strAdditionalMutex = L"Local\\COXInstanceManager_Additional_Mutex_" + m_strName;
    std::map<HWND, DWORD> m_owners;
    std::vector<std::pair<DWORD, CTestWindow::MESSAGE>> m_posts;
    bool m_bFreeAtPost = false;
    std::vector<std::unique_ptr<CTestWindow>> m_windows;
    CCallHook<decltype(&GetWindowThreadProcessId)> m_ownerHook{ "USER32.dll", "GetWindowThreadProcessId",
                                                                &GetWindowThreadProcessId };
    CCallHook<decltype(&PostMessageW)> m_postHook{ "USER32.dll", "PostMessageW", &PostMessageW };
};

// A test that begins with a list in a certain state.
class InstanceManagerList : public InstanceManager
{
protected:
    COXInstanceManager m_manager{ m_strName.c_str(), 1024, false };
    CSharedList m_list{ m_strName };
};

int AwaitEvent()
{
    const CHandleOwner leave(CreateEventW(nullptr, TRUE, FALSE, L"Local\\LumacapTestLeave"));
    return static_cast<int>(WaitForSingleObject(leave, kPatience));
}

const CChildRole s_instance(L"instance", AwaitEvent);

} // namespace

TEST_F(InstanceManager, FirstProcessMakesListAndMutexesAndTheLastTakesThemAway)
{
    {
        AddWindow(kSelf);
        COXInstanceManager manager(m_strName.c_str(), 1024, true);
        const CSharedList list(m_strName);
        ASSERT_TRUE(list.IsThere());
        EXPECT_EQ(list.Limit(), 1u);
        EXPECT_EQ(list.Ids(), IDS{ kSelf });
        EXPECT_TRUE(list.IsClearBehindIds());
        EXPECT_TRUE(m_posts.empty()) << "there is nobody to tell";
        CSingleLock lock(&manager.GetAdditionalDataMutex(), TRUE);
        EXPECT_FALSE(IsFree(m_strAdditionalMutex));
        EXPECT_TRUE(IsFree(m_strListMutex));
        EXPECT_STREQ(static_cast<CObject&>(manager).GetRuntimeClass()->m_lpszClassName, "COXInstanceManager");
    }
    EXPECT_FALSE(CSharedList(m_strName).IsThere());
    EXPECT_EQ(OpenMutexW(SYNCHRONIZE, FALSE, m_strListMutex.c_str()), nullptr);
    EXPECT_EQ(OpenMutexW(SYNCHRONIZE, FALSE, m_strAdditionalMutex.c_str()), nullptr);
}

TEST_F(InstanceManager, LaterOneJoinsTheListAsItStands)
{
    AddWindow(kFirst);
    COXInstanceManager first(m_strName.c_str(), 1024, false);
    CSharedList list(m_strName);
    list.Set({ kFirst, kSelf }, 7);
    {
        const COXInstanceManager second(m_strName.c_str(), 1024, true);
        EXPECT_EQ(list.Limit(), 7u);
        EXPECT_EQ(list.Ids(), (IDS{ kFirst, kSelf, kSelf })) << "an id that stands there already is added all the same";
        EXPECT_EQ(Told(1946, kSelf), (IDS{ kFirst, 0 })) << "a process without a window makes a post to nowhere";
    }
    EXPECT_EQ(list.Ids(), (IDS{ kFirst, kSelf }));
    EXPECT_EQ(Told(1947, kSelf), (IDS{ kFirst, 0 }));
}

TEST_F(InstanceManager, AreaSizesRoundByTheAgreedFormulaSlipIncluded)
{
    const DWORD cases[][3] = { // granularity, size, rounded size
                               { 65536, 1024, 65536 },
                               { 65536, 0, 0 },
                               { 65536, 131072, 2 },
                               { 65536, 65537, 65537 },
                               { 4096, 1024, 4096 }
    };
    CCallHook hook("KERNEL32.dll", "GetSystemInfo", &GetSystemInfo);
    for (const auto& c : cases)
    {
        hook.Replace([&](SYSTEM_INFO* pInfo) { pInfo->dwAllocationGranularity = c[0]; });
        EXPECT_EQ(COXInstanceManager(m_strName.c_str(), c[1], false).GetAdditionalDataSize(), c[2]) << c[1];
    }
}

TEST_F(InstanceManager, WithoutSharedMemoryEveryOperationFailsAndLocksNothing)
{
    for (const bool bMapping : { false, true })
    {
        CCallHook create("KERNEL32.dll", "CreateFileMappingW", &CreateFileMappingW);
        CCallHook map("KERNEL32.dll", "MapViewOfFile", &MapViewOfFile);
        CCallHook lock("KERNEL32.dll", "WaitForSingleObject", &WaitForSingleObject);
        if (!bMapping)
            create.FailAll(ERROR_NOT_ENOUGH_MEMORY);
        map.FailAll(ERROR_NOT_ENOUGH_MEMORY);
        COXInstanceManager manager(m_strName.c_str(), 1024, true);
        CDWordArray anIds;
        EXPECT_FALSE(manager.AddInstance(kFirst));
        EXPECT_FALSE(manager.RemoveInstance(kSelf));
        EXPECT_FALSE(manager.ResetInstanceList());
        EXPECT_EQ(manager.GetInstanceCount(), 0u);
        EXPECT_EQ(manager.GetInstanceIds(anIds), 0);
        EXPECT_FALSE(manager.HasOtherInstances());
        EXPECT_EQ(manager.GetMaxInstances(), 0u);
        EXPECT_EQ(manager.SetMaxInstances(0, true), 0);
        EXPECT_FALSE(manager.ActivateOtherInstance(true));
        EXPECT_EQ(manager.GetAdditionalData(), nullptr);
        EXPECT_EQ(map.Calls() > 0, bMapping) << "without a mapping there is nothing to map";
        EXPECT_EQ(lock.Calls(), 0);
    }
    EXPECT_TRUE(m_posts.empty());
}

TEST_F(InstanceManagerList, EveryOperationMapsLocksUnmapsAndUnlocks)
{
    CDWordArray anIds;
    const std::function<void()> operations[] = {
        [&] { m_manager.AddInstance(kSecond); },     [&] { m_manager.RemoveInstance(kSecond); },
        [&] { m_manager.RemoveInstance(kThird); },   [&] { m_manager.GetInstanceCount(); },
        [&] { m_manager.GetInstanceIds(anIds); },    [&] { m_manager.GetMaxInstances(); },
        [&] { m_manager.SetMaxInstances(0, true); }, [&] { m_manager.ActivateOtherInstance(true); },
        [&] { m_manager.ResetInstanceList(); },
    };
    std::string strActs;
    const auto trace = [&](auto& hook, const char* pszName)
    {
        hook.Replace(
            [&strActs, &hook, pszName](auto... arguments)
            {
                strActs += pszName;
                return hook.Original()(arguments...);
            });
    };
    CCallHook map("KERNEL32.dll", "MapViewOfFile", &MapViewOfFile);
    CCallHook lock("KERNEL32.dll", "WaitForSingleObject", &WaitForSingleObject);
    CCallHook unmap("KERNEL32.dll", "UnmapViewOfFile", &UnmapViewOfFile);
    CCallHook unlock("KERNEL32.dll", "ReleaseMutex", &ReleaseMutex);
    trace(map, "map ");
    trace(lock, "lock ");
    trace(unmap, "unmap ");
    trace(unlock, "unlock ");
    for (const auto& operation : operations)
    {
        strActs.clear();
        operation();
        EXPECT_EQ(strActs, "map lock unmap unlock ") << &operation - operations;
    }
}

TEST_F(InstanceManagerList, ResetEmptiesTheListAndSetsTheLimitToOne)
{
    m_list.Set({ kFirst, kSecond }, 9);
    EXPECT_FALSE(m_manager.ResetInstanceList());
    EXPECT_EQ(m_list.Ids(), IDS());
    EXPECT_TRUE(m_list.IsClearBehindIds());
    EXPECT_EQ(m_list.Limit(), 1u);
}

TEST_F(InstanceManagerList, RemovalClosesTheGapAndTellsThoseThatRemain)
{
    const struct
    {
        DWORD nRemoved;
        bool bResult;
        IDS left;
        IDS told;
    } cases[] = {
        { kFirst, true, { kSecond, kNobody, kThird, kSecond }, { kSecond, 0, kThird, kSecond } },
        { kSecond, true, { kFirst, kNobody, kThird, kSecond }, { kFirst, 0, kThird, kSecond } },
        { kNobody, true, { kFirst, kSecond, kThird, kSecond }, { kFirst, kSecond, kThird, kSecond } },
        { 80001, false, { kFirst, kSecond, kNobody, kThird, kSecond }, {} },
        { 0, false, { kFirst, kSecond, kNobody, kThird, kSecond }, {} },
    };
    for (const DWORD nId : { kFirst, kSecond, kThird })
        AddWindow(nId);
    for (const auto& c : cases)
    {
        m_list.Set({ kFirst, kSecond, kNobody, kThird, kSecond });
        EXPECT_EQ(m_manager.RemoveInstance(c.nRemoved), c.bResult);
        EXPECT_EQ(m_list.Ids(), c.left) << c.nRemoved;
        EXPECT_TRUE(m_list.IsClearBehindIds()) << c.nRemoved;
        EXPECT_EQ(Told(1947, c.nRemoved), c.told) << c.nRemoved;
    }
    m_list.Set({ kFirst, kSecond });
    EXPECT_TRUE(m_manager.RemoveInstance(kSecond)) << "the last one";
    EXPECT_EQ(m_list.Ids(), IDS{ kFirst });
    EXPECT_TRUE(m_list.IsClearBehindIds());
}

TEST_F(InstanceManagerList, ArrivalIsToldInTheListsOrderUnderTheLock)
{
    AddWindow(kFirst);
    AddWindow(kThird);
    AddWindow(kSecond);
    m_list.Set({ kSecond, kFirst });
    EXPECT_TRUE(m_manager.AddInstance(kThird));
    EXPECT_EQ(Told(1946, kThird), (IDS{ kSecond, kFirst }));
    EXPECT_FALSE(m_bFreeAtPost);
    EXPECT_EQ(m_list.Ids(), (IDS{ kSecond, kFirst, kThird }));
}

TEST_F(InstanceManagerList, ThousandStandInItAndNoMore)
{
    IDS ids;
    for (DWORD i = 0; i < 999; i++)
        ids.push_back(100000 + i);
    m_list.Set(ids);
    m_postHook.Replace([](HWND, UINT, WPARAM, LPARAM) { return TRUE; });
    EXPECT_TRUE(m_manager.AddInstance(kFirst));
    ids.push_back(kFirst);
    EXPECT_EQ(m_postHook.Calls(), 999);
    EXPECT_FALSE(m_manager.AddInstance(kSecond));
    EXPECT_FALSE(m_manager.RemoveInstance(kSecond));
    EXPECT_EQ(m_postHook.Calls(), 999);
    EXPECT_EQ(m_list.Ids(), ids);
    EXPECT_EQ(m_manager.GetInstanceCount(), 1000u);

    EXPECT_TRUE(m_manager.RemoveInstance(kFirst));
    EXPECT_TRUE(m_list.IsClearBehindIds());
}

TEST_F(InstanceManagerList, IdsComeInTheListsOrderAndFillTheWholeArray)
{
    CDWordArray anIds;
    for (const IDS& ids : { IDS{ kThird, kFirst, kSecond }, IDS{ kFirst }, IDS{} })
    {
        m_list.Set(ids);
        EXPECT_EQ(m_manager.GetInstanceIds(anIds), 1);
        EXPECT_EQ(IDS(anIds.GetData(), anIds.GetData() + anIds.GetSize()), ids);
        EXPECT_EQ(m_manager.GetInstanceCount(), ids.size());
        EXPECT_EQ(m_manager.HasOtherInstances(), ids.size() > 1);
    }
}

TEST_F(InstanceManagerList, LowerLimitClosesTheNewestFirstAndThisProcessLast)
{
    const DWORD kDisabled = 70009;
    const struct
    {
        IDS ids;
        DWORD nLimit;
        bool bClose;
        IDS closed;
    } cases[] = {
        { { kFirst, kSecond, kThird }, 1, true, { kThird, kSecond } },
        { { kFirst, kSecond, kThird }, 1, false, {} },
        { { kFirst, kSecond, kThird }, 3, true, {} },
        { { kFirst, kSecond, kThird }, 5, true, {} },
        { { kFirst, kSelf, kThird }, 1, true, { kThird, kFirst } },
        { { kFirst, kNobody, kThird, kDisabled }, 2, true, { kThird, kFirst } },
        { { kNobody, kSelf, kThird }, 1, true, { kThird, kSelf } },
        { { kSelf, kThird }, 0, true, { kThird, kSelf } },
        { { kFirst, kDisabled }, 1, true, { kFirst } },
    };
    for (const DWORD nId : { kFirst, kSecond, kThird, kSelf })
        AddWindow(nId);
    EnableWindow(AddWindow(kDisabled), FALSE);
    for (const auto& c : cases)
    {
        m_list.Set(c.ids);
        EXPECT_EQ(m_manager.SetMaxInstances(c.nLimit, c.bClose), 1);
        EXPECT_EQ(m_list.Limit(), c.nLimit);
        EXPECT_EQ(m_manager.GetMaxInstances(), c.nLimit);
        EXPECT_EQ(m_list.Ids(), c.ids) << "those who close leave by themselves";
        EXPECT_EQ(Told(WM_CLOSE, 0), c.closed) << &c - cases;
        EXPECT_TRUE(c.closed.empty() || m_bFreeAtPost) << "who closes needs the lock to leave";
    }
}

TEST_F(InstanceManagerList, AboveTheLimitTheFirstOtherComesToTheFront)
{
    const DWORD kMinimized = 70009;
    const struct
    {
        IDS ids;
        DWORD nLimit;
        bool bActivate;
        bool bAbove;
        DWORD nInFront; // 0: none
        DWORD nRestored;
    } cases[] = {
        { { kFirst, kSecond }, 1, true, true, kFirst, 0 },
        { { kFirst, kSecond }, 1, false, true, 0, 0 },
        { { kFirst, kSecond }, 2, true, false, 0, 0 },
        { { kSelf, kSecond }, 1, true, true, kSecond, 0 },
        { { kSecond, kSelf }, 1, true, true, kSecond, 0 },
        { { kSelf }, 0, true, true, 0, 0 },
        { { kNobody, kSecond }, 1, true, true, 0, 0 },
        { { 0, kSecond }, 1, true, true, 0, 0 },
        { { kMinimized }, 0, true, true, kMinimized, kMinimized },
    };
    for (const DWORD nId : { kFirst, kSecond, kSelf, DWORD(0) })
        AddWindow(nId);
    AddWindow(kMinimized, L"Lumacap 8", WS_OVERLAPPEDWINDOW | WS_MINIMIZE);
    DWORD nInFront = 0;
    DWORD nRestored = 0;
    CCallHook front("USER32.dll", "SetForegroundWindow", &SetForegroundWindow);
    front.Replace([&](HWND hWnd) { return nInFront = m_owners[hWnd], TRUE; });
    CCallHook show("USER32.dll", "ShowWindow", &ShowWindow);
    show.Replace([&](HWND hWnd, int nShow) { return nRestored = nShow == 9 ? m_owners[hWnd] : 1, TRUE; });
    for (const auto& c : cases)
    {
        m_list.Set(c.ids, c.nLimit);
        nInFront = nRestored = 0;
        EXPECT_EQ(m_manager.ActivateOtherInstance(c.bActivate), c.bAbove) << &c - cases;
        EXPECT_EQ(nInFront, c.nInFront) << &c - cases;
        EXPECT_EQ(nRestored, c.nRestored) << &c - cases;
    }
}

TEST_F(InstanceManagerList, AdditionalAreaLiesBehindTheListIsSharedAndStays)
{
    auto* pData = static_cast<char*>(m_manager.GetAdditionalData());
    ASSERT_NE(pData, nullptr);
    EXPECT_EQ(m_manager.GetAdditionalData(), pData);
    const CHandleOwner mapping(OpenFileMappingW(FILE_MAP_READ, FALSE, m_strMapping.c_str()));
    const auto* pWhole = static_cast<const char*>(MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0));
    pData[m_manager.GetAdditionalDataSize() - 1] = 'x';
    strcpy(pData, "left for the others");
    EXPECT_STREQ(pWhole + 65536, "left for the others");
    EXPECT_EQ(pWhole[131071], 'x');
    EXPECT_EQ(m_list.Ids(), IDS());
    UnmapViewOfFile(pWhole);
}

TEST_F(InstanceManager, MainWindowPassesSixFilters)
{
    const HWND hOwner = AddWindow(kThird, L"an owner");
    const struct
    {
        const wchar_t* pszCaption;
        DWORD nStyle;
        DWORD nExStyle;
        HWND hOwner;
        DWORD nProcessId;
        bool bFound;
    } cases[] = {
        { L"Lumacap Setup", WS_OVERLAPPED, 0, nullptr, kFirst, true },
        { L"Lumacap", WS_POPUP, 0, nullptr, kFirst, true },
        { L"Lumacapture", WS_OVERLAPPED | WS_VISIBLE, WS_EX_TOPMOST, nullptr, kFirst, true },
        { L"lumacap 8", WS_OVERLAPPED, 0, nullptr, kFirst, false },
        { L"LUMACAP 8", WS_OVERLAPPED, 0, nullptr, kFirst, false },
        { L"Lumaca", WS_OVERLAPPED, 0, nullptr, kFirst, false },
        { L"A picture - Lumacap", WS_OVERLAPPED, 0, nullptr, kFirst, false },
        { L"", WS_OVERLAPPED | WS_VISIBLE, 0, nullptr, kFirst, false },
        { L"Lumacap 8", WS_POPUP, WS_EX_TOOLWINDOW, nullptr, kFirst, false },
        { L"Lumacap 8", WS_POPUP, 0, hOwner, kFirst, false },
        { L"Lumacap 8", WS_OVERLAPPED, 0, nullptr, kSecond, false },
        { L"OleMainThreadWndName", WS_OVERLAPPED, 0, nullptr, kFirst, false },
        { L"DDE Server Window", WS_OVERLAPPED, 0, nullptr, kFirst, false },
    };
    for (const auto& c : cases)
    {
        const HWND hWnd = AddWindow(c.nProcessId, c.pszCaption, c.nStyle, c.nExStyle, c.hOwner);
        EXPECT_EQ(COXInstanceManager::FindMainWindow(kFirst), c.bFound ? hWnd : nullptr)
            << testing::PrintToString(std::wstring(c.pszCaption));
        m_windows.pop_back();
    }
    AddWindow(kFirst, L"a document"); // looked at first, and passed over
    const HWND hMain = AddWindow(kFirst);
    AddWindow(kFirst, L"OleMainThreadWndName");
    EXPECT_EQ(COXInstanceManager::FindMainWindow(kFirst), hMain);
}

TEST(InstanceManagerProcesses, SetupTellsTheOthersWindowsThatItCameAndThatItWent)
{
    const CTestWindow window(L"Lumacap, the other instance");
    CProductList list({ kNobody, kSelf });
    const CHandleOwner leave(CreateEventW(nullptr, TRUE, FALSE, L"Local\\LumacapTestLeave"));
    CProcessRun child(CChildRole::CommandLine(L"instance"));
    ASSERT_TRUE(child.Start());
    EXPECT_TRUE(WaitUntil([&] { return window.Messages().size() == 1; }));
    EXPECT_EQ(list.Ids(), (IDS{ kNobody, kSelf, child.Id() }));
    SetEvent(leave);
    EXPECT_TRUE(child.WaitForEnd());
    EXPECT_TRUE(WaitUntil([&] { return window.Messages().size() == 2; }));
    const LPARAM lId = child.Id();
    EXPECT_EQ(window.Messages(), (std::vector<CTestWindow::MESSAGE>{ { 1946, 0, lId }, { 1947, 0, lId } }));
    EXPECT_EQ(list.Ids(), (IDS{ kNobody, kSelf })) << "the dead one's entry stays";
}

TEST(InstanceManagerProcesses, ProductIsFoundClosedAndGone)
{
    COXInstanceManager manager(L"Tandrel.Lumacap-DX.v4", 1024, false);
    CProductList list({ kSelf });
    CProcessRun product(L"\"" + PackageFolder() + L"\\Lumacap8.exe\"");
    ASSERT_TRUE(product.Start());
    ASSERT_TRUE(WaitUntil([&] { return COXInstanceManager::FindMainWindow(product.Id()) != nullptr; }));
    EXPECT_EQ(manager.GetInstanceCount(), 2u);
    EXPECT_TRUE(manager.HasOtherInstances());
    EXPECT_EQ(manager.SetMaxInstances(1, true), 1);
    EXPECT_TRUE(product.WaitForEnd());
    EXPECT_EQ(product.ExitCode(), 0u);
    EXPECT_EQ(list.Ids(), IDS{ kSelf });
    EXPECT_EQ(COXInstanceManager::FindMainWindow(product.Id()), nullptr);
}
