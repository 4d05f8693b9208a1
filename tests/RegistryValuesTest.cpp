// Single registry values: the narrow reach of the read, the stored form of the writes, and the one result that stands
// for every failure.
#include "foundation/RegistryValues.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "tests/support/Corner.h"
#include "tests/support/ImportHook.h"
#include "tests/support/RegistryCorner.h"

const wchar_t kKey[] = L"Software\\RegistryValuesTest";
const wchar_t kBelow[] = L"Software\\RegistryValuesTest\\one\\two";
const HKEY kNoKey = reinterpret_cast<HKEY>(static_cast<INT_PTR>(0x7654320));

class RegistryValues : public MachineCorner
{
protected:
    RegistryValues() { m_registry.Clear(HKEY_CURRENT_USER, kKey); }

    // "TYPE:DATA", each character of the data in place, the terminator included.
    static std::wstring Stored()
    {
        wchar_t szData[600];
        DWORD cb = sizeof szData;
        DWORD nType = 0;
        EXPECT_EQ(RegGetValueW(HKEY_CURRENT_USER, kBelow, L"value", RRF_RT_ANY | RRF_NOEXPAND, &nType, szData, &cb), 0);
        return std::to_wstring(nType) + L":" + std::wstring(szData, cb / sizeof(wchar_t));
    }

    CRegistryCorner m_registry;
};

TEST_F(RegistryValues, ReadTakesUpTo129CharactersOfAValueOfAnyType)
{
    CCallHook query("ADVAPI32.dll", "RegQueryValueExW", &RegQueryValueExW);
    query.Replace(
        [&](HKEY hKey, const wchar_t* pszName, DWORD* pReserved, DWORD* pnType, BYTE* pData, DWORD* pcb)
        {
            wmemset(reinterpret_cast<wchar_t*>(pData), L'?', *pcb / sizeof(wchar_t));
            return query.Original()(hKey, pszName, pReserved, pnType, pData, pcb);
        });
    const std::wstring str129(129, L'x');
    const std::wstring strEnd(1, L'\0');
    const std::tuple<DWORD, std::wstring, std::wstring> rows[] = {
        { REG_SZ, strEnd, L"" },
        { REG_SZ, str129 + strEnd, str129 },
        { REG_SZ, str129 + L"x" + strEnd, L"" },
        { REG_EXPAND_SZ, L"%SystemRoot%\\x" + strEnd, L"%SystemRoot%\\x" },
        { REG_MULTI_SZ, L"one" + strEnd + L"two" + strEnd + strEnd, L"one" },
        { REG_DWORD, L"AB", L"AB" },
    };
    for (const auto& [nType, strData, strRead] : rows)
    {
        const DWORD cb = static_cast<DWORD>(strData.size() * sizeof(wchar_t));
        EXPECT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, kKey, L"value", nType, strData.c_str(), cb), ERROR_SUCCESS);
        EXPECT_STREQ(ReadRegString(HKEY_CURRENT_USER, kKey, L"value"), strRead.c_str()) << nType;
        EXPECT_STREQ(ReadRegString(HKEY_CURRENT_USER, kKey, nullptr), L"");
    }
    EXPECT_STREQ(ReadRegString(HKEY_CURRENT_USER, kBelow, L"value"), L"");
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, kBelow));
}

TEST_F(RegistryValues, WritesMakeTheKeyWithItsParentsAndStoreTheExactSize)
{
    EXPECT_NE(WriteRegDword(HKEY_CURRENT_USER, kBelow, L"value", 0xFFFE0041), 0);
    EXPECT_EQ(Stored(), L"4:A\xFFFE");
    for (const std::wstring& strText : { std::wstring(), std::wstring(L"%x%"), std::wstring(300, L'y') })
    {
        EXPECT_NE(WriteRegString(HKEY_CURRENT_USER, kBelow, L"value", strText.c_str()), 0);
        EXPECT_EQ(Stored(), L"1:" + strText + L'\0');
    }
    EXPECT_NE(WriteRegString(HKEY_CURRENT_USER, kBelow, nullptr, L"null"), 0);
    EXPECT_STREQ(ReadRegString(HKEY_CURRENT_USER, kBelow, L""), L"null");
    EXPECT_NE(WriteRegString(HKEY_CURRENT_USER, kBelow, L"", L"empty"), 0);
    EXPECT_STREQ(ReadRegString(HKEY_CURRENT_USER, kBelow, nullptr), L"empty");
    EXPECT_EQ(KeyText(HKEY_CURRENT_USER, kBelow, L""), L"empty");
}

TEST_F(RegistryValues, AFailedWriteGivesZeroAndClosesTheKey)
{
    EXPECT_EQ(WriteRegString(kNoKey, kBelow, L"value", L"text"), 0);
    EXPECT_EQ(WriteRegDword(kNoKey, kBelow, L"value", 1), 0);
    const CCallHook close("ADVAPI32.dll", "RegCloseKey", &RegCloseKey);
    CCallHook store("ADVAPI32.dll", "RegSetValueExW", &RegSetValueExW);
    store.FailAll(ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED);
    EXPECT_EQ(WriteRegString(HKEY_CURRENT_USER, kBelow, L"value", L"text"), 0);
    EXPECT_EQ(WriteRegDword(HKEY_CURRENT_USER, kBelow, L"value", 1), 0);
    EXPECT_EQ(close.Calls(), 2);
}
