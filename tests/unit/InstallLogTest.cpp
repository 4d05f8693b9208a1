// The file list's format: lines as its reader sees them, and the bytes that an append leaves on disk.
#include "foundation/InstallLog.h"

#include "tests/support/World.h"

using InstallLog = World;

TEST_F(InstallLog, LinesHave511CharactersAtMostAndLoseTheirLastBlanks)
{
    const std::string strLong(511, 'a');
    Make(L"log", "a \t\x01\x1F\r\n\r\n  b  c\n \t\n\xEF\xBB\xBF\x80\xFF\x7F\n" + strLong + "File Copy: x\nend");
    CInstallLogReader reader(At(L"log").c_str());
    std::wstring strLines;
    while (reader.ReadLine())
        strLines += reader.Line() + std::wstring(L"|");
    EXPECT_EQ(strLines, L"a|\n|  b  c| |\xEF\xBB\xBF\x80\xFF\x7F|" + Wide(strLong) + L"|File Copy: x|end|");
}

TEST_F(InstallLog, AppendedLinesStandOnDiskByteByByte)
{
    // The narrow conversion can't hold what is above 0xFF: the text ends there, and so does the line.
    for (const wchar_t* pszText : { L"", L"100%d \x80\xFF ", L"before\x0416 after", L"next" })
        AppendLogLine(At(L"log").c_str(), pszText);
    EXPECT_EQ(ReadBytes(At(L"log")), "\r\n100%d \x80\xFF \r\nbeforenext\r\n");
}
