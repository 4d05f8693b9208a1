// What the machine answers about its folders and itself: the shell's word, the registry where the shell fails, and
// the two questions about Windows.
#include "foundation/SystemFacts.h"

#include <gtest/gtest.h>
#include <shlobj.h>

#include <string>
#include <tuple>
#include <utility>

#include "app/RunState.h"
#include "tests/support/Corner.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Machine.h"
#include "tests/support/RegistryCorner.h"

const wchar_t kShellFolders[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

class SystemFacts : public MachineCorner
{
protected:
    void SetUp() override
    {
        MachineCorner::SetUp();
        m_registry.Clear(HKEY_CURRENT_USER, kShellFolders);
        m_registry.Clear(HKEY_LOCAL_MACHINE, kShellFolders);
    }

    CRegistryCorner m_registry;
};

TEST_F(SystemFacts, TheShellGivesAFolderAndMakesItIfItIsMissing)
{
    const std::wstring strLong = At(L"new\\") + std::wstring(200, L'p');
    const CFolderRedirection desktop(HKEY_CURRENT_USER, L"Desktop", At(L"new\\desktop"));
    const CFolderRedirection programs(HKEY_LOCAL_MACHINE, L"Common Programs", strLong);
    EXPECT_STREQ(GetSpecialFolder(CSIDL_DESKTOP), At(L"new\\desktop").c_str());
    EXPECT_STREQ(GetSpecialFolder(CSIDL_COMMON_PROGRAMS), strLong.c_str());
    EXPECT_TRUE(IsThere(At(L"new\\desktop")));
    EXPECT_TRUE(IsThere(strLong));
}

TEST_F(SystemFacts, TheShellIsAskedForTheCurrentFolderAndAPositiveAnswerCounts)
{
    CCallHook shell("SHELL32.dll", "SHGetFolderPathW", &SHGetFolderPathW);
    shell.Replace(
        [](HWND hWnd, int nFolder, HANDLE hToken, DWORD nFlags, wchar_t* pszPath)
        {
            const bool bAsAgreed = hWnd == nullptr && nFolder == 0x8000 + 39 && hToken == nullptr && nFlags == 0;
            wcscpy(pszPath, L"C:\\positive");
            return bAsAgreed ? S_FALSE : E_FAIL;
        });
    EXPECT_STREQ(GetSpecialFolder(39), L"C:\\positive");
}

TEST_F(SystemFacts, WhereTheShellFailsTheRegistryNamesTheFolder)
{
    CCallHook shell("SHELL32.dll", "SHGetFolderPathW", &SHGetFolderPathW);
    shell.Replace(
        [](HWND, int, HANDLE, DWORD, wchar_t* pszPath)
        {
            wcscpy(pszPath, L"C:\\left in the buffer");
            return E_FAIL;
        });
    const std::tuple<int, HKEY, const wchar_t*> rows[] = {
        { 0, HKEY_CURRENT_USER, L"Desktop" },
        { 2, HKEY_CURRENT_USER, L"Programs" },
        { 5, HKEY_CURRENT_USER, L"Personal" },
        { 7, HKEY_CURRENT_USER, L"Startup" },
        { 23, HKEY_LOCAL_MACHINE, L"Common Programs" },
        { 24, HKEY_LOCAL_MACHINE, L"Common Startup" },
        { 25, HKEY_LOCAL_MACHINE, L"Common Desktop" },
        { 26, HKEY_CURRENT_USER, L"AppData" },
        { 35, HKEY_LOCAL_MACHINE, L"Common AppData" },
        { 39, HKEY_CURRENT_USER, L"MyPictures" },
        { 46, HKEY_LOCAL_MACHINE, L"Common Documents" },
        { 54, HKEY_LOCAL_MACHINE, L"CommonPictures" },
    };
    for (const auto& [nFolder, hRoot, pszName] : rows)
    {
        EXPECT_STREQ(GetSpecialFolder(nFolder), L"") << nFolder;
        const std::wstring strPath = std::wstring(L"D:\\") + pszName;
        SetKeyText(hRoot, kShellFolders, pszName, strPath);
        EXPECT_STREQ(GetSpecialFolder(nFolder), strPath.c_str()) << nFolder;
    }
    SetKeyText(HKEY_CURRENT_USER, kShellFolders, L"Desktop", std::wstring(130, L'x'));
    EXPECT_STREQ(GetSpecialFolder(0), L"");
}

// The shell itself refuses a folder below a file, and a number that it doesn't know.
TEST_F(SystemFacts, ARealFailureOfTheShellLeadsToTheRegistryToo)
{
    WriteBytes(At(L"file"), "");
    const CFolderRedirection desktop(HKEY_LOCAL_MACHINE, L"Common Desktop", At(L"file\\desktop"));
    CCallHook shell("SHELL32.dll", "SHGetFolderPathW", &SHGetFolderPathW);
    shell.Replace(
        [&](HWND hWnd, int nFolder, HANDLE hToken, DWORD nFlags, wchar_t* pszPath)
        {
            const HRESULT hr = shell.Original()(hWnd, nFolder, hToken, nFlags, pszPath);
            EXPECT_LT(hr, 0);
            // Some shells note the folder there even while they fail.
            SetKeyText(HKEY_LOCAL_MACHINE, kShellFolders, L"Common Desktop", L"D:\\desktop");
            return hr;
        });
    EXPECT_STREQ(GetSpecialFolder(25), L"D:\\desktop");

    SetKeyText(HKEY_CURRENT_USER, kShellFolders, L"", L"D:\\default");
    SetKeyText(HKEY_LOCAL_MACHINE, kShellFolders, L"", L"D:\\wrong root");
    for (const int nFolder : { 999, 200, -1, -5 })
        EXPECT_STREQ(GetSpecialFolder(nFolder), L"D:\\default") << nFolder;
}

TEST_F(SystemFacts, WindowsVistaAndLaterCountAsNT6)
{
    g_osVersion.dwMinorVersion = 9;
    for (const auto& [nMajor, bNT6] : { std::pair(0, false), { 5, false }, { 6, true }, { 10, true } })
    {
        g_osVersion.dwMajorVersion = nMajor;
        EXPECT_EQ(IsNT6OrLater() != 0, bNT6) << nMajor;
    }
}

TEST_F(SystemFacts, IsWow64IsTheBoundFunctionsAnswerForThisProcess)
{
    EXPECT_EQ(IsWow64(), 0);
    g_pfnIsWow64Process = [](HANDLE hProcess, BOOL* pbWow64)
    {
        *pbWow64 = hProcess == GetCurrentProcess();
        return TRUE;
    };
    EXPECT_NE(IsWow64(), 0);
    g_pfnIsWow64Process = [](HANDLE, BOOL*) { return FALSE; };
    EXPECT_EQ(IsWow64(), 0);
    g_pfnIsWow64Process = nullptr;
    EXPECT_EQ(IsWow64(), 0);
}
