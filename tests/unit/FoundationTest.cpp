// What the flows stand on, and the utilities beside it: values, facts of the machine, starts of programs, texts, paths.
#include "app/RunState.h"
#include "foundation/BoundedText.h"
#include "foundation/DiskFiles.h"
#include "foundation/FolderPaths.h"
#include "foundation/ProcessLaunch.h"
#include "foundation/RegistryValues.h"
#include "foundation/SystemFacts.h"
#include "foundation/SystemTools.h"
#include "foundation/TextEncoding.h"
#include "foundation/TextTools.h"
#include "tests/support/Calls.h"
#include "tests/support/Programs.h"
#include "tests/support/World.h"

namespace
{

using Foundation = World;

const wchar_t kShutdown[] = L"SeShutdownPrivilege";

// 0 unless the parent's program is this one.
int TellParent()
{
    wchar_t szParent[MAX_PATH] = L"";
    const int nParent = GetParentProcess(szParent, MAX_PATH);
    return GetModulePath() == szParent ? nParent : 0;
}

const CChildRole s_child(L"child", TellParent);

} // namespace

TEST_F(Foundation, RegistryTextIsReadUpTo129Characters)
{
    const wchar_t kKey[] = L"SOFTWARE\\Tandrel\\Test";
    const std::wstring strText(129, L'x');
    const CCalls calls({ { "RegSetValueExW", [](CALL& call)
                           {
                               EXPECT_EQ(DWORD(call.args[5]),
                                         call.args[3] == REG_DWORD ? 4 : 2 * wcslen(call.Text(4)) + 2);
                               return call.Pass();
                           } } });
    EXPECT_NE(WriteRegString(kUser, kKey, L"", strText.c_str()), 0);
    EXPECT_NE(WriteRegDword(kUser, kKey, L"number", 0x00420041), 0);
    WriteRegString(kUser, kKey, L"long", (strText + L"x").c_str());
    EXPECT_EQ(ReadRegString(kUser, kKey, nullptr).GetString(), strText);
    // The longest text still lies on the stack.
    EXPECT_STREQ(ReadRegString(kUser, kKey, L"number"), L"AB");
    EXPECT_STREQ(ReadRegString(kUser, kKey, L"long"), L"");
    // Neither a name of that length nor a key without a root is to be had.
    EXPECT_EQ(WriteRegString(kUser, kKey, std::wstring(20000, L'n').c_str(), L""), 0);
    EXPECT_EQ(WriteRegDword(nullptr, kKey, L"", 1), 0);
}

TEST_F(Foundation, MachineTellsFoldersAndVersion)
{
    CCalls calls({ { "SHGetFolderPathW", [](CALL&) { return S_FALSE; } } });
    EXPECT_STREQ(GetSpecialFolder(0), L"");
    calls.On("SHGetFolderPathW", [](CALL&) { return E_FAIL; });
    for (const std::wstring& strRow : Split(L"0 Desktop|2 Programs|7 Startup|23 Common Programs|24 Common Startup|"
                                            L"25 Common Desktop|39 MyPictures|999 ",
                                            L'|'))
    {
        SetKeyText(strRow.find(L'C') == 3 ? kMachine : kUser, kWindows + L"\\Explorer\\Shell Folders",
                   strRow.substr(strRow.find(L' ') + 1), strRow);
        EXPECT_STREQ(GetSpecialFolder(_wtoi(strRow.c_str())), strRow.c_str());
    }

    g_osVersion.dwMajorVersion = 5;
    EXPECT_EQ(IsNT6OrLater(), 0);
    g_osVersion.dwMajorVersion = 6;
    EXPECT_NE(IsNT6OrLater(), 0);

    g_pfnIsWow64Process = g_pfnIsWow64ProcessOf = [](HANDLE hProcess, BOOL* pbWow64)
    { return *pbWow64 = hProcess == GetCurrentProcess(); };
    EXPECT_EQ(IsWow64(), 1);
    EXPECT_EQ(IsWow64Of(nullptr), 1);
    EXPECT_EQ(IsWow64Of(HANDLE(4)), 0);
    g_pfnIsWow64Process = nullptr;
    EXPECT_EQ(IsWow64(), 0);
}

TEST_F(Foundation, ProgramIsStartedAndWaitedFor)
{
    const CCalls calls;
    g_strInstDir = m_strFolder.c_str();
    EXPECT_NE(RunAndWait(L"cmd.exe /c mkdir one", nullptr, kPatience), 0);
    EXPECT_TRUE(IsThere(At(L"one")));
    RunAndWait(L"cmd.exe /c mkdir two", At(L"temp").c_str(), kPatience);
    EXPECT_TRUE(IsThere(At(L"temp\\two")));
    EXPECT_NE(RunAndWait((L"cmd.exe /c" + std::wstring(509, L' ')).c_str(), nullptr, 0), 0);
    EXPECT_EQ(calls.Count("WaitForSingleObject"), 2);
    EXPECT_EQ(calls.Count("CloseHandle"), 6);
}

TEST_F(Foundation, RestartAsksForThePrivilege)
{
    HANDLE hToken = nullptr;
    OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &hToken);
    std::string strRestarts;
    const CCalls calls({ { "ExitWindowsEx", [&](CALL& call)
                           {
                               EXPECT_EQ(call.args[0], 2u);
                               EXPECT_EQ(call.args[1], 0x80040002);
                               PRIVILEGE_SET shutdown = { 1, 0, { { { 19, 0 }, 0 } } };
                               BOOL bMay = FALSE;
                               PrivilegeCheck(hToken, &shutdown, &bMay);
                               return strRestarts += bMay ? '+' : '-', FALSE;
                           } } });
    RestartComputer();
    EXPECT_EQ(SetPrivilege(hToken, kShutdown, false), 1);
    g_pfnOpenProcessToken = nullptr;
    RestartComputer();
    EXPECT_EQ(strRestarts, "+-");

    testing::internal::CaptureStdout();
    EXPECT_EQ(SetPrivilege(hToken, L"SeCreateTokenPrivilege", true), 0);
    CloseHandle(hToken);
    EXPECT_EQ(SetPrivilege(hToken, L"SeNoSuchPrivilege", true), 0);
    EXPECT_EQ(SetPrivilege(hToken, kShutdown, true), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "The token does not have the specified privilege. \nLookupPrivilegeValue error: 1313\n"
              "AdjustTokenPrivileges error: 6\n");
    g_pfnAdjustTokenPrivileges = nullptr;
    EXPECT_EQ(SetPrivilege(hToken, kShutdown, true), 0);
}

TEST_F(Foundation, TextsAreCutSortedAndTrimmed)
{
    wchar_t szBuffer[8];
    EXPECT_EQ(FormatUnbounded(szBuffer, L"%s-%02d", L"abcd", 7), 7);
    EXPECT_STREQ(szBuffer, L"abcd-07");
    EXPECT_EQ(FormatBounded(szBuffer, 8, L"%s", L"1234567"), 7);
    EXPECT_EQ(FormatBounded(szBuffer, 7, L"%s", L"1234567"), -1);

    EXPECT_STREQ(ParentFolder(L"C:\\"), L"");
    EXPECT_STREQ(CutLastPart(L"a"), L"a");
    EXPECT_STREQ(WithSeparator(L"a/"), L"a/");

    wchar_t szText[] = L"One TWO two";
    EXPECT_EQ(RemoveSubstringInPlace(szText, L"tWo "), 1);
    EXPECT_EQ(RemoveSubstringInPlace(szText, L"Three"), 0);
    EXPECT_STREQ(szText, L"One two");

    CStringArray aStrings;
    aStrings.SetSize(4);
    for (int i = 0; i < 4; i++)
        aStrings[i] = CString(L"bBa_"[i]);
    SortStringsNoCase(aStrings);
    EXPECT_STREQ(aStrings[0] + aStrings[1] + aStrings[2] + aStrings[3], L"_abB");

    char szNarrow[] = "\t \x80 -\x1F ";
    EXPECT_STREQ(TrimBothA(szNarrow), "\x80 -");
    wchar_t szWide[] = L"\xFEFF \xFEFF -\x1F ";
    EXPECT_STREQ(TrimBothW(szWide), L"\xFEFF -");
    wchar_t szMark[] = L"\xFFFE ";
    EXPECT_STREQ(TrimBothW(szMark), L"");
}

TEST_F(Foundation, TextsAreEncodedAndConverted)
{
    const wchar_t kKept[] = L"azAZ09bcdefghijklmnopqrstuvwxyBCDEFGHIJKLMNOPQRSTUVWXY12345678$-_@.+!'*\"(),;/#?:";
    EXPECT_STREQ(EncodeForPost(kKept), kKept);
    EXPECT_STREQ(EncodeForQuery(kKept), kKept);
    EXPECT_STREQ(EncodeForPost(L" &%=\t\xFF\x4E00"), L"+&%25%3D%09%FF%4E00");
    EXPECT_STREQ(EncodeForQuery(L" &%=\t\xFF\x4E00"), L" (AND)%25%3D%09%FF%4E00");

    TEXTS loaded;
    CCalls calls({ { "GetACP", [](CALL&) { return 1251; } },
                   { "LoadLibraryExW", [&](CALL& call) { return loaded.push_back(call.Text(0)), call.Pass(); } } });
    EXPECT_STREQ(AnsiToString("\xE4"), L"\x0434");
    const CString strWide = AnsiToString("");
    const CStringA strNarrow = StringToAnsi(L"");
    EXPECT_EQ(std::wstring(strWide, strWide.GetLength()), std::wstring(2, L'\0'));
    EXPECT_EQ(std::string(strNarrow, strNarrow.GetLength()), std::string(2, '\0'));
    // A letter and its mark apart become one.
    EXPECT_STREQ(StringToAnsi(L"\x0418\x0306\x4E00"), "\xC9?");

    for (const int nError : { 2099, 2100, 2999, 3000, 11999, 12000, 12190, 12191 })
        GetErrorText(nError);
    EXPECT_EQ(Join(loaded), L"netmsg.dll|netmsg.dll|wininet.dll|wininet.dll");
    EXPECT_STRNE(GetErrorText(12007), L"");
    calls.On("LoadLibraryExW", [](CALL&) { return 0; });
    EXPECT_STRNE(GetErrorText(2250), L"");
}

TEST_F(Foundation, SystemToolsAnswer)
{
    EXPECT_EQ(CopyTextToClipboard(L"text"), 1);
    OpenClipboard(GetDesktopWindow());
    EXPECT_STREQ(static_cast<wchar_t*>(GlobalLock(GetClipboardData(CF_UNICODETEXT))), L"text");
    EXPECT_EQ(CopyTextToClipboard(L"in use"), 0);
    CloseClipboard();
    const CCalls calls(
        { { "SetClipboardData", [](CALL&) { return 0; } }, { "_time64", [](CALL&) { return 0x5FFFFFFFE; } } });
    EXPECT_EQ(CopyTextToClipboard(L"refused"), 0);

    Make(L"aFFFFFFE..b|aFFFFFFF..b");
    // The time is cut to 28 bits; the search for a free name goes on beyond them.
    EXPECT_EQ(MakeTempName(L"..b", L"a", L"C:/corner/").GetString(), At(L"a10000000..b"));
    EXPECT_EQ(MakeTempName(nullptr, nullptr, L"C:\\missing").GetString(), At(L"temp\\LUMFFFFFFE.TMP"));

    EXPECT_EQ(RunToEnd(CChildRole::CommandLine(L"child")).nExitCode, GetCurrentProcessId());
}
