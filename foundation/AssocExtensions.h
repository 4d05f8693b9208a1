// The image formats that the product offers to open: one table for the registration and for its repair at the removal.
#pragma once

#include <windows.h>

struct AssocExtension
{
    const wchar_t* pszExtension; // with its leading dot
    DWORD nFlag;                 // while associations are repaired: this one pointed at the product
};

const int kAssocExtCount = 14;
extern AssocExtension g_aAssocExts[kAssocExtCount];
