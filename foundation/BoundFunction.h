// Functions that are looked up by name, since not every Windows has them or their library isn't to be imported.
#pragma once

#include <afx.h>

// The module's function of that exact name; null if the module is null or has none.
template <typename Function>
Function FindFunction(HMODULE hModule, const char* pszName)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(hModule, pszName)));
}
