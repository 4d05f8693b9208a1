#include "uninstall/RegistryTree.h"

#include "foundation/Owners.h"
#include "foundation/RegistryValues.h"

int DeleteRegTree(HKEY hRoot, const wchar_t* pszSubkey)
{
    CKeyOwner key;
    if (RegOpenKeyExW(hRoot, pszSubkey, 0, KEY_ALL_ACCESS, key.Receive()) == ERROR_SUCCESS)
    {
        wchar_t szChild[kRegistryTextCapacity];
        // A deleted child hands its index on to the next one; a child that stays is stepped over.
        DWORD nIndex = 0;
        while (RegEnumKeyW(key, nIndex, szChild, _countof(szChild)) == ERROR_SUCCESS)
        {
            if (!DeleteRegTree(key, szChild))
                ++nIndex;
        }
        key.Close();
    }
    return RegDeleteKeyW(hRoot, pszSubkey) == ERROR_SUCCESS;
}

static DWORD CountSubkeys(HKEY hKey)
{
    wchar_t szChild[kRegistryTextCapacity];
    DWORD nChildren = 0;
    while (RegEnumKeyW(hKey, nChildren, szChild, _countof(szChild)) == ERROR_SUCCESS)
        ++nChildren;
    return nChildren;
}

void DeleteRegKeyIfChildless(HKEY hRoot, const wchar_t* pszSubkey)
{
    CKeyOwner key;
    if (RegOpenKeyExW(hRoot, pszSubkey, 0, KEY_ALL_ACCESS, key.Receive()) != ERROR_SUCCESS)
        return;
    const bool bChildless = CountSubkeys(key) == 0;
    key.Close();
    if (bChildless)
        RegDeleteKeyW(hRoot, pszSubkey);
}
