// Single registry values: the narrow reach of the read, the stored form of the writes, and the one result that stands
// for every failure.
#include "foundation/RegistryValues.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "tests/support/Corner.h"
#include "tests/support/ImportHook.h"
#include "tests/support/RegistryCorner.h"

const wchar_t kKey[] = L"Software\\RegistryValuesTest";
const HKEY kNoKey = reinterpret_cast<HKEY>(static_cast<INT_PTR>(0x7654320));

class RegistryValues : public MachineCorner
{
protected:
    void SetUp() override
    {
        MachineCorner::SetUp();
        m_registry.Clear(HKEY_CURRENT_USER, kKey);
        MakeKey(HKEY_CURRENT_USER, kKey);
    }

    // Data as they stand in the registry; texts bring their own terminator.
    static void Store(const wchar_t* pszName, DWORD nType, const std::wstring& strData)
    {
        const DWORD cb = static_cast<DWORD>(strData.size() * sizeof(wchar_t));
        EXPECT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, kKey, pszName, nType, strData.c_str(), cb), ERROR_SUCCESS);
    }

    // "TYPE:DATA", each character of the data in place, the terminator included.
    static std::wstring Stored(const std::wstring& strKey, const wchar_t* pszName)
    {
        wchar_t szData[600];
        DWORD cb = sizeof szData;
        DWORD nType = 0;
        if (RegGetValueW(HKEY_CURRENT_USER, strKey.c_str(), pszName, RRF_RT_ANY | RRF_NOEXPAND, &nType, szData, &cb))
            return L"(absent)";
        return std::to_wstring(nType) + L":" + std::wstring(szData, cb / sizeof(wchar_t));
    }

    static std::wstring Terminated(const std::wstring& strText) { return strText + L'\0'; }

    CRegistryCorner m_registry;
};

TEST_F(RegistryValues, ReadTakesUpTo129CharactersOfAValueOfAnyType)
{
    const std::wstring str129(129, L'x');
    const std::tuple<DWORD, std::wstring, std::wstring> rows[] = {
        { REG_SZ, Terminated(L"C:\\Program Files"), L"C:\\Program Files" },
        { REG_SZ, Terminated(L""), L"" },
        { REG_SZ, Terminated(str129), str129 },
        { REG_SZ, Terminated(str129 + L"x"), L"" },
        { REG_SZ, Terminated(str129 + str129), L"" },
        { REG_EXPAND_SZ, Terminated(L"%SystemRoot%\\x"), L"%SystemRoot%\\x" },
        { REG_MULTI_SZ, Terminated(L"one") + Terminated(L"two") + Terminated(L""), L"one" },
        { REG_DWORD, L"AB", L"AB" },
        { REG_BINARY, Terminated(L"bytes"), L"bytes" },
    };
    for (const auto& [nType, strData, strRead] : rows)
    {
        Store(L"value", nType, strData);
        EXPECT_STREQ(ReadRegString(HKEY_CURRENT_USER, kKey, L"value"), strRead.c_str()) << nType;
    }
}

TEST_F(RegistryValues, ReadIsEmptyForWhatIsMissing)
{
    EXPECT_STREQ(ReadRegString(HKEY_CURRENT_USER, kKey, L"missing"), L"");
    EXPECT_STREQ(ReadRegString(HKEY_CURRENT_USER, kKey, nullptr), L"");
    EXPECT_STREQ(ReadRegString(HKEY_CURRENT_USER, L"Software\\RegistryValuesTest\\missing", L"value"), L"");
    EXPECT_STREQ(ReadRegString(kNoKey, kKey, L"value"), L"");
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"Software\\RegistryValuesTest\\missing"));
}

TEST_F(RegistryValues, ANullAndAnEmptyNameBothMeanTheDefaultValue)
{
    Store(L"", REG_SZ, Terminated(L"default"));
    Store(L"value", REG_SZ, Terminated(L"other"));
    EXPECT_STREQ(ReadRegString(HKEY_CURRENT_USER, kKey, nullptr), L"default");
    EXPECT_STREQ(ReadRegString(HKEY_CURRENT_USER, kKey, L""), L"default");

    EXPECT_NE(WriteRegString(HKEY_CURRENT_USER, kKey, nullptr, L"by null"), 0);
    EXPECT_EQ(KeyText(HKEY_CURRENT_USER, kKey, L""), L"by null");
    EXPECT_NE(WriteRegString(HKEY_CURRENT_USER, kKey, L"", L"by empty"), 0);
    EXPECT_EQ(KeyText(HKEY_CURRENT_USER, kKey, L""), L"by empty");
}

TEST_F(RegistryValues, WritesMakeTheKeyWithItsParentsAndStoreTheExactSize)
{
    const std::wstring strKey = L"Software\\RegistryValuesTest\\one\\two\\three";
    EXPECT_NE(WriteRegDword(HKEY_CURRENT_USER, strKey.c_str(), L"number", 0x00420041), 0);
    EXPECT_EQ(Stored(strKey, L"number"), L"4:AB");
    EXPECT_NE(WriteRegDword(HKEY_CURRENT_USER, strKey.c_str(), L"number", 0xFFFEFFFD), 0);
    EXPECT_EQ(Stored(strKey, L"number"), L"4:\xFFFD\xFFFE");

    for (const std::wstring& strText : { std::wstring(), std::wstring(L"%x%"), std::wstring(300, L'y') })
    {
        EXPECT_NE(WriteRegString(HKEY_CURRENT_USER, strKey.c_str(), L"number", strText.c_str()), 0);
        EXPECT_EQ(Stored(strKey, L"number"), L"1:" + Terminated(strText));
    }
}

// A lasting key below a volatile one is refused by the platform.
TEST_F(RegistryValues, AKeyThatCantBeMadeGivesZeroAndNoValue)
{
    HKEY hVolatile = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\RegistryValuesTest\\volatile", 0, nullptr,
                              REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &hVolatile, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(WriteRegString(hVolatile, L"below", L"value", L"text"), 0);
    EXPECT_EQ(WriteRegDword(hVolatile, L"below", L"value", 1), 0);
    EXPECT_EQ(WriteRegString(kNoKey, kKey, L"value", L"text"), 0);
    EXPECT_EQ(RegCloseKey(hVolatile), ERROR_SUCCESS);
    EXPECT_EQ(SubkeyNames(HKEY_CURRENT_USER, L"Software\\RegistryValuesTest\\volatile"), std::vector<std::wstring>{});
    EXPECT_EQ(ValueNames(HKEY_CURRENT_USER, kKey), std::vector<std::wstring>{});
}

TEST_F(RegistryValues, AValueThatCantBeStoredGivesZeroAndLeavesTheKeyWhichIsClosed)
{
    {
        const CCallHook close("ADVAPI32.dll", "RegCloseKey", &RegCloseKey);
        CCallHook store("ADVAPI32.dll", "RegSetValueExW", &RegSetValueExW);
        store.FailAll(ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED);
        EXPECT_EQ(WriteRegString(HKEY_CURRENT_USER, L"Software\\RegistryValuesTest\\text", L"value", L"text"), 0);
        EXPECT_EQ(WriteRegDword(HKEY_CURRENT_USER, L"Software\\RegistryValuesTest\\number", L"value", 1), 0);
        EXPECT_STREQ(ReadRegString(HKEY_CURRENT_USER, kKey, L"missing"), L"");
        EXPECT_EQ(close.Calls(), 3);
    }
    EXPECT_EQ(FlattenKey(HKEY_CURRENT_USER, kKey, L"K"), (std::vector<std::wstring>{ L"K", L"K\\number", L"K\\text" }));
}
