// Text in buffers of fixed capacity, and texts of the string table.
#include "foundation/BoundedText.h"

#include <gtest/gtest.h>

#include "res/resource.h"

TEST(BoundedText, AResultThatFitsIsWholeAndAnyOtherIsRefused)
{
    wchar_t szBuffer[8];
    EXPECT_EQ(FormatBounded(szBuffer, 8, L"%s-%02d", L"abcd", 7), 7);
    EXPECT_STREQ(szBuffer, L"abcd-07");
    EXPECT_EQ(FormatBounded(szBuffer, 8, L"%s-%02d", L"abcde", 7), -1);
    EXPECT_STREQ(szBuffer, L"");

    CopyBounded(szBuffer, 8, L"abcdefg");
    EXPECT_STREQ(szBuffer, L"abcdefg");
    const int nStackBufferOverrun = static_cast<int>(0xC0000409);
    EXPECT_EXIT(CopyBounded(szBuffer, 8, L"abcdefgh"), testing::ExitedWithCode(nStackBufferOverrun), "^$");
}

TEST(BoundedText, TheStringTableGivesItsTextsAndNothingForOtherIds)
{
    EXPECT_STREQ(LoadResString(9999), L"");
    EXPECT_STREQ(FormatResString(IDS_RUN_PORTABLE, L"E:"),
                 L"To run portable Lumacap, double-click 'StartLC8' icon located at:\nE:");
}
