// The registry sweep of a removal: what goes for the machine, the current user and every loaded hive, and what stays.
#include "uninstall/RegistryRemoval.h"

#include <gtest/gtest.h>

#include "app/RunState.h"
#include "tests/support/Corner.h"
#include "tests/support/ImportHook.h"
#include "tests/support/RegistryCorner.h"
#include "uninstall/RegistryWalk.h"

namespace
{

// Two users who are logged on beside the current one, in the order of the enumeration.
const wchar_t kHive[] = L"S-1-5-21-7-7-7-1001";
const wchar_t kLaterHive[] = L"S-1-5-21-7-7-7-1002";

const wchar_t kTree[] = L"Software\\RegistryRemovalTest";
#define CURRENT_VERSION L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\"

class RegistryRemoval : public MachineCorner
{
protected:
    void SetUp() override
    {
        MachineCorner::SetUp();
        m_registry.ClearProduct();
        m_registry.Clear(HKEY_USERS, kHive);
        m_registry.Clear(HKEY_USERS, kLaterHive);
        m_registry.Clear(HKEY_CURRENT_USER, kTree);
    }

    static void Sweep() { RemoveProductRegistry(L"Tandrel", L"Lumacap 8", L"Lumacap 8", L"Lumacap8.exe"); }

    CRegistryCorner m_registry;
};

using PLACE = std::pair<HKEY, std::wstring>;

TEST_F(RegistryRemoval, TreeLosesAllButWhatCannotBeDeletedAndItsParents)
{
    for (const wchar_t* pszKey :
         { L"\\A\\1\\x", L"\\A\\2", L"\\B\\Before", L"\\B\\Stuck\\Inner", L"\\B\\Zero", L"\\C" })
        MakeKey(HKEY_CURRENT_USER, std::wstring(kTree) + pszKey);
    {
        CCallHook hook("ADVAPI32.dll", "RegDeleteKeyW", &RegDeleteKeyW);
        hook.Replace([&](HKEY hKey, const wchar_t* pszKey)
                     { return wcscmp(pszKey, L"Stuck") == 0 ? ERROR_ACCESS_DENIED : hook.Original()(hKey, pszKey); });
        EXPECT_EQ(DeleteRegTree(HKEY_CURRENT_USER, kTree), 0);
    }
    EXPECT_EQ(FlattenKey(HKEY_CURRENT_USER, kTree, L"T"), (std::vector<std::wstring>{ L"T", L"T\\B", L"T\\B\\Stuck" }));

    RemoveKey(HKEY_CURRENT_USER, kTree + std::wstring(L"\\B"));
    CCallHook hook("ADVAPI32.dll", "RegOpenKeyExW", &RegOpenKeyExW);
    hook.FailAll(ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED);
    EXPECT_NE(DeleteRegTree(HKEY_CURRENT_USER, kTree), 0) << "a key that doesn't open may yet be deleted";
    EXPECT_EQ(DeleteRegTree(HKEY_CURRENT_USER, kTree), 0) << "nothing was there to delete";
}

// What of the product goes with all below it, and beside it what looks alike and belongs to somebody else. Another
// product keeps the company's key, in each hive for itself.
TEST_F(RegistryRemoval, ProductGoesAndItsNeighboursStay)
{
    const std::wstring strHive = std::wstring(kHive) + L"\\SOFTWARE\\";
    const std::wstring strLaterHive = std::wstring(kLaterHive) + L"\\SOFTWARE\\";
    const std::wstring strEntry = CURRENT_VERSION L"Uninstall\\Lumacap 8";
    const std::wstring strApplications = L"SOFTWARE\\RegisteredApplications";
    const std::wstring strHosts = L"SOFTWARE\\Mozilla\\NativeMessagingHosts";
    const PLACE gone[] = {
        { HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tandrel\\Lumacap 8" },
        { HKEY_CURRENT_USER, L"SOFTWARE\\Tandrel" },
        { HKEY_USERS, strHive + L"Tandrel" },
        { HKEY_USERS, strLaterHive + L"Tandrel\\Lumacap 8" },
        { HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes\\Applications\\Lumacap8.exe" },
        { HKEY_CURRENT_USER, L"SOFTWARE\\Classes\\Applications\\Lumacap8.exe" },
        { HKEY_USERS, strHive + L"Classes\\Applications\\Lumacap8.exe" },
        { HKEY_CLASSES_ROOT, L"LC8.Document" },
        { HKEY_CLASSES_ROOT, L"Lumacap.8" },
        { HKEY_LOCAL_MACHINE, CURRENT_VERSION L"App Paths\\Lumacap8.exe" },
        { HKEY_LOCAL_MACHINE, strHosts + L"\\capff" },
        { HKEY_CURRENT_USER, strHosts + L"\\capff" },
    };
    const PLACE kept[] = {
        { HKEY_LOCAL_MACHINE, CURRENT_VERSION L"Uninstall\\Lumacap 8 Plus" },
        { HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tandrel\\Lumacap 7" },
        { HKEY_USERS, strLaterHive + L"Tandrel\\Lumacap 7" },
        { HKEY_USERS, strHive + L"Classes\\LC8.Document" },
        { HKEY_LOCAL_MACHINE, strHosts + L"\\other" },
        { HKEY_CURRENT_USER, strHosts },
    };
    m_registry.Clear(HKEY_LOCAL_MACHINE, kept[0].second);
    for (const PLACE& place : gone)
    {
        const bool bCompany = place.second.substr(place.second.size() - 7) == L"Tandrel";
        const std::wstring strBelow = bCompany ? L"\\Lumacap 8" : L"\\Below\\Deeper";
        SetKeyText(place.first, place.second, L"Value", L"doesn't keep a key");
        SetKeyText(place.first, place.second + strBelow, L"Value", L"text");
    }
    for (const PLACE& place : kept)
        SetKeyText(place.first, place.second, L"Value", L"text");
    for (const wchar_t* pszName : { L"Lumacap.8", L"Lumacap.7" })
        SetKeyText(HKEY_LOCAL_MACHINE, strApplications, pszName, L"x");
    MakeKey(HKEY_LOCAL_MACHINE, strEntry + L"\\Patches");
    Sweep();
    EXPECT_TRUE(KeyExists(HKEY_LOCAL_MACHINE, strEntry + L"\\Patches")) << "the entry isn't taken with what is below";
    RemoveKey(HKEY_LOCAL_MACHINE, strEntry + L"\\Patches");
    Sweep();

    for (const PLACE& place : gone)
        EXPECT_FALSE(KeyExists(place.first, place.second)) << testing::PrintToString(place);
    for (const PLACE& place : kept)
        EXPECT_EQ(KeyText(place.first, place.second, L"Value"), L"text") << testing::PrintToString(place);
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, strEntry));
    EXPECT_FALSE(ValueExists(HKEY_LOCAL_MACHINE, strApplications, L"Lumacap.8"));
    EXPECT_TRUE(ValueExists(HKEY_LOCAL_MACHINE, strApplications, L"Lumacap.7"));
}

TEST_F(RegistryRemoval, HiveThatDoesNotOpenIsPassedOver)
{
    const std::wstring strProduct = L"\\SOFTWARE\\Tandrel\\Lumacap 8";
    MakeKey(HKEY_USERS, kHive + strProduct);
    MakeKey(HKEY_USERS, kLaterHive + strProduct);
    {
        CCallHook hook("ADVAPI32.dll", "RegOpenKeyExW", &RegOpenKeyExW);
        hook.Replace([&](HKEY hKey, const wchar_t* pszKey, auto... rest)
                     { return hook.Original()(hook.Texts().back() == kHive ? nullptr : hKey, pszKey, rest...); });
        Sweep();
    }
    EXPECT_TRUE(KeyExists(HKEY_USERS, kHive + strProduct));
    EXPECT_FALSE(KeyExists(HKEY_USERS, kLaterHive + strProduct));
}

TEST_F(RegistryRemoval, A32BitProcessOpensTheBrowserHostsAloneInThe64BitView)
{
    for (const bool bWow64 : { false, true })
    {
        int nHosts = 0;
        CCallHook open("ADVAPI32.dll", "RegOpenKeyExW", &RegOpenKeyExW);
        open.Replace(
            [&](HKEY hRoot, const wchar_t* pszKey, DWORD dwOptions, REGSAM samAccess, HKEY* phKey)
            {
                const bool bHosts = wcsstr(pszKey, L"NativeMessagingHosts") != nullptr;
                nHosts += bHosts;
                EXPECT_EQ(samAccess, bHosts && bWow64 ? 0xF013Fu : 0xF003Fu) << testing::PrintToString(pszKey);
                return open.Original()(hRoot, pszKey, dwOptions, samAccess, phKey);
            });
        g_pfnIsWow64Process = [](HANDLE, BOOL* pbWow64) { return *pbWow64 = TRUE; };
        if (!bWow64)
            g_pfnIsWow64Process = nullptr;
        Sweep();
        EXPECT_EQ(nHosts, 2);
    }
}

} // namespace
