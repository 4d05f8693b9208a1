// The user hives that are loaded, those of the system's own accounts among them.
#pragma once

#include <afx.h>

#include "foundation/Owners.h"
#include "foundation/RegistryValues.h"

// Calls the function with the open key of each hive, opened with full access; one that doesn't open is passed over.
template <typename Sweep>
void ForEachUserHive(Sweep sweep)
{
    wchar_t szHive[kRegistryTextCapacity];
    for (DWORD nIndex = 0; RegEnumKeyW(HKEY_USERS, nIndex, szHive, _countof(szHive)) == ERROR_SUCCESS; ++nIndex)
    {
        CKeyOwner user;
        if (RegOpenKeyExW(HKEY_USERS, szHive, 0, KEY_ALL_ACCESS, user.Receive()) == ERROR_SUCCESS)
            sweep(static_cast<HKEY>(user));
    }
}
