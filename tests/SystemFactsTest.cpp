// What the machine answers about its folders and itself: the shell's word, the registry where the shell fails, and
// the two questions about Windows.
#include "foundation/SystemFacts.h"

#include <gtest/gtest.h>
#include <shlobj.h>

#include <string>
#include <utility>

#include "app/RunState.h"
#include "tests/support/Corner.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Machine.h"

const wchar_t kShellFolders[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

class SystemFacts : public MachineCorner
{
};

TEST_F(SystemFacts, TheShellGivesAFolderAndMakesItIfItIsMissing)
{
    const std::wstring strLong = At(L"new\\") + std::wstring(200, L'p');
    const CFolderRedirection programs(HKEY_LOCAL_MACHINE, L"Common Programs", strLong);
    EXPECT_STREQ(GetSpecialFolder(CSIDL_COMMON_PROGRAMS), strLong.c_str());
    EXPECT_TRUE(IsThere(strLong));
}

TEST_F(SystemFacts, WhereTheShellFailsTheRegistryNamesTheFolder)
{
    CRegistryCorner registry;
    registry.Clear(HKEY_CURRENT_USER, kShellFolders);
    registry.Clear(HKEY_LOCAL_MACHINE, kShellFolders);
    HRESULT hrShell = S_FALSE; // no failure
    CCallHook shell("SHELL32.dll", "SHGetFolderPathW", &SHGetFolderPathW);
    shell.Replace(
        [&](HWND, int, HANDLE, DWORD, wchar_t* pszPath)
        {
            wcscpy(pszPath, L"C:\\from the shell");
            return hrShell;
        });
    EXPECT_STREQ(GetSpecialFolder(0), L"C:\\from the shell");

    hrShell = E_FAIL;
    const std::pair<int, std::wstring> rows[] = { { 0, L"Desktop" },
                                                  { 2, L"Programs" },
                                                  { 5, L"Personal" },
                                                  { 7, L"Startup" },
                                                  { 26, L"AppData" },
                                                  { 39, L"MyPictures" },
                                                  { -1, L"" },
                                                  { 999, L"" },
                                                  { 23, L"Common Programs" },
                                                  { 24, L"Common Startup" },
                                                  { 25, L"Common Desktop" },
                                                  { 35, L"Common AppData" },
                                                  { 46, L"Common Documents" },
                                                  { 54, L"CommonPictures" } };
    for (const auto& [nFolder, strName] : rows)
    {
        const HKEY hRoot = strName.compare(0, 6, L"Common") == 0 ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
        SetKeyText(hRoot, kShellFolders, strName, L"");
        EXPECT_STREQ(GetSpecialFolder(nFolder), L"") << nFolder;
        SetKeyText(hRoot, kShellFolders, strName, L"D:\\" + strName);
        EXPECT_STREQ(GetSpecialFolder(nFolder), (L"D:\\" + strName).c_str()) << nFolder;
    }
}

TEST_F(SystemFacts, WindowsVistaAndLaterCountAsNT6)
{
    for (const int nMajor : { 0, 5, 6, 10 })
    {
        g_osVersion.dwMajorVersion = nMajor;
        EXPECT_EQ(IsNT6OrLater() != 0, nMajor > 5) << nMajor;
    }
}

TEST_F(SystemFacts, IsWow64IsTheBoundFunctionsAnswerForThisProcess)
{
    g_pfnIsWow64Process = nullptr;
    EXPECT_EQ(IsWow64(), 0);
    g_pfnIsWow64Process = [](HANDLE, BOOL*) { return FALSE; };
    EXPECT_EQ(IsWow64(), 0);
    g_pfnIsWow64Process = [](HANDLE hProcess, BOOL* pbWow64) { return *pbWow64 = hProcess == GetCurrentProcess(); };
    EXPECT_NE(IsWow64(), 0);
}
