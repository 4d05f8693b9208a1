// Lists that nobody would write, walked by the install and by the removal: nothing crashes, hangs, writes past its
// memory or keeps some of it. Numbered from LUMACAP_HOSTILE_FIRST on, as many as LUMACAP_HOSTILE_LISTS says: `make
// hostile` runs more of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <type_traits>

#include "app/RunState.h"
#include "install/PackageList.h"
#include "tests/support/Corner.h"
#include "tests/support/HeapGuard.h"
#include "tests/support/HostileLists.h"
#include "tests/support/ImportHook.h"
#include "tests/support/MachineState.h"
#include "tests/support/NumberReport.h"
#include "uninstall/LogReplay.h"

namespace
{

// Lets calls that change a file or folder through only where that lies below the folder, however its path is written;
// the others fail as for want of rights. It stands while an act runs. Libraries aren't loaded, and the boot list isn't
// written.
class CFence
{
public:
    explicit CFence(const std::wstring& strFolder) : m_strInside(strFolder + L"\\")
    {
        Guard(m_copy, 2);
        Guard(m_delete, 1);
        Guard(m_remove, 1);
        Guard(m_make, 1);
        Guard(m_move, 2);
        Guard(m_attributes, 1);
        m_load.FailAll(ERROR_MOD_NOT_FOUND);
        m_boot.Replace([this](LPCWSTR, LPCWSTR, DWORD) { return m_nLeftToBoot++, TRUE; });
    }

    // Gives the number of blocks of memory that the act keeps.
    size_t Run(const std::function<void()>& act)
    {
        ForgetTexts();
        const size_t nBlocks = LiveBlocks();
        m_bUp = true;
        act();
        m_bUp = false;
        ForgetTexts();
        return LiveBlocks() - nBlocks;
    }

    int Refused() const { return m_nRefused; }
    int Allowed() const { return m_nAllowed; }
    int LeftToBoot() const { return m_nLeftToBoot; }

private:
    bool IsInside(const wchar_t* pszPath) const
    {
        wchar_t szFull[4096];
        const DWORD cch = GetFullPathNameW(pszPath, 4096, szFull, nullptr);
        return cch > m_strInside.size() && cch < 4096 &&
               _wcsnicmp(szFull, m_strInside.c_str(), m_strInside.size()) == 0;
    }

    // The first so many paths count.
    template <typename Function>
    void Guard(CCallHook<Function>& hook, int nPaths)
    {
        hook.Replace(
            [this, &hook, nPaths](auto... arguments)
            {
                int nPath = 0;
                bool bInside = true;
                if (!m_bUp)
                    return hook.Original()(arguments...);
                const auto look = [&](auto argument)
                {
                    if constexpr (std::is_same_v<decltype(argument), const wchar_t*>)
                        bInside = bInside && (nPath++ >= nPaths || IsInside(argument));
                };
                (look(arguments), ...);
                (bInside ? m_nAllowed : m_nRefused)++;
                if (bInside)
                    return hook.Original()(arguments...);
                SetLastError(ERROR_ACCESS_DENIED);
                return FALSE;
            });
    }

    void ForgetTexts()
    {
        for (auto* pHook : { &m_delete, &m_remove })
            pHook->ForgetTexts();
        m_copy.ForgetTexts();
        m_make.ForgetTexts();
        m_move.ForgetTexts();
        m_attributes.ForgetTexts();
        m_load.ForgetTexts();
        m_boot.ForgetTexts();
    }

    std::wstring m_strInside;
    bool m_bUp = false;
    int m_nRefused = 0;
    int m_nAllowed = 0;
    int m_nLeftToBoot = 0;
    CCallHook<decltype(&CopyFileW)> m_copy{ "KERNEL32.dll", "CopyFileW" };
    CCallHook<decltype(&DeleteFileW)> m_delete{ "KERNEL32.dll", "DeleteFileW" };
    CCallHook<decltype(&RemoveDirectoryW)> m_remove{ "KERNEL32.dll", "RemoveDirectoryW" };
    CCallHook<decltype(&CreateDirectoryW)> m_make{ "KERNEL32.dll", "CreateDirectoryW" };
    CCallHook<decltype(&MoveFileW)> m_move{ "KERNEL32.dll", "MoveFileW" };
    CCallHook<decltype(&SetFileAttributesW)> m_attributes{ "KERNEL32.dll", "SetFileAttributesW" };
    CCallHook<decltype(&LoadLibraryW)> m_load{ "KERNEL32.dll", "LoadLibraryW" };
    CCallHook<decltype(&MoveFileExW)> m_boot{ "KERNEL32.dll", "MoveFileExW" };
};

class HostileInput : public MachineCorner
{
protected:
    void SetUp() override
    {
        StartHeapGuard();
        MachineCorner::SetUp();
        g_strSourceDir = At(L"c\\from").c_str();
        g_strInstDir = At(L"c\\to").c_str();
        PutPackage();
        SetCurrentDirectoryW(At(L"c").c_str());
    }

    void PutPackage() const
    {
        RemoveTree(At(L"c\\from"));
        RemoveTree(At(L"c\\to"));
        for (const wchar_t* pszName :
             { L"from\\a.txt", L"from\\b.txt", L"from\\c.dll", L"from\\sub\\d.txt", L"to\\a.txt" })
            WriteBytes(At(L"c\\") + pszName, "x");
    }

    // Gives the number of blocks of memory that it keeps.
    size_t Walk(CFence& fence, std::string strList) const
    {
        for (size_t n; (n = strList.find('~')) != std::string::npos;)
        {
            const std::wstring strCorner = At(L"c");
            strList.replace(n, 1, std::string(strCorner.begin(), strCorner.end()));
        }
        const std::wstring strPath = At(L"list.log");
        WriteBytes(strPath, strList);
        return fence.Run(
            [&]
            {
                ProcessPackageList(strPath.c_str());
                RemoveLoggedLinks(strPath.c_str());
                RemoveLoggedFiles(strPath.c_str(), g_strInstDir);
            });
    }

    static DWORD OpenHandles()
    {
        DWORD nHandles = 0;
        GetProcessHandleCount(GetCurrentProcess(), &nHandles);
        return nHandles;
    }

    CNumberReport m_report;
};

TEST_F(HostileInput, OverrunByOneByteIsSeenByTheGuardOfTheHeap)
{
    volatile size_t cb = 10;
    auto* pBytes = static_cast<volatile char*>(malloc(cb));
    const size_t nEarlier = DamagedBlocks();
    const char ch = pBytes[cb];
    pBytes[cb] = 'x';
    EXPECT_EQ(DamagedBlocks(), nEarlier + 1);
    pBytes[cb] = ch;
    EXPECT_EQ(DamagedBlocks(), nEarlier);
    free(const_cast<char*>(pBytes));
}

TEST_F(HostileInput, ListsLeaveTheMachineItsFilesAndTheProcessItsMemory)
{
    const unsigned int nFirst = HostileSetting(L"LUMACAP_HOSTILE_FIRST", 1);
    const unsigned int nLists = HostileSetting(L"LUMACAP_HOSTILE_LISTS", 20000);
    const std::vector<std::wstring> earlier = TakeMachinePicture();
    const ULONGLONG nStart = GetTickCount64();
    {
        CFence fence(At(L"c"));
        Walk(fence, "Shell Link: a"); // what is allocated once and for all
        const DWORD nHandles = OpenHandles();
        for (unsigned int i = 0; i < nLists; i++)
        {
            m_report.Begin(nFirst + i);
            g_nInstallKind = i % 3 == 0 ? KIND_PORTABLE : KIND_ALL_USERS;
            ASSERT_EQ(Walk(fence, HostileList(nFirst + i)), 0u) << "kept by number " << nFirst + i;
            if (i % 100 != 0)
                continue;
            ASSERT_EQ(DamagedBlocks(), 0u) << "one of the hundred lists up to number " << nFirst + i;
            PutPackage();
        }
        EXPECT_EQ(OpenHandles(), nHandles);
        EXPECT_GT(fence.Refused(), static_cast<int>(nLists / 100));
        EXPECT_GT(fence.Allowed(), static_cast<int>(nLists / 10));
        EXPECT_GT(fence.LeftToBoot(), static_cast<int>(nLists / 100));
        printf("%u lists: %d changes, %d refused, %d left to the boot\n", nLists, fence.Allowed(), fence.Refused(),
               fence.LeftToBoot());
    }
    printf("%llu seconds\n", (GetTickCount64() - nStart) / 1000);
    std::vector<std::wstring> difference = PictureDifference(earlier, TakeMachinePicture());
    const auto isOurs = [this](const std::wstring& strLine) { return strLine.find(Folder()) != std::wstring::npos; };
    difference.erase(std::remove_if(difference.begin(), difference.end(), isOurs), difference.end());
    EXPECT_EQ(JoinLines(difference), "");
}

TEST_F(HostileInput, ListOfAHundredThousandLinesIsWalkedToItsEndInTheSameMemory)
{
    CFence fence(At(L"c"));
    Walk(fence, "Shell Link: a"); // what is allocated once and for all
    const ULONGLONG nStart = GetTickCount64();
    EXPECT_EQ(Walk(fence, LongHostileList(1, 100000)), 0u);
    EXPECT_LT(GetTickCount64() - nStart, 40000u);
    EXPECT_EQ(DamagedBlocks(), 0u);
}

} // namespace
