// What waits for the next boot: the platform's own list, and the profile file where that can't be had.
#include "uninstall/BootList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "app/RunState.h"
#include "tests/support/Corner.h"
#include "tests/support/PendingList.h"

class BootList : public MachineCorner
{
};

TEST_F(BootList, RequestsStandInTheirOrderWhateverThePathsAre)
{
    WriteBytes(At(L"a b.txt"), "");
    MakeFolder(At(L"folder"));
    g_bRebootNeeded = 7;
    DeleteAtReboot(At(L"a b.txt").c_str());
    DeleteAtReboot(At(L"folder").c_str());
    DeleteAtReboot(At(L"missing\\x").c_str());
    DeleteAtReboot(At(L"a b.txt").c_str());
    EXPECT_EQ(g_bRebootNeeded, 7);
    ReplaceAtReboot(At(L"a b.txt.new").c_str(), At(L"a b.txt").c_str());
    EXPECT_EQ(g_bRebootNeeded, 1);

    EXPECT_EQ(PendingText(Folder()), L"-a b.txt -folder -missing\\x -a b.txt a b.txt.new>a b.txt");
    EXPECT_FALSE(IsThere(PendingProfilePath()));
    EXPECT_TRUE(IsThere(At(L"a b.txt")));
}

TEST_F(BootList, TheFirstFallbackEntryMakesTheProfileFile)
{
    BlockPending();
    DeleteAtReboot(L"C:\\Program Files\\Lumacap 8\\a=b.dll");
    EXPECT_EQ(PendingProfile(), "[rename]\r\nNUL=C:\\Program Files\\Lumacap 8\\a=b.dll\r\n");
    EXPECT_EQ(g_bRebootNeeded, 0);
}

TEST_F(BootList, FallbackEntriesComeLastAndLeaveAllOthersAsTheyAre)
{
    BlockPending();
    WriteBytes(PendingProfilePath(), "[other]\r\nkey=1\r\n[rename]\r\nNUL=C:\\b\r\nC:\\x=C:\\y\r\nNUL=C:\\a\r\n");
    DeleteAtReboot(L"C:\\b");
    DeleteAtReboot(L"C:\\folder");
    DeleteAtReboot(L"C:\\folder");

    std::vector<std::string> lines = ReadLines(PendingProfilePath());
    lines.erase(std::remove(lines.begin(), lines.end(), ""), lines.end());
    EXPECT_EQ(lines, (std::vector<std::string>{ "[other]", "key=1", "[rename]", "NUL=C:\\b", "C:\\x=C:\\y", "NUL=C:\\a",
                                                "NUL=C:\\b", "NUL=C:\\folder", "NUL=C:\\folder" }));
}

// An oddity to keep: the entry throws the new file away, and the target isn't named.
TEST_F(BootList, TheFallbackOfAReplacementDeletesTheNewFile)
{
    BlockPending();
    ReplaceAtReboot(L"C:\\x.dll.new", L"C:\\x.dll");
    EXPECT_EQ(PendingProfile(), "[rename]\r\nNUL=C:\\x.dll.new\r\n");
    EXPECT_NE(g_bRebootNeeded, 0);
}

TEST_F(BootList, LaterFailedReplacementClearsTheRebootRequest)
{
    ReplaceAtReboot(At(L"a.new").c_str(), At(L"a").c_str());
    ASSERT_NE(g_bRebootNeeded, 0);
    BlockPending();
    MakeFolder(PendingProfilePath()); // it can be neither read nor written
    DeleteAtReboot(At(L"b").c_str());
    EXPECT_NE(g_bRebootNeeded, 0) << "a deletion has no say in it";
    ReplaceAtReboot(At(L"b.new").c_str(), At(L"b").c_str());
    EXPECT_EQ(g_bRebootNeeded, 0);
    ClearPending();
    ReplaceAtReboot(At(L"c.new").c_str(), At(L"c").c_str());
    EXPECT_NE(g_bRebootNeeded, 0);
}

// The section of the profile as the program reads it is 16,000 characters long before each test. A test that ends its
// process runs in a child that makes the same profile.
class BootListLimit : public testing::Test
{
protected:
    void SetUp() override
    {
        ClearPending();
        BlockPending();
        std::string strProfile = "[rename]\r\n";
        for (int i = 0; i < 100; i++)
            strProfile += "NUL=C:\\" + std::string(152, 'e') + "\r\n";
        WriteBytes(PendingProfilePath(), strProfile);
        m_before = ReadLines(PendingProfilePath());
    }
    void TearDown() override { ClearPending(); }

    // A path with which the section takes so many characters.
    static std::wstring PathFor(int nSection) { return L"C:\\" + std::wstring(nSection - 16000 - 5 - 3, L'p'); }

    std::vector<std::string> m_before;
};

TEST_F(BootListLimit, ASectionOf16383CharactersIsWritten)
{
    DeleteAtReboot(PathFor(16383).c_str());
    std::vector<std::string> lines = ReadLines(PendingProfilePath());
    ASSERT_EQ(lines.size(), 102u);
    EXPECT_EQ(lines.back(), "NUL=C:\\" + std::string(16383 - 16000 - 5 - 3, 'p'));
    lines.pop_back();
    EXPECT_EQ(lines, m_before);
}

TEST_F(BootListLimit, ASectionOf16384CharactersEndsTheProcessAtOnce)
{
    const int nStackBufferOverrun = static_cast<int>(0xC0000409);
    EXPECT_EXIT(DeleteAtReboot(PathFor(16384).c_str()), testing::ExitedWithCode(nStackBufferOverrun), "^$");
    EXPECT_EXIT(ReplaceAtReboot(PathFor(16384).c_str(), L"C:\\x"), testing::ExitedWithCode(nStackBufferOverrun), "^$");
    EXPECT_EQ(ReadLines(PendingProfilePath()), m_before);
}
