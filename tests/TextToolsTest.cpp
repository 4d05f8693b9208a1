// Cutting, trimming and sorting of texts in memory. The trims are compared over the whole buffer, behind the terminator
// too, because their order shows only there.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/TextTools.h"

TEST(TextTools, FirstOccurrenceIsCutInAnyCaseAndTheRestKeepsItsCase)
{
    const struct
    {
        const wchar_t* pszText;
        const wchar_t* pszCut;
        int nResult;
        const wchar_t* pszExpected;
    } cases[] = {
        { L"One TWO Three two", L"two", 1, L"One  Three two" },
        { L"ABCabc", L"aBc", 1, L"abc" },
        { L"xxabc", L"ABC", 1, L"xx" },
        { L"Same", L"sAME", 1, L"" },
        { L"Short", L"Shorter", 0, L"Short" },
        { L"Nothing Here", L"q", 0, L"Nothing Here" },
        { L"", L"a", 0, L"" },
        { L"Kept", L"", 0, L"Kept" },
    };
    for (const auto& c : cases)
    {
        CString strText = c.pszText;
        EXPECT_EQ(c.nResult, RemoveSubstringNoCase(strText, c.pszCut) != 0) << "text " << std::wstring(c.pszText);
        EXPECT_STREQ(c.pszExpected, strText);
        EXPECT_EQ(static_cast<int>(wcslen(c.pszExpected)), strText.GetLength());

        wchar_t szBuffer[32];
        wmemset(szBuffer, L'#', _countof(szBuffer));
        wmemcpy(szBuffer, c.pszText, wcslen(c.pszText) + 1);
        EXPECT_EQ(c.nResult, RemoveSubstringInPlace(szBuffer, c.pszCut) != 0) << "in place";
        EXPECT_STREQ(c.pszExpected, szBuffer);
        EXPECT_EQ(L'#', szBuffer[wcslen(c.pszText) + 1]) << "written behind the text";
    }
}

TEST(TextTools, SortingIgnoresCaseAndKeepsTheOrderOfEqualTexts)
{
    const struct
    {
        std::vector<const wchar_t*> given;
        std::vector<const wchar_t*> expected;
    } cases[] = {
        { {}, {} },
        { { L"alone" }, { L"alone" } },
        { { L"b", L"A" }, { L"A", L"b" } },
        { { L"b", L"B", L"a", L"A" }, { L"a", L"A", L"b", L"B" } },
        { { L"delta", L"Charlie", L"bravo", L"ALPHA", L"" }, { L"", L"ALPHA", L"bravo", L"Charlie", L"delta" } },
        { { L"a", L"_", L"B" }, { L"_", L"a", L"B" } },
        { { L"ab", L"a", L"abc" }, { L"a", L"ab", L"abc" } },
        { { L"last", L"a", L"b", L"c" }, { L"a", L"b", L"c", L"last" } },
    };
    for (const auto& c : cases)
    {
        CStringArray aStrings;
        for (const wchar_t* pszText : c.given)
            aStrings.Add(pszText);
        SortStringsNoCase(aStrings);
        ASSERT_EQ(static_cast<INT_PTR>(c.expected.size()), aStrings.GetSize());
        for (size_t i = 0; i < c.expected.size(); ++i)
            EXPECT_STREQ(c.expected[i], aStrings[i]) << "at " << i;
    }
}

// Texts of the same length as the buffer that holds them, so that what stays behind the terminator can be told.
TEST(TextTools, WideTrimEmptiesTheEndFirstAndThenMovesTheTextToTheFront)
{
    const struct
    {
        std::wstring text;
        std::wstring expected;
    } cases[] = {
        { L"", L"" },
        { L"text", L"text" },
        { L" ", std::wstring(L"\0", 1) },
        { L"   ", std::wstring(L"\0\0\0", 3) },
        { L"ab  ", std::wstring(L"ab\0\0", 4) },
        { L"  ab", std::wstring(L"ab\0b", 4) },
        { L" a b ", std::wstring(L"a b\0\0", 5) },
        { L"\t\r\n\x01 a\x1F", std::wstring(L"a\0\n\x01 a\0", 7) },
        { L"!a!", L"!a!" },
        { L"\xA0 a\x3000", L"\xA0 a\x3000" },
        { L"\xFEFF"
          L"ab",
          std::wstring(L"ab\0", 3) },
        { L"\xFFFE  ab ", std::wstring(L"ab\0ab\0", 6) },
        { L"\xFEFF", std::wstring(L"\0", 1) },
        { L"\xFEFF\xFEFF"
          L"a",
          std::wstring(L"\xFEFF"
                       L"a\0",
                       3) },
        { L" \xFEFF"
          L"a",
          std::wstring(L"\xFEFF"
                       L"a\0",
                       3) },
        { L"a\xFEFF", L"a\xFEFF" },
    };
    for (const auto& c : cases)
    {
        std::wstring buffer = c.text;
        EXPECT_EQ(&buffer[0], TrimBothW(&buffer[0]));
        EXPECT_EQ(c.expected, buffer) << "case " << &c - cases;
    }
}

TEST(TextTools, NarrowTrimTakesBytesWithTheTopBitForText)
{
    const struct
    {
        std::string text;
        std::string expected;
    } cases[] = {
        { "", "" },
        { " ", std::string("\0", 1) },
        { "   ", std::string("\0\0\0", 3) },
        { " a b ", std::string("a b\0\0", 5) },
        { "\t\x01 !\x1F", std::string("!\0 !\0", 5) },
        { "\xE9", "\xE9" },
        { " \x80"
          "a\xFF ",
          std::string("\x80"
                      "a\xFF\0\0",
                      5) },
        { "\xEF\xBB\xBF a", "\xEF\xBB\xBF a" },
        { "\xFF\xFE a", "\xFF\xFE a" },
    };
    for (const auto& c : cases)
    {
        std::string buffer = c.text;
        EXPECT_EQ(&buffer[0], TrimBothA(&buffer[0]));
        EXPECT_EQ(c.expected, buffer) << "case " << &c - cases;
    }
}

TEST(TextTools, TrimsReturnANullPointerAsItIs)
{
    EXPECT_EQ(nullptr, TrimBothA(nullptr));
    EXPECT_EQ(nullptr, TrimBothW(nullptr));
}
