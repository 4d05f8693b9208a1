// Registry keys as trees.
#include "uninstall/RegistryWalk.h"

int DeleteRegTree(HKEY hRoot, const wchar_t* pszSubkey)
{
    CKeyOwner key;
    if (RegOpenKeyExW(hRoot, pszSubkey, 0, KEY_ALL_ACCESS, key.Receive()) == ERROR_SUCCESS)
    {
        wchar_t szChild[kRegistryTextCapacity];
        // A deleted child hands its index on to the next one; a child that stays is stepped over.
        DWORD nIndex = 0;
        while (RegEnumKeyW(key, nIndex, szChild, kRegistryTextCapacity) == ERROR_SUCCESS)
        {
            if (!DeleteRegTree(key, szChild))
                ++nIndex;
        }
        key.Close();
    }
    return RegDeleteKeyW(hRoot, pszSubkey) == ERROR_SUCCESS;
}

void DeleteRegKeyIfChildless(HKEY hRoot, const wchar_t* pszSubkey)
{
    CKeyOwner key;
    if (RegOpenKeyExW(hRoot, pszSubkey, 0, KEY_ALL_ACCESS, key.Receive()) != ERROR_SUCCESS)
        return;
    wchar_t szChild[kRegistryTextCapacity];
    const bool bChildless = RegEnumKeyW(key, 0, szChild, kRegistryTextCapacity) != ERROR_SUCCESS;
    key.Close();
    if (bChildless)
        RegDeleteKeyW(hRoot, pszSubkey);
}

CString QueryRegText(HKEY hKey, const wchar_t* pszValueName)
{
    wchar_t szText[kRegistryTextCapacity] = L"";
    DWORD cb = sizeof szText;
    const LSTATUS status = RegQueryValueExW(hKey, pszValueName, nullptr, nullptr, reinterpret_cast<BYTE*>(szText), &cb);
    szText[kRegistryTextCapacity - 1] = 0;
    return status == ERROR_SUCCESS ? CString(szText) : CString();
}
