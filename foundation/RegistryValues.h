// Typed access to single registry values. Where a key is named, the operation opens it, does its work and closes it.
// Every failure becomes one fixed result, and nothing is reported.
#pragma once

#include <afx.h>

// The text of a value below hRoot; a null or empty name is the key's default value. Empty on every failure, and for a
// text of 130 characters or more. The value's type isn't looked at: its bytes are taken as wide text.
CString ReadRegString(HKEY hRoot, const wchar_t* pszSubkey, const wchar_t* pszValueName);

// Characters of a key name, a path or a text, the terminator included.
inline constexpr DWORD kRegistryTextCapacity = 512;

// The text of a value of an open key, null for the default value: unlike ReadRegString it gives up to 511 characters.
// Empty if the value can't be read. The type isn't looked at here either.
CString QueryRegText(HKEY hKey, const wchar_t* pszValueName);

// The same over what the buffer holds: of that all stays behind data without a terminator. False if the value can't be
// read.
bool QueryRegText(HKEY hKey, const wchar_t* pszValueName, wchar_t (&szText)[kRegistryTextCapacity]);

// Store a value, making the key and its missing parents. Non-zero if it was stored.
int WriteRegString(HKEY hRoot, const wchar_t* pszSubkey, const wchar_t* pszValueName, const wchar_t* pszText);
int WriteRegDword(HKEY hRoot, const wchar_t* pszSubkey, const wchar_t* pszValueName, DWORD dwValue);
