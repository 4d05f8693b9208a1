// A kept key is restored in place, never by removal: other programs may hold it open.
#include "tests/support/RegistryCorner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <wchar.h>

#include "foundation/Owners.h"

namespace
{

const DWORD kNameCapacity = 16384; // characters, the longest that a value's name can be

struct READ_VALUE
{
    DWORD nType;
    std::vector<BYTE> data;
};

bool Open(HKEY hRoot, const std::wstring& strKey, REGSAM nAccess, CKeyOwner& key)
{
    return RegOpenKeyExW(hRoot, strKey.c_str(), 0, nAccess, key.Receive()) == ERROR_SUCCESS;
}

bool ReadValue(HKEY hKey, const std::wstring& strName, READ_VALUE& value)
{
    DWORD cb = 0;
    if (RegQueryValueExW(hKey, strName.c_str(), nullptr, &value.nType, nullptr, &cb) != ERROR_SUCCESS)
        return false;
    value.data.resize(cb);
    return RegQueryValueExW(hKey, strName.c_str(), nullptr, &value.nType, value.data.data(), &cb) == ERROR_SUCCESS;
}

bool ReadValue(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName, READ_VALUE& value)
{
    CKeyOwner key;
    return Open(hRoot, strKey, KEY_READ, key) && ReadValue(key, strName, value);
}

// The data as text up to its terminator, which may be missing.
std::wstring TextOf(const std::vector<BYTE>& data)
{
    const auto* pszText = reinterpret_cast<const wchar_t*>(data.data());
    return std::wstring(pszText, wcsnlen(pszText, data.size() / sizeof(wchar_t)));
}

void SetValue(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName, DWORD nType, const void* pData,
              size_t cb)
{
    CKeyOwner key;
    RegCreateKeyExW(hRoot, strKey.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key.Receive(), nullptr);
    EXPECT_EQ(RegSetValueExW(key, strName.c_str(), 0, nType, static_cast<const BYTE*>(pData), static_cast<DWORD>(cb)),
              ERROR_SUCCESS)
        << testing::PrintToString(strKey);
}

// The names that one of the registry's two enumerations gives, sorted.
std::vector<std::wstring> NamesOf(HKEY hKey, decltype(&RegEnumValueW) pfnEnumerate)
{
    std::vector<std::wstring> names;
    std::vector<wchar_t> name(kNameCapacity);
    for (DWORD i = 0;; i++)
    {
        DWORD nName = kNameCapacity;
        if (pfnEnumerate(hKey, i, name.data(), &nName, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        names.emplace_back(name.data(), nName);
    }
    std::sort(names.begin(), names.end());
    return names;
}

LSTATUS WINAPI EnumerateKeys(HKEY hKey, DWORD i, LPWSTR pszName, LPDWORD pnName, LPDWORD, LPDWORD, LPBYTE, LPDWORD)
{
    return RegEnumKeyExW(hKey, i, pszName, pnName, nullptr, nullptr, nullptr, nullptr);
}

std::wstring DataText(const READ_VALUE& value)
{
    if (value.nType == REG_SZ || value.nType == REG_EXPAND_SZ)
        return TextOf(value.data);
    std::wstring strText;
    for (const BYTE nByte : value.data)
    {
        strText += L"0123456789abcdef"[nByte >> 4];
        strText += L"0123456789abcdef"[nByte & 15];
    }
    return strText;
}

bool IsIgnored(const std::wstring& strPath, const std::vector<std::wstring>& ignored)
{
    return std::any_of(ignored.begin(), ignored.end(),
                       [&](const std::wstring& strPrefix)
                       { return _wcsnicmp(strPath.c_str(), strPrefix.c_str(), strPrefix.size()) == 0; });
}

std::wstring Joined(std::wstring strFirst, const wchar_t* pszBetween, const std::wstring& strSecond)
{
    strFirst += pszBetween;
    strFirst += strSecond;
    return strFirst;
}

void Flatten(HKEY hKey, const std::wstring& strPath, const std::vector<std::wstring>& ignored,
             std::vector<std::wstring>& lines)
{
    lines.push_back(strPath);
    for (const std::wstring& strName : NamesOf(hKey, RegEnumValueW))
    {
        READ_VALUE value;
        const std::wstring strLine = Joined(strPath, L" : ", strName);
        if (!IsIgnored(strLine, ignored) && ReadValue(hKey, strName, value))
            lines.push_back(strLine + L" = " + std::to_wstring(value.nType) + L":" + DataText(value));
    }
    for (const std::wstring& strName : NamesOf(hKey, EnumerateKeys))
    {
        CKeyOwner key;
        const std::wstring strBelow = Joined(strPath, L"\\", strName);
        if (!IsIgnored(strBelow, ignored) && Open(hKey, strName, KEY_READ, key))
            Flatten(key, strBelow, ignored, lines);
    }
}

const wchar_t kRegisteredApplications[] = L"SOFTWARE\\RegisteredApplications";

const struct
{
    HKEY hRoot;
    const wchar_t* pszKey;
} kProductKeys[] = {
    { HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tandrel" },
    { HKEY_CURRENT_USER, L"SOFTWARE\\Tandrel" },
    { HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\Lumacap8.exe" },
    { HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Lumacap 8" },
    { HKEY_LOCAL_MACHINE, L"SOFTWARE\\Mozilla" },
    { HKEY_CURRENT_USER, L"SOFTWARE\\Mozilla" },
    { HKEY_CURRENT_USER, L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts" },
    { HKEY_CURRENT_USER, L"SOFTWARE\\Classes\\Applications\\Lumacap8.exe" },
    { HKEY_CLASSES_ROOT, L"Applications\\Lumacap8.exe" },
    { HKEY_CLASSES_ROOT, L"Lumacap.8" },
    { HKEY_CLASSES_ROOT, L"LC8.Document" },
    { HKEY_CLASSES_ROOT, L".lcp" },
    { HKEY_CLASSES_ROOT, L"CLSID\\{6B0F4C52-9D3E-4A71-8C25-1E7A90D4B3F6}" }, // the sample's thumbnail handler
};

} // namespace

bool KeyExists(HKEY hRoot, const std::wstring& strKey)
{
    CKeyOwner key;
    return Open(hRoot, strKey, KEY_READ, key);
}

bool ValueExists(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName)
{
    READ_VALUE value;
    return ReadValue(hRoot, strKey, strName, value);
}

std::wstring KeyText(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName)
{
    READ_VALUE value;
    if (!ReadValue(hRoot, strKey, strName, value))
        return L"(absent)";
    return value.nType == REG_SZ ? TextOf(value.data) : L"(type " + std::to_wstring(value.nType) + L")";
}

DWORD KeyNumber(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName)
{
    READ_VALUE value;
    if (ReadValue(hRoot, strKey, strName, value) && value.nType == REG_DWORD && value.data.size() == sizeof(DWORD))
        return *reinterpret_cast<const DWORD*>(value.data.data());
    ADD_FAILURE() << "no number in " << testing::PrintToString(strKey) << " : " << testing::PrintToString(strName);
    return 0;
}

void SetKeyText(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName, const std::wstring& strText)
{
    SetValue(hRoot, strKey, strName, REG_SZ, strText.c_str(), (strText.size() + 1) * sizeof(wchar_t));
}

void MakeKey(HKEY hRoot, const std::wstring& strKey)
{
    CKeyOwner key;
    EXPECT_EQ(RegCreateKeyExW(hRoot, strKey.c_str(), 0, nullptr, 0, KEY_READ, nullptr, key.Receive(), nullptr),
              ERROR_SUCCESS)
        << testing::PrintToString(strKey);
}

void RemoveKey(HKEY hRoot, const std::wstring& strKey)
{
    RegDeleteTreeW(hRoot, strKey.c_str());
    EXPECT_FALSE(KeyExists(hRoot, strKey)) << testing::PrintToString(strKey);
}

void RemoveValue(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName)
{
    RegDeleteKeyValueW(hRoot, strKey.c_str(), strName.c_str());
    EXPECT_FALSE(ValueExists(hRoot, strKey, strName)) << testing::PrintToString(strName);
}

std::vector<std::wstring> SubkeyNames(HKEY hRoot, const std::wstring& strKey)
{
    CKeyOwner key;
    return Open(hRoot, strKey, KEY_READ, key) ? NamesOf(key, EnumerateKeys) : std::vector<std::wstring>();
}

std::vector<std::wstring> ValueNames(HKEY hRoot, const std::wstring& strKey)
{
    CKeyOwner key;
    return Open(hRoot, strKey, KEY_READ, key) ? NamesOf(key, RegEnumValueW) : std::vector<std::wstring>();
}

std::vector<std::wstring> FlattenKey(HKEY hRoot, const std::wstring& strKey, const std::wstring& strLabel,
                                     const std::vector<std::wstring>& ignored)
{
    std::vector<std::wstring> lines;
    CKeyOwner key;
    if (Open(hRoot, strKey, KEY_READ, key))
        Flatten(key, strLabel, ignored, lines);
    return lines;
}

std::vector<std::wstring> FlattenProduct()
{
    std::vector<std::wstring> lines = FlattenKey(HKEY_LOCAL_MACHINE, kRegisteredApplications, kRegisteredApplications);
    for (const auto& key : kProductKeys)
    {
        const std::wstring strLabel = std::to_wstring(reinterpret_cast<UINT_PTR>(key.hRoot) & 3) + key.pszKey;
        const std::vector<std::wstring> tree = FlattenKey(key.hRoot, key.pszKey, strLabel);
        lines.insert(lines.end(), tree.begin(), tree.end());
    }
    return lines;
}

CRegistryCorner::~CRegistryCorner()
{
    for (size_t i = m_trees.size(); i-- > 0;)
        Restore(m_trees[i]);
}

void CRegistryCorner::Keep(HKEY hRoot, const std::wstring& strKey)
{
    m_trees.push_back({ hRoot, strKey, {} });
    if (KeyExists(hRoot, strKey))
        Read(m_trees.back(), strKey);
}

void CRegistryCorner::Clear(HKEY hRoot, const std::wstring& strKey)
{
    Keep(hRoot, strKey);
    RemoveKey(hRoot, strKey);
}

void CRegistryCorner::ClearProduct()
{
    for (const auto& key : kProductKeys)
        Clear(key.hRoot, key.pszKey);
    Keep(HKEY_LOCAL_MACHINE, kRegisteredApplications);
    RemoveValue(HKEY_LOCAL_MACHINE, kRegisteredApplications, L"Lumacap.8");
}

void CRegistryCorner::Read(TREE& tree, const std::wstring& strKey)
{
    KEY kept = { strKey, {} };
    CKeyOwner key;
    Open(tree.hRoot, strKey, KEY_READ, key);
    for (const std::wstring& strName : NamesOf(key, RegEnumValueW))
    {
        READ_VALUE value;
        if (ReadValue(key, strName, value))
            kept.values.push_back({ strName, value.nType, value.data });
    }
    tree.keys.push_back(kept);
    for (const std::wstring& strName : NamesOf(key, EnumerateKeys))
        Read(tree, Joined(strKey, L"\\", strName));
}

void CRegistryCorner::Restore(const TREE& tree)
{
    if (tree.keys.empty())
        return RemoveKey(tree.hRoot, tree.strKey);
    for (const KEY& key : tree.keys)
    {
        MakeKey(tree.hRoot, key.strKey);
        for (const std::wstring& strName : ValueNames(tree.hRoot, key.strKey))
            RemoveValue(tree.hRoot, key.strKey, strName);
        for (const VALUE& value : key.values)
            SetValue(tree.hRoot, key.strKey, value.strName, value.nType, value.data.data(), value.data.size());
        for (const std::wstring& strName : SubkeyNames(tree.hRoot, key.strKey))
        {
            const std::wstring strBelow = Joined(key.strKey, L"\\", strName);
            const auto isKept = [&](const KEY& kept) { return _wcsicmp(kept.strKey.c_str(), strBelow.c_str()) == 0; };
            if (std::none_of(tree.keys.begin(), tree.keys.end(), isKept))
                RemoveKey(tree.hRoot, strBelow);
        }
    }
}
