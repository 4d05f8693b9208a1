// Lists that nobody would write, walked by the install and by the removal: nothing crashes, hangs, writes past a block
// of the heap or keeps one. A write past an array on the stack is seen only if it crashes. Numbered from
// LUMACAP_HOSTILE_FIRST on, as many as LUMACAP_HOSTILE_LISTS says: `make hostile` runs more of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <type_traits>

#include "app/RunState.h"
#include "install/EarlierInstallation.h"
#include "install/PackageList.h"
#include "tests/support/Corner.h"
#include "tests/support/HeapGuard.h"
#include "tests/support/HostileLists.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Machine.h"
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
        m_load.Replace([this](LPCWSTR) { return m_load.ForgetTexts(), nullptr; });
        m_boot.Replace([this](LPCWSTR, LPCWSTR, DWORD) { return m_boot.ForgetTexts(), m_nLeftToBoot++, TRUE; });
    }

    // Gives the number of blocks of memory that the act keeps.
    size_t Run(const std::function<void()>& act)
    {
        const size_t nBlocks = LiveBlocks();
        CountBytesFromHere();
        m_bUp = true;
        act();
        m_bUp = false;
        m_cbMost = MostBytes();
        return LiveBlocks() - nBlocks;
    }

    size_t MostBytesOfRun() const { return m_cbMost; } // of the last one, at a time
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

    // The first so many paths count. What the hook notes down would pass for memory of the act.
    template <typename Function>
    void Guard(CCallHook<Function>& hook, int nPaths)
    {
        hook.Replace(
            [this, &hook, nPaths](auto... arguments)
            {
                hook.ForgetTexts();
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

    std::wstring m_strInside;
    bool m_bUp = false;
    size_t m_cbMost = 0;
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

    // Gives the number of blocks of memory that it keeps. The group that it takes over comes to stand in m_szGroup.
    size_t Walk(CFence& fence, std::string strList)
    {
        for (size_t n; (n = strList.find('~')) != std::string::npos;)
        {
            const std::wstring strCorner = At(L"c");
            strList.replace(n, 1, std::string(strCorner.begin(), strCorner.end()));
        }
        const std::wstring strPath = At(L"earlier\\LumUnInst.log");
        const CString strEarlier = At(L"earlier").c_str();
        const CString strInstDir = g_strInstDir;
        WriteBytes(strPath, strList);
        return fence.Run(
            [&]
            {
                g_strInstDir = strEarlier;
                TakeOverGroup();
                g_strInstDir = strInstDir;
                wcscpy_s(m_szGroup, g_strGroup);
                g_strGroup.Empty();
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
    wchar_t m_szGroup[512] = L"";

private:
    // Of the links that lists name, many lie here.
    const CFolderRedirection m_programs{ HKEY_LOCAL_MACHINE, L"Common Programs", At(L"c") };
    const CFolderRedirection m_startup{ HKEY_LOCAL_MACHINE, L"Common Startup", At(L"c\\from") };
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
    const ULONGLONG nStart = GetTickCount64();
    unsigned int nGroups = 0;
    std::vector<std::wstring> earlier;
    {
        CFence fence(At(L"c"));
        Walk(fence, "Shell Link: a"); // what is allocated, or noted down by the system, once and for all
        earlier = TakeMachinePicture();
        const DWORD nHandles = OpenHandles();
        for (unsigned int i = 0; i < nLists; i++)
        {
            m_report.Begin(nFirst + i);
            g_nInstallKind = i % 3 == 0 ? KIND_PORTABLE : KIND_ALL_USERS;
            ASSERT_EQ(Walk(fence, HostileList(nFirst + i)), 0u) << "kept by number " << nFirst + i;
            nGroups += m_szGroup[0] != 0;
            if (i % 100 != 0)
                continue;
            ASSERT_EQ(DamagedBlocks(), 0u) << "one of the hundred lists up to number " << nFirst + i;
            PutPackage();
        }
        EXPECT_EQ(DamagedBlocks(), 0u) << "one of the last hundred lists";
        EXPECT_EQ(OpenHandles(), nHandles);
        EXPECT_GT(fence.Refused(), static_cast<int>(nLists / 100));
        EXPECT_GT(fence.Allowed(), static_cast<int>(nLists / 10));
        EXPECT_GT(fence.LeftToBoot(), static_cast<int>(nLists / 100));
        EXPECT_GT(nGroups, nLists / 2000);
        printf("%u lists: %d changes, %d refused, %d left to the boot, %u groups\n", nLists, fence.Allowed(),
               fence.Refused(), fence.LeftToBoot(), nGroups);
    }
    printf("%llu seconds\n", (GetTickCount64() - nStart) / 1000);
    std::vector<std::wstring> difference = PictureDifference(earlier, TakeMachinePicture());
    const auto isOurs = [this](const std::wstring& strLine) { return strLine.find(Folder()) != std::wstring::npos; };
    difference.erase(std::remove_if(difference.begin(), difference.end(), isOurs), difference.end());
    EXPECT_EQ(JoinLines(difference), "");
}

// Each way through a list has something of its own to do at the end.
TEST_F(HostileInput, ListOfAHundredThousandLinesIsWalkedToItsEndInTheMemoryOfAShortOne)
{
    const std::string strEnd =
        "File Copy: last\\a.txt\nMake Dir: gone\nShell Link: ~\\Last\\a.lnk\nMade Dir: ~\\made\n";
    CFence fence(At(L"c"));
    Walk(fence, LongHostileList(1, 1000)); // what is allocated once and for all
    size_t acbMost[2];
    for (const bool bLong : { false, true })
    {
        PutPackage();
        for (const wchar_t* pszFile : { L"from\\last\\a.txt", L"Last\\a.lnk" })
            WriteBytes(At(L"c\\") + pszFile, "");
        for (const wchar_t* pszFolder : { L"to\\gone", L"made" })
            MakeFolder(At(L"c\\") + pszFolder);
        EXPECT_EQ(Walk(fence, LongHostileList(1, bLong ? 100000 : 1000) + strEnd), 0u);
        acbMost[bLong] = fence.MostBytesOfRun();
        EXPECT_STREQ(m_szGroup, L"Last");
        EXPECT_TRUE(IsThere(At(L"c\\to\\last"))) << "the install copied no file";
        for (const wchar_t* pszRemoved : { L"to\\last\\a.txt", L"to\\gone", L"Last\\a.lnk", L"made" })
            EXPECT_FALSE(IsThere(At(L"c\\") + pszRemoved)) << JoinLines({ pszRemoved });
    }
    EXPECT_LT(acbMost[1], acbMost[0] + 16384); // long values, not the two million characters
    EXPECT_EQ(DamagedBlocks(), 0u);
}

} // namespace
