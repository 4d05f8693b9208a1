// Clipboard, WOW64 state, free file names and the parent process, read back from the platform. The list of processes
// is given by the tests, but for one program that is started to tell its parent.
#include <gtest/gtest.h>
#include <stdio.h>
#include <time.h>
#include <windows.h>
#include <tlhelp32.h>

#include <set>
#include <string>
#include <vector>

#include "app/RunState.h"
#include "foundation/SystemTools.h"
#include "tests/support/ChildRole.h"
#include "tests/support/Corner.h"
#include "tests/support/ImportHook.h"
#include "tests/support/ProcessRun.h"
#include "tests/support/TestWindow.h"

namespace
{

using SystemTools = MachineCorner;

std::wstring ReadClipboardText()
{
    std::wstring text = L"(none)";
    EXPECT_TRUE(OpenClipboard(nullptr));
    if (HANDLE hBlock = GetClipboardData(CF_UNICODETEXT))
    {
        text = static_cast<const wchar_t*>(GlobalLock(hBlock));
        GlobalUnlock(hBlock);
    }
    CloseClipboard();
    return text;
}

} // namespace

TEST_F(SystemTools, TextReplacesWhatWasOnTheClipboardInASharedBlockWithRoomForItsTerminator)
{
    const UINT nPrivateFormat = RegisterClipboardFormatW(L"SystemToolsTest");
    ASSERT_TRUE(OpenClipboard(nullptr));
    SetClipboardData(nPrivateFormat, GlobalAlloc(GMEM_MOVEABLE, 4));
    CloseClipboard();

    CCallHook allocate("KERNEL32.dll", "GlobalAlloc", &GlobalAlloc);
    for (const wchar_t* pszText : { L"first\r\nline", L"\x4E00\xD83D\xDE00", L"" })
    {
        allocate.Replace(
            [&](UINT nFlags, SIZE_T cb)
            {
                EXPECT_EQ(0x2002u, nFlags);
                EXPECT_EQ(2 * (wcslen(pszText) + 1), cb);
                return allocate.Original()(nFlags, cb);
            });
        EXPECT_NE(0, CopyTextToClipboard(pszText));
        EXPECT_EQ(pszText, ReadClipboardText());
        EXPECT_FALSE(IsClipboardFormatAvailable(nPrivateFormat));
    }
}

TEST_F(SystemTools, ClipboardInUseIsLeftAloneAndOneThatRefusesIsClosedAgain)
{
    CTestWindow window;
    ASSERT_NE(0, CopyTextToClipboard(L"before"));
    ASSERT_TRUE(OpenClipboard(window));
    EXPECT_EQ(0, CopyTextToClipboard(L"after"));
    CloseClipboard();
    EXPECT_EQ(L"before", ReadClipboardText());

    CCallHook set("USER32.dll", "SetClipboardData", &SetClipboardData);
    set.FailAll(ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(0, CopyTextToClipboard(L"refused"));
    EXPECT_TRUE(OpenClipboard(window));
    CloseClipboard();
    EXPECT_EQ(L"(none)", ReadClipboardText());
}

TEST_F(SystemTools, Wow64IsAskedOfTheGivenOrTheCurrentProcessAndIsZeroWhereItCannotBe)
{
    EXPECT_EQ(0, IsWow64Of(nullptr)) << "a 64-bit program";
    static HANDLE s_hAsked;
    g_pfnIsWow64ProcessOf = [](HANDLE hProcess, BOOL* pbWow64)
    {
        s_hAsked = hProcess;
        return *pbWow64 = TRUE;
    };
    const HANDLE hOther = reinterpret_cast<HANDLE>(0x1234);
    EXPECT_NE(0, IsWow64Of(nullptr));
    EXPECT_EQ(GetCurrentProcess(), s_hAsked);
    EXPECT_NE(0, IsWow64Of(hOther));
    EXPECT_EQ(hOther, s_hAsked);
    g_pfnIsWow64ProcessOf = [](HANDLE, BOOL*) { return FALSE; };
    EXPECT_EQ(0, IsWow64Of(nullptr));
    g_pfnIsWow64ProcessOf = nullptr;
    EXPECT_EQ(0, IsWow64Of(nullptr));
}

TEST_F(SystemTools, FolderPrefixTimeAndExtensionMakeAFreeName)
{
    __time64_t time = 0;
    CCallHook clock("msvcrt.dll", "_time64", &_time64);
    clock.Replace([&](__time64_t*) { return time; });
    wchar_t szTemp[MAX_PATH];
    GetTempPathW(MAX_PATH, szTemp);
    const std::wstring temp = szTemp; // with its backslash
    const std::wstring folder = Folder();
    const std::wstring slashes = L"C:/" + folder.substr(3);
    for (const wchar_t* pszTaken : { L"aFFFFFFE.b", L"aFFFFFFF.b", L"a10000001.b" })
        WriteBytes(At(pszTaken), "");
    const struct
    {
        __time64_t time;
        const wchar_t* pszExtension;
        const wchar_t* pszPrefix;
        std::wstring folder;
        std::wstring expected;
    } cases[] = {
        { 0x5ABCDEF12, L"dat", L"Pre", folder, folder + L"\\PreBCDEF12.dat" },
        { 0x5ABCDEF12, L"..dat", L"Pre", slashes + L"/", folder + L"\\PreBCDEF12..dat" },
        { 0x5ABCDEF12, L"", L"", folder + L"\\/", folder + L"\\\\BCDEF12." },
        { 0x5ABCDEF12, L".", nullptr, folder + L"\\missing", temp + L"LUMBCDEF12." },
        { 0x5ABCDEF12, nullptr, L"Pre", L"", temp + L"PreBCDEF12.TMP" },
        { 0x2000000AB, L"b", L"a", folder, At(L"aAB.b") },
        { 0x10000000, L"b", L"a", folder, At(L"a0.b") },
        { 0x1FFFFFFFE, L"b", L"a", folder, At(L"a10000000.b") }, // steps over names beyond the 28 bits
    };
    for (const auto& c : cases)
    {
        time = c.time;
        EXPECT_EQ(c.expected, MakeTempName(c.pszExtension, c.pszPrefix, c.folder.c_str()).GetString());
        EXPECT_FALSE(IsThere(c.expected));
    }
    EXPECT_EQ(temp + L"LUMFFFFFFE.TMP", MakeTempName(nullptr, nullptr, nullptr).GetString());

    CCallHook path("KERNEL32.dll", "GetTempPathW", &GetTempPathW);
    path.FailAll(ERROR_ACCESS_DENIED);
    EXPECT_STREQ(L"\\aFFFFFFE.b", MakeTempName(L"b", L"a", nullptr)) << "from the root of the drive";
}

namespace
{

int TellParent()
{
    wchar_t szPath[MAX_PATH] = L"";
    const DWORD nParent = GetParentProcess(szPath, MAX_PATH);
    return printf("%lu %ls", nParent, szPath) < 0;
}

const CChildRole s_parent(L"parent", TellParent);

// The list of processes gives this one a parent: itself, so that its program's path is known.
class SystemToolsParent : public testing::Test
{
protected:
    struct ENTRY
    {
        DWORD nProcess, nParent;
    };

    void SetUp() override
    {
        GetModuleFileNameW(nullptr, m_szProgram, MAX_PATH);
        m_first.Replace([this](HANDLE, PROCESSENTRY32W* pEntry) { return GiveEntry(pEntry); });
        m_next.Replace([this](HANDLE, PROCESSENTRY32W* pEntry) { return GiveEntry(pEntry); });
    }

    BOOL GiveEntry(PROCESSENTRY32W* pEntry)
    {
        EXPECT_EQ(568u, pEntry->dwSize);
        if (m_nGiven == m_entries.size())
            return FALSE;
        pEntry->th32ProcessID = m_entries[m_nGiven].nProcess;
        pEntry->th32ParentProcessID = m_entries[m_nGiven].nParent;
        ++m_nGiven;
        return TRUE;
    }

    DWORD Ask()
    {
        m_nGiven = 0;
        wcscpy_s(m_szPath, L"untouched");
        return GetParentProcess(m_szPath, MAX_PATH);
    }

    const DWORD m_nSelf = GetCurrentProcessId();
    std::vector<ENTRY> m_entries{ { m_nSelf, m_nSelf } };
    size_t m_nGiven = 0;
    wchar_t m_szProgram[MAX_PATH];
    wchar_t m_szPath[MAX_PATH];
    CCallHook<decltype(&Process32FirstW)> m_first{ "KERNEL32.dll", "Process32FirstW", &Process32FirstW };
    CCallHook<decltype(&Process32NextW)> m_next{ "KERNEL32.dll", "Process32NextW", &Process32NextW };
    CCallHook<decltype(&OpenProcess)> m_open{ "KERNEL32.dll", "OpenProcess", &OpenProcess };
};

} // namespace

TEST_F(SystemToolsParent, StartedProgramFindsThisOneByItsIdAndPath)
{
    CProcessRun child(CChildRole::CommandLine(L"parent"));
    ASSERT_TRUE(child.Start());
    ASSERT_TRUE(child.WaitForEnd());
    const std::wstring expected = std::to_wstring(m_nSelf) + L" " + m_szProgram;
    EXPECT_EQ(std::string(expected.begin(), expected.end()), child.Output());
}

TEST_F(SystemToolsParent, SearchEndsWithTheFirstEntryOfTheProcessThatNamesAParent)
{
    m_entries = { { m_nSelf, 0 }, { 40000, 50000 }, { m_nSelf, 60000 }, { m_nSelf, 70000 } };
    EXPECT_EQ(60000u, GetParentProcess(nullptr, 0));
    EXPECT_EQ(3u, m_nGiven);
    m_entries = { { 40000, 50000 } };
    EXPECT_EQ(0u, Ask());
    EXPECT_STREQ(L"untouched", m_szPath);
}

TEST_F(SystemToolsParent, SnapshotOfProcessesStaysOpenAndWithoutItThereIsNoParent)
{
    HANDLE hSnapshot = nullptr;
    CCallHook snapshot("KERNEL32.dll", "CreateToolhelp32Snapshot", &CreateToolhelp32Snapshot);
    snapshot.Replace(
        [&](DWORD nFlags, DWORD nProcess)
        {
            EXPECT_EQ(2u, nFlags);
            return hSnapshot = snapshot.Original()(nFlags, nProcess);
        });
    EXPECT_EQ(m_nSelf, Ask());
    EXPECT_TRUE(CloseHandle(hSnapshot));
    snapshot.FailAll(ERROR_ACCESS_DENIED, INVALID_HANDLE_VALUE);
    EXPECT_EQ(0u, Ask());
    EXPECT_EQ(0u, m_nGiven);
}

TEST_F(SystemToolsParent, PathNeedsBufferSizeAndAParentThatCanBeOpened)
{
    for (wchar_t* pszPath : { static_cast<wchar_t*>(nullptr), m_szPath })
    {
        m_nGiven = 0;
        EXPECT_EQ(m_nSelf, GetParentProcess(pszPath, pszPath != nullptr ? 0 : MAX_PATH));
    }
    EXPECT_EQ(0, m_open.Calls());
    m_open.Replace(
        [](DWORD nAccess, BOOL, DWORD) -> HANDLE
        {
            EXPECT_EQ(1040u, nAccess);
            return nullptr;
        });
    EXPECT_EQ(m_nSelf, Ask());
    EXPECT_EQ(1, m_open.Calls());
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
        CCallHook handle("KERNEL32.dll", "GetModuleHandleW", &GetModuleHandleW);
        if (!c.bKernelHandle)
            handle.FailAll(ERROR_MOD_NOT_FOUND);
        EXPECT_EQ(m_nSelf, Ask());
        EXPECT_EQ(c.loaded, load.Texts());
        EXPECT_EQ(c.nFreed, free.Calls());
        EXPECT_STREQ(c.bPath ? m_szProgram : L"untouched", m_szPath);
    }
}
