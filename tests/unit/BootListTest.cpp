// What waits for the next boot where the platform's own list can't be had: the profile file.
#include "uninstall/BootList.h"

#include "app/RunState.h"
#include "tests/support/World.h"

using BootList = World;

// An oddity to keep: the profile's entry of a replacement throws the new file away, and the target isn't named.
TEST_F(BootList, LaterFailedReplacementClearsTheRebootRequest)
{
    BlockPending();
    WriteBytes(kPendingProfile, "[rename]\r\nC:\\x=C:\\y\r\nNUL=C:\\a\r\n");
    DeleteAtReboot(L"C:\\a b=c");
    ReplaceAtReboot(L"C:\\x.new", L"C:\\x");
    EXPECT_EQ(ReadBytes(kPendingProfile), "[rename]\r\nC:\\x=C:\\y\r\nNUL=C:\\a\r\nNUL=C:\\a b=c\r\nNUL=C:\\x.new\r\n");

    RemoveTree(kPendingProfile);
    // It can be neither read nor written then, in which a deletion has no say.
    MakeFolder(kPendingProfile);
    DeleteAtReboot(L"C:\\b");
    EXPECT_EQ(g_bRebootNeeded, 1);
    ReplaceAtReboot(L"C:\\b.new", L"C:\\b");
    EXPECT_EQ(g_bRebootNeeded, 0);
}

// The section is 16,000 characters long first. The process that ends is a child, which clears the corner and makes the
// same profile; its output must not lie in the corner.
TEST_F(BootList, ASectionOf16384CharactersEndsTheProcess)
{
    SetEnvironmentVariableW(L"TMP", L"C:\\");
    BlockPending();
    const std::string strProfile = "[rename]\r\nNUL=C:\\" + std::string(15992, 'e') + "\r\n";
    WriteBytes(kPendingProfile, strProfile);
    const std::wstring strFits(16383 - 16000 - 5, L'p');
    EXPECT_EXIT(DeleteAtReboot((strFits + L"p").c_str()), testing::ExitedWithCode(static_cast<int>(0xC0000409)), "^$");
    DeleteAtReboot(strFits.c_str());
    EXPECT_EQ(ReadBytes(kPendingProfile), strProfile + "NUL=" + Bytes(strFits) + "\r\n");
}
