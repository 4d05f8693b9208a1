// What a log takes away, what it leaves to the next boot, and what stays.
#include "uninstall/LogReplay.h"

#include "tests/support/World.h"

namespace
{

class LogReplay : public World
{
protected:
    // A log, and names that blanks separate, below the folder "inst". For a ~ the log has that folder.
    void Stand(const std::wstring& strLog, const std::wstring& strNames)
    {
        SetUp();
        for (const std::wstring& strName : Split(strNames, L' '))
            Make(L"inst\\" + strName);
        WriteBytes(m_strLog, Bytes(Replaced(strLog, L"~", m_strInst)));
    }

    std::wstring Left() const { return Tree(L"inst") + L"; " + Pending(L"inst"); }

    const std::wstring m_strInst = At(L"inst");
    const std::wstring m_strLog = At(L"log");
};

} // namespace

TEST_F(LogReplay, RecordsTakeAwayTheirFilesAndThenTheirFolders)
{
    const wchar_t* const rows[][4] = {
        // log; what stands before; what is left, and waits for the boot; only prefix
        { L" Make Dir: d\nfile copy: a\nFile Copy:  a\nShell Link: ~\\a\nMade Dir: d\n", L"a d\\", L"a d\\; " },
        { L"File Copy: 1\nFile Copy x64: 2\nFile Copy ind: 3\nFile Copy prt: 4\nFile Overwrite: 5\nFile Del: 6",
          L"1 2 3 4 5 6 7", L"7; " },
        // The first arrow counts, the tail ahead of it, and the name under which the file landed.
        { L"File Copy: >\nFile Copy: a >\tb | > d\nFile Del: c | a > d\nFile Del: a| d\nFile Copy: a > f > d\n"
          L"File Copy: > g\nFile Copy: e\\*.x",
          L"a b c d e\\1.x e\\2.x e\\y f g", L"a d e\\ e\\y f; " },
        // Files go before folders, whatever their order in the log. A mask for everything meets the folder itself and
        // its parent.
        { L"Make Dir: d\nFile Copy: d\\*\nMake Dir: d\n", L"d\\x z", L"z; -d -. -d" },
        // A parent named first waits for the boot, the folder in it goes.
        { L"Make Dir: p\nMake Dir: p\\q\nMake Dir: d > e\n", L"p\\q\\ d\\ e\\", L"d\\ e\\ p\\; -p -d > e" },
        // A forward slash is found, but what is then deleted, or waits, is the wrong path.
        { L"File Copy: d/a\nFile Copy: d/b\n", L"a d\\a d\\b", L"d\\ d\\a d\\b; -b" },
        { L"File Copy: a\nFile Del: b\nMake Dir: d\nMake Dir: e\n", L"a b d\\ e\\x", L"a e\\ e\\x; -e", L"File Del: " },
    };
    for (const auto& [pszLog, pszBefore, pszLeft, pszOnlyPrefix] : rows)
    {
        Stand(pszLog, pszBefore);
        RemoveLoggedFiles(m_strLog.c_str(), m_strInst.c_str(), pszOnlyPrefix);
        EXPECT_EQ(Left(), pszLeft) << pszLog;
    }
}

// Attributes: read-only is 1, hidden 2, system 4.
TEST_F(LogReplay, ReadOnlyAndHiddenFilesGoAndBusyOnesWaitForTheBoot)
{
    Stand(L"", L"1 2 d\\3 d\\4");
    SetAttributes(At(L"inst\\1"), 3);
    SetAttributes(At(L"inst\\2"), 6);
    SetAttributes(m_strInst, 2);
    const auto hold = HoldFile(At(L"inst\\2"));
    EXPECT_EQ(DeleteMatchingFiles(At(L"inst/").c_str(), L"*"), 1);
    EXPECT_EQ(DeleteMatchingFiles(L"", At(L"inst\\d\\*3").c_str()), 1);
    EXPECT_EQ(Left(), L"2 d\\ d\\4; -. -C:\\corner -2 -d");
    EXPECT_EQ(AttributesOf(At(L"inst\\2")) & 7, 4u);
    EXPECT_EQ(AttributesOf(m_strInst) & 7, 0u);
}

// Nothing of it waits for the boot.
TEST_F(LogReplay, LinksGoFirstAndThenTheirFoldersAndEmptyParents)
{
    Stand(L"Made Dir: ~\\g\\1\nMade Dir: ~\\g\\2\\3\nMade Dir: ~\\h\nMake Dir: d\nFile Copy: f\nShell Link: ~\\a\n"
          L"Shell Link: ~\\g\\1\\b\nShell Link: ~\\h\\kept\nShell Link: ~\\h\\busy\nShell Link: ~\\?\n",
          L"a g\\1\\b g\\2\\3\\ d\\ f h\\busy h\\kept h\\sub\\");
    SetAttributes(At(L"inst\\h\\kept"), 1);
    const auto hold = HoldFile(At(L"inst\\h\\busy"));
    RemoveLoggedLinks(m_strLog.c_str());
    EXPECT_EQ(Left(), L"d\\ f h\\ h\\busy h\\kept h\\sub\\; ");
}

TEST_F(LogReplay, AFolderIsNoEntryOfItself)
{
    Stand(L"", L"a b ..c d\\");
    // Folder and mask have room in 518 characters.
    EXPECT_EQ(CountFolderEntries(L"*", (m_strInst + std::wstring(517 - m_strInst.size(), L'\\')).c_str()), 4);
}
