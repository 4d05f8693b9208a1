// Clipboard, WOW64 state, free file names and the parent process, read back from the platform. The list of processes
// is given by the tests.
#include <gtest/gtest.h>
#include <time.h>
#include <windows.h>
#include <tlhelp32.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "app/RunState.h"
#include "foundation/SystemTools.h"
#include "tests/support/Corner.h"
#include "tests/support/ImportHook.h"
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

TEST_F(SystemTools, TextReplacesWhatWasOnTheClipboardUnlessItIsInUseOrRefuses)
{
    const UINT nPrivateFormat = RegisterClipboardFormatW(L"SystemToolsTest");
    ASSERT_TRUE(OpenClipboard(nullptr));
    SetClipboardData(nPrivateFormat, GlobalAlloc(GMEM_MOVEABLE, 4));
    CloseClipboard();

    const std::wstring strText = L"first\r\n\xD83D\xDE00";
    {
        CCallHook allocate("KERNEL32.dll", "GlobalAlloc", &GlobalAlloc);
        allocate.Replace(
            [&](UINT nFlags, SIZE_T cb)
            {
                EXPECT_EQ(0x2002u, nFlags);
                EXPECT_EQ(2 * (strText.size() + 1), cb);
                return allocate.Original()(nFlags, cb);
            });
        EXPECT_NE(0, CopyTextToClipboard(strText.c_str()));
    }
    EXPECT_FALSE(IsClipboardFormatAvailable(nPrivateFormat));
    EXPECT_EQ(strText, ReadClipboardText());

    CTestWindow window;
    ASSERT_TRUE(OpenClipboard(window));
    EXPECT_EQ(0, CopyTextToClipboard(L"in use"));
    CloseClipboard();
    EXPECT_EQ(strText, ReadClipboardText());

    CCallHook set("USER32.dll", "SetClipboardData", &SetClipboardData);
    set.FailAll(ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(0, CopyTextToClipboard(L"refused"));
    EXPECT_TRUE(OpenClipboard(window)) << "it is closed again";
    CloseClipboard();
    EXPECT_EQ(L"(none)", ReadClipboardText());
}

TEST_F(SystemTools, Wow64IsAskedOfTheGivenOrTheCurrentProcessAndIsZeroWhereItCannotBe)
{
    static HANDLE s_hAsked;
    g_pfnIsWow64ProcessOf = [](HANDLE hProcess, BOOL* pbWow64) { return s_hAsked = hProcess, *pbWow64 = TRUE; };
    const HANDLE hOther = reinterpret_cast<HANDLE>(0x1234);
    EXPECT_NE(0, IsWow64Of(nullptr));
    EXPECT_EQ(GetCurrentProcess(), s_hAsked);
    EXPECT_NE(0, IsWow64Of(hOther));
    EXPECT_EQ(hOther, s_hAsked);
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

// The list of processes gives this one a parent: itself, so that its program's path is known.
class SystemToolsParent : public testing::Test
{
protected:
    SystemToolsParent()
    {
        GetModuleFileNameW(nullptr, m_szProgram, MAX_PATH);
        const auto give = [this](HANDLE, PROCESSENTRY32W* pEntry)
        {
            EXPECT_EQ(568u, pEntry->dwSize);
            if (m_nGiven == m_entries.size())
                return FALSE;
            std::tie(pEntry->th32ProcessID, pEntry->th32ParentProcessID) = m_entries[m_nGiven++];
            return TRUE;
        };
        m_first.Replace(give);
        m_next.Replace(give);
    }

    DWORD Ask()
    {
        m_nGiven = 0;
        wcscpy_s(m_szPath, L"untouched");
        return GetParentProcess(m_szPath, MAX_PATH);
    }

    const DWORD m_nSelf = GetCurrentProcessId();
    std::vector<std::pair<DWORD, DWORD>> m_entries{ { m_nSelf, m_nSelf } }; // ids of process and parent
    size_t m_nGiven = 0;
    wchar_t m_szProgram[MAX_PATH];
    wchar_t m_szPath[MAX_PATH];
    CCallHook<decltype(&Process32FirstW)> m_first{ "KERNEL32.dll", "Process32FirstW" };
    CCallHook<decltype(&Process32NextW)> m_next{ "KERNEL32.dll", "Process32NextW" };
};

} // namespace

TEST_F(SystemToolsParent, FirstEntryOfTheProcessThatNamesAParentCountsAndTheListStaysOpen)
{
    HANDLE hSnapshot = nullptr;
    CCallHook snapshot("KERNEL32.dll", "CreateToolhelp32Snapshot", &CreateToolhelp32Snapshot);
    snapshot.Replace(
        [&](DWORD nFlags, DWORD nProcess)
        {
            EXPECT_EQ(2u, nFlags);
            return hSnapshot = snapshot.Original()(nFlags, nProcess);
        });
    m_entries = { { m_nSelf, 0 }, { 40000, 50000 }, { m_nSelf, 60000 }, { m_nSelf, 70000 } };
    EXPECT_EQ(60000u, GetParentProcess(nullptr, 0));
    EXPECT_EQ(3u, m_nGiven);
    EXPECT_TRUE(CloseHandle(hSnapshot));
    m_entries = { { 40000, 50000 } };
    EXPECT_EQ(0u, Ask());
    EXPECT_STREQ(L"untouched", m_szPath);
    snapshot.FailAll(ERROR_ACCESS_DENIED, INVALID_HANDLE_VALUE);
    EXPECT_EQ(0u, Ask());
    EXPECT_EQ(0u, m_nGiven);
}

TEST_F(SystemToolsParent, PathNeedsBufferSizeAndAParentThatCanBeOpened)
{
    CCallHook open("KERNEL32.dll", "OpenProcess", &OpenProcess);
    open.Replace([](DWORD nAccess, BOOL, DWORD) -> HANDLE { return nAccess == 1040 ? nullptr : GetCurrentProcess(); });
    EXPECT_EQ(m_nSelf, GetParentProcess(nullptr, MAX_PATH));
    m_nGiven = 0;
    EXPECT_EQ(m_nSelf, GetParentProcess(m_szPath, 0));
    EXPECT_EQ(0, open.Calls());
    EXPECT_EQ(m_nSelf, Ask());
    EXPECT_EQ(1, open.Calls());
    EXPECT_STREQ(L"untouched", m_szPath);
}

TEST_F(SystemToolsParent, FunctionThatReadsThePathIsLookedForInTwoLibraries)
{
    const struct
    {
        std::wstring strMissing; // modules and functions
        std::vector<std::wstring> loaded;
        int nFreed;
        bool bPath;
    } cases[] = {
        { L"", {}, 0, true },
        { L"handle", { L"Kernel32.DLL" }, 0, true },
        { L"handle Kernel32.DLL", { L"Kernel32.DLL" }, 0, false },
        { L"K32GetModuleFileNameExW", { L"Psapi.dll" }, 1, true },
        { L"K32GetModuleFileNameExW Psapi.dll", { L"Psapi.dll" }, 0, false },
        { L"K32GetModuleFileNameExW GetModuleFileNameExW", { L"Psapi.dll" }, 1, false },
    };
    for (const auto& c : cases)
    {
        const auto isMissing = [&](const std::wstring& strName)
        { return (L" " + c.strMissing + L" ").find(L" " + strName + L" ") != std::wstring::npos; };
        CCallHook find("KERNEL32.dll", "GetProcAddress", &GetProcAddress);
        find.Replace(
            [&](HMODULE hModule, const char* pszName) {
                return isMissing(std::wstring(pszName, pszName + strlen(pszName))) ? nullptr
                                                                                   : find.Original()(hModule, pszName);
            });
        CCallHook load("KERNEL32.dll", "LoadLibraryW", &LoadLibraryW);
        load.Replace([&](const wchar_t* pszFile) { return isMissing(pszFile) ? nullptr : load.Original()(pszFile); });
        CCallHook free("KERNEL32.dll", "FreeLibrary", &FreeLibrary);
        CCallHook handle("KERNEL32.dll", "GetModuleHandleW", &GetModuleHandleW);
        if (isMissing(L"handle"))
            handle.FailAll(ERROR_MOD_NOT_FOUND);
        EXPECT_EQ(m_nSelf, Ask());
        EXPECT_EQ(c.loaded, load.Texts());
        EXPECT_EQ(c.nFreed, free.Calls());
        EXPECT_STREQ(c.bPath ? m_szProgram : L"untouched", m_szPath);
    }
}
