// The package's list at work: what each record copies and where, and what a mask meets. A package is a few small files;
// the install folder, "to\inst", doesn't exist when a list begins.
#include "install/PackageList.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>

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
        EmptyTarget();
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

TEST_F(PackageList, EachKindTakesItsOwnRecordsAndAsksTheMachineOnce)
{
    for (const wchar_t* pszFile : { L"x64.txt", L"nowhere.dll", L"version.dll", L"other.txt" })
        WriteBytes(At(L"from\\") + pszFile, "new");
    // The starter lands beside the install folder.
    const std::string strList = "File Copy: a.txt\r\nFile Copy x64: x64.txt\r\nFile Copy prt: b.txt > starter\r\n"
                                "File Copy prt: sub\\*\r\nFile Copy ind: nowhere.dll\r\nFile Copy ind: version.dll\r\n"
                                "Make Dir: d\r\nFile Overwrite: other.txt\r\nFile Del: other.txt\r\n"
                                "File Copy x32: other.txt\r\nfile copy: other.txt\r\n\r\nMade Dir: wrong\r\n";
    const std::wstring strAlways = L"inst\\ inst\\a.txt inst\\d\\ inst\\nowhere.dll";
    const std::tuple<InstallKind, BOOL, std::wstring> rows[] = {
        { KIND_ALL_USERS, FALSE, strAlways },
        { KIND_CURRENT_USER, TRUE, strAlways + L" inst\\x64.txt" },
        { KIND_PORTABLE, FALSE, strAlways + L" inst\\version.dll inst\\x64.txt starter sub\\ sub\\s.dll sub\\t.txt" },
    };
    for (const auto& [nKind, bWow64, strTree] : rows)
    {
        for (const wchar_t* pszFolder : { L"to\\inst", L"to\\inst\\" })
        {
            g_strInstDir = At(pszFolder).c_str();
            g_nInstallKind = nKind;
            s_bWow64 = bWow64;
            s_nWow64Questions = 0;
            EXPECT_EQ(Process(strList), strTree);
            EXPECT_EQ(s_nWow64Questions, 1);
        }
    }
}

TEST_F(PackageList, LinesActInTheirOrderAndAFailedOneLeavesNoTrace)
{
    const std::pair<std::string, const wchar_t*> rows[] = {
        { "\r\n\n  \nnonsense\nFile Copy: *.none\nFile Copy: missing.txt\nMake Dir: d\n", L"" },
        { "File Copy: sub\\*.dll\nFile Copy: a.txt", L"inst\\ inst\\a.txt inst\\sub\\ inst\\sub\\s.dll" },
        // A folder is made where its line stands: one level, and only if the install folder is there by then.
        { "Make Dir: early\nFile Copy: a.txt\nMake Dir: p\\q\nMake Dir: d\nMake Dir: d\\e\n",
          L"inst\\ inst\\a.txt inst\\d\\ inst\\d\\e\\" },
        // A renamed file takes no mask and makes no folder.
        { "File Copy: a.txt > x.txt\nFile Copy: b.txt\nFile Copy: sub\\s.dll \t>\t x y.txt\nFile Copy: a.txt>z\n",
          L"inst\\ inst\\b.txt inst\\x y.txt inst\\z" },
        { "File Copy: b.txt\nFile Copy: *.txt > x.txt\nFile Copy: a.txt > d\\x.txt\nFile Copy: a.txt > x.txt | note\n",
          L"inst\\ inst\\b.txt" },
    };
    for (const auto& [strList, pszTree] : rows)
        EXPECT_EQ(Process(strList), pszTree) << strList;
    EXPECT_TRUE(PendingEntries().empty());
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
            EXPECT_STREQ(pszName, L"packed.dll");
            EXPECT_FALSE(IsThere(At(L"from\\packed.dll")));
            return load.Original()(pszName);
        });
    EXPECT_EQ(Process("File Copy ind: packed.dll\nFile Copy: c.txt\nFile Copy ind: packed.dll \t> renamed.dll\n"),
              L"inst\\ inst\\c.txt inst\\packed.dll inst\\renamed.dll");
    EXPECT_EQ(load.Calls(), 2);
    EXPECT_EQ(TreeText(At(L"from")), L"a.txt b.txt c.txt packed.dll sub\\ sub\\s.dll sub\\t.txt");
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
        { L"sub\\*", 2, L"n\\ n\\d\\ n\\d\\sub\\ n\\d\\sub\\s.dll n\\d\\sub\\t.txt" },
        // The match is found, and its folder made, but it is looked for without its subfolder.
        { L"sub/s.dll", 0, L"n\\ n\\d\\ n\\d\\sub\\" },
        // "." and ".." are passed over; a folder is not, and ends the mask.
        { L"*", 3, L"n\\ n\\d\\ n\\d\\a.txt n\\d\\b.txt n\\d\\c.txt" },
    };
    for (const wchar_t* pszTarget : { L"to\\n\\d\\", L"to/n/d" })
    {
        for (const auto& [pszMask, nCopied, pszTree] : rows)
        {
            EXPECT_EQ(Copy(pszMask, At(pszTarget)), nCopied) << testing::PrintToString(pszMask);
            EXPECT_EQ(TreeText(At(L"to")), pszTree);
        }
    }
}

// The making of folders loses the leading backslashes. A folder of that form that stands is served.
TEST_F(PackageList, AMissingFolderOfANetworkPathIsNotMade)
{
    EXPECT_EQ(Copy(L"*.txt", L"\\\\?\\" + At(L"to\\new")), 0);
    EXPECT_EQ(TreeText(At(L"to")), L"");
    EXPECT_EQ(Copy(L"a.txt", L"\\\\?\\" + At(L"to")), 1);
    EXPECT_EQ(TreeText(At(L"to")), L"a.txt");
}
