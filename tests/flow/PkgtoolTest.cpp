// The checker of packages against the engine: what it plans is what an install creates and a removal and a restart
// leave, and what it finds fault with. The checker runs as a program of its own, the engine in this process.
#include <algorithm>
#include <tuple>

#include "app/RunState.h"
#include "install/InstallDriver.h"
#include "tests/support/Calls.h"
#include "tests/support/Dice.h"
#include "tests/support/Programs.h"
#include "tests/support/World.h"
#include "uninstall/UninstallDriver.h"

namespace
{

// "12 no-match|no-version": the findings by line, if they have one, and name.
std::string Findings(const TOLD& checked)
{
    TEXTS findings;
    for (const std::wstring& strLine : Split(checked.strText, L'\n'))
    {
        if (strLine.compare(0, 13, L"LumUnInst.log") != 0)
            continue;
        const size_t nName = strLine.find(L": ") + 2;
        const std::wstring strNumber = strLine[13] == L'(' ? strLine.substr(14, nName - 17) + L" " : L"";
        findings.push_back(strNumber + strLine.substr(nName, strLine.find(L':', nName) - nName));
    }
    EXPECT_EQ(checked.nExitCode, findings.empty() ? 0u : 1u);
    return Bytes(Join(findings));
}

// A package from a number: some of the files, and records that meet them, miss them, and get into each other's way.
class CGenerator
{
public:
    explicit CGenerator(unsigned int nSeed) : m_dice(nSeed) {}

    void Make(const std::wstring& strFolder)
    {
        for (const std::wstring& strFile :
             Split(L"a.txt|b.txt|c.dat|d.dll|LumUnInst.exe|sub\\s.dll|sub\\t.txt|sub\\a.txt|sub\\deep\\u.txt|"
                   L"sub\\deep\\v.dat|x64\\w.dll|other\\z.txt|install.log|e",
                   L'|'))
            if (!m_dice.OneIn(5) || strFile == L"LumUnInst.exe")
                // A removal reads it if an install gives the file the name of the second list.
                WriteBytes(strFolder + L"\\" + strFile, OneOf(L"File Del: Lum*.log@File Del: sub\\c.txt"));
        WriteBytes(strFolder + L"\\Lumacap8.exe", "product");
        std::string strList;
        for (unsigned int nLines = 4 + m_dice.Below(14); nLines > 0; nLines--)
            strList += Line() + (m_dice.OneIn(4) ? "  \n" : "\r\n");
        WriteBytes(strFolder + L"\\LumUnInst.log", strList + "\nFile Copy: LumUnInst.exe");
    }

private:
    std::string OneOf(const wchar_t* pszTexts) { return m_dice.OneOf(Split(pszTexts, L'@')); }

    std::string Line()
    {
        const unsigned int nLine = m_dice.Below(20);
        if (nLine < 4)
            return "Make Dir: " +
                   OneOf(L"d@d\\e@d\\e\\f@sub@Sub\\Deep@x64@x32@new@p\\q@d/g@other@..\\out@LumUnInst.log@"
                         L"a.txt@q*");
        if (nLine < 6)
            return OneOf(L"File Del: @File Overwrite: ") +
                   OneOf(L"*.txt@x.txt@sub\\*@*.*@d@d\\*.*@*.log | "
                         L"note@???.*@SUB\\?.*@sub/s.dll@..\\out.txt@new\\*@d\\.@sub@"
                         L"*.new@sub\\a.txt|remark");
        if (nLine < 7)
            return OneOf(L"A remark@file copy: a.txt@@ File Copy: b.txt@Made Dir: nowhere@File Copy: a.txt | note");
        const std::string strPrefix = OneOf(L"File Copy: @File Copy: @File Copy x64: @File Copy ind: @File Copy prt: ");
        if (nLine < 13)
            return strPrefix + OneOf(L"a.txt@b.txt@c.dat@d.dll@sub\\s.dll@sub\\deep\\u.txt@sub@") + OneOf(L" > @>") +
                   OneOf(L"x.txt@sub\\x.txt@new\\x.txt@A.TXT@c.dat@sub@d@..\\out.txt@d/x.txt@new\\@sub\\@x64\\a.txt@"
                         L"d\\e\\y.txt@z . @x32\\..\\y@n*@sub/b.lnk@b > c@*.json@@install.log@b.txt\\@sub.old");
        return strPrefix +
               OneOf(L"a.txt@b.txt@*.txt@a.*@e.*@?.TXT@*.d*@sub\\*.dll@sub\\*@x64\\*@sub\\deep\\*.*@*@*.*@s*@"
                     L"sub/s.dll@sub/*.txt@missing.txt@other@Lum*@LumUnInst.exe@..\\none.txt");
    }

    CDice m_dice;
};

class Pkgtool : public World
{
protected:
    // Each package has its own target, and folders of the machine and of the user.
    std::wstring Place(unsigned int nSeed) const { return At(L"p" + std::to_wstring(nSeed)); }

    // The sections of a plan, each as sorted paths of the package's place, folders with a backslash at their end.
    std::vector<TEXTS> PlanOf(unsigned int nSeed) const
    {
        const TEXTS places =
            Split(L"<target>|to\\up\\target|<beside>\\..|to|<beside>|to\\up|<common programs>|all\\Programs|"
                  L"<common desktop>|all\\Desktop|<user's programs>|user\\Programs|"
                  L"<user's desktop>|user\\Desktop",
                  L'|');
        static const wchar_t* const kKinds[] = { L"user ", L"all ", L"portable " };
        const TOLD checked = RunPkgtool(L"plan " + std::wstring(kKinds[nSeed % 3]) + Place(nSeed) + L"\\package");
        EXPECT_EQ(checked.nExitCode, 0u);
        std::vector<TEXTS> sections;
        for (std::wstring strLine : Split(checked.strText, L'\n'))
        {
            if (strLine.empty() || strLine == L"  nothing")
                continue;
            for (size_t n = 0; n < places.size(); n += 2)
                strLine = Replaced(strLine, places[n], places[n + 1]);
            if (strLine[0] != L' ')
                sections.emplace_back();
            else
                sections.back().push_back(L"+ " + strLine.substr(15) +
                                          (strLine.compare(2, 6, L"folder") == 0 ? L"\\" : L""));
        }
        for (TEXTS& section : sections)
            std::sort(section.begin(), section.end());
        return sections;
    }

    void MoveFolders(unsigned int nSeed) const
    {
        for (const wchar_t* pszName : { L"Programs", L"Desktop" })
        {
            for (const wchar_t* pszUsers : { L"\\all\\", L"\\user\\" })
                WriteBytes(Place(nSeed) + pszUsers + pszName + L"\\keep", "");
            MoveFolder(HKEY_LOCAL_MACHINE, std::wstring(L"Common ") + pszName, Place(nSeed) + L"\\all\\" + pszName);
            MoveFolder(HKEY_CURRENT_USER, pszName, Place(nSeed) + L"\\user\\" + pszName);
        }
    }

    // What stands in the place, and didn't before the install.
    std::string Created(unsigned int nSeed) const
    {
        return Bytes(Join(Difference(m_before.at(nSeed), ListTree(Place(nSeed))), L"\n"));
    }

    void Install(unsigned int nSeed) const
    {
        ResetProgramState();
        g_strSourceDir = (Place(nSeed) + L"\\package").c_str();
        g_strInstDir = (Place(nSeed) + L"\\to\\up\\target").c_str();
        g_strGroup = L"Lumacap 8";
        g_bFreshInstall = 1;
        g_nInstallKind = static_cast<int>(nSeed % 3);
        PerformInstall();
    }

    // What the second stage of a removal does.
    void Remove(unsigned int nSeed) const
    {
        const std::wstring strFolder = Place(nSeed) + L"\\to\\up\\target\\";
        EXPECT_TRUE(DeleteFileW((strFolder + L"LumUnInst.exe").c_str()));
        RunUninstall(strFolder.c_str());
    }

    std::vector<TEXTS> m_before;
};

} // namespace

// One restart serves all packages.
TEST_F(Pkgtool, PlanIsWhatInstallRemovalAndRestartMakeOfAnyPackage)
{
    TEXTS leftByPlan;
    for (unsigned int nSeed = 0; nSeed < 60; nSeed++)
    {
        CGenerator(nSeed).Make(Place(nSeed) + L"\\package");
        SCOPED_TRACE(ReadBytes(Place(nSeed) + L"\\package\\LumUnInst.log"));
        WriteBytes(Place(nSeed) + L"\\to\\up\\keep", "");
        MoveFolders(nSeed);
        m_before.push_back(ListTree(Place(nSeed)));
        const std::vector<TEXTS> plan = PlanOf(nSeed);
        ASSERT_EQ(plan.size(), 3u);
        const CCalls calls({ { "CreateProcessW", [](CALL&) { return TRUE; } },
                             { "MessageBoxW", [](CALL& call) { return Fail(Bytes(call.Text(1))), IDCANCEL; } } });
        Install(nSeed);
        EXPECT_EQ(Created(nSeed), Bytes(Join(plan[0], L"\n")));
        Remove(nSeed);
        EXPECT_EQ(Created(nSeed), Bytes(Join(plan[1], L"\n")));
        leftByPlan.push_back(Join(plan[2], L"\n"));
    }
    RestartMachine();
    for (unsigned int nSeed = 0; nSeed < 60; nSeed++)
        EXPECT_EQ(Created(nSeed), Bytes(leftByPlan[nSeed])) << nSeed;
}

// Behind an arrow, what the checker finds fault with in that line of a list; what isn't a line's stands behind the
// last. {N} stands for so many characters. Each list is put behind the sample's, which is clean.
TEST_F(Pkgtool, FindsWhatIsWrongWithEachLine)
{
    const wchar_t* const kCases[] = {
        L"",
        // How a line is written
        LR"(File Del: {501}
File Copy: {501} => long-line
{511}File Del: x => long-line
{511}file copy: x
 File Copy: Lumacap8.exe => near-miss
File	Copy X64 : Lumacap8.exe => near-miss
File Copy is a remark
made dir: x => near-miss
File Del:  | texts => near-miss
Made Dir: C:\Games => install-made
Make Dir: Lang | texts => tail
File Del: Lang\..\x.txt
File Copy: Lumacap8.exe > \l.exe => absolute
File Del: Lang/../../x.txt => climbing, forward-slash
File Copy: ..\x.txt > y.txt => climbing
File Copy: Lumacap8.exe > Lang\ => empty-target
File Copy: *.dll > one.dll => mask-renamed
File Copy x64: Lang/English.txt => forward-slash
File Copy: Lumacap8.exe > Lang/l.exe => forward-slash
Make Dir: Lang\english.txt => impossible-name
Make Dir: a? => impossible-name
File Copy: Lumacap8.exe > ab:c => impossible-name
File Del: foo.txt|remark => impossible-name)",
        (L"File Copy: Gr\u00C3\u00BCn.txt => text-format\nFile Copy: Gr\u00FCn.txt => no-match\n"
         L"File Del: a | Gr\u00C3\u00BCn"),
        // What an install and a removal make of it
        LR"(Make Dir: B/C => made-too-early
Make Dir: B
Make Dir: B\C
Make Dir: B\D
Make Dir: B
File Copy x64: Lang\English.txt > Lumacap8.exe
File Copy: Lang\English.txt > Lumacap8.exe => written-twice
File Copy:  > y => no-match
File Copy: Lang > y => no-match
File Copy ind: Lang/English.txt > E.txt => library-test
File Copy prt: Lumacap8.exe > Tools\l.exe => renamed-too-early
Make Dir: LumUnInst.log => list-named
File Del: Lang => folder-caught
Make Dir: T
File Copy: Lumacap8.exe > T => target-is-folder
Make Dir: A
Make Dir: A/B
Make Dir: A
Make Dir: O => parent-first
Make Dir: O\I)",
        L"File Copy: * => folder-caught, list-named",
        L"\x1A => end-mark\n\x1A",
    };
    PutPackage();
    const std::string strSample = ReadBytes(At(L"package\\LumUnInst.log"));
    for (const std::wstring strCase : kCases)
    {
        auto nLine = std::count(strSample.begin(), strSample.end(), '\n');
        std::wstring strList;
        TEXTS expected;
        for (std::wstring strLine : Split(strCase, L'\n'))
        {
            for (const int cch : { 501, 511 })
                strLine = Replaced(strLine, L"{" + std::to_wstring(cch) + L"}", std::wstring(cch, L'x'));
            const size_t nArrow = strLine.find(L" => ");
            nLine++;
            for (const std::wstring& strFinding :
                 Split(nArrow != strLine.npos ? Replaced(strLine.substr(nArrow + 4), L", ", L",") : L"", L','))
                expected.push_back(std::to_wstring(nLine) + L" " + strFinding);
            strList += strLine.substr(0, nArrow) + L"\r\n";
        }
        Make(L"package\\LumUnInst.log", strSample + Bytes(strList));
        const TOLD checked = RunPkgtool(L"check " + At(L"package"));
        EXPECT_EQ(Findings(checked), Bytes(Join(expected))) << Bytes(checked.strText);
    }
}

// Of packages made of these files and a list.
TEST_F(Pkgtool, FindsWhatIsWrongWithAPackage)
{
    const std::wstring strLacks = L"|uninstaller-missing|counted-on|counted-on|counted-on|no-version"; // all of them
    const std::tuple<std::wstring, const char*, const char*> kCases[] = {
        // A folder that stays is blamed on the record that can help.
        { L"sub\\a.txt", "File Copy: sub\\a.txt\nMake Dir: sub\nMake Dir: sub\\x", "2 parent-first" },
        { L"b.txt|sub\\a.txt", "File Copy: sub\\a.txt\nFile Copy: b.txt > sub/f.txt", "2 forward-slash" },
        { L"b.txt|sub\\deep\\low\\v.txt",
          "File Copy: b.txt\nMake Dir: sub\nMake Dir: sub\\deep\nFile Copy: sub\\deep\\low\\v.txt\nMake Dir: sub",
          "4 folder-unnamed" },
        { L"b.txt", "File Copy: b.txt\nMake Dir: A\nMake Dir: A\nMake Dir: A\\B\nMake Dir: A\\C", "3 parent-first" },
        { L"b.txt|none\\", "File Copy: b.txt\nFile Copy: none\\*", "2 no-match|2 folder-unnamed" },
        // What no record names, and what the program counts on
        { L"Sub\\d.txt|LumUnInst.exe|Lumacap8.exe", "File Copy: LumUnInst.exe",
          "file-unnamed|file-unnamed|counted-on|counted-on|counted-on|no-version" },
        // The list as a whole
        { L"b.txt",
          "\xEF\xBB\xBF"
          "a remark\nFile Copy: b.txt",
          "1 byte-order-mark" },
    };
    for (const auto& [strFiles, pszList, pszFindings] : kCases)
    {
        RemoveTree(At(L"q"));
        for (const std::wstring& strFile : Split(strFiles, L'|'))
            Make(L"q\\" + strFile);
        Make(L"q\\LumUnInst.log", pszList);
        const std::wstring strFindings = Replaced(Wide(Findings(RunPkgtool(L"check " + At(L"q")))), strLacks, L"");
        EXPECT_EQ(Bytes(strFindings), pszFindings) << pszList;
    }
}

// Odd names, a file deep below folders without any, and empty folders. The engine brings its own list and uninstaller.
TEST_F(Pkgtool, ListOfAFolderBringsAllAndTakesAllAway)
{
    const std::wstring strPackage = L"p0\\package\\";
    Make(L"p0\\to\\up\\keep");
    MoveFolders(0);
    m_before.push_back(ListTree(Place(0)));
    CopyOneFile(ProductOfVersion(L"8.21.0.0"), At(strPackage + L"Lumacap8.exe"));
    EXPECT_EQ(RunPkgtool(L"list " + At(strPackage)).nExitCode, 2u); // without the setup there is no uninstaller
    CopyOneFile(BuildFolder() + L"\\setup.exe", At(strPackage + L"setup.exe"));
    for (const std::wstring& strPath : Split(L"Lumacap8Man.chm|HomePage.url|ThumbLcp64.dll|a "
                                             L"b.txt|b\xFFr|Sub\\c|Sub\\d\\e f\\g.h|Sub\\[1]+2.x|none\\in\\",
                                             L'|'))
        Make(strPackage + strPath, Bytes(strPath));
    const std::wstring strList = At(strPackage + L"LumUnInst.log");
    EXPECT_EQ(RunPkgtool(L"list " + At(strPackage)).strText, L"17 records in the list of " + At(strPackage) + L"\n");
    EXPECT_EQ(RunPkgtool(L"check " + At(strPackage)).strText, L"0 findings\n");
    m_before[0] = ListTree(Place(0));
    {
        const CCalls calls({ { "CreateProcessW", [](CALL&) { return TRUE; } } });
        Install(0);
        EXPECT_EQ(
            Tree(L"p0\\to\\up\\target"),
            L"HomePage.url LumUnInst.exe LumUnInst.log Lumacap8.exe Lumacap8Man.chm Sub\\ Sub\\[1]+2.x Sub\\c Sub\\d\\ "
            L"Sub\\d\\e f\\ Sub\\d\\e f\\g.h ThumbLcp64.dll a b.txt b\xFFr none\\ none\\in\\");
        Remove(0);
    }
    EXPECT_EQ(Created(0), "");

    // What only a person decides is kept, and not said twice; what can't be said is told, and nothing written.
    // The longest that are sayable are among them.
    Make(strPackage + std::wstring(232, L'f') + L"|" + strPackage + std::wstring(220, L'd') + L"\\");
    const std::string strOwn =
        "File Copy ind: Sub\\c*\r\nFile Copy prt: b\xFFr\r\nFile Overwrite: x\r\nFile Del: y\r\n";
    WriteBytes(strList, "A remark\r\nFile Copy: gone\r\n" + strOwn);
    EXPECT_EQ(RunPkgtool(L"list " + At(strPackage)).nExitCode, 2u);
    EXPECT_EQ(RunPkgtool(L"list --force " + At(strPackage)).nExitCode, 0u);
    const std::string strAnew = ReadBytes(strList);
    EXPECT_EQ(strAnew.substr(strAnew.size() - strOwn.size()), strOwn);
    EXPECT_EQ(std::count(strAnew.begin(), strAnew.end(), '\n'), 22);
    EXPECT_EQ(strAnew.find("gone"), std::string::npos);
    for (const std::wstring& strName : { std::wstring(L"Install.LOG"), std::wstring(L"\x100"), std::wstring(233, L'z'),
                                         std::wstring(221, L'd') + L"\\" })
        Make(strPackage + strName);
    const TOLD refused = RunPkgtool(L"list --force " + At(strPackage));
    EXPECT_EQ(refused.strText, L"Install.LOG: can't be said in a list: a removal would read it as a list\n" +
                                   std::wstring(233, L'z') +
                                   L": can't be said in a list: its path is too long\n"
                                   L"\xC4\x80: can't be said in a list: its name goes beyond Latin-1\n" +
                                   std::wstring(221, L'd') +
                                   L": can't be said in a list: its path is too long\n"
                                   L"pkgtool: no list was written in " +
                                   At(strPackage) + L"\n");
    EXPECT_EQ(refused.nExitCode, 1u);
    EXPECT_EQ(ReadBytes(strList), strAnew);
}

TEST_F(Pkgtool, ExitCodeTellsFindingsFromWrongUseAndFromAPackageThatCantBeRead)
{
    const std::tuple<std::wstring, DWORD, std::wstring> kCases[] = {
        { L"--help", 0, L"Checks packages" },
        { L"check \"" + BuildFolder() + L"\\package\\\"", 0, L"0 findings" },
        { L"verify " + At(L"temp"), 2, L"pkgtool: there is no LumUnInst.log" },
        { L"", 2, L"pkgtool: A subcommand is required" },
        { L"none x", 2, L"pkgtool: there is no subcommand none" },
        { L"check", 2, L"pkgtool: FOLDER is required" },
        { L"verify x \"\"", 2, L"pkgtool: TARGET: it is empty" },
        { L"verify " + BuildFolder() + L"\\package \\", 2, L"pkgtool: no install goes to \\" },
        { L"verify " + BuildFolder() + L"\\package " + std::wstring(260, L'x'), 2, L"pkgtool: no install goes to x" },
        { L"check " + BuildFolder() + L"\\pkgtool.exe", 2, L"pkgtool: this is a file" },
        { L"check C:\\none", 2, L"pkgtool: there is no folder C:\\none" },
        { L"plan none x", 2, L"pkgtool: KIND: none not in {all,portable,user}" },
    };
    for (const auto& [strArguments, nExitCode, strBegin] : kCases)
    {
        const TOLD checked = RunPkgtool(strArguments);
        EXPECT_EQ(checked.nExitCode, nExitCode) << Bytes(strArguments);
        EXPECT_EQ(checked.strText.substr(0, strBegin.size()), strBegin);
    }
}
