// The framework's strings, arrays, locks, run-time classes and message maps: what is documented of them and used here.
#include <gtest/gtest.h>
#include <afxwin.h>
#include <afxmt.h>

#include <string>

#include "tests/support/BoxDriver.h"

namespace
{
// The whole stored text, zeros and all.
std::wstring Stored(const CString& str)
{
    return std::wstring(str.GetString(), str.GetLength());
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

class FrameworkBase : public CObject
{
    DECLARE_DYNAMIC(FrameworkBase)
};

class FrameworkDerived : public FrameworkBase
{
    DECLARE_DYNAMIC(FrameworkDerived)
};

IMPLEMENT_DYNAMIC(FrameworkBase, CObject)
IMPLEMENT_DYNAMIC(FrameworkDerived, FrameworkBase)

class FrameworkTarget : public CCmdTarget
{
public:
    afx_msg void OnFirst() { m_strCalls += L"first "; }
    afx_msg void OnSecond() { m_strCalls += L"second "; }
    CString m_strCalls;
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(FrameworkTarget, CCmdTarget)
ON_COMMAND(7, &FrameworkTarget::OnFirst)
ON_CONTROL(EN_CHANGE, 8, &FrameworkTarget::OnSecond)
END_MESSAGE_MAP()

class FrameworkDerivedTarget : public FrameworkTarget
{
public:
    afx_msg void OnThird() { m_strCalls += L"third "; }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(FrameworkDerivedTarget, FrameworkTarget)
ON_BN_CLICKED(7, &FrameworkDerivedTarget::OnThird)
END_MESSAGE_MAP()
} // namespace

TEST(FrameworkString, IsBuiltFromTextLengthAndRepetition)
{
    EXPECT_EQ(L"", Stored(CString()));
    EXPECT_EQ(L"", Stored(CString(static_cast<const wchar_t*>(nullptr))));
    EXPECT_EQ(L"abc", Stored(CString(L"abc")));
    EXPECT_EQ(L"ab", Stored(CString(L"abc", 2)));
    EXPECT_EQ(std::wstring(L"a\0b", 3), Stored(CString(L"a\0b", 3)));
    EXPECT_EQ(L"---", Stored(CString(L'-', 3)));
    EXPECT_STREQ("narrow", CStringA("narrow"));
}

TEST(FrameworkString, CopyKeepsItsTextWhenTheOriginalChanges)
{
    CString strFirst(L"first");
    CString strCopy(strFirst);
    CString strAssigned;
    strAssigned = strFirst;
    strFirst.SetAt(0, L'F');
    strFirst += L"!";
    EXPECT_EQ(L"First!", Stored(strFirst));
    EXPECT_EQ(L"first", Stored(strCopy));
    EXPECT_EQ(L"first", Stored(strAssigned));
}

TEST(FrameworkString, TakesPartsOfItsOwnText)
{
    CString str(L"abcdef");
    str = str.GetString() + 2;
    EXPECT_EQ(L"cdef", Stored(str));
    str += str;
    EXPECT_EQ(L"cdefcdef", Stored(str));
    str.Insert(1, str.GetString() + 6);
    EXPECT_EQ(L"cefdefcdef", Stored(str));
    str.Format(L"<%s>", str.GetString());
    EXPECT_EQ(L"<cefdefcdef>", Stored(str));
}

TEST(FrameworkString, JoinsTextsAndCharacters)
{
    const CString str(L"b");
    EXPECT_EQ(L"abc", Stored(L"a" + str + L"c"));
    EXPECT_EQ(L"abbc", Stored(L'a' + str + str + L'c'));
    CString strLong;
    for (int i = 0; i < 1000; ++i)
        strLong += L"xy";
    EXPECT_EQ(2000, strLong.GetLength());
    EXPECT_EQ(1999, strLong.ReverseFind(L'y'));
}

TEST(FrameworkString, ComparesByCharacterAndWithoutCase)
{
    const CString str(L"Abc");
    EXPECT_TRUE(str == L"Abc" && L"Abc" == str && str == CString(L"Abc"));
    EXPECT_TRUE(str != L"abc" && L"abc" != str && str != CString(L"abc"));
    EXPECT_TRUE(str < L"abc" && L"Abb" < str && str < CString(L"Abd"));
    EXPECT_LT(str.Compare(L"abc"), 0);
    EXPECT_EQ(0, str.CompareNoCase(L"aBC"));
    EXPECT_GT(str.CompareNoCase(L"abb"), 0);
}

TEST(FrameworkString, FindsCharactersAndTexts)
{
    const CString str(L"abcabc");
    const struct
    {
        int nFound;
        int nExpected;
    } cases[] = {
        { str.Find(L'b'), 1 },        { str.Find(L'b', 2), 4 },     { str.Find(L'x'), -1 },
        { str.Find(L'a', 6), -1 },    { str.Find(L"ca"), 2 },       { str.Find(L"bc", 2), 4 },
        { str.Find(L"cb"), -1 },      { str.Find(L"a", 7), -1 },    { str.Find(L"a", -1), -1 },
        { str.Find(L"", 6), 6 },      { str.ReverseFind(L'a'), 3 }, { str.ReverseFind(L'x'), -1 },
        { str.FindOneOf(L"xcb"), 1 }, { str.FindOneOf(L"xy"), -1 },
    };
    for (size_t i = 0; i < sizeof(cases) / sizeof(cases[0]); ++i)
        EXPECT_EQ(cases[i].nExpected, cases[i].nFound) << "case " << i;
}

TEST(FrameworkString, CutsPartsToWhatThereIs)
{
    const CString str(L"abcd");
    const struct
    {
        CString strPart;
        const wchar_t* pszExpected;
    } cases[] = {
        { str.Left(2), L"ab" }, { str.Left(9), L"abcd" },  { str.Left(0), L"" },     { str.Left(-1), L"" },
        { str.Right(1), L"d" }, { str.Right(9), L"abcd" }, { str.Right(-1), L"" },   { str.Mid(1), L"bcd" },
        { str.Mid(4), L"" },    { str.Mid(1, 2), L"bc" },  { str.Mid(2, 9), L"cd" }, { str.Mid(-1, 2), L"ab" },
    };
    for (size_t i = 0; i < sizeof(cases) / sizeof(cases[0]); ++i)
        EXPECT_EQ(cases[i].pszExpected, Stored(cases[i].strPart)) << "case " << i;
}

TEST(FrameworkString, TrimsWhiteSpaceCharacterOrSet)
{
    const wchar_t kPadded[] = L" \t\r\nx y\x3000 ";
    EXPECT_EQ(L"x y", Stored(CString(kPadded).Trim()));
    EXPECT_EQ(L"x y\x3000 ", Stored(CString(kPadded).TrimLeft()));
    EXPECT_EQ(L" \t\r\nx y", Stored(CString(kPadded).TrimRight()));
    EXPECT_EQ(L"a/b", Stored(CString(L"//a/b/").Trim(L'/')));
    EXPECT_EQ(L"a/b/", Stored(CString(L"//a/b/").TrimLeft(L'/')));
    EXPECT_EQ(L"//a/b", Stored(CString(L"//a/b/").TrimRight(L'/')));
    EXPECT_EQ(L"a", Stored(CString(L"\"(a)").Trim(L"\"()")));
    EXPECT_EQ(L"", Stored(CString(L"  \t").Trim()));
}

TEST(FrameworkString, DeletesInsertsAndReplaces)
{
    CString str(L"abcdef");
    EXPECT_EQ(4, str.Delete(1, 2));
    EXPECT_EQ(L"adef", Stored(str));
    EXPECT_EQ(2, str.Delete(2, 99));
    EXPECT_EQ(2, str.Delete(2));
    EXPECT_EQ(L"ad", Stored(str));
    EXPECT_EQ(5, str.Insert(1, L"xyz"));
    EXPECT_EQ(6, str.Insert(99, L'!'));
    EXPECT_EQ(L"axyzd!", Stored(str));

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
        { L"abc", L"x", L"y", L"abc", 0 },
    };
    for (const auto& c : cases)
    {
        CString strText(c.pszText);
        EXPECT_EQ(c.nCount, strText.Replace(c.pszOld, c.pszNew)) << Stored(c.pszText).c_str();
        EXPECT_EQ(c.pszExpected, Stored(strText));
    }
    CString strSlashes(L"a/b/c");
    EXPECT_EQ(2, strSlashes.Replace(L'/', L'\\'));
    EXPECT_EQ(L"a\\b\\c", Stored(strSlashes));
}

TEST(FrameworkString, ChangesCase)
{
    EXPECT_EQ(L"setup.exe 1", Stored(CString(L"SetUp.EXE 1").MakeLower()));
    EXPECT_EQ(L"SETUP.EXE 1", Stored(CString(L"SetUp.exe 1").MakeUpper()));
    EXPECT_STREQ("abc", CStringA("ABC").MakeLower());
}

TEST(FrameworkString, FormatsTextOfItsOwnType)
{
    CString str;
    str.Format(L"%s %d.%02d|%c", L"wide", 8, 5, L'z');
    EXPECT_EQ(L"wide 8.05|z", Stored(str));
    str.AppendFormat(L" %s", CString(L'n', 3000).GetString());
    EXPECT_EQ(3012, str.GetLength());
    str.Format(L"");
    EXPECT_EQ(L"", Stored(str));
    CStringA strNarrow;
    strNarrow.Format("%s=%u", "narrow", 7u);
    EXPECT_STREQ("narrow=7", strNarrow);
}

TEST(FrameworkString, BufferLengthCountsFromRelease)
{
    CString str(L"abc");
    wchar_t* pszBuffer = str.GetBuffer(100);
    EXPECT_STREQ(L"abc", pszBuffer);
    wcscpy(pszBuffer, L"much longer than before");
    str.ReleaseBuffer();
    EXPECT_EQ(L"much longer than before", Stored(str));

    pszBuffer = str.GetBufferSetLength(4);
    EXPECT_EQ(L"much", Stored(str));
    pszBuffer[1] = 0;
    EXPECT_EQ(4, str.GetLength());
    str.ReleaseBuffer(3);
    EXPECT_EQ(std::wstring(L"m\0c", 3), Stored(str));
    str.ReleaseBuffer();
    EXPECT_EQ(L"m", Stored(str));
    EXPECT_TRUE(ThrowsInvalidArgument([&] { str.ReleaseBuffer(10000); }));
}

TEST(FrameworkString, IndexOutOfRangeThrows)
{
    CString str(L"ab");
    EXPECT_EQ(L'b', str[1]);
    EXPECT_EQ(L'\0', str[2]);
    EXPECT_TRUE(ThrowsInvalidArgument([&] { str.GetAt(3); }));
    EXPECT_TRUE(ThrowsInvalidArgument([&] { str.GetAt(-1); }));
    EXPECT_TRUE(ThrowsInvalidArgument([&] { str.SetAt(2, L'x'); }));
    str.Empty();
    EXPECT_TRUE(str.IsEmpty());
    EXPECT_EQ(L'\0', str[0]);
}

TEST(FrameworkString, LoadsTextFromTheStringTable)
{
    CString str(L"before");
    EXPECT_FALSE(str.LoadString(64000));
    EXPECT_EQ(L"before", Stored(str));
    EXPECT_TRUE(str.LoadString(1));
    EXPECT_EQ(L"Lumacap 8", Stored(str));
    CStringA strNarrow;
    EXPECT_TRUE(strNarrow.LoadString(1));
    EXPECT_STREQ("Lumacap 8", strNarrow);
}

TEST(FrameworkArray, GrowsAndShrinksWithEmptyElements)
{
    CDWordArray numbers;
    EXPECT_EQ(0, numbers.GetSize());
    EXPECT_EQ(0, numbers.Add(5));
    EXPECT_EQ(1, numbers.Add(6));
    numbers.SetSize(4);
    numbers[3] = 9;
    EXPECT_EQ(4, numbers.GetCount());
    const DWORD expected[] = { 5, 6, 0, 9 };
    EXPECT_EQ(0, memcmp(expected, numbers.GetData(), sizeof(expected)));
    numbers.SetSize(1);
    numbers.SetSize(2);
    EXPECT_EQ(0u, numbers.GetAt(1));
    numbers.RemoveAll();
    EXPECT_EQ(0, numbers.GetSize());
    EXPECT_TRUE(ThrowsInvalidArgument([&] { numbers.SetSize(-1); }));
}

TEST(FrameworkArray, HoldsCopiesOfStrings)
{
    CStringArray texts;
    CString str(L"one");
    texts.Add(str);
    str = L"two";
    texts.Add(str);
    for (int i = 0; i < 100; ++i)
        texts.Add(texts[1]);
    EXPECT_EQ(102, texts.GetSize());
    EXPECT_EQ(L"one", Stored(texts.GetAt(0)));
    EXPECT_EQ(L"two", Stored(texts[101]));
    texts.SetAt(0, L"three");
    texts.ElementAt(1) += L"!";
    EXPECT_EQ(L"three", Stored(texts.GetData()[0]));
    EXPECT_EQ(L"two!", Stored(texts.GetData()[1]));
}

TEST(FrameworkArray, IndexOutOfRangeThrows)
{
    CDWordArray numbers;
    EXPECT_TRUE(ThrowsInvalidArgument([&] { numbers.GetAt(0); }));
    numbers.SetSize(2);
    EXPECT_TRUE(ThrowsInvalidArgument([&] { numbers[2] = 1; }));
    EXPECT_TRUE(ThrowsInvalidArgument([&] { numbers.SetAt(-1, 1); }));
    const CStringArray texts;
    EXPECT_TRUE(ThrowsInvalidArgument([&] { texts[0].GetLength(); }));
}

namespace
{
const wchar_t kMutexName[] = L"Local\\FrameworkLockTest";

// Tries for the named mutex on a thread of its own, through a handle of its own.
DWORD WINAPI TryMutex(void*)
{
    HANDLE hMutex = OpenMutexW(SYNCHRONIZE, FALSE, kMutexName);
    const DWORD dwResult = hMutex ? WaitForSingleObject(hMutex, 0) : WAIT_FAILED;
    if (dwResult == WAIT_OBJECT_0)
        ReleaseMutex(hMutex);
    CloseHandle(hMutex);
    return dwResult;
}

DWORD TryMutexElsewhere()
{
    HANDLE hThread = CreateThread(nullptr, 0, TryMutex, nullptr, 0, nullptr);
    DWORD dwResult = WAIT_FAILED;
    if (WaitForSingleObject(hThread, 10000) == WAIT_OBJECT_0)
        GetExitCodeThread(hThread, &dwResult);
    CloseHandle(hThread);
    return dwResult;
}

DWORD WINAPI HoldMutexUntilDeath(void* hMutex)
{
    WaitForSingleObject(hMutex, INFINITE);
    return 0;
}
} // namespace

TEST(FrameworkLock, GuardHoldsTheMutexForItsLifetime)
{
    CMutex mutex(FALSE, kMutexName);
    EXPECT_EQ(WAIT_OBJECT_0, TryMutexElsewhere());
    {
        CSingleLock lock(&mutex, TRUE);
        EXPECT_TRUE(lock.IsLocked());
        EXPECT_EQ(static_cast<DWORD>(WAIT_TIMEOUT), TryMutexElsewhere());
    }
    EXPECT_EQ(WAIT_OBJECT_0, TryMutexElsewhere());
}

TEST(FrameworkLock, GuardLocksAndUnlocksOnDemand)
{
    CMutex mutex(FALSE, kMutexName);
    CSingleLock lock(&mutex);
    EXPECT_FALSE(lock.IsLocked());
    EXPECT_TRUE(lock.Lock());
    EXPECT_EQ(static_cast<DWORD>(WAIT_TIMEOUT), TryMutexElsewhere());
    EXPECT_TRUE(lock.Unlock());
    EXPECT_FALSE(lock.IsLocked());
    EXPECT_EQ(WAIT_OBJECT_0, TryMutexElsewhere());
}

TEST(FrameworkLock, ExceptionReleasesTheMutex)
{
    CMutex mutex(FALSE, kMutexName);
    EXPECT_TRUE(ThrowsInvalidArgument(
        [&]
        {
            CSingleLock lock(&mutex, TRUE);
            CDWordArray().GetAt(0);
        }));
    EXPECT_EQ(WAIT_OBJECT_0, TryMutexElsewhere());
}

TEST(FrameworkLock, InitialOwnerMustUnlock)
{
    CMutex mutex(TRUE, kMutexName);
    EXPECT_EQ(static_cast<DWORD>(WAIT_TIMEOUT), TryMutexElsewhere());
    EXPECT_TRUE(mutex.Unlock());
    EXPECT_EQ(WAIT_OBJECT_0, TryMutexElsewhere());
    EXPECT_FALSE(mutex.Unlock());
}

TEST(FrameworkLock, MutexOfADeadOwnerCanBeHad)
{
    CMutex mutex(FALSE, kMutexName);
    HANDLE hThread = CreateThread(nullptr, 0, HoldMutexUntilDeath, mutex.m_hObject, 0, nullptr);
    ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(hThread, 10000));
    CloseHandle(hThread);
    CSingleLock lock(&mutex);
    EXPECT_TRUE(lock.Lock(1000));
}

TEST(FrameworkLock, NoObjectIsAnInvalidArgument)
{
    EXPECT_TRUE(ThrowsInvalidArgument([] { CSingleLock lock(nullptr); }));
}

TEST(FrameworkClass, KnowsItsNameAndBases)
{
    FrameworkDerived derived;
    const CObject* pObject = &derived;
    EXPECT_STREQ("FrameworkDerived", pObject->GetRuntimeClass()->m_lpszClassName);
    EXPECT_EQ(static_cast<int>(sizeof(FrameworkDerived)), pObject->GetRuntimeClass()->m_nObjectSize);
    EXPECT_TRUE(pObject->IsKindOf(RUNTIME_CLASS(FrameworkDerived)));
    EXPECT_TRUE(pObject->IsKindOf(RUNTIME_CLASS(FrameworkBase)));
    EXPECT_TRUE(pObject->IsKindOf(RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(FrameworkBase().IsKindOf(RUNTIME_CLASS(FrameworkDerived)));
    EXPECT_FALSE(pObject->IsKindOf(RUNTIME_CLASS(CException)));
}

TEST(FrameworkCommand, GoesToTheMostDerivedHandler)
{
    const struct
    {
        UINT nID;
        int nCode;
        BOOL bHandled;
        const wchar_t* pszCalls;
    } cases[] = {
        { 7, BN_CLICKED, TRUE, L"third " },
        { 8, EN_CHANGE, TRUE, L"second " },
        { 8, EN_SETFOCUS, FALSE, L"" },
        { 9, CN_COMMAND, FALSE, L"" },
    };
    for (const auto& c : cases)
    {
        FrameworkDerivedTarget target;
        EXPECT_EQ(c.bHandled, target.OnCmdMsg(c.nID, c.nCode, nullptr, nullptr)) << c.nID << " " << c.nCode;
        EXPECT_EQ(c.pszCalls, Stored(target.m_strCalls));
    }
    FrameworkDerivedTarget target;
    AFX_CMDHANDLERINFO info = {};
    EXPECT_TRUE(target.OnCmdMsg(7, CN_COMMAND, nullptr, &info));
    EXPECT_EQ(&target, info.pTarget);
    EXPECT_EQ(L"", Stored(target.m_strCalls));
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

    BOOL InitInstance() override
    {
        m_strCalls += L"init ";
        return m_bInitialized;
    }
    int Run() override
    {
        m_strCalls += L"run ";
        return CWinApp::Run();
    }
    int ExitInstance() override
    {
        m_strCalls += L"exit ";
        return CWinApp::ExitInstance();
    }

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

TEST(FrameworkApplication, ResultOfInitInstanceDecidesWhetherItRunsAndTheExitCodeIsZero)
{
    const struct
    {
        BOOL bInitialized;
        const wchar_t* pszCalls;
    } cases[] = { { FALSE, L"init exit " }, { TRUE, L"init run exit " } };
    for (const auto& c : cases)
    {
        CTestApp app(nullptr, c.bInitialized);
        EXPECT_EQ(0, RunApplication());
        EXPECT_EQ(c.pszCalls, Stored(app.m_strCalls));
    }
}

TEST(FrameworkApplication, ExitCodeIsThatOfTheQuitMessage)
{
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
    EXPECT_EQ(0u, app.m_dwRestartManagerSupportFlags);
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

TEST(FrameworkApplication, BoxCarriesTheNameAndAnIcon)
{
    CTestApp app(L"Given");
    CBoxRecorder recorder({ IDYES });
    const struct
    {
        UINT nType, nShown;
    } cases[] = {
        { MB_OK, MB_OK | MB_ICONEXCLAMATION },
        { MB_YESNO, MB_YESNO | MB_ICONEXCLAMATION },
        { MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2 },
        { MB_RETRYCANCEL, MB_RETRYCANCEL },
    };
    for (const auto& c : cases)
    {
        EXPECT_EQ(IDYES, AfxMessageBox(L"text", c.nType));
        EXPECT_EQ(c.nShown, recorder.Boxes().back().nStyle);
    }
    AfxMessageBox(1);
    const RECORDED_BOX& box = recorder.Boxes().back();
    EXPECT_EQ(L"Lumacap 8", box.strText);
    EXPECT_EQ(L"Given", box.strCaption);
    EXPECT_EQ(static_cast<UINT>(MB_OK | MB_ICONEXCLAMATION), box.nStyle);
    EXPECT_EQ(nullptr, box.hOwner);
}

TEST(FrameworkApplication, BoxBelongsToTheMainWindow)
{
    CTestApp app(L"Given");
    CWnd window;
    window.Attach(CreateWindowW(L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr));
    app.m_pMainWnd = &window;
    CBoxRecorder recorder;
    AfxMessageBox(L"text");
    EXPECT_EQ(window.m_hWnd, recorder.Boxes().back().hOwner);
}
