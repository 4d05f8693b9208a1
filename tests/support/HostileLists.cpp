// The generator's own arithmetic: the library's distributions differ from one library to the next.
#include "tests/support/HostileLists.h"

#include <algorithm>
#include <random>

namespace
{

class CDice
{
public:
    explicit CDice(unsigned int nSeed) : m_engine(nSeed) {}
    unsigned int Below(unsigned int nEnd) { return static_cast<unsigned int>(m_engine() % nEnd); }
    bool OneIn(unsigned int n) { return Below(n) == 0; }

    template <typename Text, size_t n>
    const Text& OneOf(const Text (&texts)[n])
    {
        return texts[Below(n)];
    }

private:
    std::mt19937 m_engine;
};

const char* const kPrefixes[] = { "File Copy: ",     "File Copy x64: ",  "File Copy ind: ",
                                  "File Copy prt: ", "File Overwrite: ", "File Del: ",
                                  "Make Dir: ",      "Made Dir: ",       "Shell Link: " };
const char* const kOddPrefixes[] = { "file copy: ",     "File Copy:",   " File Copy: ",
                                     "File Copy x32: ", "Made Dir",     "",
                                     "Make Dir:\t",     "\xEF\xBB\xBF", "File Copy: File Del: " };
// `~` stands for the folder that the lists are let loose in; most of the others stay in it too.
const char* const kParts[] = {
    "a.txt",      "b.txt",        "c.dll",         "sub\\d.txt", "sub",      "sub\\deep", "sub/d.txt",
    "*",          "*.*",          "?.txt",         "sub\\*",     "*\\a.txt", "",          " ",
    ".",          "..",           "a.txt.",        "a.txt ",     "nul",      "con",       "a:b",
    "<",          "\"",           "\"a.txt\"",     "'",          "%s%n",     "\\",        "\\\\",
    "\\a.txt",    "sub\\\\d.txt", "sub\\.\\d.txt", "~",          "~\\",      "~\\to",     "~\\to\\a.txt",
    "~\\from\\*", "\xE4\xF6.txt",
};
const char* const kClimbs[] = { "..\\x.txt",
                                "..\\..\\x",
                                "..\\..\\..\\windows\\win.ini",
                                "../../x",
                                "C:\\x.txt",
                                "C:\\*",
                                "\\windows\\*.ini",
                                "\\\\?\\C:\\windows\\win.ini",
                                "Z:\\tmp",
                                "C:",
                                "sub\\..\\..\\..\\*.txt",
                                "\\\\.\\pipe\\x",
                                "\\\\server\\share\\a.txt" };
const char* const kJoints[] = { " > ", ">", " | ", " |", " > > ", "\\", "  ", "\t" };
const char* const kEnds[] = { "\n", "\n", "\n", "\r\n", "\r\n", "", "\r", "\n\n", "\x1A\n", " \t\n" };

std::string Garbage(CDice& dice)
{
    std::string strBytes;
    for (unsigned int n = dice.Below(dice.OneIn(20) ? 3000 : 60); n > 0; n--)
        strBytes += static_cast<char>(dice.Below(256));
    return strBytes;
}

std::string Value(CDice& dice)
{
    if (dice.OneIn(40))
        return std::string(1 + dice.Below(1500), dice.OneIn(2) ? 'x' : '\\');
    if (dice.OneIn(12))
        return dice.OneOf(kClimbs);
    std::string strValue = dice.OneOf(kParts);
    while (dice.OneIn(3))
        strValue += dice.OneOf(kJoints) + std::string(dice.OneOf(kParts));
    return strValue;
}

std::string Line(CDice& dice)
{
    if (dice.OneIn(15))
        return Garbage(dice);
    return (dice.OneIn(10) ? dice.OneOf(kOddPrefixes) : dice.OneOf(kPrefixes)) + Value(dice);
}

const wchar_t* const kArguments[] = {
    L"-s",
    L"-v",
    L"-sconf",
    L"/s",
    L"-runafter",
    L"-autostart",
    L"-nodeskico",
    L"-allusers",
    L"-instdir",
    L"-instport",
    L"-install",
    L"-sfxname=",
    L"-sfxname=A\\b",
    L"-sfxname=C:\\d\\e.exe",
    L"C:\\T",
    L"C:\\T U\\\"",
    L"C:\\T\\",
    L"-delself",
    L"-inst",
    L"-instdir=C:\\T",
    L"-sfxname",
    L"",
    L"\"",
    L"-",
    L"--s",
    L"-S",
    L"-V",
    L"-RunAfter",
    L"-SCONF",
    L"\\",
    L"-sfxname=\\",
    L"\x0130-s",
    L"%s%n",
    L"/v",
    L"-s ",
};

} // namespace

std::string HostileList(unsigned int nSeed)
{
    CDice dice(nSeed);
    std::string strList;
    for (unsigned int n = dice.Below(6); n > 0; n--)
        strList += Line(dice) + dice.OneOf(kEnds);
    return strList;
}

std::string LongHostileList(unsigned int nSeed, int nLines)
{
    CDice dice(nSeed);
    std::string strList;
    for (int i = 0; i < nLines; i++)
        strList += (dice.OneIn(200) ? Line(dice) : dice.OneOf(kOddPrefixes) + std::string(dice.OneOf(kParts))) + "\n";
    strList.erase(std::remove(strList.begin(), strList.end(), '\x1A'), strList.end());
    return strList;
}

std::vector<std::wstring> HostileArguments(unsigned int nSeed)
{
    CDice dice(nSeed);
    std::vector<std::wstring> arguments;
    for (unsigned int n = dice.Below(8); n > 0; n--)
    {
        if (dice.OneIn(20))
            arguments.emplace_back(dice.Below(2000), static_cast<wchar_t>(1 + dice.Below(0xFFFE)));
        else
            arguments.emplace_back(dice.OneOf(kArguments));
    }
    return arguments;
}
