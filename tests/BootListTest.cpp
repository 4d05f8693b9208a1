// What waits for the next boot: the platform's own list, and the profile file where that can't be had.
#include "uninstall/BootList.h"

#include <gtest/gtest.h>

#include <string>

#include "app/RunState.h"
#include "tests/support/Corner.h"
#include "tests/support/PendingList.h"

class BootList : public MachineCorner
{
};

TEST_F(BootList, RequestsStandInTheirOrderWhateverThePathsAre)
{
    WriteBytes(At(L"a b"), "");
    MakeFolder(At(L"folder"));
    g_bRebootNeeded = 7;
    for (const wchar_t* pszName : { L"a b", L"folder", L"missing\\x", L"a b" })
        DeleteAtReboot(At(pszName).c_str());
    EXPECT_EQ(g_bRebootNeeded, 7);
    ReplaceAtReboot(At(L"a b.new").c_str(), At(L"a b").c_str());
    EXPECT_EQ(g_bRebootNeeded, 1);
    EXPECT_EQ(PendingText(Folder()), L"-a b -folder -missing\\x -a b a b.new>a b");
    EXPECT_FALSE(IsThere(PendingProfilePath()));
    EXPECT_TRUE(IsThere(At(L"a b")));
}

// An oddity to keep: the entry of a replacement throws the new file away, and the target isn't named.
TEST_F(BootList, FallbackEntriesAreDeletionsBehindAllOthers)
{
    BlockPending();
    DeleteAtReboot(L"C:\\b=b.dll");
    EXPECT_EQ(PendingProfile(), "[rename]\r\nNUL=C:\\b=b.dll\r\n");
    EXPECT_EQ(g_bRebootNeeded, 0);

    WriteBytes(PendingProfilePath(), "[other]\r\nkey=1\r\n[rename]\r\nNUL=C:\\b\r\nC:\\x=C:\\y\r\nNUL=C:\\a\r\n");
    DeleteAtReboot(L"C:\\b");
    ReplaceAtReboot(L"C:\\x.dll.new", L"C:\\x.dll");
    EXPECT_NE(g_bRebootNeeded, 0);
    std::string strLines;
    for (const std::string& strLine : ReadLines(PendingProfilePath()))
        strLines += strLine.empty() ? "" : strLine + " ";
    EXPECT_EQ(strLines, "[other] key=1 [rename] NUL=C:\\b C:\\x=C:\\y NUL=C:\\a NUL=C:\\b NUL=C:\\x.dll.new ");
}

TEST_F(BootList, LaterFailedReplacementClearsTheRebootRequest)
{
    ReplaceAtReboot(At(L"a.new").c_str(), At(L"a").c_str());
    BlockPending();
    MakeFolder(PendingProfilePath()); // it can be neither read nor written
    DeleteAtReboot(At(L"b").c_str());
    EXPECT_NE(g_bRebootNeeded, 0) << "a deletion has no say in it";
    ReplaceAtReboot(At(L"b.new").c_str(), At(L"b").c_str());
    EXPECT_EQ(g_bRebootNeeded, 0);
}

// The section of the profile as the program reads it is 16,000 characters long first. A process that ends is a child,
// which makes the same profile.
TEST_F(BootList, ASectionOf16384CharactersEndsTheProcessAtOnce)
{
    BlockPending();
    std::string strProfile = "[rename]\r\n";
    for (int i = 0; i < 100; i++)
        strProfile += "NUL=C:\\" + std::string(152, 'e') + "\r\n";
    WriteBytes(PendingProfilePath(), strProfile);

    const std::wstring strFits = L"C:\\" + std::wstring(16383 - 16000 - 5 - 3, L'p');
    const int nStackBufferOverrun = static_cast<int>(0xC0000409);
    EXPECT_EXIT(DeleteAtReboot((strFits + L"p").c_str()), testing::ExitedWithCode(nStackBufferOverrun), "^$");
    EXPECT_EQ(PendingProfile(), strProfile);
    DeleteAtReboot(strFits.c_str());
    EXPECT_EQ(PendingProfile(), strProfile + "NUL=" + std::string(strFits.begin(), strFits.end()) + "\r\n");
}
