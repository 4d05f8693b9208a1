// The version is a setting of Wine; the folders and the boot list are Windows' own.
#include "tests/support/Machine.h"

#include <gtest/gtest.h>

#include "tests/support/PendingList.h"
#include "tests/support/ProcessRun.h"

static const wchar_t kExplorerKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";

CWindowsVersion::CWindowsVersion(const wchar_t* pszVersion)
{
    m_registry.Keep(HKEY_CURRENT_USER, L"Software\\Wine");
    SetKeyText(HKEY_CURRENT_USER, L"Software\\Wine", L"Version", pszVersion);
}

CFolderRedirection::CFolderRedirection(HKEY hRoot, const wchar_t* pszName, const std::wstring& strFolder)
{
    // The second key is the system's record of the folders found, which follows the first.
    const std::wstring strKey = std::wstring(kExplorerKey) + L"User Shell Folders";
    m_registry.Keep(hRoot, strKey);
    m_registry.Keep(hRoot, std::wstring(kExplorerKey) + L"Shell Folders");
    SetKeyText(hRoot, strKey, pszName, strFolder);
}

void RestartMachine()
{
    // With -r the start-up links and the Run keys aren't followed.
    RunToEnd(L"C:\\windows\\system32\\wineboot.exe -r");
    EXPECT_TRUE(PendingEntries().empty()) << "the boot list wasn't worked through";
}
