// The package's list at work: what each record copies and where, and what a mask meets. A package is a few small files;
// the install folder, "to\inst", doesn't exist when a list begins.
#include "install/PackageList.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "app/RunState.h"
#include "tests/support/Corner.h"
#include "tests/support/Environment.h"
#include "tests/support/ImportHook.h"
#include "tests/support/PendingList.h"

static int s_nWow64Questions;
static BOOL s_bWow64;

class PackageList : public MachineCorner
{
protected:
    void SetUp() override
    {
        MachineCorner::SetUp();
        for (const wchar_t* pszFile : { L"a.txt", L"b.txt", L"c.txt", L"sub\\s.dll", L"sub\\t.txt" })
            WriteBytes(At(L"from\\") + pszFile, "new");
        MakeFolder(At(L"to"));
        g_strSourceDir = At(L"from").c_str();
        g_strInstDir = At(L"to\\inst").c_str();
        g_pfnIsWow64Process = [](HANDLE, BOOL* pbWow64)
        {
            s_nWow64Questions++;
            *pbWow64 = s_bWow64;
            return TRUE;
        };
        s_bWow64 = FALSE;
    }

    // Runs a list over an empty target folder and gives what then stands there.
    std::wstring Process(const std::string& strList) const
    {
        EmptyTarget();
        WriteBytes(At(L"some.log"), strList);
        ProcessPackageList(At(L"some.log").c_str());
        return TreeText(At(L"to"));
    }

    int Copy(const wchar_t* pszMask, const std::wstring& strTarget) const
    {
        return CopyMatchingFiles(pszMask, At(L"from").c_str(), strTarget.c_str());
    }

    void EmptyTarget() const
    {
        RemoveTree(At(L"to"));
        MakeFolder(At(L"to"));
    }

    // A real library in the package, which the library search would find there by its bare name.
    void PackLibrary() const
    {
        CopyOneFile(PackageFolder() + L"\\ThumbLcp64.dll", At(L"from\\packed.dll"));
        ASSERT_TRUE(SetCurrentDirectoryW(At(L"from").c_str()));
    }
};

TEST_F(PackageList, EachKindTakesItsOwnRecords)
{
    for (const wchar_t* pszFile : { L"x64.txt", L"starter.exe", L"nowhere.dll", L"version.dll", L"other.txt" })
        WriteBytes(At(L"from\\") + pszFile, "new");
    const std::string strList = "File Copy: a.txt\r\nFile Copy x64: x64.txt\r\nFile Copy prt: starter.exe\r\n"
                                "File Copy ind: nowhere.dll\r\nFile Copy ind: version.dll\r\nMake Dir: d\r\n"
                                "File Overwrite: other.txt\r\nFile Del: other.txt\r\nFile Copy x32: other.txt\r\n"
                                "Shell Link: other.txt\r\nfile copy: other.txt\r\n File Copy: other.txt\r\n\r\n"
                                "Made Dir: wrong\r\nMake dir: wrong\r\n";
    const wchar_t* const pszPlain = L"inst\\ inst\\a.txt inst\\d\\ inst\\nowhere.dll";
    const wchar_t* const pszWow64 = L"inst\\ inst\\a.txt inst\\d\\ inst\\nowhere.dll inst\\x64.txt";
    const wchar_t* const pszPortable =
        L"inst\\ inst\\a.txt inst\\d\\ inst\\nowhere.dll inst\\version.dll inst\\x64.txt starter.exe";
    const std::tuple<InstallKind, BOOL, const wchar_t*> rows[] = {
        { KIND_CURRENT_USER, FALSE, pszPlain }, { KIND_ALL_USERS, FALSE, pszPlain },
        { KIND_PORTABLE, FALSE, pszPortable },  { KIND_CURRENT_USER, TRUE, pszWow64 },
        { KIND_ALL_USERS, TRUE, pszWow64 },     { KIND_PORTABLE, TRUE, pszPortable },
    };
    for (const auto& [nKind, bWow64, pszTree] : rows)
    {
        g_nInstallKind = nKind;
        s_bWow64 = bWow64;
        EXPECT_EQ(Process(strList), pszTree) << nKind << bWow64;
    }
}

TEST_F(PackageList, TheMachineIsAskedOnceAheadOfEverythingElse)
{
    s_nWow64Questions = 0;
    Process("File Copy x64: a.txt\nFile Copy x64: b.txt\n");
    EXPECT_EQ(s_nWow64Questions, 1);
    ProcessPackageList(At(L"missing.log").c_str());
    EXPECT_EQ(s_nWow64Questions, 2);
}

TEST_F(PackageList, LinesActInTheirOrderAndAFailedOneLeavesNoTrace)
{
    const std::string strBlanks(495, ' ');
    const std::pair<std::string, const wchar_t*> rows[] = {
        { "", L"" },
        { "\r\n\n  \nnonsense\n", L"" },
        { "File Copy: a.txt\r\nFile Copy: b.txt\r\n", L"inst\\ inst\\a.txt inst\\b.txt" },
        { "File Copy: a.txt\nFile Copy: b.txt", L"inst\\ inst\\a.txt inst\\b.txt" },
        { "File Copy: *.none\nFile Copy: missing.txt\nMake Dir: d\n", L"" },
        { "File Copy: sub\\*.dll\n", L"inst\\ inst\\sub\\ inst\\sub\\s.dll" },
        // A folder is made where its line stands: one level, and only if the install folder is there by then.
        { "Make Dir: early\nFile Copy: a.txt\nMake Dir: p\\q\nMake Dir: d\nMake Dir: d\\e\nMake Dir: d\n",
          L"inst\\ inst\\a.txt inst\\d\\ inst\\d\\e\\" },
        // A renamed file takes no mask and makes no folder.
        { "File Copy: a.txt > x.txt\nFile Copy: b.txt\n", L"inst\\ inst\\b.txt" },
        { "File Copy: b.txt\nFile Copy: sub\\s.dll \t>\t x y.txt\nFile Copy: a.txt>z\n",
          L"inst\\ inst\\b.txt inst\\x y.txt inst\\z" },
        { "File Copy: b.txt\nFile Copy: *.txt > x.txt\nFile Copy: a.txt > d\\x.txt\nMake Dir: d\n"
          "File Copy: c.txt > d\\x.txt\nFile Copy: a.txt > x.txt | note\nFile Copy: a.txt > x > y\n",
          L"inst\\ inst\\b.txt inst\\d\\ inst\\d\\x.txt" },
        // What stands behind 511 characters is a line of its own.
        { "File Copy: a.txt" + strBlanks + "File Copy: b.txt" + std::string(73, ' ') + "\nFile Copy: c.txt\n",
          L"inst\\ inst\\a.txt inst\\b.txt inst\\c.txt" },
        { "File Copy: a.txt" + strBlanks.substr(1) + "File Copy: b.txt\nFile Copy: c.txt\n", L"inst\\ inst\\c.txt" },
    };
    for (const auto& [strList, pszTree] : rows)
        EXPECT_EQ(Process(strList), pszTree) << strList;
    EXPECT_TRUE(PendingEntries().empty());
}

TEST_F(PackageList, TheStarterLandsBesideTheInstallFolderAlsoWithABackslashAtItsEnd)
{
    g_nInstallKind = KIND_PORTABLE;
    const std::string strList = "File Copy prt: a.txt\nFile Copy prt: b.txt > x.txt\nFile Copy prt: sub\\*\n";
    for (const wchar_t* pszFolder : { L"to\\inst", L"to\\inst\\" })
    {
        g_strInstDir = At(pszFolder).c_str();
        EXPECT_EQ(Process(strList), L"a.txt sub\\ sub\\s.dll sub\\t.txt x.txt");
    }
}

// The target is then the install folder itself, which nothing can move: the file waits in it under the bare extension.
TEST_F(PackageList, AnEmptyTargetNameLeavesTheFileForTheBoot)
{
    EXPECT_EQ(Process("File Copy: b.txt\nFile Copy: a.txt >\n"), L"inst\\ inst\\.new inst\\b.txt");
    EXPECT_NE(g_bRebootNeeded, 0);
}

TEST_F(PackageList, ThePackagesOwnLibraryIsHiddenWhileTheMachineIsAskedForIt)
{
    PackLibrary();
    g_strSourceDir += L"/";
    CCallHook load("KERNEL32.dll", "LoadLibraryW", &LoadLibraryW);
    load.Replace(
        [&](const wchar_t* pszName)
        {
            EXPECT_FALSE(IsThere(At(L"from\\packed.dll")));
            EXPECT_TRUE(IsThere(At(L"from\\packed.dll.toinst")));
            return load.Original()(pszName);
        });
    EXPECT_EQ(Process("File Copy ind: packed.dll\nFile Copy: c.txt\nFile Copy ind: packed.dll \t> renamed.dll\n"),
              L"inst\\ inst\\c.txt inst\\packed.dll inst\\renamed.dll");
    EXPECT_EQ(load.Texts(), (std::vector<std::wstring>{ L"packed.dll", L"packed.dll" }));
    EXPECT_TRUE(IsThere(At(L"from\\packed.dll")));
    EXPECT_FALSE(IsThere(At(L"from\\packed.dll.toinst")));
}

// The package's copy, which can't be renamed, is taken for the machine's, and isn't kept loaded.
TEST_F(PackageList, ALibraryThatCantBeHiddenIsPassedOverButInAPortableInstall)
{
    PackLibrary();
    const CFileHold hold(At(L"from\\packed.dll"), FILE_SHARE_READ);
    const std::string strList = "File Copy ind: packed.dll\nFile Copy ind: missing.dll\nFile Copy: a.txt\n";
    EXPECT_EQ(Process(strList), L"inst\\ inst\\a.txt");
    EXPECT_EQ(GetModuleHandleW(L"packed.dll"), nullptr);

    g_nInstallKind = KIND_PORTABLE;
    const CCallHook load("KERNEL32.dll", "LoadLibraryW", &LoadLibraryW);
    EXPECT_EQ(Process(strList), L"inst\\ inst\\a.txt inst\\packed.dll");
    EXPECT_EQ(load.Calls(), 0);
}

TEST_F(PackageList, AMaskTakesItsMatchesAndMakesTheirFolderOnlyForThem)
{
    WriteBytes(At(L"from\\z.dat"), "behind the folder");
    const std::tuple<const wchar_t*, int, const wchar_t*> rows[] = {
        { L"*.none", 0, L"" },
        { L"none\\*", 0, L"" },
        { L"?.txt", 3, L"n\\ n\\d\\ n\\d\\a.txt n\\d\\b.txt n\\d\\c.txt" },
        { L"sub\\*.dll", 1, L"n\\ n\\d\\ n\\d\\sub\\ n\\d\\sub\\s.dll" },
        { L"sub\\*", 2, L"n\\ n\\d\\ n\\d\\sub\\ n\\d\\sub\\s.dll n\\d\\sub\\t.txt" },
        // The match is found, and its folder made, but it is looked for without its subfolder.
        { L"sub/s.dll", 0, L"n\\ n\\d\\ n\\d\\sub\\" },
        // "." and ".." are passed over; a folder is not, and ends the mask.
        { L"*", 3, L"n\\ n\\d\\ n\\d\\a.txt n\\d\\b.txt n\\d\\c.txt" },
    };
    for (const wchar_t* pszTarget : { L"to\\n\\d", L"to\\n\\d\\", L"to/n/d" })
    {
        for (const auto& [pszMask, nCopied, pszTree] : rows)
        {
            EmptyTarget();
            EXPECT_EQ(Copy(pszMask, At(pszTarget)), nCopied) << testing::PrintToString(pszMask);
            EXPECT_EQ(TreeText(At(L"to")), pszTree);
        }
    }
}

TEST_F(PackageList, TheFirstFileThatFailsEndsTheMask)
{
    WriteBytes(At(L"to\\b.txt"), "old");
    const CFileHold hold(At(L"to\\b.txt"), FILE_SHARE_READ);
    EXPECT_EQ(Copy(L"*.txt", At(L"to")), 1);
    EXPECT_EQ(TreeText(At(L"to")), L"a.txt b.txt b.txt.new");
    EXPECT_EQ(ReadBytes(At(L"to\\b.txt")), "old");
}

// The making of folders loses the leading backslashes. A folder of that form that stands is served.
TEST_F(PackageList, AMissingFolderOfANetworkPathIsNotMade)
{
    EXPECT_EQ(Copy(L"*.txt", L"\\\\?\\" + At(L"to\\new")), 0);
    EXPECT_EQ(TreeText(At(L"to")), L"");
    EXPECT_EQ(Copy(L"a.txt", L"\\\\?\\" + At(L"to")), 1);
    EXPECT_EQ(TreeText(At(L"to")), L"a.txt");
}
