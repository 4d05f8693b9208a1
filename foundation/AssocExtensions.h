// The image formats that the product offers to open: one table for the registration and for the repair of associations
// at the removal.
#pragma once

#include <afx.h>

struct AssocExtension
{
    const wchar_t* pszExtension; // with its leading dot
    DWORD nFlag;                 // while associations are repaired: this one pointed at the product
};

// The last is the product's own format, which is all that its 1 says. Nothing goes by that: the repair clears each flag
// before it looks at the association.
inline AssocExtension g_aAssocExts[] = {
    { L".bmp", 0 }, { L".dib", 0 }, { L".gif", 0 }, { L".jpg", 0 }, { L".jpeg", 0 }, { L".tif", 0 }, { L".tiff", 0 },
    { L".png", 0 }, { L".cmp", 0 }, { L".tga", 0 }, { L".wpg", 0 }, { L".jp2", 0 },  { L".j2k", 0 }, { L".lcp", 1 },
};
inline constexpr int kAssocExtCount = _countof(g_aAssocExts);
