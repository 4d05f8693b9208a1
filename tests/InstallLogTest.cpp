// The format of the file list: lines, records and values as its readers see them, and the bytes that an append leaves
// on disk.
#include "foundation/InstallLog.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/support/Corner.h"

using Lines = std::vector<std::wstring>;

class InstallLog : public MachineCorner
{
protected:
    static Lines RemainingLines(CInstallLogReader& reader)
    {
        Lines lines;
        while (reader.ReadLine())
            lines.push_back(reader.Line());
        return lines;
    }

    Lines LinesOf(const std::string& strBytes) const
    {
        WriteBytes(m_strLog, strBytes);
        CInstallLogReader reader(m_strLog.c_str());
        return RemainingLines(reader);
    }

    const std::wstring m_strLog = At(L"some.log");
};

TEST_F(InstallLog, LinesEndAtTheirLineEndOrAfter511Characters)
{
    const std::string str511(511, 'a');
    const std::wstring strWide(511, L'a');
    const std::pair<std::string, Lines> rows[] = {
        { "", {} },
        { "a\r\nb\r\n", { L"a", L"b" } },
        { "a\nb\n", { L"a", L"b" } },
        { "a\r\nb", { L"a", L"b" } },
        { "a\x1Ax\nc\n", { L"a" } },
        { "\xEF\xBB\xBF\n", { L"\xEF\xBB\xBF" } },
        { str511.substr(1) + "\nb\n", { strWide.substr(1), L"b" } },
        { str511 + "\nb\n", { strWide, L"\n", L"b" } },
        { str511 + "File Copy: x\n", { strWide, L"File Copy: x" } },
        { std::string(600, 'a') + "\n", { strWide, std::wstring(89, L'a') } },
        { str511.substr(6) + "          b\n", { strWide.substr(6), L"    b" } },
        { str511 + str511 + "b", { strWide, strWide, L"b" } },
    };
    for (const auto& [strBytes, lines] : rows)
        EXPECT_EQ(LinesOf(strBytes), lines) << testing::PrintToString(strBytes);
}

TEST_F(InstallLog, TheEndOfALineLosesItsControlCharactersButNeverTheFirstCharacter)
{
    const std::pair<const char*, const wchar_t*> rows[] = {
        { "File Copy: a.dll   ", L"File Copy: a.dll" },
        { "a \t\v\f\x01\x1F ", L"a" },
        { "  a  b  ", L"  a  b" },
        { "File Copy: ", L"File Copy:" },
        { "", L"\n" },
        { "   ", L" " },
        { "\t \x02", L"\t" },
        { "\x80\xE9\xA0\xFF", L"\x80\xE9\xA0\xFF" },
        { "a\x7F", L"a\x7F" },
    };
    for (const auto& [pszLine, pszRead] : rows)
        EXPECT_EQ(LinesOf(std::string(pszLine) + "\r\n"), Lines{ pszRead }) << testing::PrintToString(pszLine);
}

TEST_F(InstallLog, AListThatCantBeOpenedReadsAsOneWithoutLines)
{
    WriteBytes(At(L"held.log"), "a\n");
    const CFileHold hold(At(L"held.log"), 0);
    for (const wchar_t* pszName : { L"missing.log", L"missing\\some.log", L"held.log" })
    {
        CInstallLogReader reader(At(pszName).c_str());
        EXPECT_FALSE(reader.IsOpen());
        EXPECT_EQ(RemainingLines(reader), Lines{});
        reader.Rewind();
        EXPECT_FALSE(reader.ReadLine());
    }
}

TEST_F(InstallLog, OnlyAnExactPrefixAtTheStartMakesARecord)
{
    const std::pair<const wchar_t*, std::wstring> rows[] = {
        { kFileCopy, L"File Copy: " },
        { kFileCopyX64, L"File Copy x64: " },
        { kFileCopyIfAbsent, L"File Copy ind: " },
        { kFileCopyPortable, L"File Copy prt: " },
        { kFileOverwrite, L"File Overwrite: " },
        { kFileDel, L"File Del: " },
        { kMakeDir, L"Make Dir: " },
        { kMadeDir, L"Made Dir: " },
        { kShellLink, L"Shell Link: " },
    };
    for (const auto& [pszPrefix, strText] : rows)
    {
        const std::wstring strLine = strText + L" value > x | y";
        for (const auto& [pszReader, strRead] : rows)
            EXPECT_STREQ(FindRecordValue(strLine.c_str(), pszReader), strRead == strText ? L" value > x | y" : nullptr);

        const std::wstring strTight = strText.substr(0, strText.size() - 1);
        std::wstring strLower = strLine;
        strLower[0] += L'a' - L'A';
        for (const std::wstring& strOther : { L" " + strLine, L"x" + strLine, strLower, strTight, strTight + L"value" })
            EXPECT_EQ(FindRecordValue(strOther.c_str(), pszPrefix), nullptr) << testing::PrintToString(strOther);
    }
}

// The install knows no tail; the removal wants the name under which the file landed.
TEST_F(InstallLog, AFileValueIsReadInTwoWays)
{
    const wchar_t* const pszNone = nullptr;
    const std::tuple<const wchar_t*, const wchar_t*, const wchar_t*, const wchar_t*> rows[] = {
        // value, source and target of the install, name to remove
        { L"a.dll", L"a.dll", pszNone, L"a.dll" },
        { L" sub\\*.d?l", L" sub\\*.d?l", pszNone, L" sub\\*.d?l" },
        { L"a > b", L"a", L"b", L"b" },
        { L"a>b", L"a", L"b", L"b" },
        { L"a \t > \tb c", L"a", L"b c", L"b c" },
        { L"a > b > c", L"a", L"b > c", L"b > c" },
        { L"a >", L"a", L"", L"" },
        { L"> b", L"", L"b", L"b" },
        { L"a.dll > b.dll | note", L"a.dll", L"b.dll | note", L"b.dll" },
        { L"a | b > c", L"a | b", L"c", L"a" },
        { L"a > b | c > d | e", L"a", L"b | c > d | e", L"b" },
        { L"a  |  b", L"a  |  b", pszNone, L"a " },
        { L"a| b |c", L"a| b |c", pszNone, L"a| b |c" },
        { L"| note", L"| note", pszNone, L"" },
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
        { L"Made Dir: C:\\Program Files\\x", "Made Dir: C:\\Program Files\\x\r\n" },
        { L"Shell Link: 100%s %d %n.lnk ", "Shell Link: 100%s %d %n.lnk \r\n" },
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
    EXPECT_TRUE(DeleteFileW(m_strLog.c_str())) << "an append keeps the file open";
}

TEST_F(InstallLog, AnAppendThatCantOpenTheFileLeavesNoTrace)
{
    AppendLogLine(At(L"missing\\some.log").c_str(), L"a");
    EXPECT_EQ(ListTree(Folder()), Lines{});

    WriteBytes(m_strLog, "a\r\n");
    const CFileHold hold(m_strLog, FILE_SHARE_READ);
    AppendLogLine(m_strLog.c_str(), L"b");
    EXPECT_EQ(ReadBytes(m_strLog), "a\r\n");
}
