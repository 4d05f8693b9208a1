// The framework's strings, arrays, locks, run-time classes and application: what is documented of them and used here.
#include <gtest/gtest.h>
#include <afxwin.h>
#include <afxmt.h>

#include <functional>
#include <string>
#include <thread>

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

TEST(FrameworkString, ComparesByCharacterAndWithoutCase)
{
    const CString str(L"Abc");
    EXPECT_TRUE(str == L"Abc" && L"Abc" == str && str == CString(L"Abc"));
    EXPECT_TRUE(str != L"abc" && L"abc" != str && str != CString(L"abc"));
    EXPECT_TRUE(str < L"abc" && L"Abb" < str && str < CString(L"Abd"));
    EXPECT_EQ(0, str.CompareNoCase(L"aBC"));
    EXPECT_GT(str.CompareNoCase(L"abb"), 0);
}

TEST(FrameworkString, FindsCharactersAndTexts)
{
    const CString str(L"abcabc");
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
    const struct
    {
        const wchar_t *pszText, *pszOld, *pszNew, *pszExpected;
        int nCount;
    } cases[] = {
        { L"aXbX", L"X", L"long", L"alongblong", 2 },
        { L"aXXbXX", L"XX", L"", L"ab", 2 },
        { L"aaa", L"a", L"aa", L"aaaaaa", 3 },
        { L"aaa", L"aa", L"b", L"ba", 1 },
        { L"abc", L"", L"x", L"abc", 0 },
    };
    for (const auto& c : cases)
    {
        CString strText(c.pszText);
        EXPECT_EQ(c.nCount, strText.Replace(c.pszOld, c.pszNew));
        EXPECT_EQ(c.pszExpected, Stored(strText));
    }
}

TEST(FrameworkString, FormatsAndLoadsTextOfItsOwnType)
{
    CString str;
    str.Format(L"%s %d.%02d|%c", L"wide", 8, 5, L'z');
    EXPECT_EQ(L"wide 8.05|z", Stored(str));
    str.Format(L"%s", CString(L'n', 3000).GetString());
    EXPECT_EQ(3000, str.GetLength());
    EXPECT_TRUE(str.LoadString(1));
    EXPECT_FALSE(str.LoadString(64000));
    EXPECT_EQ(L"Lumacap 8", Stored(str));
    CStringA strNarrow;
    strNarrow.Format("%s=%u", "NARROW", 7u);
    EXPECT_STREQ("narrow=7", strNarrow.MakeLower());
    EXPECT_TRUE(strNarrow.LoadString(1));
    EXPECT_STREQ("Lumacap 8", strNarrow);
}

TEST(FrameworkString, BufferLengthCountsFromRelease)
{
    CString str(L"abc");
    wcscat(str.GetBuffer(100), L", much longer than before");
    str.ReleaseBuffer();
    EXPECT_EQ(28, str.GetLength());
    str.GetBufferSetLength(4)[1] = 0;
    EXPECT_EQ(std::wstring(L"a\0c,", 4), Stored(str));
    str.ReleaseBuffer(3);
    EXPECT_EQ(3, str.GetLength());
    str.ReleaseBuffer();
    EXPECT_EQ(L"a", Stored(str));
}

TEST(FrameworkArray, GrowsAndShrinksWithEmptyElementsAndHoldsCopies)
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
    CStringArray texts;
    CString str(L"one");
    texts.Add(str);
    str = L"two";
    texts.Add(str);
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

namespace
{
const wchar_t kMutexName[] = L"Local\\FrameworkLockTest";

// Whether a thread of its own can have the named mutex, through a handle of its own.
bool IsFree()
{
    DWORD nResult = WAIT_FAILED;
    std::thread(
        [&]
        {
            HANDLE hMutex = OpenMutexW(SYNCHRONIZE, FALSE, kMutexName);
            nResult = WaitForSingleObject(hMutex, 0);
            if (nResult == WAIT_OBJECT_0)
                ReleaseMutex(hMutex);
            CloseHandle(hMutex);
        })
        .join();
    return nResult == WAIT_OBJECT_0;
}
} // namespace

TEST(FrameworkLock, GuardHoldsTheMutexForItsLifetimeOrUntilUnlocked)
{
    CMutex mutex(FALSE, kMutexName);
    EXPECT_TRUE(IsFree());
    EXPECT_TRUE(ThrowsInvalidArgument(
        [&]
        {
            CSingleLock lock(&mutex, TRUE);
            EXPECT_TRUE(lock.IsLocked());
            EXPECT_FALSE(IsFree());
            CDWordArray().GetAt(0);
        }));
    EXPECT_TRUE(IsFree());
    CSingleLock lock(&mutex);
    EXPECT_FALSE(lock.IsLocked());
    EXPECT_TRUE(lock.Lock());
    EXPECT_FALSE(IsFree());
    EXPECT_TRUE(lock.Unlock());
    EXPECT_FALSE(lock.IsLocked());
    EXPECT_TRUE(IsFree());
}

TEST(FrameworkLock, InitialOwnerMustUnlockAndTheMutexOfADeadOwnerCanBeHad)
{
    CMutex mutex(TRUE, kMutexName);
    EXPECT_FALSE(IsFree());
    EXPECT_TRUE(mutex.Unlock());
    EXPECT_TRUE(IsFree());
    EXPECT_FALSE(mutex.Unlock());
    std::thread([&] { WaitForSingleObject(mutex.m_hObject, INFINITE); }).join();
    CSingleLock lock(&mutex);
    EXPECT_TRUE(lock.Lock(1000));
}

TEST(FrameworkClass, KnowsItsNameAndBases)
{
    const CDWordArray numbers;
    EXPECT_STREQ("CDWordArray", numbers.GetRuntimeClass()->m_lpszClassName);
    EXPECT_TRUE(numbers.IsKindOf(RUNTIME_CLASS(CDWordArray)));
    EXPECT_TRUE(numbers.IsKindOf(RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(numbers.IsKindOf(RUNTIME_CLASS(CStringArray)));
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

int RunApplication()
{
    static wchar_t szCommandLine[] = L"-x";
    return AfxWinMain(GetModuleHandleW(nullptr), nullptr, szCommandLine, SW_SHOW);
}
} // namespace

TEST(FrameworkApplication, ResultOfInitInstanceDecidesWhetherItRunsAndTheQuitMessageGivesTheExitCode)
{
    for (const BOOL bInitialized : { FALSE, TRUE })
    {
        CTestApp app(nullptr, bInitialized);
        EXPECT_EQ(0, RunApplication());
        EXPECT_STREQ(bInitialized ? L"init run exit " : L"init exit ", app.m_strCalls);
    }
    CTestApp app;
    PostQuitMessage(5);
    CWnd window;
    app.m_pMainWnd = &window; // without one Run posts a quit message of its own
    EXPECT_EQ(5, app.Run());
}

TEST(FrameworkApplication, StartFillsInHandlesAndMissingNames)
{
    CTestApp app;
    EXPECT_EQ(nullptr, app.m_pszAppName);
    RunApplication();
    EXPECT_EQ(GetModuleHandleW(nullptr), app.m_hInstance);
    EXPECT_STREQ(L"-x", app.m_lpCmdLine);
    EXPECT_EQ(SW_SHOW, app.m_nCmdShow);
    EXPECT_STREQ(L"setup_tests", app.m_pszExeName);
    EXPECT_STREQ(app.m_pszExeName, app.m_pszAppName);
    CTestApp named(L"Given");
    RunApplication();
    EXPECT_STREQ(L"Given", named.m_pszAppName);
}

TEST(FrameworkApplication, BoxCarriesTheNameAndAnIconAndBelongsToTheMainWindow)
{
    CTestApp app(L"Given");
    CBoxRecorder recorder({ IDYES });
    const UINT cases[][2] = {
        { MB_OK, MB_OK | MB_ICONEXCLAMATION },
        { MB_YESNO, MB_YESNO | MB_ICONEXCLAMATION },
        { MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2 },
        { MB_RETRYCANCEL, MB_RETRYCANCEL },
    };
    for (const auto& c : cases)
    {
        EXPECT_EQ(IDYES, AfxMessageBox(L"text", c[0]));
        EXPECT_EQ(c[1], recorder.Boxes().back().nStyle);
    }
    EXPECT_EQ(nullptr, recorder.Boxes().back().hOwner);

    CTestWindow main;
    CWnd window;
    window.Attach(main);
    app.m_pMainWnd = &window;
    AfxMessageBox(1);
    const RECORDED_BOX& box = recorder.Boxes().back();
    EXPECT_EQ(L"Lumacap 8", box.strText);
    EXPECT_EQ(L"Given", box.strCaption);
    EXPECT_EQ(main, box.hOwner);
    window.Detach();
}
