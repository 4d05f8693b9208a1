// The framework's strings, arrays, locks, run-time classes and application: what is documented of them and used here.
#include <gtest/gtest.h>
#include <afxwin.h>
#include <afxmt.h>

#include <functional>
#include <string>
#include <thread>
#include <tuple>

#include "tests/support/BoxDriver.h"
#include "tests/support/TestWindow.h"

namespace
{
// The whole stored text, zeros and all.
std::wstring Stored(const CString& str)
{
    return std::wstring(str.GetString(), str.GetLength());
}

// Several texts in one, each in brackets.
template <typename... Texts>
std::wstring All(const Texts&... texts)
{
    return (... + (L'<' + Stored(texts) + L'>'));
}

template <typename Action>
bool ThrowsInvalidArgument(Action action)
{
    try
    {
        action();
    }
    catch (CInvalidArgException* e)
    {
        e->Delete();
        return true;
    }
    return false;
}

} // namespace

TEST(FrameworkString, CopiesAreItsOwnAndPartsOfItselfMayBePutIn)
{
    EXPECT_EQ(std::wstring(L"<><a\0b><--->", 12),
              All(CString(static_cast<const wchar_t*>(nullptr)), CString(L"a\0bc", 3), CString(L'-', 3)));
    CString str(L"first");
    const CString strCopy(str);
    CString strAssigned;
    strAssigned = str;
    str.SetAt(0, L'F');
    str += L"!";
    EXPECT_EQ(L"<First!><first><first>", All(str, strCopy, strAssigned));
    str = str.GetString() + 2;
    str += str;
    EXPECT_EQ(L"rst!rst!", Stored(str));
    str.Format(L"<%s>", str.GetString());
    EXPECT_EQ(L"a<rst!rst!>first'", Stored(L'a' + (L"" + str + strCopy + L"'")));
}

TEST(FrameworkString, ComparesByCharacterOrWithoutCaseAndFindsCharactersAndTexts)
{
    const CString str(L"abcabc");
    EXPECT_TRUE(str == L"abcabc" && str != CString(L"aBcabc") && L"abcabb" < str && str < CString(L"b"));
    EXPECT_EQ(0, str.CompareNoCase(L"ABCabC"));
    EXPECT_GT(str.CompareNoCase(L"aBcabB"), 0);
    const int cases[][2] = {
        { str.Find(L'b', 2), 4 },      { str.Find(L'x'), -1 },       { str.Find(L'a', 6), -1 },
        { str.Find(L"bc", 2), 4 },     { str.Find(L"cb"), -1 },      { str.Find(L"a", 7), -1 },
        { str.Find(L"a", -1), -1 },    { str.Find(L"", 6), 6 },      { str.ReverseFind(L'a'), 3 },
        { str.ReverseFind(L'x'), -1 }, { str.FindOneOf(L"xcb"), 1 }, { str.FindOneOf(L"xy"), -1 },
    };
    for (const auto& c : cases)
        EXPECT_EQ(c[1], c[0]) << "case " << &c - cases;
}

TEST(FrameworkString, CutsTrimsAndChangesCase)
{
    const CString str(L"abcd");
    EXPECT_EQ(L"<ab><abcd><>", All(str.Left(2), str.Left(9), str.Left(-1)));
    EXPECT_EQ(L"<d><abcd><>", All(str.Right(1), str.Right(9), str.Right(-1)));
    EXPECT_EQ(L"<bcd><><bc>", All(str.Mid(1), str.Mid(4), str.Mid(1, 2)));
    EXPECT_EQ(L"<cd><ab>", All(str.Mid(2, 9), str.Mid(-1, 2)));
    const wchar_t kPadded[] = L" \t\nx y\x3000 ";
    EXPECT_EQ(L"<x y><x y\x3000 >< \t\nx y><>", All(CString(kPadded).Trim(), CString(kPadded).TrimLeft(),
                                                    CString(kPadded).TrimRight(), CString(L" \t").Trim()));
    EXPECT_EQ(L"<a/b><a/b/><//a/b>", All(CString(L"//a/b/").Trim(L'/'), CString(L"//a/b/").TrimLeft(L'/'),
                                         CString(L"//a/b/").TrimRight(L'/')));
    EXPECT_EQ(L"<a><set.exe 1><SET.EXE 1>", All(CString(L"\"(a)").Trim(L"\"()"), CString(L"SeT.EXE 1").MakeLower(),
                                                CString(L"SeT.exe 1").MakeUpper()));
}

TEST(FrameworkString, DeletesAndReplaces)
{
    CString str(L"abcdef");
    EXPECT_EQ(4, str.Delete(1, 2));
    EXPECT_EQ(2, str.Delete(2, 99));
    EXPECT_EQ(2, str.Delete(2));
    EXPECT_EQ(1, str.Replace(L'd', L'D'));
    EXPECT_EQ(L"aD", Stored(str));
    const std::tuple<const wchar_t*, const wchar_t*, const wchar_t*, const wchar_t*, int> cases[] = {
        { L"aXXbXX", L"XX", L"long", L"alongblong", 2 },
        { L"aaa", L"a", L"aa", L"aaaaaa", 3 },
        { L"aaa", L"aa", L"b", L"ba", 1 },
        { L"abc", L"", L"x", L"abc", 0 },
    };
    for (const auto& [pszText, pszOld, pszNew, pszExpected, nCount] : cases)
    {
        str = pszText;
        EXPECT_EQ(nCount, str.Replace(pszOld, pszNew));
        EXPECT_EQ(pszExpected, Stored(str));
    }
}

TEST(FrameworkString, FormatsAndLoadsTextOfItsOwnTypeAndCountsABufferFromItsRelease)
{
    CString str;
    str.Format(L"%s %d.%02d|%c%s", L"wide", 8, 5, L'z', CString(L'n', 3000).GetString());
    EXPECT_EQ(L"wide 8.05|z" + std::wstring(3000, L'n'), Stored(str));
    CStringA strNarrow;
    strNarrow.Format("%s=%u", "NARROW", 7u);
    EXPECT_STREQ("narrow=7", strNarrow.MakeLower());
    EXPECT_TRUE(strNarrow.LoadString(1) && str.LoadString(1) && !CString().LoadString(64000));
    EXPECT_STREQ("Lumacap 8", strNarrow);
    EXPECT_EQ(L"Lumacap 8", Stored(str));

    wcscat(str.GetBuffer(100), L", much longer than before");
    str.ReleaseBuffer();
    EXPECT_EQ(34, str.GetLength());
    str.GetBufferSetLength(4)[1] = 0;
    EXPECT_EQ(std::wstring(L"L\0ma", 4), Stored(str));
    str.ReleaseBuffer(3);
    EXPECT_EQ(3, str.GetLength());
    str.ReleaseBuffer();
    EXPECT_EQ(L"L", Stored(str));
}

TEST(FrameworkArray, GrowsAndShrinksWithEmptyElementsHoldsCopiesAndKnowsItsClass)
{
    CDWordArray numbers;
    EXPECT_EQ(0, numbers.Add(5));
    EXPECT_EQ(1, numbers.Add(6));
    numbers.SetSize(4);
    const DWORD expected[] = { 5, 6, 0, 0 };
    EXPECT_EQ(0, memcmp(expected, numbers.GetData(), sizeof(expected)));
    numbers.SetSize(1);
    numbers.SetSize(2);
    EXPECT_EQ(0u, numbers.GetAt(1));
    EXPECT_STREQ("CDWordArray", numbers.GetRuntimeClass()->m_lpszClassName);
    EXPECT_TRUE(numbers.IsKindOf(RUNTIME_CLASS(CObject)) && !numbers.IsKindOf(RUNTIME_CLASS(CStringArray)));
    CStringArray texts;
    texts.Add(L"one");
    texts.Add(L"two");
    for (int i = 0; i < 100; ++i)
        texts.Add(texts[1]);
    texts.ElementAt(1) += L"!";
    EXPECT_EQ(L"<one><two!><two>", All(texts.GetAt(0), texts.GetData()[1], texts[101]));
}

TEST(FrameworkIndex, OutOfRangeThrows)
{
    CString str(L"ab");
    EXPECT_EQ(L'\0', str[2]);
    CDWordArray numbers;
    numbers.SetSize(2);
    const std::function<void()> cases[] = {
        [&] { str.GetAt(3); },
        [&] { str.GetAt(-1); },
        [&] { str.SetAt(2, L'x'); },
        [&] { numbers[2] = 1; },
        [&] { numbers.SetAt(-1, 1); },
        [&] { numbers.SetSize(-1); },
        [&] { CStringArray().GetAt(0); },
        [&] { str.ReleaseBuffer(10000); },
        [] { CSingleLock lock(nullptr); },
    };
    for (const auto& access : cases)
        EXPECT_TRUE(ThrowsInvalidArgument(access)) << "case " << &access - cases;
}

// Whether a thread of its own can have the mutex.
static bool IsFree(const CMutex& mutex)
{
    bool bFree = false;
    std::thread([&] { bFree = WaitForSingleObject(mutex.m_hObject, 0) == 0 && ReleaseMutex(mutex.m_hObject); }).join();
    return bFree;
}

TEST(FrameworkLock, GuardHoldsTheMutexForItsLifetimeOrUntilUnlockedAlsoAfterADeadOwner)
{
    CMutex mutex(TRUE);
    EXPECT_FALSE(IsFree(mutex));
    EXPECT_TRUE(mutex.Unlock() && IsFree(mutex) && !mutex.Unlock());
    EXPECT_TRUE(ThrowsInvalidArgument(
        [&]
        {
            CSingleLock lock(&mutex, TRUE);
            EXPECT_TRUE(lock.IsLocked() && !IsFree(mutex));
            CDWordArray().GetAt(0);
        }));
    EXPECT_TRUE(IsFree(mutex));
    CSingleLock lock(&mutex);
    EXPECT_FALSE(lock.IsLocked());
    EXPECT_TRUE(lock.Lock() && !IsFree(mutex));
    EXPECT_TRUE(lock.Unlock() && !lock.IsLocked() && IsFree(mutex));
    std::thread([&] { WaitForSingleObject(mutex.m_hObject, INFINITE); }).join();
    EXPECT_TRUE(lock.Lock(1000));
}

namespace
{
// An application object beside the program's own, which takes its place again afterwards.
class CTestApp : public CWinApp
{
public:
    explicit CTestApp(LPCTSTR pszName = nullptr, BOOL bInitialized = TRUE)
        : CTestApp(AfxGetApp(), pszName, bInitialized)
    {
    }
    ~CTestApp() override { AfxGetModuleState()->m_pCurrentWinApp = m_pBefore; }

    BOOL InitInstance() override { return m_strCalls += L"init ", m_bInitialized; }
    int Run() override { return m_strCalls += L"run ", CWinApp::Run(); }
    int ExitInstance() override { return m_strCalls += L"exit ", CWinApp::ExitInstance(); }

    CString m_strCalls;

private:
    CTestApp(CWinApp* pBefore, LPCTSTR pszName, BOOL bInitialized)
        : CWinApp(pszName), m_pBefore(pBefore), m_bInitialized(bInitialized)
    {
    }

    CWinApp* m_pBefore;
    BOOL m_bInitialized;
};
} // namespace

TEST(FrameworkApplication, StartFillsInHandlesAndNamesAndResultsDecideWhatRunsAndTheExitCode)
{
    for (const BOOL bInitialized : { FALSE, TRUE })
    {
        static wchar_t szCommandLine[] = L"-x";
        CTestApp app(bInitialized ? L"Given" : nullptr, bInitialized);
        EXPECT_EQ(0, AfxWinMain(GetModuleHandleW(nullptr), nullptr, szCommandLine, SW_SHOW));
        EXPECT_STREQ(bInitialized ? L"init run exit " : L"init exit ", app.m_strCalls);
        EXPECT_STREQ(bInitialized ? L"Given" : L"setup_tests", app.m_pszAppName);
        EXPECT_STREQ(L"setup_tests", app.m_pszExeName);
        EXPECT_STREQ(L"-x", app.m_lpCmdLine);
        EXPECT_TRUE(app.m_hInstance == GetModuleHandleW(nullptr) && app.m_nCmdShow == SW_SHOW);
    }
    CTestApp app;
    PostQuitMessage(5);
    CWnd window;
    app.m_pMainWnd = &window; // without one Run posts a quit message of its own
    EXPECT_EQ(5, app.Run());
}

TEST(FrameworkApplication, BoxCarriesTheNameAndAnIconAndBelongsToTheMainWindow)
{
    CTestApp app(L"Given");
    CBoxRecorder recorder({ IDYES });
    for (const UINT nStyle : { MB_OK, MB_YESNO, MB_YESNO | MB_ICONQUESTION, MB_RETRYCANCEL })
        EXPECT_EQ(IDYES, AfxMessageBox(L"text", nStyle));
    CTestWindow main;
    CWnd window;
    window.Attach(main);
    app.m_pMainWnd = &window;
    AfxMessageBox(1);
    window.Detach();
    const UINT expected[] = { MB_OK | MB_ICONEXCLAMATION, MB_YESNO | MB_ICONEXCLAMATION, MB_YESNO | MB_ICONQUESTION,
                              MB_RETRYCANCEL, MB_OK | MB_ICONEXCLAMATION };
    for (int i = 0; i < 5; i++)
    {
        const RECORDED_BOX& box = recorder.Boxes().at(i);
        EXPECT_EQ(box.nStyle, expected[i]);
        EXPECT_EQ(box.strText + box.strCaption, i == 4 ? L"Lumacap 8Given" : L"textGiven");
        EXPECT_EQ(box.hOwner, i == 4 ? static_cast<HWND>(main) : nullptr);
    }
}
