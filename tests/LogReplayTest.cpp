// What a log takes away, what it leaves to the next boot, and what stays.
#include "uninstall/LogReplay.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include "foundation/InstallLog.h"
#include "tests/support/Corner.h"
#include "tests/support/ImportHook.h"
#include "tests/support/PendingList.h"

class LogReplay : public MachineCorner
{
protected:
    void WriteLog(const std::string& strLog) const { WriteBytes(m_strLog, strLog); }

    // Names that blanks separate, below the folder "inst", which is emptied first; a folder's ends in a backslash.
    void Stand(const std::wstring& strNames) const
    {
        RemoveTree(At(L"inst"));
        MakeFolder(At(L"inst"));
        for (size_t nStart = 0, nEnd; nStart < strNames.size(); nStart = nEnd + 1)
        {
            nEnd = std::min(strNames.find(L' ', nStart), strNames.size());
            const std::wstring strPath = At(L"inst\\") + strNames.substr(nStart, nEnd - nStart);
            if (strPath.back() == L'\\')
                MakeFolder(strPath.substr(0, strPath.size() - 1));
            else
                WriteBytes(strPath, "x");
        }
    }

    std::wstring Left() const { return TreeText(At(L"inst")); }

    std::wstring Pending() const { return PendingText(At(L"inst")); }

    // A record with the full path of a name in the corner.
    std::string Record(const char* pszPrefix, const wchar_t* pszName) const
    {
        const std::wstring strPath = At(pszName);
        return pszPrefix + std::string(strPath.begin(), strPath.end()) + "\r\n";
    }

    const std::wstring m_strLog = At(L"some.log");
};

TEST_F(LogReplay, RecordsTakeAwayTheirFilesAndThenTheirFolders)
{
    const std::tuple<const char*, const wchar_t*, const wchar_t*, const wchar_t*> rows[] = {
        // log, what stands before, what is left, what waits for the boot
        { "", L"a", L"a", L"" },
        { "nonsense\r\n a\r\nfile copy: a\r\nShell Link: a\r\nMade Dir: d\r\nMake Dir:\r\n", L"a d\\", L"a d\\", L"" },
        { "File Copy: 1\nFile Copy x64: 2\nFile Copy ind: 3\nFile Copy prt: 4\nFile Overwrite: 5\nFile Del: 6",
          L"1 2 3 4 5 6 7", L"7", L"" },
        { "File Copy: missing\nFile Del: none\\*\nFile Copy: >\n", L"a", L"a", L"" },
        { "File Copy: *.d?l\nFile Copy: sub\\x*\n", L"a.dll a.txt b.dxl sub\\x1 sub\\x2 sub\\y", L"a.txt sub\\ sub\\y",
          L"" },
        { "File Copy: a > b\nFile Copy: c>\t sub\\d\nFile Copy: e > f | g\nFile Overwrite: h | i > j\n",
          L"a b c e f g h i j sub\\d", L"a c e g i j sub\\", L"" },
        // Files go before folders, whatever their order in the log.
        { "Make Dir: sub\nFile Copy: sub\\x\n", L"sub\\x", L"", L"" },
        // A mask for everything meets the folder itself and its parent.
        { "Make Dir: sub\nFile Copy: sub\\*\n", L"sub\\x sub\\y z", L"z", L"-sub -." },
        // A parent named first waits for the boot, the folder in it goes.
        { "Make Dir: p\nMake Dir: p\\q\n", L"p\\q\\", L"p\\", L"-p" },
        { "Make Dir: p\\q\nMake Dir: p\n", L"p\\q\\", L"", L"" },
        { "Make Dir: full\nMake Dir: missing\nMake Dir: d > e | f\n", L"full\\x d\\ e\\", L"d\\ e\\ full\\ full\\x",
          L"-full -missing -d > e | f" },
        // A forward slash is found, but what is then deleted, or waits, is the wrong path.
        { "File Copy: sub/a\n", L"sub\\a", L"sub\\ sub\\a", L"-a" },
        { "File Copy: sub/a\n", L"a sub\\a", L"sub\\ sub\\a", L"" },
        { "File Copy: d\n", L"d\\x", L"d\\ d\\x", L"-d" },
    };
    for (const wchar_t* pszFolder : { L"inst", L"inst\\" })
    {
        for (const auto& [pszLog, pszBefore, pszLeft, pszPending] : rows)
        {
            SCOPED_TRACE(pszLog);
            WriteLog(pszLog);
            Stand(pszBefore);
            RemoveLoggedFiles(m_strLog.c_str(), At(pszFolder).c_str());
            EXPECT_EQ(Left(), pszLeft);
            EXPECT_EQ(Pending(), pszPending);
            ClearPending();
        }
    }
    EXPECT_TRUE(IsThere(m_strLog));
}

TEST_F(LogReplay, APrefixRestrictsTheFilesButNotTheFolders)
{
    WriteLog("File Copy: a\nFile Del: b\nFile Overwrite: c\nMake Dir: d\nMake Dir: e\nMake Dir: f\n");
    Stand(L"a b c d\\ e\\x");
    RemoveLoggedFiles(m_strLog.c_str(), At(L"inst").c_str(), kFileDel);
    EXPECT_EQ(Left(), L"a c e\\ e\\x");
    EXPECT_EQ(Pending(), L"-e -f");
}

TEST_F(LogReplay, AListThatCantBeOpenedChangesNothing)
{
    Stand(L"a d\\");
    WriteLog("File Copy: a\nMake Dir: d\n" + Record("Shell Link: ", L"inst\\a") + Record("Made Dir: ", L"inst\\d"));
    const CFileHold hold(m_strLog, 0);
    for (const std::wstring& strLog : { m_strLog, At(L"missing.log") })
    {
        RemoveLoggedFiles(strLog.c_str(), At(L"inst").c_str());
        RemoveLoggedLinks(strLog.c_str());
    }
    EXPECT_EQ(Left(), L"a d\\");
    EXPECT_EQ(Pending(), L"");
}

// The portable starter lies in the parent, where nobody looks for it.
TEST_F(LogReplay, ReplayLooksInTheFolderItselfAndASecondOneFindsNothing)
{
    WriteBytes(At(L"starter"), "x");
    Stand(L"starter a");
    WriteLog("File Copy prt: starter\nFile Copy: a\n");
    for (int nReplay = 0; nReplay < 2; nReplay++)
    {
        RemoveLoggedFiles(m_strLog.c_str(), At(L"inst").c_str());
        EXPECT_EQ(Left() + Pending(), L"");
    }
    EXPECT_TRUE(IsThere(At(L"starter")));
}

TEST_F(LogReplay, ReadOnlyAndHiddenFilesGoAndBusyOnesWaitForTheBoot)
{
    Stand(L"1.txt 2.txt 3.txt 4.txt 5.dat");
    SetAttributes(At(L"inst\\1.txt"), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    SetAttributes(At(L"inst\\2.txt"), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    const CFileHold hold(At(L"inst\\2.txt"), FILE_SHARE_READ);
    const CImageHold image(At(L"inst\\3.txt"));
    EXPECT_EQ(DeleteMatchingFiles(At(L"inst").c_str(), L"*.txt"), 2);
    EXPECT_EQ(Left(), L"2.txt 3.txt 5.dat");
    EXPECT_EQ(Pending(), L"-2.txt -3.txt");
    EXPECT_EQ(AttributesOf(At(L"inst\\2.txt")) & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM),
              FILE_ATTRIBUTE_SYSTEM);
    EXPECT_EQ(DeleteMatchingFiles(At(L"inst").c_str(), L"*.none"), 0);
}

TEST_F(LogReplay, AFolderMayEndInASeparatorOrBeEmpty)
{
    for (const wchar_t* pszFolder : { L"inst", L"inst\\", L"inst/" })
    {
        Stand(L"sub\\a b");
        EXPECT_EQ(DeleteMatchingFiles(At(pszFolder).c_str(), L"sub\\*a"), 1);
        EXPECT_EQ(Left(), L"b sub\\");
    }
    Stand(L"sub\\a b");
    ASSERT_TRUE(SetCurrentDirectoryW(At(L"inst").c_str()));
    EXPECT_EQ(DeleteMatchingFiles(L"", L"b"), 1);
    EXPECT_EQ(DeleteMatchingFiles(L"", At(L"inst\\sub\\*a").c_str()), 1);
    EXPECT_EQ(Left(), L"sub\\");
}

// No exception is made for the folder itself and its parent: both lose their bits and are left to the boot list.
TEST_F(LogReplay, AMaskForEverythingTakesTheFolderItselfAndItsParentForMatches)
{
    Stand(L"a sub\\x z");
    SetAttributes(Folder(), FILE_ATTRIBUTE_HIDDEN);
    SetAttributes(At(L"inst"), FILE_ATTRIBUTE_HIDDEN);
    const CCallHook move("KERNEL32.dll", "MoveFileExW", &MoveFileExW);
    EXPECT_EQ(DeleteMatchingFiles(At(L"inst").c_str(), L"*.*"), 2);
    EXPECT_EQ(Left(), L"sub\\ sub\\x");
    EXPECT_EQ(move.Texts(),
              (std::vector<std::wstring>{ At(L"inst\\."), L"", At(L"inst\\.."), L"", At(L"inst\\sub"), L"" }));
    EXPECT_EQ((AttributesOf(Folder()) | AttributesOf(At(L"inst"))) & FILE_ATTRIBUTE_HIDDEN, 0u);
}

TEST_F(LogReplay, LinksGoFirstAndThenTheirFoldersWithTheParentsThatThisEmpties)
{
    Stand(L"a.lnk group\\one\\b.lnk group\\two\\c.lnk deep\\er\\est\\ made\\ keep");
    std::string strLog = Record("Make Dir: ", L"inst\\made") + Record("File Copy: ", L"inst\\keep");
    for (const wchar_t* pszFolder : { L"inst\\group\\one", L"inst\\group\\two", L"inst\\deep\\er\\est" })
        strLog += Record("Made Dir: ", pszFolder);
    for (const wchar_t* pszLink :
         { L"inst\\a.lnk", L"inst\\group\\one\\b.lnk", L"inst\\group\\two\\c.lnk", L"inst\\x" })
        strLog += Record("Shell Link: ", pszLink);
    WriteLog(strLog);
    RemoveLoggedLinks(m_strLog.c_str());
    EXPECT_EQ(Left(), L"keep made\\");
    EXPECT_EQ(Pending(), L"");
}

TEST_F(LogReplay, LinksAndFoldersThatCantGoStayAndDontWaitForTheBoot)
{
    Stand(L"g\\busy.lnk g\\readonly.lnk g\\sub\\ mask\\x");
    SetAttributes(At(L"inst\\g\\readonly.lnk"), FILE_ATTRIBUTE_READONLY);
    const CFileHold hold(At(L"inst\\g\\busy.lnk"), FILE_SHARE_READ);
    std::string strLog = Record("Made Dir: ", L"inst\\g") + Record("Made Dir: ", L"inst\\missing\\sub");
    for (const wchar_t* pszLink : { L"inst\\g\\readonly.lnk", L"inst\\g\\busy.lnk", L"inst\\mask\\?" })
        strLog += Record("Shell Link: ", pszLink);
    WriteLog(strLog);
    RemoveLoggedLinks(m_strLog.c_str());
    EXPECT_EQ(Left(), L"g\\ g\\busy.lnk g\\readonly.lnk g\\sub\\ mask\\ mask\\x");
    EXPECT_NE(AttributesOf(At(L"inst\\g\\readonly.lnk")) & FILE_ATTRIBUTE_READONLY, 0u);
    EXPECT_EQ(Pending(), L"");
}

TEST_F(LogReplay, EntriesOfAFolderAreCountedWithoutItselfAndItsParent)
{
    const std::tuple<const wchar_t*, const wchar_t*, int> rows[] = {
        { L"inst", L"*", 4 },      { L"inst\\", L"*", 4 },  { L"inst", L"*.txt", 2 },
        { L"inst", L"*.none", 0 }, { L"inst\\d", L"*", 0 }, { L"missing", L"*", 0 },
    };
    Stand(L"a.txt b.txt ..c d\\");
    SetAttributes(At(L"inst\\a.txt"), FILE_ATTRIBUTE_HIDDEN);
    for (const auto& [pszFolder, pszMask, nEntries] : rows)
        EXPECT_EQ(CountFolderEntries(pszMask, At(pszFolder).c_str()), nEntries) << testing::PrintToString(pszMask);
}
