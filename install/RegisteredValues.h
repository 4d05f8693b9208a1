// What the system is told about the product, value by value: one table for whoever writes it and whoever looks it up.
#pragma once

#include <afx.h>

#include <variant>

struct RegisteredValue
{
    HKEY hRoot;
    const wchar_t* pszKey;
    const wchar_t* pszName; // null: the default value
    std::variant<CString, unsigned int> data;
    bool bEachFormat = false; // one value for each image format, named by its extension
};

// Calls the function for each value, in the order in which they are written, with the texts and numbers for the folder,
// kind and version of the run state.
void ForEachRegisteredValue(void (*pfnVisit)(const RegisteredValue& value, LPARAM lParam), LPARAM lParam);
