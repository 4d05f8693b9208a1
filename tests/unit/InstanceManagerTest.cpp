// The shared list of running instances: its bytes, its kernel objects, when it is locked, its messages, and whose
// windows the class closes and brings to the front.
#include "app/InstanceManager.h"

#include <gtest/gtest.h>

#include "tests/support/Calls.h"
#include "tests/support/SharedList.h"
#include "tests/support/Windows.h"

namespace
{

// This process has the id 9. A window belongs to the process whose id is the ninth character of its caption: 4 has a
// disabled one in front of another, 5 a minimized one, 6 none that counts.
class InstanceManager : public testing::Test
{
protected:
    InstanceManager()
    {
        m_calls.On("GetCurrentProcessId", [](CALL&) { return 9; });
        m_calls.On("GetWindowThreadProcessId",
                   [](CALL& call) { return *reinterpret_cast<DWORD*>(call.args[1]) = Owner(call); });
        m_calls.On("SetForegroundWindow", [this](CALL& call) { return Note(call, 1); });
        m_calls.On("ShowWindow", [this](CALL& call) { return Note(call, 2); });
        m_calls.On("PostMessageW", [this](CALL& call) { return Note(call, 4); });
        for (const char* pszName : { "MapViewOfFile", "WaitForSingleObject", "UnmapViewOfFile", "ReleaseMutex" })
            m_calls.On(pszName, [this](CALL& call) { return m_strActs += *call.pszName, call.Pass(); });
    }

    static DWORD Owner(const CALL& call)
    {
        wchar_t szCaption[64] = L"";
        GetWindowTextW(reinterpret_cast<HWND>(call.args[0]), szCaption, _countof(szCaption));
        return _wtoi(szCaption + 8);
    }

    BOOL Note(const CALL& call, int nArguments)
    {
        m_strActs += ReleaseMutex(m_mutex) && WaitForSingleObject(m_mutex, 0) == 0 ? "+" : "";
        m_strActs += std::to_string(Owner(call));
        for (int i = 1; i < nArguments; i++)
            m_strActs += ":" + std::to_string(call.args[i]);
        m_strActs += " ";
        return TRUE;
    }

    // What was called since the last time: map, wait, unmap and release by their first letters, those for windows as
    // the window's owner and the other arguments, with + ahead while the list is locked; and the operation's result.
    std::string Acts(INT_PTR nResult) { return std::exchange(m_strActs, "") + "= " + std::to_string(nResult); }

    std::string m_strActs;
    const CTestWindow m_first{ L"Lumacap 1" }, m_third{ L"Lumacap 3" }, m_behind{ L"Lumacap 4" },
        m_disabled{ L"Lumacap 4", WS_DISABLED }, m_minimized{ L"Lumacap 5", WS_MINIMIZE }, m_self{ L"Lumacap 9" },
        m_tool{ L"Lumacap 6", WS_POPUP, WS_EX_TOOLWINDOW }, m_owned{ L"Lumacap 6", WS_POPUP, 0, m_first },
        m_lower{ L"lumacap 6" }, m_longer{ L" Lumacap6" }, m_shorter{ L"Lumaca- 6" };
    const CHandleOwner m_mutex{ CreateMutexW(nullptr, FALSE, L"Local\\COXInstanceManager_InstanceList_Mutex_A") };
    CCalls m_calls;
};

TEST_F(InstanceManager, ListLivesAsLongAsAProcessHasIt)
{
    {
        COXInstanceManager first(L"A", 1024, true);
        CSharedList list(L"A");
        EXPECT_EQ(list.Text(), "1: 9");
        EXPECT_FALSE(first.HasOtherInstances());
        EXPECT_TRUE(
            CHandleOwner(OpenMutexW(SYNCHRONIZE, FALSE, L"Local\\COXInstanceManager_Additional_Mutex_A")).IsOpen());
        list.Set({ 1 }, 7);
        *static_cast<int*>(first.GetAdditionalData()) = 5;
        {
            COXInstanceManager second(L"A", 1024, true);
            EXPECT_EQ(*static_cast<int*>(second.GetAdditionalData()), 5);
            second.GetAdditionalData();       // mapped already
            EXPECT_EQ(list.Text(), "7: 1 9"); // a later one takes the list as it stands
        }
        EXPECT_EQ(list.Text(), "7: 1");
    }
    EXPECT_EQ(m_calls.Count("MapViewOfFile"), m_calls.Count("UnmapViewOfFile"));
    EXPECT_EQ(CSharedList(L"A").Text(), "0:");
}

// Who closes needs the list to leave it. The newest are closed first, this process last.
TEST_F(InstanceManager, EachOperationHoldsTheList)
{
    COXInstanceManager manager(L"A", 1024, false);
    CSharedList list(L"A");
    CDWordArray ids;
    list.Set({ 1, 6, 9, 3 }, 9);
    EXPECT_EQ(Acts(0), "MWURM= 0"); // the reset of a new list, and the test's own view
    EXPECT_EQ(Acts(manager.AddInstance(4)), "MW+1:1946:0:4 +0:1946:0:4 +9:1946:0:4 +3:1946:0:4 UR= 1");
    EXPECT_EQ(Acts(manager.GetInstanceIds(ids)), "MWUR= 1");
    EXPECT_EQ(ids.GetSize(), 5);
    EXPECT_EQ(ids[4], 4u);
    EXPECT_EQ(Acts(manager.GetInstanceCount()), "MWUR= 5");
    EXPECT_EQ(Acts(manager.HasOtherInstances()), "MWUR= 1");
    EXPECT_EQ(Acts(manager.SetMaxInstances(6, true)), "MWUR= 1");
    EXPECT_EQ(Acts(manager.SetMaxInstances(0, false)), "MWUR= 1");
    EXPECT_EQ(Acts(manager.SetMaxInstances(0, true)), "MWUR3:16:0:0 1:16:0:0 9:16:0:0 = 1");
    EXPECT_EQ(Acts(manager.SetMaxInstances(3, true)), "MWUR3:16:0:0 1:16:0:0 = 1");
    EXPECT_EQ(Acts(manager.GetMaxInstances()), "MWUR= 3");
    EXPECT_EQ(Acts(manager.RemoveInstance(6)), "MW+1:1947:0:6 +9:1947:0:6 +3:1947:0:6 +4:1947:0:6 UR= 1");
    EXPECT_EQ(Acts(manager.RemoveInstance(6)), "MWUR= 0");
    EXPECT_EQ(list.Text(), "3: 1 9 3 4");
    EXPECT_EQ(Acts(manager.ResetInstanceList()), "MWUR= 0");
    EXPECT_EQ(list.Text(), "1:");

    list.Set(IDS(999, 6));
    EXPECT_TRUE(manager.AddInstance(1));
    EXPECT_FALSE(manager.AddInstance(2));
}

TEST_F(InstanceManager, WithoutTheListNothingIsDone)
{
    CDWordArray ids;
    m_calls.On("CreateFileMappingW", [](CALL&) { return 0; });
    COXInstanceManager manager(L"A", 1024, true);
    EXPECT_EQ((std::vector<INT_PTR>{ manager.AddInstance(1), manager.RemoveInstance(9), manager.ResetInstanceList(),
                                     manager.GetInstanceCount(), manager.GetInstanceIds(ids), manager.GetMaxInstances(),
                                     manager.SetMaxInstances(0, true), manager.ActivateOtherInstance(true) }),
              std::vector<INT_PTR>(8));
    EXPECT_EQ(manager.GetAdditionalData(), nullptr);
    EXPECT_EQ(m_calls.Count("WaitForSingleObject"), 0);
}

TEST_F(InstanceManager, AboveTheLimitAnotherComesToTheFront)
{
    COXInstanceManager manager(L"A", 1024, false);
    CSharedList list(L"A");
    const auto activate = [&](const IDS& ids, DWORD nLimit, bool bShow = true)
    {
        list.Set(ids, nLimit);
        m_strActs = "";
        return Acts(manager.ActivateOtherInstance(bShow));
    };
    EXPECT_EQ(activate({ 1, 3 }, 1), "MW+1 UR= 1");
    EXPECT_EQ(activate({ 1, 3 }, 1, false), "MWUR= 1");
    EXPECT_EQ(activate({ 1, 3 }, 2), "MWUR= 0");
    EXPECT_EQ(activate({ 9, 5 }, 1), "MW+5 +5:9 UR= 1");
    EXPECT_EQ(activate({ 6, 3 }, 1), "MWUR= 1");
}

} // namespace
