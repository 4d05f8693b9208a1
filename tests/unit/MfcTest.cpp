// What the program relies on in the framework: strings, arrays, locks, boxes, and dialogs with their windows,
// data, commands and keyboard.
#include <afxmt.h>
#include <afxwin.h>
#include <gtest/gtest.h>

#include <thread>

#include "res/resource.h"
#include "tests/support/Calls.h"
#include "tests/support/Windows.h"

namespace
{

class CPage : public CDialog
{
public:
    CString m_strText = L"text";
    int m_bStart = 0;

    void DoDataExchange(CDataExchange* pDX) override
    {
        DDX_Text(pDX, IDC_GROUP_NAME, m_strText);
        DDX_Check(pDX, IDC_GROUP_AUTOSTART, m_bStart);
    }
};

class CModal : public CDialog
{
public:
    CModal() : CDialog(IDD_SETUP) {}
    BOOL OnInitDialog() override
    {
        EXPECT_FALSE(GetParent()->IsWindowEnabled());
        OnOK();
        ::PostMessageW(m_hWnd, WM_COMMAND, IDCANCEL, 0); // for a dialog that stays
        return TRUE;
    }
};

class Mfc : public testing::Test
{
protected:
    void SetUp() override
    {
        AfxGetApp()->m_pMainWnd = &m_frame;
        ASSERT_TRUE(m_frame.Create(IDD_SETUP));
        // It belongs to the main window.
        ASSERT_TRUE(m_page.Create(IDD_GROUP));
        m_frame.ShowWindow(SW_SHOW);
        m_page.ShowWindow(SW_SHOW);
        Pump();
    }

    // Works through what is posted; true if it was told to quit.
    bool Pump()
    {
        bool bQuit = false;
        for (MSG msg; PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE);)
        {
            bQuit |= msg.message == WM_QUIT;
            if (!IsDialogMessageW(m_frame.m_hWnd, &msg))
                DispatchMessageW(&msg);
        }
        return bQuit;
    }

    CDialog m_frame;
    CPage m_page;
};

// Several texts in one, zeros and all.
template <typename... Texts>
std::wstring All(const Texts&... texts)
{
    return (... + (L'<' + std::wstring(texts.GetString(), texts.GetLength()) + L'>'));
}

} // namespace

TEST_F(Mfc, StringsAreCutTrimmedFoundAndReplacedAtTheirEnds)
{
    const CString str(L"abcabc");
    EXPECT_EQ(All(str.Left(9), str.Left(-1), str.Right(9), str.Right(-1)), L"<abcabc><><abcabc><>");
    EXPECT_EQ(All(str.Mid(5), str.Mid(6), str.Mid(4, 9), str.Mid(-1, 2)), L"<c><><bc><ab>");
    EXPECT_EQ(All(CString(L" \t\nx y\x3000 ").TrimLeft(), CString(L" \nx y\x3000 ").TrimRight(), CString(L" ").Trim(),
                  CString(L"\"(a)").Trim(L"\"()")),
              L"<x y\x3000 >< \nx y><><a>");
    EXPECT_EQ(All(CString(L"Set\xC4").MakeLower(), CString(L"Set\xE4").MakeUpper()), L"<set\xC4><SET\xE4>");
    CString strText(L"aaXaa");
    EXPECT_EQ(strText.Replace(L"", L"x"), 0);
    EXPECT_EQ(strText.Replace(L"aa", L"baa"), 2);
    EXPECT_EQ(All(strText), L"<baaXbaa>");
    const std::vector found = { str.Find(L'b', 2),     str.Find(L'\0', 6),    str.Find(L"bc", 2),
                                str.Find(L"", 7),      str.Find(L"a", -1),    str.ReverseFind(L'a'),
                                str.ReverseFind(L'x'), str.FindOneOf(L"xcb"), str.FindOneOf(L"xy") };
    EXPECT_EQ(found, (std::vector{ 4, -1, 4, -1, -1, 3, -1, 1, -1 }));
}

TEST_F(Mfc, StringsOwnTheirTextAndCountABufferFromItsRelease)
{
    CString str(L"first");
    const CString strCopy(str);
    str = str.GetString() + 2;
    str += str;
    str.Format(L"%s|%.2d|%s", str.GetString(), 5, CString(L'n', 300).GetString());
    EXPECT_EQ(All(str, strCopy), L"<rstrst|05|" + std::wstring(300, L'n') + L"><first>");
    EXPECT_EQ(str.Delete(6, 999), 6);
    wcscat(str.GetBuffer(400), L", much longer than before");
    str.ReleaseBuffer();
    EXPECT_EQ(All(str), L"<rstrst, much longer than before>");
    str.GetBufferSetLength(4)[1] = 0;
    EXPECT_EQ(All(str), std::wstring(L"<r\0tr>", 6));
}

TEST_F(Mfc, ArraysGrowWithEmptyElementsAndOutOfRangeThrows)
{
    CStringArray texts;
    texts.SetSize(2);
    texts[0] = texts[1] = L"one";
    texts.SetSize(100);
    EXPECT_EQ(All(texts[0], texts[1], texts[99]), L"<one><one><>");
    texts.SetSize(1);
    texts.SetSize(2);
    EXPECT_EQ(All(texts[0], texts[1]), L"<one><>");
    EXPECT_EQ(CString(L"ab")[2], L'\0');
    EXPECT_THROW(CString(L"ab")[3], CInvalidArgException*);
    EXPECT_THROW(texts[2], CInvalidArgException*);
    EXPECT_THROW(texts[-1], CInvalidArgException*);
}

TEST_F(Mfc, LockHoldsTheMutexForItsLifeAlsoAfterADeadOwner)
{
    CMutex mutex(FALSE, nullptr);
    {
        const CSingleLock lock(&mutex, TRUE);
        EXPECT_TRUE(mutex.Unlock());
    }
    std::thread([&] { WaitForSingleObject(mutex.m_hObject, 5000); }).join();
    {
        const CSingleLock lock(&mutex, TRUE);
    }
    EXPECT_FALSE(mutex.Unlock());
}

TEST_F(Mfc, BoxCarriesTheNameAndAnIconAndBelongsToThePopupOfTheMainWindow)
{
    const CTestWindow popup(L"", WS_POPUP | WS_VISIBLE, 0, m_frame.m_hWnd);
    SetActiveWindow(popup);
    const CCalls calls({ { "MessageBoxW", [&](CALL& call)
                           {
                               EXPECT_EQ(call.args[0], HandleToUlong(popup));
                               EXPECT_STREQ(call.Text(1), L"Lumacap 8");
                               EXPECT_STREQ(call.Text(2), L"Lumacap 8");
                               EXPECT_EQ(call.args[3], 0x34u);
                               return IDYES;
                           } } });
    EXPECT_EQ(AfxMessageBox(1, MB_YESNO), IDYES);
}

TEST_F(Mfc, ModalDialogDisablesItsOwnerAndTheEndOfTheMainWindowAloneQuits)
{
    EXPECT_EQ(CDialog(60000).DoModal(), -1);
    EXPECT_EQ(CModal().DoModal(), IDOK);
    EXPECT_EQ(m_page.GetParent(), &m_frame);
    EXPECT_TRUE(m_page.DestroyWindow());
    EXPECT_FALSE(Pump());
    m_frame.DestroyWindow();
    EXPECT_EQ(AfxGetApp()->m_pMainWnd, nullptr);
    EXPECT_TRUE(Pump());
}

TEST_F(Mfc, PageExchangesDataAndPassesOnWhatItDoesNotTake)
{
    const CWindowDriver driver(m_frame.m_hWnd);
    EXPECT_EQ(driver.Text(IDC_GROUP_NAME), L"text");
    std::wstring strActs;
    AfxGetApp()->m_pszHelpFilePath = _wcsdup(L"C:\\windows");
    const CCalls calls(
        { { "EndDialog", [&](CALL& call) { return strActs += std::to_wstring(call.args[1]), TRUE; } },
          { "WinHelpW", [&](CALL& call) { return strActs += call.Text(1) + std::to_wstring(call.args[2]), TRUE; } } });
    driver.SetText(IDC_GROUP_NAME, std::wstring(5000, L'x'));
    m_page.GetDlgItem(IDC_GROUP_AUTOSTART)->SendMessage(BM_CLICK);
    m_page.SendMessage(WM_COMMAND, IDOK);
    EXPECT_EQ(All(m_page.m_strText), L'<' + std::wstring(5000, L'x') + L'>');
    EXPECT_EQ(m_page.m_bStart, 1);

    for (const int nKey : { VK_RETURN, VK_ESCAPE })
    {
        m_page.GetDlgItem(IDC_GROUP_NAME)->SetFocus();
        driver.Press(nKey);
        Pump();
    }
    m_page.SendMessage(WM_COMMAND, ID_HELP);
    EXPECT_EQ(strActs, L"112C:\\windows11");
}
