// Messages that carry an answer are sent with a time limit, clicks and keys are posted: a dialog that hangs fails the
// test instead of holding it.
#include "tests/support/DialogDriver.h"

#include <gtest/gtest.h>

static const DWORD kAnswerTime = 5000; // milliseconds

static LRESULT Send(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    DWORD_PTR nResult = 0;
    SendMessageTimeoutW(hWnd, nMessage, wParam, lParam, SMTO_NORMAL, kAnswerTime, &nResult);
    return static_cast<LRESULT>(nResult);
}

static std::wstring TextOf(HWND hWnd)
{
    wchar_t szText[4096] = L"";
    Send(hWnd, WM_GETTEXT, 4096, reinterpret_cast<LPARAM>(szText));
    return szText;
}

namespace
{
struct WINDOW_SEARCH
{
    DWORD nProcessId;
    const std::wstring& strCaptionPrefix;
    HWND hWnd;
};

struct CONTROL_SEARCH
{
    int nId;
    HWND hAny;
    HWND hVisible;
};
} // namespace

static BOOL CALLBACK LookAtWindow(HWND hWnd, LPARAM lParam)
{
    auto* pSearch = reinterpret_cast<WINDOW_SEARCH*>(lParam);
    DWORD nProcessId = 0;
    GetWindowThreadProcessId(hWnd, &nProcessId);
    if (nProcessId != pSearch->nProcessId || !IsWindowVisible(hWnd) ||
        TextOf(hWnd).compare(0, pSearch->strCaptionPrefix.size(), pSearch->strCaptionPrefix) != 0)
        return TRUE;
    pSearch->hWnd = hWnd;
    return FALSE;
}

static BOOL CALLBACK LookAtControl(HWND hWnd, LPARAM lParam)
{
    auto* pSearch = reinterpret_cast<CONTROL_SEARCH*>(lParam);
    if (GetDlgCtrlID(hWnd) != pSearch->nId)
        return TRUE;
    pSearch->hAny = hWnd;
    if (IsWindowVisible(hWnd))
        pSearch->hVisible = hWnd;
    return pSearch->hVisible == nullptr;
}

CDialogDriver::CDialogDriver(DWORD nProcessId, const std::wstring& strCaptionPrefix, DWORD nMilliseconds)
{
    WINDOW_SEARCH search = { nProcessId, strCaptionPrefix, nullptr };
    EXPECT_TRUE(WaitUntil(
        [&]
        {
            EnumWindows(LookAtWindow, reinterpret_cast<LPARAM>(&search));
            return search.hWnd != nullptr;
        },
        nMilliseconds))
        << "no window " << testing::PrintToString(strCaptionPrefix) << " came";
    m_hWnd = search.hWnd;
}

HWND CDialogDriver::Control(int nId) const
{
    CONTROL_SEARCH search = { nId, nullptr, nullptr };
    EnumChildWindows(m_hWnd, LookAtControl, reinterpret_cast<LPARAM>(&search));
    return search.hVisible != nullptr ? search.hVisible : search.hAny;
}

std::wstring CDialogDriver::Text(int nId) const
{
    return TextOf(Control(nId));
}

void CDialogDriver::SetText(int nId, const std::wstring& strText) const
{
    EXPECT_TRUE(HasControl(nId)) << nId;
    Send(Control(nId), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(strText.c_str()));
}

bool CDialogDriver::IsChecked(int nId) const
{
    return Send(Control(nId), BM_GETCHECK, 0, 0) == BST_CHECKED;
}

bool CDialogDriver::IsVisible(int nId) const
{
    return IsWindowVisible(Control(nId));
}

bool CDialogDriver::IsEnabled(int nId) const
{
    return IsWindowEnabled(Control(nId));
}

static HWND FocusOf(HWND hDialog)
{
    GUITHREADINFO info = {};
    info.cbSize = sizeof(info);
    GetGUIThreadInfo(GetWindowThreadProcessId(hDialog, nullptr), &info);
    return info.hwndFocus;
}

int CDialogDriver::FocusId() const
{
    const HWND hFocus = FocusOf(m_hWnd);
    return hFocus != nullptr && IsChild(m_hWnd, hFocus) ? GetDlgCtrlID(hFocus) : 0;
}

void CDialogDriver::Click(int nId) const
{
    EXPECT_TRUE(IsVisible(nId) && IsEnabled(nId)) << "control " << nId << " can't be clicked";
    PostMessageW(Control(nId), BM_CLICK, 0, 0);
}

void CDialogDriver::PressKey(WPARAM nKey) const
{
    PostMessageW(FocusOf(m_hWnd), WM_KEYDOWN, nKey, 1);
    PostMessageW(FocusOf(m_hWnd), WM_KEYUP, nKey, 1);
}

bool CDialogDriver::AwaitText(int nId, const std::wstring& strText, DWORD nMilliseconds) const
{
    return WaitUntil([&] { return Text(nId) == strText; }, nMilliseconds);
}

bool CDialogDriver::AwaitVisible(int nId, DWORD nMilliseconds) const
{
    return WaitUntil([&] { return IsVisible(nId); }, nMilliseconds);
}

bool CDialogDriver::AwaitGone(DWORD nMilliseconds) const
{
    return WaitUntil([&] { return !IsWindow(m_hWnd); }, nMilliseconds);
}
