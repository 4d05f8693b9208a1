// The image formats that the product offers to open: one table for the registration and for its repair at the removal.
#pragma once

#include <afx.h>

struct AssocExtension
{
    const wchar_t* pszExtension; // with its leading dot
    DWORD nFlag;                 // while associations are repaired: this one pointed at the product
};

inline constexpr int kAssocExtCount = 14;
extern AssocExtension g_aAssocExts[kAssocExtCount];
