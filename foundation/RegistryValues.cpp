#include "foundation/RegistryValues.h"

#include "foundation/Owners.h"

CString ReadRegString(HKEY hRoot, const wchar_t* pszSubkey, const wchar_t* pszValueName)
{
    wchar_t szText[MAX_PATH];
    szText[0] = 0;

    CKeyOwner key;
    if (RegOpenKeyExW(hRoot, pszSubkey, 0, KEY_READ, key.Receive()) == ERROR_SUCCESS)
    {
        // The size is deliberately in bytes: a text of 130 characters or more reads as empty.
        DWORD cb = MAX_PATH;
        DWORD dwType;
        const LSTATUS status =
            RegQueryValueExW(key, pszValueName, nullptr, &dwType, reinterpret_cast<BYTE*>(szText), &cb);
        // Data stored without a terminator end where the data end.
        szText[status == ERROR_SUCCESS ? cb / sizeof(wchar_t) : 0] = 0;
    }
    return CString(szText);
}

CString QueryRegText(HKEY hKey, const wchar_t* pszValueName)
{
    wchar_t szText[kRegistryTextCapacity] = L"";
    return QueryRegText(hKey, pszValueName, szText) ? CString(szText) : CString();
}

bool QueryRegText(HKEY hKey, const wchar_t* pszValueName, wchar_t (&szText)[kRegistryTextCapacity])
{
    DWORD cb = sizeof szText;
    const LSTATUS status = RegQueryValueExW(hKey, pszValueName, nullptr, nullptr, reinterpret_cast<BYTE*>(szText), &cb);
    szText[_countof(szText) - 1] = 0;
    return status == ERROR_SUCCESS;
}

static int WriteRegValue(HKEY hRoot, const wchar_t* pszSubkey, const wchar_t* pszValueName, DWORD dwType,
                         const void* pData, DWORD cb)
{
    CKeyOwner key;
    if (RegCreateKeyW(hRoot, pszSubkey, key.Receive()) != ERROR_SUCCESS)
        return 0;
    return RegSetValueExW(key, pszValueName, 0, dwType, static_cast<const BYTE*>(pData), cb) == ERROR_SUCCESS;
}

int WriteRegString(HKEY hRoot, const wchar_t* pszSubkey, const wchar_t* pszValueName, const wchar_t* pszText)
{
    const DWORD cb = static_cast<DWORD>((wcslen(pszText) + 1) * sizeof(wchar_t));
    return WriteRegValue(hRoot, pszSubkey, pszValueName, REG_SZ, pszText, cb);
}

int WriteRegDword(HKEY hRoot, const wchar_t* pszSubkey, const wchar_t* pszValueName, DWORD dwValue)
{
    return WriteRegValue(hRoot, pszSubkey, pszValueName, REG_DWORD, &dwValue, sizeof dwValue);
}
