// Takes the product out of the registry, for the machine and for every user whose hive is loaded.
#pragma once

// Removes all keys and values of a product: its own below the company's, the company's if nothing else is left there,
// its classes, its entries in the system's lists. No failure is reported: a key that can't be opened skips what
// depends on it. The names together must fit a registry path of 511 characters.
void RemoveProductRegistry(const wchar_t* pszCompany, const wchar_t* pszProduct, const wchar_t* pszUninstallKey,
                           const wchar_t* pszExeName);
