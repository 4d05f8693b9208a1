// Takes the steps of a scenario on the machine that it runs on, and tells what each changed there. tools/scenario.py
// makes the steps from the scenario's text, and the text from what is told.
//   player.exe STEPS WINDOWS-VERSION
#include <algorithm>
#include <memory>
#include <stdio.h>
#include <utility>

#include "tests/support/Machine.h"
#include "tests/support/Programs.h"
#include "tests/support/Windows.h"

static int s_nFailures = 0;
static std::wstring s_strReport; // path of the file that the products report to
static TEXTS s_picture;
static TEXTS s_answers;
static std::vector<std::shared_ptr<void>> s_holds;
static std::vector<std::unique_ptr<CProcessRun>> s_runs;

static void Tell(const std::wstring& strText)
{
    printf("%s\n", Bytes(Replaced(Replaced(strText, L"\r\n", L"\t"), L"\n", L" ")).c_str());
}

void Fail(const std::string& strWhat)
{
    s_nFailures++;
    Tell(L"FAILED: " + Wide(strWhat));
}

static bool IsStaying(const std::wstring& strReportLine)
{
    return !strReportLine.empty() && strReportLine.find(L"regonly") == strReportLine.npos;
}

// To the end of all that it starts, but for products that have opened and stay.
static void Run(const std::wstring& strCommandLine)
{
    WriteBytes(s_strReport, "");
    s_runs.push_back(std::make_unique<CProcessRun>(strCommandLine));
    CProcessRun& run = *s_runs.back();
    SetCurrentDirectoryW(L"C:\\Package");
    if (!run.Start())
        return;
    SetCurrentDirectoryW(L"C:\\");
    for (const std::wstring& strAnswer : std::exchange(s_answers, TEXTS()))
        Tell(L"box: " + AnswerBox(0, std::stoi(strAnswer)));
    TEXTS report;
    const auto isOver = [&]
    {
        report = Split(Wide(ReadBytes(s_strReport)), L'\n');
        return run.FamilyIds().size() <= size_t(std::count_if(report.begin(), report.end(), IsStaying));
    };
    if (!WaitUntil(isOver))
        Fail("it takes too long");
    for (const std::wstring& strLine : report)
        Tell(L"started: " + strLine);
    Tell(L"exit code " + std::to_wstring(run.ExitCode()));
}

static void Take(const std::wstring& strVerb, const std::wstring& strRest)
{
    if (strVerb == L"hold" || strVerb == L"map")
        s_holds.push_back(HoldFile(strRest, strVerb == L"map" ? kAsImage : FILE_SHARE_READ));
    else if (strVerb == L"cut")
        WriteBytes(strRest, ReadBytes(strRest).substr(0, 200000));
    else if (strVerb == L"answer")
        s_answers = Split(strRest, L' ');
    else if (strVerb == L"restart")
    {
        s_holds.clear();
        RestartMachine();
    }
    else if (strVerb == L"run")
        Run(strRest);
    else if (RunToEnd(L"cmd.exe /c " + strVerb + L" " + strRest).nExitCode != 0)
        Fail("an error");
}

// Of a small file that has come.
static std::wstring ContentOf(const std::wstring& strLine)
{
    const size_t nEnd = strLine.find(L" = ");
    if (strLine.compare(0, 3, L"+ C") != 0 || nEnd == strLine.npos)
        return L"";
    const std::string strContent = ReadBytes(strLine.substr(2, nEnd - 2));
    return strContent.size() < 2000 ? L"\t" + Wide(strContent) : L"";
}

static void TellChanges()
{
    const TEXTS earlier = std::exchange(s_picture, TakePicture());
    for (const std::wstring& strLine : Difference(earlier, s_picture))
        Tell(strLine + ContentOf(strLine));
    for (const std::wstring& strEntry : PendingEntries())
        Tell(L"boot: " + strEntry);
    Tell(L".");
}

int wmain(int, wchar_t** argv)
{
    SetWindowsVersion(argv[2]);
    GetDesktopWindow(); // it comes up with its first user, which must not be a program under test
    s_strReport = std::wstring(argv[1]) + L".report";
    SetEnvironmentVariableW(L"LUMACAP_REPORT", s_strReport.c_str());
    s_picture = TakePicture();
    for (const std::wstring& strStep : Split(Wide(ReadBytes(argv[1])), L'\n'))
    {
        Take(strStep.substr(0, strStep.find(L' ')), strStep.substr(strStep.find(L' ') + 1));
        TellChanges();
    }
    return s_nFailures;
}
