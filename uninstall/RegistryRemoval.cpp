#include "uninstall/RegistryRemoval.h"

#include "app/Product.h"
#include "foundation/BoundedText.h"
#include "foundation/Owners.h"
#include "foundation/RegistryValues.h"
#include "foundation/SystemFacts.h"
#include "uninstall/RegistryTree.h"
#include "uninstall/UserHives.h"

namespace
{
enum RemovalAction
{
    REMOVE_TREE,         // the key with all below it
    REMOVE_IF_CHILDLESS, // the key if no other product has one below it
    REMOVE_CHILD_KEY,    // the child below the key, not if it has subkeys
    REMOVE_CHILD_TREE,   // the child below the key with all below it
    REMOVE_VALUE,        // the value of the key
};

struct Removal
{
    HKEY hRoot;
    const wchar_t* pszKey;
    RemovalAction action;
    const wchar_t* pszName; // the child or the value
    REGSAM samView = 0;     // a registry view to add to the access
};
} // namespace

static void Remove(const Removal& removal)
{
    CKeyOwner key;
    const auto openKey = [&]
    {
        return RegOpenKeyExW(removal.hRoot, removal.pszKey, 0, KEY_ALL_ACCESS | removal.samView, key.Receive()) ==
               ERROR_SUCCESS;
    };
    switch (removal.action)
    {
    case REMOVE_TREE:
        DeleteRegTree(removal.hRoot, removal.pszKey);
        break;
    case REMOVE_IF_CHILDLESS:
        DeleteRegKeyIfChildless(removal.hRoot, removal.pszKey);
        break;
    case REMOVE_CHILD_KEY:
        if (openKey())
            RegDeleteKeyW(key, removal.pszName);
        break;
    case REMOVE_CHILD_TREE:
        if (openKey())
            DeleteRegTree(key, removal.pszName);
        break;
    case REMOVE_VALUE:
        if (openKey())
            RegDeleteValueW(key, removal.pszName);
        break;
    }
}

void RemoveProductRegistry(const wchar_t* pszCompany, const wchar_t* pszProduct, const wchar_t* pszUninstallKey,
                           const wchar_t* pszExeName)
{
    wchar_t szProduct[kRegistryTextCapacity];
    wchar_t szCompany[kRegistryTextCapacity];
    wchar_t szApplication[kRegistryTextCapacity];
    FormatBounded(szProduct, L"SOFTWARE\\%s\\%s", pszCompany, pszProduct);
    FormatBounded(szCompany, L"SOFTWARE\\%s", pszCompany);
    FormatBounded(szApplication, L"SOFTWARE\\Classes\\Applications\\%s", pszExeName);
    const REGSAM samHosts = IsWow64() ? KEY_WOW64_64KEY : 0;

    // The company's key can go only once the product's has gone.
    const Removal ownKeys[] = {
        { HKEY_LOCAL_MACHINE, szProduct, REMOVE_TREE, nullptr },
        { HKEY_CURRENT_USER, szProduct, REMOVE_TREE, nullptr },
        { HKEY_LOCAL_MACHINE, szCompany, REMOVE_IF_CHILDLESS, nullptr },
        { HKEY_CURRENT_USER, szCompany, REMOVE_IF_CHILDLESS, nullptr },
        { HKEY_LOCAL_MACHINE, szApplication, REMOVE_TREE, nullptr },
    };
    for (const Removal& removal : ownKeys)
        Remove(removal);

    ForEachUserHive(
        [&](HKEY hUser)
        {
            DeleteRegTree(hUser, szProduct);
            DeleteRegKeyIfChildless(hUser, szCompany);
            DeleteRegTree(hUser, szApplication);
        });

    const Removal systemEntries[] = {
        { HKEY_CLASSES_ROOT, kDocumentClass, REMOVE_TREE, nullptr },
        { HKEY_CLASSES_ROOT, kProductClass, REMOVE_TREE, nullptr },
        { HKEY_LOCAL_MACHINE, kUninstallListKey, REMOVE_CHILD_KEY, pszUninstallKey },
        { HKEY_LOCAL_MACHINE, kAppPathsListKey, REMOVE_CHILD_TREE, pszExeName },
        { HKEY_LOCAL_MACHINE, kRegisteredApplicationsKey, REMOVE_VALUE, kProductClass },
        { HKEY_LOCAL_MACHINE, kMessagingHostsKey, REMOVE_CHILD_TREE, kMessagingHost, samHosts },
        { HKEY_CURRENT_USER, kMessagingHostsKey, REMOVE_CHILD_TREE, kMessagingHost, samHosts },
    };
    for (const Removal& removal : systemEntries)
        Remove(removal);
}
