// Cutting, trimming and sorting of texts in memory. The trims are compared over the whole buffer, behind the terminator
// too, because their order shows only there.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "foundation/TextTools.h"

TEST(TextTools, FirstOccurrenceIsCutInAnyCaseAndTheRestKeepsItsCase)
{
    const struct
    {
        const wchar_t* pszText;
        const wchar_t* pszCut;
        bool bCut;
        const wchar_t* pszExpected;
    } cases[] = {
        { L"One TWO Three two", L"tWo", true, L"One  Three two" },
        { L"Same", L"sAME", true, L"" },
        { L"Short", L"Shorter", false, L"Short" },
        { L"", L"a", false, L"" },
        { L"Kept", L"", false, L"Kept" },
    };
    for (const auto& c : cases)
    {
        CString strText = c.pszText;
        EXPECT_EQ(c.bCut, RemoveSubstringNoCase(strText, c.pszCut) != 0);
        EXPECT_STREQ(c.pszExpected, strText);

        std::wstring buffer = c.pszText + std::wstring(L"\0#", 2);
        EXPECT_EQ(c.bCut, RemoveSubstringInPlace(&buffer[0], c.pszCut) != 0);
        EXPECT_STREQ(c.pszExpected, buffer.c_str());
        EXPECT_EQ(L'#', buffer.back()) << "written behind the text";
    }
}

// Each character is a text of the array.
TEST(TextTools, SortingIgnoresCaseAndKeepsTheOrderOfEqualTexts)
{
    const wchar_t* const cases[][2] = {
        { L"", L"" }, { L"x", L"x" }, { L"bA", L"Ab" }, { L"bBaA", L"aAbB" }, { L"dCbA", L"AbCd" }, { L"a_B", L"_aB" },
    };
    for (const auto& c : cases)
    {
        CStringArray aStrings;
        for (const wchar_t* pch = c[0]; *pch != 0; ++pch)
            aStrings.Add(CString(*pch));
        SortStringsNoCase(aStrings);
        CString strSorted;
        for (INT_PTR i = 0; i < aStrings.GetSize(); ++i)
            strSorted += aStrings[i];
        EXPECT_STREQ(c[1], strSorted);
    }
}

// The buffer after the trim, with "#" for each zero.
template <typename Char>
static std::basic_string<Char> Trimmed(Char* (*pfnTrim)(Char*), std::basic_string<Char> buffer)
{
    EXPECT_EQ(&buffer[0], pfnTrim(&buffer[0]));
    std::replace(buffer.begin(), buffer.end(), Char(0), Char('#'));
    return buffer;
}

TEST(TextTools, TrimsEmptyTheEndFirstAndThenMoveTheTextToTheFront)
{
    const std::string cases[][2] = {
        { "", "" },
        { "!a!", "!a!" },
        { " ", "#" },
        { "   ", "###" },
        { "ab  ", "ab##" },
        { "  ab", "ab#b" },
        { " a b ", "a b##" },
        { "\t\r\n\x01 a\x1F", "a#\n\x01 a#" },
        { " \x80-\xFF ", "\x80-\xFF##" },
        { "\xEF\xBB\xBF a", "\xEF\xBB\xBF a" },
    };
    for (const auto& c : cases)
    {
        EXPECT_EQ(c[1], Trimmed(TrimBothA, c[0]));
        EXPECT_EQ(std::wstring(c[1].begin(), c[1].end()), Trimmed(TrimBothW, std::wstring(c[0].begin(), c[0].end())));
    }
    EXPECT_EQ(nullptr, TrimBothA(nullptr));
    EXPECT_EQ(nullptr, TrimBothW(nullptr));
}

TEST(TextTools, WideTrimTakesOneByteOrderMarkFromTheVeryStart)
{
    const std::wstring cases[][2] = {
        { L"\xFEFF-", L"-#" },
        { L"\xFFFE  -- ", L"--#--#" },
        { L"\xFEFF", L"#" },
        { L"\xFEFF\xFEFF-", L"\xFEFF-#" },
        { L" \xFEFF-", L"\xFEFF-#" },
        { L"-\xFEFF", L"-\xFEFF" },
        { L"\xA0 \x3000", L"\xA0 \x3000" },
    };
    for (const auto& c : cases)
        EXPECT_EQ(c[1], Trimmed(TrimBothW, c[0]));
}
