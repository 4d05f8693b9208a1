// How texts begin and end.
#pragma once

// True if the text begins, or ends, with the other one. Case counts.
bool StartsWith(const wchar_t* pszText, const wchar_t* pszBeginning);
bool EndsWith(const wchar_t* pszText, const wchar_t* pszEnd);
