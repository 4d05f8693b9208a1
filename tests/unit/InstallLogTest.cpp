// The file list's format: lines and values as its readers see them, and the bytes that an append leaves on disk.
#include "foundation/InstallLog.h"

#include "tests/support/World.h"

using InstallLog = World;

TEST_F(InstallLog, LinesHave511CharactersAtMostAndLoseTheirLastBlanks)
{
    const std::string strLong(511, 'a');
    WriteBytes(At(L"log"),
               "a \t\x01\x1F\r\n\r\n  b  c\n \t\n\xEF\xBB\xBF\x80\xFF\x7F\n" + strLong + "File Copy: x\nend");
    CInstallLogReader reader(At(L"log").c_str());
    std::wstring strLines;
    while (reader.ReadLine())
        strLines += reader.Line() + std::wstring(L"|");
    EXPECT_EQ(strLines, L"a|\n|  b  c| |\xEF\xBB\xBF\x80\xFF\x7F|" + Wide(strLong) + L"|File Copy: x|end|");
}

// The install knows no tail; the removal wants the name under which the file landed.
TEST_F(InstallLog, AFileValueIsReadInTwoWays)
{
    const wchar_t* const rows[][2] = {
        // value; source and target of the install, name to remove
        { L"a \t > \tb c > d", L"a>b c > d; b c > d" },  { L" a| b |c", L" a| b |c;  a| b |c" }, { L"> b", L">b; b" },
        { L"a > b | c > d | e", L"a>b | c > d | e; b" }, { L"a | b > c", L"a | b>c; a" },
    };
    CString strSource;
    CString strTarget;
    for (const auto& [pszValue, pszRead] : rows)
    {
        const bool bRenamed = SplitFileValue(pszValue, strSource, strTarget);
        const CString strName = GetNameToRemove(CString(L"File Del: ") + pszValue, L"File Del: ");
        EXPECT_STREQ(strSource + (bRenamed ? L">" : L"") + strTarget + L"; " + strName, pszRead);
    }
}

TEST_F(InstallLog, AppendedLinesStandOnDiskByteByByte)
{
    // The narrow conversion can't hold what is above 0xFF: the text ends there, and so does the line.
    for (const wchar_t* pszText : { L"", L"100%d \x80\xFF ", L"before\x0416 after", L"next" })
        AppendLogLine(At(L"log").c_str(), pszText);
    EXPECT_EQ(ReadBytes(At(L"log")), "\r\n100%d \x80\xFF \r\nbeforenext\r\n");
}
