// Texts of the string table.
#pragma once

#include <afx.h>

// The text of an id; empty if the id has none.
CString LoadResString(UINT nId);

// The text of an id, its one placeholder filled with a text.
CString FormatResString(UINT nId, const wchar_t* pszArgument);
