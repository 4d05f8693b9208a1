// The package's list at work: what each record copies and where, and what a mask meets.
#include "install/PackageList.h"

#include <tuple>

#include "app/RunState.h"
#include "tests/support/Calls.h"
#include "tests/support/World.h"

namespace
{

class PackageList : public World
{
protected:
    // Runs a list over an empty target folder, which "inst" isn't in yet, and gives what then stands there.
    std::wstring Process(const std::string& strList) const
    {
        RemoveTree(At(L"to"));
        Make(L"to\\|from\\a|from\\b|from\\c.t|from\\sub\\s|from\\sub\\t");
        Make(L"list", strList);
        g_strSourceDir = At(L"from").c_str();
        g_strInstDir = At(L"to\\inst").c_str();
        ProcessPackageList(At(L"list").c_str());
        return Tree(L"to");
    }
};

} // namespace

// The package's own library is hidden while the machine is asked for it. One that can't be hidden is taken for the
// machine's. A portable install doesn't ask.
TEST_F(PackageList, EachKindTakesItsOwnRecords)
{
    Make(L"from\\none.dll|from\\version.dll");
    for (const wchar_t* pszName : { L"from\\free.dll", L"from\\held.dll" })
        CopyOneFile(BuildFolder() + L"\\package\\ThumbLcp64.dll", At(pszName));
    const auto hold = HoldFile(At(L"from\\held.dll"));
    SetCurrentDirectoryW(At(L"from").c_str()); // where the library search looks

    const std::pair<int, const wchar_t*> rows[] = {
        { 1, L"inst\\ inst\\a inst\\d\\ inst\\none.dll inst\\x.dll" },
        { 2, L"inst\\ inst\\a inst\\b inst\\d\\ inst\\held.dll inst\\none.dll inst\\version.dll inst\\x.dll "
             L"sub\\ sub\\s sub\\t" },
        { 0, L"inst\\ inst\\a inst\\b inst\\d\\ inst\\none.dll inst\\x.dll" },
    };
    for (const auto& [nKind, pszTree] : rows)
    {
        g_nInstallKind = nKind;
        if (nKind == 0) // as a 32-bit process on a 64-bit system
            g_pfnIsWow64Process = [](HANDLE, BOOL* pbWow64) { return *pbWow64 = TRUE; };
        EXPECT_EQ(Process("File Copy: a\r\nFile Copy x64: b\r\nFile Copy prt: sub\\*\r\nMake Dir: d\nMade Dir: e\n"
                          "File Copy ind: none.dll\nFile Copy ind: version.dll\nFile Copy ind: free.dll \t> x.dll\n"
                          "File Copy ind: held.dll\nFile Del: c.t\n"),
                  pszTree)
            << nKind;
    }
}

// A renamed file takes no mask and makes no folder. Another folder is made where its line stands: one level, and only
// if the install folder is there by then.
TEST_F(PackageList, LinesActOnceInTheirOrderAndAFailedOneLeavesNoTrace)
{
    const CCalls calls;
    EXPECT_EQ(Process("File Copy: none\\*\nMake Dir: d\nFile Copy: a > a\nFile Copy: sub\\s*\nFile Copy: b | note\n"
                      "Make Dir: p\\q\nMake Dir: e\nMake Dir: e\\f\nFile Copy: sub\\s \t>\t x y\nFile Copy: ?.t > n\n"
                      "File Copy: a > g\\n\nFile Copy: a > n | note\nFile Copy: a | note > m\nFile Copy: c.t"),
              L"inst\\ inst\\c.t inst\\e\\ inst\\e\\f\\ inst\\sub\\ inst\\sub\\s inst\\x y");
    EXPECT_EQ(calls.Count("CopyFileW"), 6);
}

TEST_F(PackageList, AMaskMakesAFolderOnlyForItsMatches)
{
    Make(L"from\\a|from\\b|from\\sub\\s|from\\sub\\t|from\\z");
    const std::tuple<const wchar_t*, std::wstring, int> rows[] = {
        { L"none*", At(L"to\\1"), 0 },
        { L"sub\\*", At(L"to/2/d"), 2 },
        // The match is found, and its folder made, but it is looked for without its subfolder.
        { L"sub/s", At(L"to\\3\\"), 0 },
        // "." and ".." are passed over; a folder is not, and ends the mask.
        { L"*", At(L"to\\4"), 2 },
        // The making of folders loses the leading backslashes of a network path.
        { L"a", L"\\\\?\\" + At(L"to\\5"), 0 },
    };
    for (const auto& [pszMask, strTarget, nCopied] : rows)
        EXPECT_EQ(CopyMatchingFiles(pszMask, At(L"from").c_str(), strTarget.c_str()), nCopied) << strTarget;
    EXPECT_EQ(Tree(L"to"), L"2\\ 2\\d\\ 2\\d\\sub\\ 2\\d\\sub\\s 2\\d\\sub\\t 3\\ 3\\sub\\ 4\\ 4\\a 4\\b");
}
