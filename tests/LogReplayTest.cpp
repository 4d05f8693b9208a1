// What a log takes away, what it leaves to the next boot, and what stays.
#include "uninstall/LogReplay.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <string>
#include <tuple>

#include "foundation/InstallLog.h"
#include "tests/support/Corner.h"
#include "tests/support/PendingList.h"

class LogReplay : public MachineCorner
{
protected:
    // Names that blanks separate, below the folder "inst", which is emptied first; a folder's ends in a backslash.
    void Stand(const std::wstring& strNames) const
    {
        RemoveTree(m_strInst);
        MakeFolder(m_strInst);
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

    // Records with the full paths of names below the folder "inst".
    std::string Records(const char* pszPrefix, std::initializer_list<const char*> names) const
    {
        std::string strRecords;
        for (const char* pszName : names)
            strRecords += pszPrefix + std::string(m_strInst.begin(), m_strInst.end()) + "\\" + pszName + "\r\n";
        return strRecords;
    }

    const std::wstring m_strInst = At(L"inst");
    const std::wstring m_strLog = At(L"some.log");
};

TEST_F(LogReplay, RecordsTakeAwayTheirFilesAndThenTheirFolders)
{
    const std::tuple<const char*, const wchar_t*, const wchar_t*, const wchar_t*> rows[] = {
        // log, what stands before, what is left, what waits for the boot
        { "nonsense\r\n a\r\nfile copy: a\r\nShell Link: a\r\nMade Dir: d\r\nMake Dir:\r\n", L"a d\\", L"a d\\", L"" },
        { "File Copy: 1\nFile Copy x64: 2\nFile Copy ind: 3\nFile Copy prt: 4\nFile Overwrite: 5\nFile Del: 6",
          L"1 2 3 4 5 6 7", L"7", L"" },
        { "File Copy: missing\nFile Del: none\\*\nFile Copy: >\n", L"a", L"a", L"" },
        { "File Copy: a > b\nFile Copy: c>\t sub\\d\nFile Copy: e > f | g\nFile Overwrite: h | i > j\n",
          L"a b c e f g h i j sub\\d", L"a c e g i j sub\\", L"" },
        // Files go before folders, whatever their order in the log. A mask for everything meets the folder itself and
        // its parent.
        { "Make Dir: sub\nFile Copy: sub\\*\n", L"sub\\x sub\\y z", L"z", L"-sub -." },
        // A parent named first waits for the boot, the folder in it goes.
        { "Make Dir: p\nMake Dir: p\\q\nMake Dir: r\\s\nMake Dir: r\n", L"p\\q\\ r\\s\\", L"p\\", L"-p" },
        { "Make Dir: missing\nMake Dir: d > e | f\n", L"d\\ e\\", L"d\\ e\\", L"-missing -d > e | f" },
        // A forward slash is found, but what is then deleted, or waits, is the wrong path.
        { "File Copy: sub/a\nFile Copy: sub/b\n", L"a sub\\a sub\\b", L"sub\\ sub\\a sub\\b", L"-b" },
        { "File Copy: d\n", L"d\\x", L"d\\ d\\x", L"-d" },
    };
    WriteBytes(At(L"4"), "beside the folder, where a portable install has its starter, nobody looks for it");
    for (const std::wstring& strFolder : { m_strInst, m_strInst + L"\\" })
    {
        for (const auto& [pszLog, pszBefore, pszLeft, pszPending] : rows)
        {
            SCOPED_TRACE(pszLog);
            WriteBytes(m_strLog, pszLog);
            Stand(pszBefore);
            RemoveLoggedFiles(m_strLog.c_str(), strFolder.c_str());
            EXPECT_EQ(TreeText(m_strInst), pszLeft);
            EXPECT_EQ(PendingText(m_strInst), pszPending);
            ClearPending();
        }
    }
    EXPECT_EQ(TreeText(Folder()), L"4 inst\\ inst\\d\\ inst\\d\\x some.log");
}

TEST_F(LogReplay, APrefixRestrictsTheFilesButNotTheFolders)
{
    WriteBytes(m_strLog, "File Copy: a\nFile Del: b\nFile Overwrite: c\nMake Dir: d\nMake Dir: e\n");
    Stand(L"a b c d\\ e\\x");
    RemoveLoggedFiles(m_strLog.c_str(), m_strInst.c_str(), kFileDel);
    EXPECT_EQ(TreeText(m_strInst) + PendingText(m_strInst), L"a c e\\ e\\x-e");
}

TEST_F(LogReplay, AListThatCantBeOpenedChangesNothing)
{
    Stand(L"a d\\");
    WriteBytes(m_strLog, "File Copy: a\nMake Dir: d\n" + Records("Shell Link: ", { "a" }));
    const CFileHold hold(m_strLog, 0);
    RemoveLoggedFiles(m_strLog.c_str(), m_strInst.c_str());
    RemoveLoggedLinks(m_strLog.c_str());
    EXPECT_EQ(TreeText(m_strInst) + PendingText(m_strInst), L"a d\\");
}

// No exception is made for the folder itself and its parent, which a mask for everything meets too.
TEST_F(LogReplay, ReadOnlyAndHiddenFilesGoAndBusyOnesWaitForTheBoot)
{
    Stand(L"1 2 3.e");
    SetAttributes(At(L"inst\\1"), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    SetAttributes(At(L"inst\\2"), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    SetAttributes(m_strInst, FILE_ATTRIBUTE_HIDDEN);
    const CFileHold hold(At(L"inst\\2"), FILE_SHARE_READ);
    const CImageHold image(At(L"inst\\3.e"));
    EXPECT_EQ(DeleteMatchingFiles(m_strInst.c_str(), L"*"), 1);
    EXPECT_EQ(PendingText(Folder()), L"-inst -. -inst\\2 -inst\\3.e");
    EXPECT_EQ(TreeText(m_strInst), L"2 3.e");
    EXPECT_EQ(AttributesOf(At(L"inst\\2")) & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM), FILE_ATTRIBUTE_SYSTEM);
    EXPECT_EQ(AttributesOf(m_strInst) & FILE_ATTRIBUTE_HIDDEN, 0u);
}

TEST_F(LogReplay, AFolderMayEndInASlashOrBeEmpty)
{
    Stand(L"sub\\a b c");
    EXPECT_EQ(DeleteMatchingFiles(At(L"inst/").c_str(), L"b"), 1);
    ASSERT_TRUE(SetCurrentDirectoryW(m_strInst.c_str()));
    EXPECT_EQ(DeleteMatchingFiles(L"", L"c"), 1);
    EXPECT_EQ(DeleteMatchingFiles(L"", At(L"inst\\sub\\*a").c_str()), 1);
    EXPECT_EQ(TreeText(m_strInst), L"sub\\");
}

TEST_F(LogReplay, LinksGoFirstAndThenTheirFoldersWithTheParentsThatThisEmpties)
{
    Stand(L"a.lnk group\\one\\b.lnk group\\two\\c.lnk deep\\er\\est\\ made\\ keep");
    WriteBytes(m_strLog, Records("Make Dir: ", { "made" }) + Records("File Copy: ", { "keep" }) +
                             Records("Made Dir: ", { "group\\one", "group\\two", "deep\\er\\est" }) +
                             Records("Shell Link: ", { "a.lnk", "group\\one\\b.lnk", "group\\two\\c.lnk", "missing" }));
    RemoveLoggedLinks(m_strLog.c_str());
    EXPECT_EQ(TreeText(m_strInst), L"keep made\\");
}

TEST_F(LogReplay, LinksAndFoldersThatCantGoStayAndDontWaitForTheBoot)
{
    Stand(L"g\\busy.lnk g\\readonly.lnk g\\sub\\ mask\\x");
    SetAttributes(At(L"inst\\g\\readonly.lnk"), FILE_ATTRIBUTE_READONLY);
    const CFileHold hold(At(L"inst\\g\\busy.lnk"), FILE_SHARE_READ);
    WriteBytes(m_strLog, Records("Made Dir: ", { "g", "missing\\sub" }) +
                             Records("Shell Link: ", { "g\\readonly.lnk", "g\\busy.lnk", "mask\\?" }));
    RemoveLoggedLinks(m_strLog.c_str());
    EXPECT_EQ(TreeText(m_strInst), L"g\\ g\\busy.lnk g\\readonly.lnk g\\sub\\ mask\\ mask\\x");
    EXPECT_EQ(PendingText(m_strInst), L"");
}

TEST_F(LogReplay, EntriesOfAFolderAreCountedWithoutItselfAndItsParent)
{
    Stand(L"a.txt b.txt ..c d\\");
    const std::wstring strLong = m_strInst + std::wstring(517 - m_strInst.size(), L'\\');
    const std::tuple<std::wstring, const wchar_t*, int> rows[] = {
        { m_strInst, L"*.txt", 2 },  { m_strInst + L"\\d", L"*", 0 },
        { At(L"missing"), L"*", 0 }, { m_strInst + L"\\", L"*", 4 },
        { strLong, L"*", 4 },        { strLong + L"\\", L"*", 0 },
    };
    for (const auto& [strFolder, pszMask, nEntries] : rows)
        EXPECT_EQ(CountFolderEntries(pszMask, strFolder.c_str()), nEntries) << testing::PrintToString(strFolder);
}
