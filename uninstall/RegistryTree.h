// Registry keys as trees. A key is opened with full access: one that doesn't grant it counts as one that doesn't open.
#pragma once

#include <afx.h>

// Deletes a key with all below it, or alone if it doesn't open. A subkey that can't be deleted keeps its parents; the
// rest of the tree still goes. Non-zero if the key itself was deleted.
int DeleteRegTree(HKEY hRoot, const wchar_t* pszSubkey);

// Deletes a key that opens and has no subkeys. Values don't count, and go with it.
void DeleteRegKeyIfChildless(HKEY hRoot, const wchar_t* pszSubkey);
