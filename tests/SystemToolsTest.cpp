// Clipboard, WOW64 state, free file names and the parent process, read back from the platform. A child process that
// never runs stands for the current one where a parent is asked for, so that the parent is known: it is the test
// program.
#include <gtest/gtest.h>
#include <time.h>
#include <windows.h>
#include <tlhelp32.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "app/RunState.h"
#include "foundation/SystemTools.h"
#include "tests/support/Corner.h"
#include "tests/support/Files.h"
#include "tests/support/ImportHook.h"

namespace
{

std::wstring ReadClipboardText()
{
    std::wstring text = L"(none)";
    if (!OpenClipboard(nullptr))
        return L"(busy)";
    if (HANDLE hBlock = GetClipboardData(CF_UNICODETEXT))
    {
        text = static_cast<const wchar_t*>(GlobalLock(hBlock));
        GlobalUnlock(hBlock);
    }
    CloseClipboard();
    return text;
}

// Holds the clipboard open, as a program that works with it does.
class CClipboardHold
{
public:
    CClipboardHold() { m_bHeld = OpenClipboard(m_hWindow); }
    ~CClipboardHold()
    {
        CloseClipboard();
        DestroyWindow(m_hWindow);
    }
    bool IsHeld() const { return m_bHeld; }

private:
    HWND m_hWindow = CreateWindowW(L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    bool m_bHeld;
};

} // namespace

TEST(SystemToolsClipboard, TextReplacesWhatWasThere)
{
    const UINT nPrivateFormat = RegisterClipboardFormatW(L"SystemToolsTest");
    ASSERT_TRUE(OpenClipboard(nullptr));
    EmptyClipboard();
    SetClipboardData(nPrivateFormat, GlobalAlloc(GMEM_MOVEABLE, 4));
    CloseClipboard();
    ASSERT_TRUE(IsClipboardFormatAvailable(nPrivateFormat));

    for (const wchar_t* pszText : { L"first\r\nline", L"\x4E00\xD83D\xDE00", L"" })
    {
        EXPECT_NE(0, CopyTextToClipboard(pszText));
        EXPECT_EQ(pszText, ReadClipboardText());
        EXPECT_FALSE(IsClipboardFormatAvailable(nPrivateFormat));
    }
}

TEST(SystemToolsClipboard, ClipboardInUseElsewhereIsLeftAlone)
{
    ASSERT_NE(0, CopyTextToClipboard(L"before"));
    {
        CClipboardHold hold;
        ASSERT_TRUE(hold.IsHeld());
        EXPECT_EQ(0, CopyTextToClipboard(L"after"));
    }
    EXPECT_EQ(L"before", ReadClipboardText());
}

TEST(SystemToolsClipboard, RefusedTextGivesZeroAndTheClipboardIsClosed)
{
    {
        CCallHook set("USER32.dll", "SetClipboardData", &SetClipboardData);
        set.FailAll(ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(0, CopyTextToClipboard(L"refused"));
        EXPECT_EQ(1, set.Calls());
    }
    EXPECT_TRUE(CClipboardHold().IsHeld());
    EXPECT_EQ(L"(none)", ReadClipboardText());
}

TEST(SystemToolsClipboard, BlockIsMoveableAndSharedAndHoldsTheTerminator)
{
    CCallHook allocate("KERNEL32.dll", "GlobalAlloc", &GlobalAlloc);
    allocate.Replace(
        [&](UINT nFlags, SIZE_T cb)
        {
            EXPECT_EQ(0x2002u, nFlags);
            EXPECT_EQ(12u, cb);
            return allocate.Original()(nFlags, cb);
        });
    CopyTextToClipboard(L"12345");
    EXPECT_EQ(1, allocate.Calls());
}

namespace
{

HANDLE g_hAskedProcess;

BOOL WINAPI SayWow64(HANDLE hProcess, BOOL* pbWow64)
{
    g_hAskedProcess = hProcess;
    *pbWow64 = TRUE;
    return TRUE;
}

BOOL WINAPI RefuseWow64(HANDLE, BOOL*)
{
    return FALSE;
}

class SystemToolsWow64 : public testing::Test
{
protected:
    void TearDown() override { g_pfnIsWow64ProcessOf = m_pfnBound; }

    decltype(&IsWow64Process) m_pfnBound = g_pfnIsWow64ProcessOf;
};

} // namespace

TEST_F(SystemToolsWow64, NullStandsForTheCurrentProcess)
{
    EXPECT_EQ(0, IsWow64Of(nullptr)) << "a 64-bit program";
    HANDLE hOther = reinterpret_cast<HANDLE>(0x1234);
    g_pfnIsWow64ProcessOf = SayWow64;
    EXPECT_NE(0, IsWow64Of(nullptr));
    EXPECT_EQ(GetCurrentProcess(), g_hAskedProcess);
    EXPECT_NE(0, IsWow64Of(hOther));
    EXPECT_EQ(hOther, g_hAskedProcess);
}

TEST_F(SystemToolsWow64, WhatCannotBeAskedIsZero)
{
    g_pfnIsWow64ProcessOf = RefuseWow64;
    EXPECT_EQ(0, IsWow64Of(nullptr));
    g_pfnIsWow64ProcessOf = nullptr;
    EXPECT_EQ(0, IsWow64Of(nullptr));
}

namespace
{

// Time stands still, at a value that each test sets.
class SystemToolsTempName : public MachineCorner
{
protected:
    void SetUp() override
    {
        MachineCorner::SetUp();
        wchar_t szTemp[MAX_PATH];
        GetTempPathW(MAX_PATH, szTemp);
        m_temp = szTemp;
        m_clock.Replace([this](__time64_t*) { return m_time; });
    }

    std::wstring NameAt(__time64_t time)
    {
        m_time = time;
        return std::wstring(MakeTempName(L"b", L"a", Folder().c_str()));
    }

    std::wstring m_temp; // with its backslash
    __time64_t m_time = 0x5ABCDEF12;
    CCallHook<decltype(&_time64)> m_clock{ "msvcrt.dll", "_time64", &_time64 };
};

} // namespace

TEST_F(SystemToolsTempName, FolderPrefixCounterAndExtensionMakeTheName)
{
    std::wstring slashes = Folder();
    for (wchar_t& ch : slashes)
        ch = ch == L'\\' ? L'/' : ch;
    const std::wstring folder = Folder();
    const struct
    {
        const wchar_t* pszExtension;
        const wchar_t* pszPrefix;
        std::wstring folder;
        std::wstring expected;
    } cases[] = {
        { L"dat", L"Pre", folder, folder + L"\\PreBCDEF12.dat" },
        { L".dat", L"Pre", folder + L"\\", folder + L"\\PreBCDEF12.dat" },
        { L"..dat", L"Pre", slashes + L"/", folder + L"\\PreBCDEF12..dat" },
        { L"", L"", slashes + L"//", folder + L"\\\\BCDEF12." },
        { L".", nullptr, folder + L"\\missing", m_temp + L"LUMBCDEF12." },
        { nullptr, L"Pre", L"", m_temp + L"PreBCDEF12.TMP" },
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.expected, std::wstring(MakeTempName(c.pszExtension, c.pszPrefix, c.folder.c_str())));
    EXPECT_EQ(m_temp + L"LUMBCDEF12.TMP", std::wstring(MakeTempName(nullptr, nullptr, nullptr)));
    EXPECT_TRUE(ListTree(folder).empty()) << "made on disk";
}

TEST_F(SystemToolsTempName, CounterIsTheLow28BitsOfTheTimeWithoutLeadingZeros)
{
    EXPECT_EQ(At(L"aAB.b"), NameAt(0x2000000AB));
    EXPECT_EQ(At(L"aFFFFFFF.b"), NameAt(0x1FFFFFFFF));
    EXPECT_EQ(At(L"a0.b"), NameAt(0x10000000));
}

TEST_F(SystemToolsTempName, TakenNamesAreSteppedOverBeyondThe28Bits)
{
    for (const wchar_t* pszName : { L"aFFFFFFE.b", L"aFFFFFFF.b", L"a10000001.b" })
        WriteBytes(At(pszName), "");
    EXPECT_EQ(At(L"a10000000.b"), NameAt(0x1FFFFFFFE));
    WriteBytes(At(L"a10000000.b"), "");
    EXPECT_EQ(At(L"a10000002.b"), NameAt(0x1FFFFFFFE));
}

TEST_F(SystemToolsTempName, MissingTemporaryFolderLeavesTheRootOfTheDrive)
{
    CCallHook path("KERNEL32.dll", "GetTempPathW", &GetTempPathW);
    path.FailAll(ERROR_ACCESS_DENIED);
    EXPECT_STREQ(L"\\aBCDEF12.b", MakeTempName(L"b", L"a", nullptr));
}

namespace
{

class SystemToolsParent : public testing::Test
{
protected:
    void SetUp() override
    {
        GetModuleFileNameW(nullptr, m_szProgram, MAX_PATH);
        STARTUPINFOW startup = {};
        startup.cb = sizeof(startup);
        ASSERT_TRUE(CreateProcessW(m_szProgram, nullptr, nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr, nullptr,
                                   &startup, &m_child));
        m_self.Replace([this] { return m_child.dwProcessId; });
    }

    void TearDown() override
    {
        TerminateProcess(m_child.hProcess, 0);
        WaitForSingleObject(m_child.hProcess, 5000);
        CloseHandle(m_child.hThread);
        CloseHandle(m_child.hProcess);
    }

    DWORD Ask()
    {
        wcscpy_s(m_szPath, L"untouched");
        return GetParentProcess(m_szPath, MAX_PATH);
    }

    PROCESS_INFORMATION m_child = {};
    wchar_t m_szProgram[MAX_PATH];
    wchar_t m_szPath[MAX_PATH];
    const DWORD m_nTestProgram = GetCurrentProcessId();
    CCallHook<decltype(&GetCurrentProcessId)> m_self{ "KERNEL32.dll", "GetCurrentProcessId", &GetCurrentProcessId };
    CCallHook<decltype(&OpenProcess)> m_open{ "KERNEL32.dll", "OpenProcess", &OpenProcess };
};

} // namespace

TEST_F(SystemToolsParent, ParentIsFoundAndItsProgramGoesIntoTheBuffer)
{
    m_open.Replace(
        [this](DWORD nAccess, BOOL bInherit, DWORD nProcess)
        {
            EXPECT_EQ(1040u, nAccess);
            return m_open.Original()(nAccess, bInherit, nProcess);
        });
    EXPECT_EQ(m_nTestProgram, Ask());
    EXPECT_STREQ(m_szProgram, m_szPath);
}

TEST_F(SystemToolsParent, BufferOrSizeOfZeroAsksForTheIdAlone)
{
    EXPECT_EQ(m_nTestProgram, GetParentProcess(nullptr, 0));
    EXPECT_EQ(m_nTestProgram, GetParentProcess(nullptr, MAX_PATH));
    EXPECT_EQ(m_nTestProgram, GetParentProcess(m_szPath, 0));
    EXPECT_EQ(0, m_open.Calls());
}

TEST_F(SystemToolsParent, SnapshotOfProcessesStaysOpen)
{
    HANDLE hSnapshot = nullptr;
    CCallHook snapshot("KERNEL32.dll", "CreateToolhelp32Snapshot", &CreateToolhelp32Snapshot);
    snapshot.Replace(
        [&](DWORD nFlags, DWORD nProcess)
        {
            EXPECT_EQ(2u, nFlags);
            return hSnapshot = snapshot.Original()(nFlags, nProcess);
        });
    Ask();
    EXPECT_TRUE(CloseHandle(hSnapshot));
}

TEST_F(SystemToolsParent, WithoutASnapshotOrAnEntryThereIsNoParent)
{
    {
        CCallHook snapshot("KERNEL32.dll", "CreateToolhelp32Snapshot", &CreateToolhelp32Snapshot);
        snapshot.FailAll(ERROR_ACCESS_DENIED, INVALID_HANDLE_VALUE);
        EXPECT_EQ(0u, Ask());
        EXPECT_EQ(0, m_open.Calls());
    }
    m_self.Replace([] { return 0x7FFFFFF0u; });
    EXPECT_EQ(0u, Ask());
    EXPECT_STREQ(L"untouched", m_szPath);
}

TEST_F(SystemToolsParent, SearchGoesOnUntilAnEntryOfTheProcessNamesAParent)
{
    const DWORD nSelf = m_child.dwProcessId;
    const DWORD entries[][2] = { { nSelf, 0 }, { 40000, 50000 }, { nSelf, 60000 }, { nSelf, 70000 } };
    size_t nEntry = 0;
    const auto giveEntry = [&](HANDLE, PROCESSENTRY32W* pEntry)
    {
        EXPECT_EQ(568u, pEntry->dwSize);
        if (nEntry == _countof(entries))
            return FALSE;
        pEntry->th32ProcessID = entries[nEntry][0];
        pEntry->th32ParentProcessID = entries[nEntry][1];
        ++nEntry;
        return TRUE;
    };
    CCallHook first("KERNEL32.dll", "Process32FirstW", &Process32FirstW);
    CCallHook next("KERNEL32.dll", "Process32NextW", &Process32NextW);
    first.Replace(giveEntry);
    next.Replace(giveEntry);
    EXPECT_EQ(60000u, GetParentProcess(nullptr, 0));
    EXPECT_EQ(1, first.Calls());
}

TEST_F(SystemToolsParent, ParentThatCannotBeOpenedLeavesTheBuffer)
{
    m_open.FailAll(ERROR_ACCESS_DENIED);
    EXPECT_EQ(m_nTestProgram, Ask());
    EXPECT_STREQ(L"untouched", m_szPath);
}

TEST_F(SystemToolsParent, FunctionThatReadsThePathIsLookedForInTwoLibraries)
{
    const std::string kernelName = "K32GetModuleFileNameExW";
    const std::string psapiName = "GetModuleFileNameExW";
    const struct
    {
        bool bKernelHandle;
        std::wstring missingLibrary;
        std::set<std::string> missingFunctions;
        std::vector<std::wstring> loaded;
        int nFreed;
        bool bPath;
    } cases[] = {
        { true, L"", {}, {}, 0, true },
        { false, L"", {}, { L"Kernel32.DLL" }, 0, true },
        { false, L"Kernel32.DLL", {}, { L"Kernel32.DLL" }, 0, false },
        { true, L"", { kernelName }, { L"Psapi.dll" }, 1, true },
        { true, L"Psapi.dll", { kernelName }, { L"Psapi.dll" }, 0, false },
        { true, L"", { kernelName, psapiName }, { L"Psapi.dll" }, 1, false },
    };
    for (const auto& c : cases)
    {
        CCallHook find("KERNEL32.dll", "GetProcAddress", &GetProcAddress);
        find.Replace([&](HMODULE hModule, const char* pszName)
                     { return c.missingFunctions.count(pszName) ? nullptr : find.Original()(hModule, pszName); });
        CCallHook load("KERNEL32.dll", "LoadLibraryW", &LoadLibraryW);
        load.Replace([&](const wchar_t* pszFile)
                     { return c.missingLibrary == pszFile ? nullptr : load.Original()(pszFile); });
        CCallHook free("KERNEL32.dll", "FreeLibrary", &FreeLibrary);
        {
            std::optional<CCallHook<decltype(&GetModuleHandleW)>> handle;
            if (!c.bKernelHandle)
                handle.emplace("KERNEL32.dll", "GetModuleHandleW", &GetModuleHandleW).FailAll(ERROR_MOD_NOT_FOUND);
            EXPECT_EQ(m_nTestProgram, Ask());
        }
        EXPECT_EQ(c.loaded, load.Texts());
        EXPECT_EQ(c.nFreed, free.Calls());
        EXPECT_STREQ(c.bPath ? m_szProgram : L"untouched", m_szPath);
    }
}
