// Code page conversions, the two encoders and the lookup of error texts. The platform calls are looked at where their
// arguments are the contract: the message source and its flags.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "foundation/TextEncoding.h"
#include "tests/support/ImportHook.h"

TEST(TextEncoding, UnboundedFormatWritesTheResultAndNothingBehindIt)
{
    const SIZE_T cbPage = 4096;
    const wchar_t szExpected[] = L"abc-42-FF";
    // The result ends exactly where the accessible memory ends.
    char* pPages = static_cast<char*>(VirtualAlloc(nullptr, 2 * cbPage, MEM_RESERVE, PAGE_NOACCESS));
    ASSERT_NE(nullptr, VirtualAlloc(pPages, cbPage, MEM_COMMIT, PAGE_READWRITE));
    wchar_t* pszBuffer = reinterpret_cast<wchar_t*>(pPages + cbPage - sizeof(szExpected));
    EXPECT_EQ(9, FormatUnbounded(pszBuffer, L"%s-%d-%X", L"abc", 42, 0xFF));
    EXPECT_STREQ(szExpected, pszBuffer);
    VirtualFree(pPages, 0, MEM_RELEASE);
}

TEST(TextEncoding, ConversionsUseTheAnsiCodePageAndStoreTwoCharactersMore)
{
    CCallHook codePage("KERNEL32.dll", "GetACP", &GetACP);
    codePage.Replace([] { return 1251u; });
    const struct
    {
        std::string narrow;
        std::wstring wide;
    } bothWays[] = { { "", L"" }, { "Setup 8", L"Setup 8" }, { "\xE4\x80\xC9", L"\x0434\x0402\x0419" } };
    for (const auto& c : bothWays)
    {
        const CString strWide = AnsiToString(c.narrow.c_str());
        EXPECT_EQ(c.wide + std::wstring(2, 0), std::wstring(strWide, strWide.GetLength()));
        const CStringA strNarrow = StringToAnsi(c.wide.c_str());
        EXPECT_EQ(c.narrow + std::string(2, 0), std::string(strNarrow, strNarrow.GetLength()));
    }
    EXPECT_STREQ("\xC9", StringToAnsi(L"\x0418\x0306")) << "a letter and its mark apart";
    EXPECT_STREQ("?", StringToAnsi(L"\x4E00"));
}

TEST(TextEncoding, EncodersKeepTheirAlphabetsAndEscapeTheRest)
{
    const wchar_t kKept[] = L"azAZ09bcdefghijklmnopqrstuvwxyBCDEFGHIJKLMNOPQRSTUVWXY12345678$-_@.+!'*\"(),;/#?:";
    const struct
    {
        const wchar_t* pszText;
        const wchar_t* pszPost;
        const wchar_t* pszQuery;
    } cases[] = {
        { L"", L"", L"" },
        { kKept, kKept, kKept },
        { L"a b", L"a+b", L"a b" },
        { L"a&b", L"a&b", L"a(AND)b" },
        { L"%<=>[]^`{|}~\\", L"%25%3C%3D%3E%5B%5D%5E%60%7B%7C%7D%7E%5C", L"%25%3C%3D%3E%5B%5D%5E%60%7B%7C%7D%7E%5C" },
        { L"\x01\t\r\x1F\x7F\xE9\xFF", L"%01%09%0D%1F%7F%E9%FF", L"%01%09%0D%1F%7F%E9%FF" },
        { L"\x100\x161\x4E00\xFF41\xD83D\xDE00", L"%100%161%4E00%FF41%D83D%DE00", L"%100%161%4E00%FF41%D83D%DE00" },
    };
    for (const auto& c : cases)
    {
        EXPECT_STREQ(c.pszPost, EncodeForPost(c.pszText));
        EXPECT_STREQ(c.pszQuery, EncodeForQuery(c.pszText));
    }
}

// FormatMessageW, with its list of arguments as the plain pointer that it is on this platform.
using MessageFunction = DWORD (*)(DWORD, const void*, DWORD, DWORD, wchar_t*, DWORD, char**);

TEST(TextEncoding, ErrorTextsComeFromTheSystemAndForTwoRangesFromALibraryOfTheirOwn)
{
    CCallHook release("KERNEL32.dll", "LocalFree", &LocalFree);
    EXPECT_STREQ(L"File not found.\r\n", GetErrorText(2));
    EXPECT_STREQ(L"\r\n", GetErrorText(12007).Right(2));
    EXPECT_TRUE(GetErrorText(12180).IsEmpty());
    EXPECT_EQ(2, release.Calls());
    const std::pair<int, std::vector<std::wstring>> cases[] = {
        { 2099, {} },        { 2100, { L"netmsg.dll" } },   { 2999, { L"netmsg.dll" } },   { 3000, {} },
        { 11999, {} },       { 12000, { L"wininet.dll" } }, { 12190, { L"wininet.dll" } }, { 12191, {} },
        { -2147012889, {} },
    };
    for (const HMODULE hLoaded : { GetModuleHandleW(nullptr), HMODULE(nullptr) })
    {
        for (const auto& [nError, source] : cases)
        {
            SCOPED_TRACE(nError);
            const int nWanted = nError;
            const HMODULE hSource = source.empty() ? nullptr : hLoaded;
            CCallHook load("KERNEL32.dll", "LoadLibraryExW", &LoadLibraryExW);
            load.Replace([&](const wchar_t*, HANDLE, DWORD nFlags) { return nFlags == 2 ? hLoaded : nullptr; });
            CCallHook message("KERNEL32.dll", "FormatMessageW", static_cast<MessageFunction>(nullptr));
            message.Replace(
                [&](DWORD nFlags, const void* pSource, DWORD nId, DWORD nLanguage, wchar_t*, DWORD, char**) -> DWORD
                {
                    EXPECT_EQ(hSource != nullptr ? 0x1B00u : 0x1300u, nFlags);
                    EXPECT_TRUE(hSource == pSource && static_cast<int>(nId) == nWanted && nLanguage == 1024);
                    return 0;
                });
            CCallHook free("KERNEL32.dll", "FreeLibrary", &FreeLibrary);
            free.Replace(
                [&](HMODULE hModule)
                {
                    EXPECT_TRUE(hModule == hSource && message.Calls() == 1) << "freed before it was asked";
                    return TRUE;
                });
            EXPECT_TRUE(GetErrorText(nError).IsEmpty());
            EXPECT_EQ(source, load.Texts());
            EXPECT_EQ(hSource != nullptr, free.Calls() == 1);
        }
    }
}
