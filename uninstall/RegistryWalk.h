// Registry keys as trees: deletes them, walks the users' hives, reads their texts. Keys are opened with full
// access, also where they are only read: a key that doesn't grant it is passed over.
#pragma once

#include <afx.h>
#include <windows.h>

#include "foundation/Owners.h"

const DWORD kRegistryTextCapacity = 512; // characters of a key name, a path or a text, the terminator included

// Deletes a key with all below it. A subkey that can't be deleted keeps its parents; the rest of the tree still goes.
// Non-zero if the key itself was deleted.
int DeleteRegTree(HKEY hRoot, const wchar_t* pszSubkey);

// Deletes a key that has no subkeys. Values don't count, and go with it.
void DeleteRegKeyIfChildless(HKEY hRoot, const wchar_t* pszSubkey);

// A text value of an open key (null: the default value), at most 511 characters; empty if it can't be read. The type
// isn't looked at.
CString QueryRegText(HKEY hKey, const wchar_t* pszValueName);

// Calls the function with the open key of each loaded user hive; a hive that doesn't open is passed over.
template <typename Sweep>
void ForEachUserHive(Sweep sweep)
{
    wchar_t szHive[kRegistryTextCapacity];
    for (DWORD nIndex = 0; RegEnumKeyW(HKEY_USERS, nIndex, szHive, kRegistryTextCapacity) == ERROR_SUCCESS; ++nIndex)
    {
        CKeyOwner user;
        if (RegOpenKeyExW(HKEY_USERS, szHive, 0, KEY_ALL_ACCESS, user.Receive()) == ERROR_SUCCESS)
            sweep(static_cast<HKEY>(user));
    }
}
