// Code page conversions, the two encoders and the lookup of error texts. The platform calls are looked at where their
// arguments are the contract: flags, code page, message source.
#include <gtest/gtest.h>

#include <string>
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

TEST(TextEncoding, NarrowTextBecomesWideAndIsStoredTwoCharactersLonger)
{
    const struct
    {
        const char* pszNarrow;
        std::wstring stored;
    } cases[] = {
        { "", std::wstring(L"\0\0", 2) },
        { "Setup 8", std::wstring(L"Setup 8\0\0", 9) },
        { "\xE4\x80", std::wstring(L"\x0434\x0402\0\0", 4) },
    };
    CCallHook codePage("KERNEL32.dll", "GetACP", &GetACP);
    codePage.Replace([] { return 1251u; });
    for (const auto& c : cases)
    {
        const CString strWide = AnsiToString(c.pszNarrow);
        EXPECT_EQ(c.stored, std::wstring(strWide, strWide.GetLength()));
    }
}

TEST(TextEncoding, WideTextBecomesNarrowAndIsStoredTwoCharactersLonger)
{
    const struct
    {
        const wchar_t* pszWide;
        std::string stored;
    } cases[] = {
        { L"", std::string("\0\0", 2) },
        { L"Setup 8", std::string("Setup 8\0\0", 9) },
        { L"\x0434\x0402", std::string("\xE4\x80\0\0", 4) },
        { L"\x0418\x0306", std::string("\xC9\0\0", 3) },
        { L"\x4E00", std::string("?\0\0", 3) },
    };
    CCallHook codePage("KERNEL32.dll", "GetACP", &GetACP);
    codePage.Replace([] { return 1251u; });
    for (const auto& c : cases)
    {
        const CStringA strNarrow = StringToAnsi(c.pszWide);
        EXPECT_EQ(c.stored, std::string(strNarrow, strNarrow.GetLength()));
    }
}

TEST(TextEncoding, ConversionsAskForTheAnsiCodePageAndComposedCharacters)
{
    CCallHook toWide("KERNEL32.dll", "MultiByteToWideChar", &MultiByteToWideChar);
    toWide.Replace(
        [&](UINT nCodePage, DWORD nFlags, const char* psz, int cb, wchar_t* pszWide, int cch)
        {
            EXPECT_EQ(GetACP(), nCodePage);
            EXPECT_EQ(1u, nFlags);
            EXPECT_EQ(-1, cb);
            return toWide.Original()(nCodePage, nFlags, psz, cb, pszWide, cch);
        });
    AnsiToString("a");
    EXPECT_EQ(2, toWide.Calls());

    CCallHook toNarrow("KERNEL32.dll", "WideCharToMultiByte", &WideCharToMultiByte);
    toNarrow.Replace(
        [&](UINT nCodePage, DWORD nFlags, const wchar_t* psz, int cch, char* pszNarrow, int cb, const char* pszDefault,
            BOOL* pbUsed)
        {
            EXPECT_EQ(GetACP(), nCodePage);
            EXPECT_EQ(512u, nFlags);
            EXPECT_EQ(-1, cch);
            EXPECT_EQ(nullptr, pszDefault);
            return toNarrow.Original()(nCodePage, nFlags, psz, cch, pszNarrow, cb, pszDefault, pbUsed);
        });
    StringToAnsi(L"a");
    EXPECT_EQ(2, toNarrow.Calls());
}

TEST(TextEncoding, EncodersKeepTheirAlphabetsAndEscapeTheRest)
{
    const struct
    {
        const wchar_t* pszText;
        const wchar_t* pszPost;
        const wchar_t* pszQuery;
    } cases[] = {
        { L"", L"", L"" },
        { L"abcdefghijklmnopqrstuvwxyz", L"abcdefghijklmnopqrstuvwxyz", L"abcdefghijklmnopqrstuvwxyz" },
        { L"ABCDEFGHIJKLMNOPQRSTUVWXYZ", L"ABCDEFGHIJKLMNOPQRSTUVWXYZ", L"ABCDEFGHIJKLMNOPQRSTUVWXYZ" },
        { L"0123456789", L"0123456789", L"0123456789" },
        { L"$-_@.+!'*\"(),;/#?:", L"$-_@.+!'*\"(),;/#?:", L"$-_@.+!'*\"(),;/#?:" },
        { L"a b", L"a+b", L"a b" },
        { L"a&b", L"a&b", L"a(AND)b" },
        { L"%<=>", L"%25%3C%3D%3E", L"%25%3C%3D%3E" },
        { L"[\\]^`{|}~", L"%5B%5C%5D%5E%60%7B%7C%7D%7E", L"%5B%5C%5D%5E%60%7B%7C%7D%7E" },
        { L"\x01\t\r\n\x1F\x7F", L"%01%09%0D%0A%1F%7F", L"%01%09%0D%0A%1F%7F" },
        { L"\x80\xE9\xFF", L"%80%E9%FF", L"%80%E9%FF" },
        { L"\x100\x161\x4E00\xFF41\xD83D\xDE00", L"%100%161%4E00%FF41%D83D%DE00", L"%100%161%4E00%FF41%D83D%DE00" },
    };
    for (const auto& c : cases)
    {
        EXPECT_STREQ(c.pszPost, EncodeForPost(c.pszText));
        EXPECT_STREQ(c.pszQuery, EncodeForQuery(c.pszText));
    }
}

namespace
{

// FormatMessageW, with its list of arguments as the plain pointer that it is on this platform.
using MessageFunction = DWORD (*)(DWORD, const void*, DWORD, DWORD, wchar_t*, DWORD, char**);

// Watches what a lookup does with the platform. Any module that is always there stands for a code's own source.
class TextEncodingErrors : public testing::Test
{
protected:
    void SetUp() override
    {
        m_load.Replace([this](const wchar_t*, HANDLE, DWORD nFlags) { return LoadSource(nFlags); });
        m_free.Replace(
            [this](HMODULE hModule)
            {
                EXPECT_EQ(m_hSource, hModule);
                return m_free.Original()(hModule);
            });
        m_message.Replace(
            [this](DWORD nFlags, const void* pSource, DWORD nId, DWORD nLanguage, wchar_t* pszBuffer, DWORD cch,
                   char** pArguments)
            {
                EXPECT_EQ(m_hSource != nullptr ? 0x1B00u : 0x1300u, nFlags);
                EXPECT_EQ(m_hSource, pSource);
                EXPECT_EQ(m_nExpectedId, nId);
                EXPECT_EQ(1024u, nLanguage);
                const DWORD cchText = m_message.Original()(nFlags, pSource, nId, nLanguage, pszBuffer, cch, pArguments);
                m_pszAllocated = cchText != 0 ? *reinterpret_cast<wchar_t**>(pszBuffer) : nullptr;
                return cchText;
            });
        m_release.Replace(
            [this](HLOCAL hBlock)
            {
                EXPECT_EQ(m_pszAllocated, hBlock);
                return m_release.Original()(hBlock);
            });
    }

    HMODULE LoadSource(DWORD nFlags)
    {
        EXPECT_EQ(2u, nFlags);
        if (!m_bSourceMissing)
            m_hSource = m_load.Original()(L"kernel32.dll", nullptr, LOAD_LIBRARY_AS_DATAFILE);
        return m_hSource;
    }

    CString LookUp(int nError)
    {
        m_hSource = nullptr;
        m_nExpectedId = static_cast<DWORD>(nError);
        return GetErrorText(nError);
    }

    CCallHook<decltype(&LoadLibraryExW)> m_load{ "KERNEL32.dll", "LoadLibraryExW", &LoadLibraryExW };
    CCallHook<decltype(&FreeLibrary)> m_free{ "KERNEL32.dll", "FreeLibrary", &FreeLibrary };
    CCallHook<MessageFunction> m_message{ "KERNEL32.dll", "FormatMessageW", &FormatMessageW };
    CCallHook<decltype(&LocalFree)> m_release{ "KERNEL32.dll", "LocalFree", &LocalFree };
    bool m_bSourceMissing = false;
    HMODULE m_hSource = nullptr;
    DWORD m_nExpectedId = 0;
    wchar_t* m_pszAllocated = nullptr;
};

} // namespace

TEST(TextEncoding, ErrorTextsComeFromTheSystemOrTheCodesOwnLibraryWithTheirLineEnd)
{
    const DWORD nFlags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_IGNORE_INSERTS;
    HMODULE hInternet = LoadLibraryExW(L"wininet.dll", nullptr, LOAD_LIBRARY_AS_DATAFILE);
    const int cases[] = { ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, static_cast<int>(0x80004005), 12007 };
    for (const int nError : cases)
    {
        wchar_t szExpected[512] = L"";
        ASSERT_NE(0u, FormatMessageW(nFlags, hInternet, nError, 0, szExpected, 512, nullptr)) << nError;
        const CString strText = GetErrorText(nError);
        EXPECT_STREQ(szExpected, strText);
        EXPECT_STREQ(L"\r\n", strText.Right(2));
    }
    FreeLibrary(hInternet);
}

TEST_F(TextEncodingErrors, OnlyTwoRangesOfCodesHaveASourceOfTheirOwnWhichIsFreed)
{
    const struct
    {
        int nError;
        const wchar_t* pszSource;
    } cases[] = {
        { 2099, nullptr },         { 2100, L"netmsg.dll" },
        { 2999, L"netmsg.dll" },   { 3000, nullptr },
        { 11999, nullptr },        { 12000, L"wininet.dll" },
        { 12190, L"wininet.dll" }, { 12191, nullptr },
        { -2147012889, nullptr },  { 0, nullptr },
    };
    std::vector<std::wstring> expected;
    for (const auto& c : cases)
    {
        if (c.pszSource != nullptr)
            expected.push_back(c.pszSource);
        LookUp(c.nError);
        EXPECT_EQ(expected, m_load.Texts()) << c.nError;
        EXPECT_EQ(m_load.Calls(), m_free.Calls()) << c.nError;
    }
    EXPECT_EQ(static_cast<int>(_countof(cases)), m_message.Calls());
}

TEST_F(TextEncodingErrors, MissingSourceLeavesTheSystemsTable)
{
    m_bSourceMissing = true;
    LookUp(2185);
    EXPECT_EQ(1, m_load.Calls());
    EXPECT_EQ(1, m_message.Calls());
    EXPECT_EQ(0, m_free.Calls());
}

TEST_F(TextEncodingErrors, TheSystemsBufferIsReleasedOnceAndACodeWithoutATextHasNone)
{
    EXPECT_FALSE(LookUp(ERROR_FILE_NOT_FOUND).IsEmpty());
    EXPECT_NE(nullptr, m_pszAllocated);
    EXPECT_EQ(1, m_release.Calls());
    for (const int nWithoutText : { 7777777, 12180 })
    {
        EXPECT_TRUE(LookUp(nWithoutText).IsEmpty()) << nWithoutText;
        EXPECT_EQ(1, m_release.Calls());
    }
    EXPECT_EQ(1, m_free.Calls()) << "the source of the last code";
}
