// The format of the file list: lines, records and values as its readers see them, and the bytes that an append leaves
// on disk.
#include "foundation/InstallLog.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/support/Corner.h"

class InstallLog : public MachineCorner
{
protected:
    const std::wstring m_strLog = At(L"some.log");
};

TEST_F(InstallLog, LinesEndAtTheirLineEndOrAfter511CharactersAndLoseTheBlanksAtTheirEnd)
{
    const std::string str511(511, 'a');
    const std::wstring strWide(511, L'a');
    const std::pair<std::string, std::vector<std::wstring>> rows[] = {
        { "", {} },
        { "a\r\nb\n\r\nc", { L"a", L"b", L"\n", L"c" } },
        { "a\x1Ax\nc\n", { L"a" } },
        { "\xEF\xBB\xBF\n\x80\xE9\xA0\xFF\na\x7F", { L"\xEF\xBB\xBF", L"\x80\xE9\xA0\xFF", L"a\x7F" } },
        { "  a  b  \na \t\v\f\x01\x1F \nFile Copy: \n", { L"  a  b", L"a", L"File Copy:" } },
        { "   \r\n\t \x02\n", { L" ", L"\t" } },
        { str511.substr(1) + "\nb\n", { strWide.substr(1), L"b" } },
        { str511 + "\nb\n", { strWide, L"\n", L"b" } },
        { str511 + "File Copy: x\n", { strWide, L"File Copy: x" } },
        { str511.substr(6) + "          b\n", { strWide.substr(6), L"    b" } },
    };
    for (const auto& [strBytes, lines] : rows)
    {
        WriteBytes(m_strLog, strBytes);
        CInstallLogReader reader(m_strLog.c_str());
        std::vector<std::wstring> read;
        while (reader.ReadLine())
            read.push_back(reader.Line());
        EXPECT_EQ(read, lines) << testing::PrintToString(strBytes);
    }
}

TEST_F(InstallLog, OnlyAnExactPrefixAtTheStartMakesARecord)
{
    EXPECT_STREQ(FindRecordValue(L"Made Dir:  x > y | z", kMadeDir), L" x > y | z");
    for (const wchar_t* pszLine : { L" Made Dir: x", L"made Dir: x", L"Made Dir:", L"Made Dir:x", L"Make Dir: x" })
        EXPECT_EQ(FindRecordValue(pszLine, kMadeDir), nullptr) << testing::PrintToString(pszLine);
}

// The install knows no tail; the removal wants the name under which the file landed.
TEST_F(InstallLog, AFileValueIsReadInTwoWays)
{
    const wchar_t* const pszNone = nullptr;
    const std::tuple<const wchar_t*, const wchar_t*, const wchar_t*, const wchar_t*> rows[] = {
        // value, source and target of the install, name to remove
        { L" sub\\*.d?l", L" sub\\*.d?l", pszNone, L" sub\\*.d?l" },
        { L"a>b", L"a", L"b", L"b" },
        { L"a \t > \tb c > d", L"a", L"b c > d", L"b c > d" },
        { L"a >", L"a", L"", L"" },
        { L"> b", L"", L"b", L"b" },
        { L"a > b | c > d | e", L"a", L"b | c > d | e", L"b" },
        { L"a | b > c", L"a | b", L"c", L"a" },
        { L"a  |  b", L"a  |  b", pszNone, L"a " },
        { L"a| b |c", L"a| b |c", pszNone, L"a| b |c" },
    };
    for (const auto& [pszValue, pszSource, pszTarget, pszRemoved] : rows)
    {
        SCOPED_TRACE(testing::PrintToString(pszValue));
        CString strSource;
        CString strTarget(L"left over");
        EXPECT_EQ(SplitFileValue(pszValue, strSource, strTarget), pszTarget != nullptr);
        EXPECT_STREQ(strSource, pszSource);
        EXPECT_STREQ(strTarget, pszTarget != nullptr ? pszTarget : L"");
        EXPECT_STREQ(GetNameToRemove((std::wstring(L"File Del: ") + pszValue).c_str(), kFileDel), pszRemoved);
    }
}

TEST_F(InstallLog, AppendedLinesStandOnDiskByteByByte)
{
    std::string strExpected;
    const std::pair<const wchar_t*, const char*> rows[] = {
        { L"", "\r\n" },
        { L"Shell Link: 100%d %c.lnk ", "Shell Link: 100%d %c.lnk \r\n" },
        { L"Caf\x00E9 \x0080\x00FF", "Caf\xE9 \x80\xFF\r\n" },
        // The narrow conversion can't hold what is above 0xFF; the text ends there, and so does the line.
        { L"before\x0416 after", "before" },
        { L"next", "next\r\n" },
    };
    for (const auto& [pszText, pszBytes] : rows)
    {
        AppendLogLine(m_strLog.c_str(), pszText);
        strExpected += pszBytes;
        EXPECT_EQ(ReadBytes(m_strLog), strExpected);
    }
    {
        const CFileHold hold(m_strLog, FILE_SHARE_READ);
        AppendLogLine(m_strLog.c_str(), L"refused");
        EXPECT_EQ(ReadBytes(m_strLog), strExpected);
    }
    EXPECT_TRUE(DeleteFileW(m_strLog.c_str())) << "an append keeps the file open";
}
