// The examples of docs/command-line.md, run as they stand there: the table of the page is the table of the test.
#include <gtest/gtest.h>

#include "tests/support/Corner.h"
#include "tests/support/Environment.h"
#include "tests/support/InstallCorner.h"
#include "tests/support/ProcessRun.h"

namespace
{

struct Example
{
    std::wstring strCommand;
    std::vector<std::wstring> present; // paths
    std::vector<std::wstring> absent;
};

// The texts between backquotes, with the names of environment variables replaced.
std::vector<std::wstring> Quoted(const std::wstring& strCell)
{
    std::vector<std::wstring> texts;
    const std::vector<std::wstring> parts = Split(strCell, L'`');
    for (size_t i = 1; i < parts.size(); i += 2)
    {
        wchar_t szText[1024] = L"";
        ExpandEnvironmentStringsW(parts[i].c_str(), szText, 1024);
        texts.push_back(szText);
    }
    return texts;
}

std::vector<Example> ReadExamples()
{
    std::vector<Example> examples;
    for (const std::string& strLine : ReadLines(SourceFolder() + L"\\docs\\command-line.md"))
    {
        const std::vector<std::wstring> cells = Split(std::wstring(strLine.begin(), strLine.end()), L'|');
        const std::vector<std::wstring> command = cells.size() < 4 ? cells : Quoted(cells[1]);
        if (cells.size() >= 4 && !command.empty() && command[0].find(L":\\") != std::wstring::npos)
            examples.push_back({ command[0], Quoted(cells[2]), Quoted(cells[3]) });
    }
    return examples;
}

} // namespace

class CommandLine : public ProductCorner
{
protected:
    void TearDown() override
    {
        for (const wchar_t* pszFolder : { L"C:\\Package", L"C:\\Download", L"C:\\Tools", L"C:\\Stick" })
            RemoveTree(pszFolder);
        ProductCorner::TearDown();
    }
};

TEST_F(CommandLine, ExamplesOfThePageDoWhatItSays)
{
    const CPackage package(L"C:\\Package");
    WriteBytes(L"C:\\Download\\Lumacap8.ini", "");
    const std::vector<Example> examples = ReadExamples();
    EXPECT_EQ(examples.size(), 6u);
    for (const Example& example : examples)
    {
        SCOPED_TRACE(testing::PrintToString(example.strCommand));
        EXPECT_EQ(RunToEnd(example.strCommand), 0u);
        for (const std::wstring& strPath : example.present)
            EXPECT_TRUE(IsThere(strPath)) << testing::PrintToString(strPath);
        for (const std::wstring& strPath : example.absent)
            EXPECT_FALSE(IsThere(strPath)) << testing::PrintToString(strPath);
    }
}
