// The checker of packages against the engine: what it plans is what an install creates and a removal and a restart
// leave, and what it finds fault with. The checker runs as a program of its own, the engine in this process.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <tuple>

#include "app/RunState.h"
#include "install/InstallDriver.h"
#include "tests/support/Environment.h"
#include "tests/support/InstallCorner.h"
#include "tests/support/MachineState.h"
#include "tests/support/PendingList.h"
#include "tests/support/ProcessRun.h"
#include "uninstall/UninstallDriver.h"

namespace
{

using TEXTS = std::vector<std::wstring>;

const wchar_t* const kKinds[] = { L"user", L"all", L"portable" }; // by InstallKind
const std::string kMark = "LumUnInst.log";

struct CHECKED
{
    DWORD nExitCode;
    std::vector<std::string> lines; // of its output
    std::string strText;            // the same as a whole
};

CHECKED Check(const std::wstring& strArguments)
{
    CProcessRun run(BuildFolder() + L"\\pkgcheck.exe " + strArguments);
    if (!run.Start() || !run.WaitForFamily())
        return { STILL_ACTIVE, {}, "" };
    std::string strOutput = run.Output();
    strOutput.erase(std::remove(strOutput.begin(), strOutput.end(), '\r'), strOutput.end());
    const std::string strText = strOutput;
    std::vector<std::string> lines;
    for (size_t nEnd; (nEnd = strOutput.find('\n')) != std::string::npos; strOutput.erase(0, nEnd + 1))
        lines.push_back(strOutput.substr(0, nEnd));
    return { run.ExitCode(), lines, strText };
}

// "12 no-match|no-version": the findings by line and name.
std::string Findings(const CHECKED& checked)
{
    std::string strFindings;
    for (std::string strLine : checked.lines)
    {
        if (strLine.compare(0, kMark.size(), kMark) != 0)
            continue;
        const bool bLine = strLine[kMark.size()] == '(';
        const std::string strNumber =
            bLine ? strLine.substr(kMark.size() + 1, strLine.find(')') - kMark.size() - 1) : "";
        strLine.erase(0, strLine.find(": ") + 2);
        strFindings += (strFindings.empty() ? "" : "|") + strNumber + (bLine ? " " : "");
        strFindings += strLine.substr(0, strLine.find(':'));
    }
    return strFindings;
}

// Of each file. A removal reads it if an install gives the file the name of the second list.
const char kContent[] = "File Del: Lum*.log";

// Lists for what a random one meets too rarely, each over a package with all files.
const char* const kLists[] = {
    "File Copy: a.txt\nMake Dir: d\nMake Dir: d\\d\nMake Dir: d\\d\\f\nFile Del: d\\.\nMake Dir: x32\n"
    "File Copy: a.txt > x32\\..\\y\nFile Copy: a.txt > n*",
    "Make Dir: x\nFile Copy: a.txt\nFile Copy: b.txt > sub.old\nMake Dir: sub\nFile Copy: s*\nMake Dir: sub\nFile "
    "Copy: s*\nMake Dir: sub\n"
    "File Copy: s*",
    "File Copy: sub/*.txt\nFile Copy x64: Sub\\*.dll\nFile Copy: b.txt > sub/b.lnk\nFile Copy: b.txt > b\n"
    "File Copy: b.txt > sub/c.txt\nFile Copy: install.log",
    "File Copy: a.txt\nFile Copy: b.txt >\nFile Copy: *\nFile Del: *.new",
    "File Copy: a.txt\nMake Dir: LumUnInst.log\nMake Dir: a.txt\nMake Dir: q*\nFile Copy: b.txt > b > c\n"
    "File Copy: b.txt > *.json\nFile Copy: c.dat\nFile Copy:  > c.dat\nMake Dir: d.dll\nFile Copy: d.dll\n"
    "File Copy: sub\\a.txt\nFile Del: sub\nFile Copy: sub > a.txt\nFile Del: sub\\a.txt|remark",
    "File Copy: a.txt >\nFile Copy: a.txt > new\\\nFile Copy: sub\\a.txt\nFile Copy: a.txt > new\\\n"
    "File Copy: a.txt > sub\\\nMake Dir: sub",
    "File Copy: *.txt\nFile Copy: sub > x.txt\nFile Copy: sub > a.txt\nFile Copy: c.dat > b.txt\\\n"
    "File Copy: b.txt > new/",
    "File Copy: sub\\a.txt\nMake Dir: sub\nFile Copy: a.txt > install.log",
};

// A package from a seed: some of the files, and records that meet them, miss them, and get into each other's way.
class CGenerator
{
public:
    explicit CGenerator(unsigned int nSeed) : m_random(nSeed) {}

    // Of a given list, or of a random one.
    void Make(const std::wstring& strFolder, const char* pszList)
    {
        for (const wchar_t* pszFile :
             { L"a.txt", L"b.txt", L"c.dat", L"d.dll", L"LumUnInst.exe", L"sub\\s.dll", L"sub\\t.txt", L"sub\\a.txt",
               L"sub\\deep\\u.txt", L"sub\\deep\\v.dat", L"x64\\w.dll", L"other\\z.txt" })
        {
            if (pszList != nullptr || Number(5) > 0 || wcscmp(pszFile, L"LumUnInst.exe") == 0)
                WriteBytes(strFolder + L"\\" + pszFile, kContent);
        }
        if (pszList != nullptr)
            WriteBytes(strFolder + L"\\install.log", "File Del: sub\\c.txt");
        WriteBytes(strFolder + L"\\Lumacap8.exe", "product");
        WriteBytes(strFolder + L"\\LumUnInst.log",
                   (pszList != nullptr ? pszList : List()) + "\nFile Copy: LumUnInst.exe");
    }

private:
    int Number(int nBelow) { return static_cast<int>(m_random() % nBelow); }
    std::string OneOf(const std::vector<const char*>& texts) { return texts[Number(static_cast<int>(texts.size()))]; }

    std::string List()
    {
        std::string strList;
        std::vector<std::string> lines;
        for (int nLines = 4 + Number(14); nLines > 0; nLines--)
        {
            lines.push_back(!lines.empty() && Number(10) == 0 ? lines[Number(static_cast<int>(lines.size()))] : Line());
            strList += lines.back() + (Number(4) > 0 ? "\r\n" : "  \n");
        }
        return strList;
    }

    std::string Line()
    {
        const int nLine = Number(20);
        if (nLine < 4)
            return OneOf({ "Make Dir: " }) + OneOf({ "d", "d\\e", "d\\e\\f", "sub", "Sub\\Deep", "x64", "x32", "new",
                                                     "p\\q", "d/g", "other", "..\\out" });
        if (nLine < 6)
            return OneOf({ "File Del: ", "File Overwrite: " }) +
                   OneOf({ "*.txt", "x.txt", "sub\\*", "*.*", "d", "d\\*.*", "*.log | note", "???.*", "SUB\\?.*",
                           "sub/s.dll", "..\\out.txt", "new\\*" });
        if (nLine < 7)
            return OneOf({ "A remark", "file copy: a.txt", "", " File Copy: b.txt", "File Copy:c.dat",
                           "Made Dir: nowhere", "File Copy: a.txt | note" });
        const std::string strPrefix =
            OneOf({ "File Copy: ", "File Copy: ", "File Copy x64: ", "File Copy ind: ", "File Copy prt: " });
        if (nLine < 13)
            return strPrefix + OneOf({ "a.txt", "b.txt", "c.dat", "d.dll", "sub\\s.dll", "sub\\deep\\u.txt" }) +
                   OneOf({ " > ", ">" }) +
                   OneOf({ "x.txt", "sub\\x.txt", "new\\x.txt", "A.TXT", "c.dat", "sub", "d", "..\\out.txt", "d/x.txt",
                           "new\\", "sub\\", "x64\\a.txt", "d\\e\\y.txt", "z . " });
        return strPrefix + OneOf({ "a.txt",       "b.txt",      "*.txt",  "a.*",           "?.TXT",
                                   "*.d*",        "sub\\*.dll", "sub\\*", "x64\\*",        "sub\\deep\\*.*",
                                   "*",           "*.*",        "s*",     "sub/s.dll",     "sub/*.txt",
                                   "missing.txt", "other",      "Lum*",   "LumUnInst.exe", "..\\none.txt" });
    }

    std::mt19937 m_random;
};

class PackageCheck : public InstallCorner
{
protected:
    std::wstring Place(const std::wstring& strName, unsigned int nSeed) const
    {
        return At(strName + std::to_wstring(nSeed));
    }

    // The sections of a plan, each as sorted paths of the corner, folders with a backslash at their end.
    std::vector<TEXTS> PlanOf(unsigned int nSeed) const
    {
        const TEXTS before = ListTree(Folder());
        const CHECKED checked = Check(L"--plan " + std::wstring(kKinds[nSeed % 3]) + L" " + Place(L"package", nSeed));
        EXPECT_EQ(checked.nExitCode, 0u);
        EXPECT_EQ(ListTree(Folder()), before);
        std::vector<TEXTS> sections;
        for (const std::string& strLine : checked.lines)
        {
            if (strLine[0] != ' ')
                sections.emplace_back();
            else if (strLine != "  nothing")
                sections.back().push_back(ToCorner(strLine.substr(15), nSeed) +
                                          (strLine.compare(2, 6, "folder") == 0 ? L"\\" : L""));
        }
        for (TEXTS& section : sections)
            std::sort(section.begin(), section.end());
        return sections;
    }

    static std::wstring ToCorner(const std::string& strPath, unsigned int nSeed)
    {
        const std::wstring strBeside = L"to" + std::to_wstring(nSeed) + L"\\up";
        const std::pair<std::string, std::wstring> places[] = {
            { "<target>", strBeside + L"\\target" },
            { "<beside>\\..", L"to" + std::to_wstring(nSeed) },
            { "<beside>", strBeside },
            { "<common programs>", L"all\\Programs" },
            { "<common desktop>", L"all\\Desktop" },
            { "<user's programs>", L"user\\Programs" },
            { "<user's desktop>", L"user\\Desktop" },
        };
        for (const auto& [strPlace, strFolder] : places)
        {
            if (strPath.compare(0, strPlace.size(), strPlace) == 0)
                return strFolder + std::wstring(strPath.begin() + strPlace.size(), strPath.end());
        }
        ADD_FAILURE() << strPath;
        return L"";
    }

    // What stands in the machine's folders and around the target, and didn't before the install.
    TEXTS Created(unsigned int nSeed) const
    {
        TEXTS created;
        for (const std::wstring& strRoot :
             { std::wstring(L"all"), std::wstring(L"user"), L"to" + std::to_wstring(nSeed) })
            for (const std::wstring& strPath : ListTree(At(strRoot)))
                created.push_back(strRoot + L"\\" + strPath);
        const auto isOld = [](const std::wstring& strPath)
        {
            const std::wstring strName = strPath.substr(strPath.find(L'\\') + 1);
            return strName == L"up\\" || strName == L"Desktop\\" || strName == L"Programs\\" ||
                   strName == L"Programs\\Startup\\";
        };
        created.erase(std::remove_if(created.begin(), created.end(), isOld), created.end());
        std::sort(created.begin(), created.end());
        return created;
    }

    void Install(unsigned int nSeed) const
    {
        const CLaunchRecorder recorder;
        ResetProgramState();
        g_strSourceDir = Place(L"package", nSeed).c_str();
        g_strInstDir = (Place(L"to", nSeed) + L"\\up\\target").c_str();
        g_strGroup = L"Lumacap 8";
        g_bFreshInstall = 1;
        g_nInstallKind = static_cast<int>(nSeed % 3);
        PerformInstall();
    }

    // What the second stage of a removal does.
    void Remove(unsigned int nSeed) const
    {
        const CLaunchRecorder recorder;
        const std::wstring strFolder = Place(L"to", nSeed) + L"\\up\\target\\";
        EXPECT_TRUE(DeleteFileW((strFolder + L"LumUnInst.exe").c_str()));
        RunUninstall(strFolder.c_str());
    }

    std::string Described(unsigned int nSeed) const
    {
        return "package " + std::to_string(nSeed) + ":\n" + ReadBytes(Place(L"package", nSeed) + L"\\LumUnInst.log");
    }
};

} // namespace

// One restart serves all packages.
TEST_F(PackageCheck, PlanIsWhatInstallRemovalAndRestartMakeOfAnyPackage)
{
    const unsigned int kPackages = 36;
    const unsigned int kGiven = sizeof(kLists) / sizeof(*kLists);
    std::vector<TEXTS> leftByPlan;
    for (unsigned int nSeed = 0; nSeed < kPackages; nSeed++)
    {
        CGenerator(nSeed).Make(Place(L"package", nSeed), nSeed < kGiven ? kLists[nSeed] : nullptr);
        MakeFolder(Place(L"to", nSeed) + L"\\up");
        const std::vector<TEXTS> plan = PlanOf(nSeed);
        ASSERT_EQ(plan.size(), 3u);
        Install(nSeed);
        EXPECT_EQ(JoinLines(Created(nSeed)), JoinLines(plan[0])) << Described(nSeed);
        Remove(nSeed);
        EXPECT_EQ(JoinLines(Created(nSeed)), JoinLines(plan[1])) << Described(nSeed);
        leftByPlan.push_back(plan[2]);
    }
    RestartMachine();
    for (unsigned int nSeed = 0; nSeed < kPackages; nSeed++)
        EXPECT_EQ(JoinLines(Created(nSeed)), JoinLines(leftByPlan[nSeed])) << Described(nSeed);
}

// In the list of the broken package a remark "NAME:" stands before each faulty line.
TEST_F(PackageCheck, BrokenPackageShowsEachFindingOnce)
{
    const std::wstring strBroken = BuildFolder() + L"\\variants\\broken";
    std::string strExpected = "1 byte-order-mark";
    const std::vector<std::string> lines = ReadLines(strBroken + L"\\LumUnInst.log");
    for (size_t i = 0; i < lines.size(); i++)
    {
        if (!lines[i].empty() && lines[i].back() == ':')
            strExpected += "|" + std::to_string(i + 2) + " " + lines[i].substr(0, lines[i].size() - 1);
    }
    const CHECKED checked = Check(strBroken);
    EXPECT_EQ(Findings(checked), strExpected + "|file-unnamed|uninstaller-missing|counted-on|no-version");
    EXPECT_EQ(checked.lines.size(), 27u * 3 + 1); // three lines each, and their number
    EXPECT_EQ(checked.lines.back(), "27 findings");
    EXPECT_EQ(checked.nExitCode, 1u);

    for (const char* pszDetail :
         { "with \"File Copy: \",", "the folder Extra and", "folder Taken stands", "and Early isn't there yet: nothing",
           "and Early isn't there yet: no folder", "file Lumacap8.exe landed", "folder Docs, and",
           "order: Outer\\Inner", "\"File Copy: forgotten.txt\",", "leads to LumUnInst.exe,",
           "lead to Lumacap8Man.chm,", "have the character * in", "name Gr\xC3\xBCn.txt is" })
        EXPECT_NE(checked.strText.find(pszDetail), std::string::npos) << pszDetail;
}

TEST_F(PackageCheck, SamplePackageIsCleanUntilALineOfItsListIsWrong)
{
    const CPackage package(At(L"package"));
    const std::string strList = ReadBytes(package.List());
    const auto nLines = std::count(strList.begin(), strList.end(), '\n');
    const std::string strLast = std::to_string(nLines + 1) + " ";
    const std::string strNext = std::to_string(nLines + 2) + " ";
    // 511 characters behind a record's own are read as they are.
    const std::string strLong = "File Del: " + std::string(501, 'x');
    const std::pair<std::string, std::string> kCases[] = {
        { "", "" },
        { strLong, "" },
        { "File Copy: " + std::string(501, 'x'), strLast + "long-line" },
        { std::string(511, 'x') + "File Del: x", strLast + "long-line" },
        { std::string(600, 'x'), "" },
        { std::string(511, 'x') + "file copy: x", "" },
        { " File Copy: Lumacap8.exe", strLast + "near-miss" },
        { "File Copy:Lumacap8.exe", strLast + "near-miss" },
        { "File\tCopy X64 : Lumacap8.exe", strLast + "near-miss" },
        { "File Copy is a remark", "" },
        { "Made Dir: C:\\Games", strLast + "install-made" },
        { "Make Dir: Lang | texts", strLast + "tail" },
        { "File Copy: Lumacap8.exe > \\l.exe", strLast + "absolute" },
        { "File Copy: Lumacap8.exe > /l.exe", strLast + "absolute|" + strLast + "forward-slash" },
        { "File Del: Lang\\..\\x.txt", "" },
        { "File Copy: Lumacap8.exe > Lang\\", strLast + "empty-target" },
        { "Make Dir: B/C", strLast + "made-too-early" },
        { "Make Dir: B\r\nMake Dir: B\\C\r\nMake Dir: B\\D\r\nMake Dir: B", "" },
        { "File Copy x64: Lang\\English.txt > Lumacap8.exe", "" },
        { "File Copy: Lang\\English.txt > Lumacap8.exe", strLast + "written-twice" },
        { "File Del: Lang/../../x.txt", strLast + "climbing|" + strLast + "forward-slash" },
        { "File Copy: ..\\x.txt > y.txt", strLast + "climbing" },
        { "File Copy ind: Lang/English.txt > E.txt", strLast + "library-test" },
        { "File Copy: Lumacap8.exe > Lang/l.exe", strLast + "forward-slash" },
        { "File Copy: Lang/English.txt > Lang\\E.txt", "" },
        { "File Copy x64: Lang/English.txt", strLast + "forward-slash" },
        { "File Copy prt: Lumacap8.exe > Tools\\l.exe", strLast + "renamed-too-early" },
        { "File Copy: *", strLast + "folder-caught|" + strLast + "list-named" },
        { "\r" + std::string(1021, 'x') + "\n File Copy: x", strNext + "near-miss" },
        { "Make Dir: A\r\nMake Dir: A/B\r\nMake Dir: A", "" },
        { "Make Dir: x64\r\nMake Dir: x64\\A", "" },
        { "\x1A\n\x1A", strLast + "end-mark" },
        { "Make Dir: LumUnInst.log", strLast + "list-named" },
        { "Make Dir: Lang\\english.txt", strLast + "impossible-name" },
        { "Make Dir: Lumacap8.exe\\a", strLast + "impossible-name" },
        { "Make Dir: a?", strLast + "impossible-name" },
        { "Make Dir: a > b", strLast + "impossible-name" },
        { "Make Dir: a\tb", strLast + "impossible-name" },
        { "Make Dir: C:\\a", strLast + "absolute" },
        { "File Copy: Lumacap8.exe > a > b", strLast + "impossible-name" },
        { "File Copy: Lumacap8.exe > *.exe", strLast + "impossible-name" },
        { "File Copy: Lumacap8.exe > ab:c", strLast + "impossible-name" },
        { "File Copy:  > y", strLast + "no-match" },
        { "File Copy: Lang > y", strLast + "no-match" },
        { "File Del: foo.txt|remark", strLast + "impossible-name" },
        { "File Overwrite: foo.txt |remark", strLast + "impossible-name" },
        { "File Del: foo?.* | a \"remark\"", "" },
        { "File Del: Lang", strLast + "folder-caught" },
        { "File Overwrite: lang | texts", strLast + "folder-caught" },
        { "File Copy: Gr\xC3\xBCn.txt", strLast + "text-format" },
        { "File Del: Gr\xC3\xBCn.txt", strLast + "text-format" },
        { "File Copy: Gr\xFCn.txt", strLast + "no-match" },
        { "File Del: a | Gr\xC3\xBCn", "" },
        { "made dir: x", strLast + "near-miss" },
        { "File Copy: ", strLast + "near-miss" },
        { "File Del:  | texts", strLast + "near-miss" },
    };
    for (const auto& [strLine, strFindings] : kCases)
    {
        WriteBytes(package.List(), strList + strLine + "\n");
        const CHECKED checked = Check(package.Folder());
        EXPECT_EQ(Findings(checked), strFindings) << strLine;
        EXPECT_EQ(checked.nExitCode, strFindings.empty() ? 0u : 1u);
        const auto nFindings = std::count(strFindings.begin(), strFindings.end(), '|') + !strFindings.empty();
        EXPECT_EQ(checked.lines.back(), std::to_string(nFindings) + (nFindings == 1 ? " finding" : " findings"));
    }
    std::string strReturns = strList;
    strReturns.erase(std::remove(strReturns.begin(), strReturns.end(), '\r'), strReturns.end());
    std::replace(strReturns.begin(), strReturns.end(), '\n', '\r');
    std::string strWide;
    for (const char ch : strList)
        strWide += { ch, '\0' };
    const std::pair<std::string, std::string> kLists[] = {
        { "\xEF\xBB\xBF" + strList, "1 byte-order-mark" },
        { "\xFF\xFE" + strList, "1 byte-order-mark" },
        { "\xFE\xFF" + strList, "1 byte-order-mark" },
        { "\xFF\xFE" + strWide, "1 text-format" },
        { strWide, "1 text-format" },
        { strReturns, "1 text-format" },
    };
    for (const auto& [strBytes, strFindings] : kLists)
    {
        WriteBytes(package.List(), strBytes);
        EXPECT_EQ(Findings(Check(package.Folder())), strFindings);
    }
}

// What the setup itself needs no record names, however its letters are; all else is missed.
TEST_F(PackageCheck, FilesThatNoRecordNamesAreMissedOneByOne)
{
    const CPackage package(At(L"package"));
    DeleteFileW(package.At(L"setup.exe").c_str());
    WriteBytes(package.At(L"Lumacap8Setup.EXE"), "");
    const TEXTS tree = ListTree(package.Folder());
    const auto nFiles = std::count_if(tree.begin(), tree.end(), [](const auto& str) { return str.back() != L'\\'; });
    const std::tuple<std::string, int, std::string> kCases[] = {
        { "", 3, "|uninstaller-missing|counted-on|counted-on|counted-on|no-record" },
        { "File Copy: Lang/*.txt", 6, "|uninstaller-missing|counted-on|counted-on|counted-on" },
    };
    for (const auto& [strList, nNamed, strRest] : kCases)
    {
        WriteBytes(package.List(), strList);
        std::string strExpected = strList.empty() ? "" : "|1 forward-slash";
        for (auto i = nFiles - nNamed; i > 0; i--)
            strExpected += "|file-unnamed";
        EXPECT_EQ("|" + Findings(Check(package.Folder())), strExpected + strRest);
    }
    package.SetProductVersion(L"2.0.0.0");
    EXPECT_EQ(Findings(Check(package.Folder())).find("no-version"), std::string::npos);
}

// Folders that stay behind. The files with a forward slash are those that a removal misses.
TEST_F(PackageCheck, FolderThatStaysIsBlamedOnTheRecordThatCanHelp)
{
    for (const wchar_t* pszFile : { L"b.txt", L"sub\\a.txt", L"sub\\deep\\u.txt", L"sub\\deep\\low\\v.txt" })
        WriteBytes(At(L"package\\") + pszFile, "");
    MakeFolder(At(L"package\\none"));
    const std::pair<const char*, const char*> kCases[] = {
        { "File Copy: sub\\a.txt\nMake Dir: sub\nMake Dir: sub\\x", "2 parent-first" },
        { "File Copy: sub\\a.txt\nFile Copy: b.txt > sub/f.txt", "2 forward-slash" },
        { "File Copy: b.txt\nMake Dir: A\nMake Dir: A\\B\nFile Copy: b.txt > A/f.txt", "4 forward-slash" },
        { "File Copy: b.txt\nMake Dir: sub\nMake Dir: sub\\deep\nFile Copy: sub\\deep\\low\\v.txt\nMake Dir: sub",
          "4 folder-unnamed" },
        { "File Copy prt: sub\\d*", "1 folder-caught" },
        { "File Copy: b.txt\nMake Dir: A\nMake Dir: A\nMake Dir: A\\B\nMake Dir: A\\C", "3 parent-first" },
        { "File Copy: b.txt\nFile Copy x64: sub\\deep\\u.txt\nMake Dir: sub\\deep\nMake Dir: sub", "file-unnamed" },
        { "File Copy: b.txt\nFile Copy: none\\*", "2 no-match|2 folder-unnamed" },
        { "File Copy: sub\\a.txt\nMake Dir: sub\nMake Dir: b.txt\nFile Copy: b.txt", "4 target-is-folder" },
    };
    for (const auto& [pszList, pszFindings] : kCases)
    {
        WriteBytes(At(L"package\\LumUnInst.log"), pszList);
        const std::string strFindings = Findings(Check(At(L"package")));
        EXPECT_EQ(strFindings.substr(0, strFindings.find("|file-unnamed")), pszFindings) << pszList;
    }
}

// What one advice would make worse gets another.
TEST_F(PackageCheck, AdviceFitsTheCase)
{
    for (const wchar_t* pszFile : { L"a.txt", L"gr\xFCn.txt", L"\x3A9.txt" })
        WriteBytes(At(L"package\\") + pszFile, "");
    const std::string strMask = "Use a mask that meets it";
    const std::tuple<const char*, std::string, std::string> kCases[] = {
        // with what is told, and what isn't
        { "File Copy: a.txt > b", "record without \">\" before this one", "\"Make Dir: \"" },
        { "File Copy: a.txt > b\\c", "record without \">\" before this one", "\"Make Dir: \"" },
        { "File Copy prt: a.txt > b\\c", "\"Make Dir: \"", "before this one" },
        { "made dir: x", "Leave the line out.", "Begin" },
        { "shell link:", "Leave the line out.", "No name" },
        { "File Copy: ", "No name stands behind \"File Copy: \"", "Begin" },
        { "x", "\"File Copy: gr\xC3\xBCn.txt\"", "\"File Copy: \xCE\xA9" },
        { "x", strMask, "\"File Copy: \xCE\xA9" },
        { "File Copy: ?.txt", "\"File Copy: gr\xC3\xBCn.txt\"", strMask },
        { "File Copy: GR\xC3\xBCN.txt", "name GR\xC3\xBCN.txt is", "\"File Copy: gr" },
        { "File Copy: gr\xC3\xBCn.txt > b", "name gr\xC3\xBCn.txt is", "\"File Copy: gr" },
    };
    for (const auto& [pszList, strTold, strUntold] : kCases)
    {
        WriteBytes(At(L"package\\LumUnInst.log"), pszList);
        const std::string strText = Check(At(L"package")).strText;
        EXPECT_NE(strText.find(strTold), std::string::npos) << pszList;
        EXPECT_EQ(strText.find(strUntold), std::string::npos) << pszList;
    }
}

TEST_F(PackageCheck, PlanTellsWhatEachEntryIs)
{
    for (const wchar_t* pszFile : { L"a.dll", L"LumUnInst.exe" })
        WriteBytes(At(L"package\\") + pszFile, "");
    WriteBytes(At(L"package\\LumUnInst.log"), "File Copy ind: a.dll\nFile Copy: LumUnInst.exe\n"
                                              "File Copy: a.dll > \xE9.txt\nFile Copy prt: a.dll > ..\\..\\x");
    const std::pair<const wchar_t*, std::string> kCases[] = {
        { L"user", "  folder       <target>\n  library      <target>\\a.dll\n"
                   "  uninstaller  <target>\\LumUnInst.exe\n  log          <target>\\LumUnInst.log\n"
                   "  file         <target>\\\xC3\xA9.txt\n  link         <user's desktop>\\Lumacap 8.lnk\n"
                   "  folder       <user's programs>\\Lumacap 8\n"
                   "  link         <user's programs>\\Lumacap 8\\Lumacap 8 Help.lnk\n"
                   "  link         <user's programs>\\Lumacap 8\\Lumacap 8.lnk\n" },
        { L"portable", "  file         <beside>\\..\\..\\x\n  folder       <target>\n"
                       "  file         <target>\\a.dll\n  uninstaller  <target>\\LumUnInst.exe\n"
                       "  log          <target>\\LumUnInst.log\n  file         <target>\\\xC3\xA9.txt\n" },
    };
    for (const auto& [pszKind, strEntries] : kCases)
    {
        const std::string strText = Check(L"--plan " + std::wstring(pszKind) + L" " + At(L"package")).strText;
        EXPECT_EQ(strText.substr(0, strText.find("A removal")), "An install creates:\n" + strEntries);
    }
}

TEST_F(PackageCheck, PlanOfAPackageWithoutAnUninstallerKeepsAll)
{
    WriteBytes(At(L"package\\a.txt"), "");
    WriteBytes(At(L"package\\LumUnInst.log"), "File Copy: a.txt");
    const std::string strKept = "  folder       <target>\n  file         <target>\\a.txt\n"
                                "  log          <target>\\LumUnInst.log\n";
    EXPECT_EQ(Check(L"--plan portable " + At(L"package")).strText,
              "An install creates:\n" + strKept +
                  "No record brings LumUnInst.exe: there is no removal, and this stays:\n" + strKept +
                  "The next start of the machine leaves:\n" + strKept);
}

TEST_F(PackageCheck, ExitCodeTellsFindingsFromWrongUseAndFromAPackageThatCantBeRead)
{
    MakeFolder(At(L"empty"));
    const std::tuple<std::wstring, DWORD, std::string> kCases[] = {
        { L"", 2, "pkgcheck: usage:" },
        { L"\"\"", 2, "pkgcheck: usage:" },
        { L"--help", 0, "usage:" },
        { L"--HELP", 2, "pkgcheck: usage:" },
        { PackageFolder() + L"\\", 0, "0 findings" },
        { PackageFolder() + L"/", 0, "0 findings" },
        { L"\"" + PackageFolder() + L"\\\"", 0, "0 findings" },
        { L"/?", 0, "usage:" },
        { PackageFolder() + L" more", 2, "pkgcheck: usage:" },
        { At(L"empty"), 2, "pkgcheck: there is no LumUnInst.log" },
        { At(L"missing"), 2, "pkgcheck: there is no folder" },
        { PackageFolder() + L"\\setup.exe", 2, "pkgcheck: this is a file" },
        { L"--plan", 2, "pkgcheck: usage:" },
        { L"--plan all", 2, "pkgcheck: usage:" },
        { L"--plan none " + PackageFolder(), 2,
          "pkgcheck: the kind of install is user, all or portable, and not none" },
        { L"--plan all " + At(L"empty"), 2, "pkgcheck: there is no LumUnInst.log" },
        { L"--plan all " + PackageFolder(), 0, "An install creates:" },
        { L"--plan all " + PackageFolder() + L" more", 2, "pkgcheck: usage:" },
    };
    for (const auto& [strArguments, nExitCode, strBegin] : kCases)
    {
        const CHECKED checked = Check(strArguments);
        EXPECT_EQ(checked.nExitCode, nExitCode) << testing::PrintToString(strArguments);
        ASSERT_FALSE(checked.lines.empty());
        EXPECT_EQ(checked.lines[0].substr(0, strBegin.size()), strBegin) << testing::PrintToString(strArguments);
    }
}
