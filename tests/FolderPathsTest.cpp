// Paths as texts: what is cut, what is added, and which folders are made.
#include "foundation/FolderPaths.h"

#include <gtest/gtest.h>

#include "tests/support/Corner.h"

class FolderPaths : public MachineCorner
{
};

TEST_F(FolderPaths, OnlyTheBackslashSeparatesButASlashAtTheEndIsEnough)
{
    const struct
    {
        const wchar_t *pszPath, *pszCut, *pszParent, *pszLess, *pszSeparated;
    } rows[] = {
        { L"C:\\a\\b", L"C:\\a\\b", L"C:\\a", L"C:\\a", L"C:\\a\\b\\" },
        { L"C:\\a\\\\", L"C:\\a\\", L"C:\\a", L"C:\\a", L"C:\\a\\\\" },
        { L"C:\\", L"C:", L"", L"C:", L"C:\\" },
        { L"\\a", L"\\a", L"", L"", L"\\a\\" },
        { L"a/b/", L"a/b/", L"", L"a/b/", L"a/b/" },
        { L"", L"", L"", L"", L"\\" },
        { nullptr, L"", L"", L"", L"\\" },
    };
    for (const auto& row : rows)
    {
        EXPECT_STREQ(CutTrailingBackslash(row.pszPath), row.pszCut);
        EXPECT_STREQ(ParentFolder(row.pszPath), row.pszParent);
        EXPECT_STREQ(CutLastPart(row.pszPath), row.pszLess);
        EXPECT_STREQ(WithSeparator(row.pszPath), row.pszSeparated);
    }
}

TEST_F(FolderPaths, FoldersAreMadeFromTheGivenBackslashOn)
{
    const int nFirst = static_cast<int>(At(L"p").size());
    CreateFoldersAbove(At(L"p\\q\\r").c_str(), nFirst + 1);
    EXPECT_EQ(TreeText(Folder()), L"");
    CreateFoldersAbove(At(L"p\\q\\r").c_str(), nFirst);
    EXPECT_EQ(TreeText(Folder()), L"p\\ p\\q\\");
}
