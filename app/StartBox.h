// Boxes of the program's start, ahead of any window: they carry the setup's caption and not the product's.
#pragma once

#include <afx.h>

// Loads the caption, once, from the module state's resources.
void LoadStartCaption();

// Shows a box with that caption and no owner, in the manner of MessageBoxW, whose result it gives.
int ShowStartBox(const wchar_t* pszText, UINT nStyle);

// A text for such a box: at most 255 characters of a string table text.
CString LoadStartText(UINT nId);
