// Text in buffers of fixed capacity, and texts of the string table.
#include "foundation/BoundedText.h"

#include <gtest/gtest.h>

#include "res/resource.h"
#include "tests/support/ImportHook.h"

namespace
{

TEST(BoundedText, AFormattedResultFitsWholeOrIsRefused)
{
    wchar_t szBuffer[8];
    EXPECT_EQ(FormatBounded(szBuffer, 8, L"%s-%02d", L"abcd", 7), 7);
    EXPECT_STREQ(szBuffer, L"abcd-07");
    // One character more isn't cut to fit.
    EXPECT_EQ(FormatBounded(szBuffer, 8, L"%s-%02d", L"abcde", 7), -1);
    EXPECT_STREQ(szBuffer, L"");
}

struct CProcessEnd
{
    UINT nExitCode;
};

TEST(BoundedText, ACopyThatDoesNotFitEndsTheProcess)
{
    wchar_t szBuffer[4] = L"";
    CopyBounded(szBuffer, 4, L"abc");
    EXPECT_STREQ(szBuffer, L"abc");

    CCallHook end("KERNEL32.dll", "TerminateProcess", &TerminateProcess);
    end.Replace([](HANDLE, UINT nExitCode) -> BOOL { throw CProcessEnd{ nExitCode }; });
    try
    {
        CopyBounded(szBuffer, 4, L"abcd");
        FAIL() << "the process went on";
    }
    catch (const CProcessEnd& processEnd)
    {
        EXPECT_EQ(processEnd.nExitCode, 0xC0000409u);
    }
    EXPECT_STREQ(szBuffer, L"abc");
}

TEST(BoundedText, TheStringTableGivesItsTextsAndNothingForOtherIds)
{
    EXPECT_STREQ(LoadResString(IDS_HELP_LINK), L"Lumacap 8 Help");
    EXPECT_STREQ(LoadResString(9999), L"");
    EXPECT_STREQ(FormatResString(IDS_RUN_PORTABLE, L"E:"),
                 L"To run portable Lumacap, double-click 'StartLC8' icon located at:\nE:");
}

} // namespace
