// A box of another process tells its icon only by what is on the screen: icon handles don't cross processes. So the
// painted icon is compared with the system's icons.
#include "tests/support/BoxDriver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace
{

const DWORD kAnswerTime = 5000; // milliseconds for a window to answer a message

const int kIconSize = 32;
const size_t kIconPixels = 1024;
using PIXELS = std::vector<DWORD>;

std::wstring ClassOf(HWND hWnd)
{
    wchar_t szClass[64] = L"";
    GetClassNameW(hWnd, szClass, 64);
    return szClass;
}

std::wstring TextOf(HWND hWnd)
{
    wchar_t szText[2048] = L"";
    DWORD_PTR nResult = 0;
    SendMessageTimeoutW(hWnd, WM_GETTEXT, 2048, reinterpret_cast<LPARAM>(szText), SMTO_NORMAL, kAnswerTime, &nResult);
    return szText;
}

std::vector<HWND> VisibleChildren(HWND hWnd)
{
    std::vector<HWND> children;
    for (HWND hChild = GetWindow(hWnd, GW_CHILD); hChild != nullptr; hChild = GetWindow(hChild, GW_HWNDNEXT))
        if ((GetWindowLongW(hChild, GWL_STYLE) & WS_VISIBLE) != 0)
            children.push_back(hChild);
    return children;
}

// A dialog of labels and buttons with the system's command ids alone is a message box.
bool IsBox(HWND hWnd)
{
    if (ClassOf(hWnd) != L"#32770" || !IsWindowVisible(hWnd))
        return false;
    int nButtons = 0;
    for (const HWND hChild : VisibleChildren(hWnd))
    {
        const std::wstring strClass = ClassOf(hChild);
        const int nId = GetDlgCtrlID(hChild);
        if (strClass == L"Button" && nId >= IDOK && nId <= IDCONTINUE)
            nButtons++;
        else if (strClass != L"Static")
            return false;
    }
    return nButtons > 0;
}

bool IsIconLabel(HWND hWnd)
{
    return (GetWindowLongW(hWnd, GWL_STYLE) & SS_TYPEMASK) == SS_ICON;
}

// A box without an icon has its label all the same.
bool HasIcon(HWND hLabel)
{
    DWORD_PTR nIcon = 0;
    SendMessageTimeoutW(hLabel, STM_GETICON, 0, 0, SMTO_NORMAL, kAnswerTime, &nIcon);
    return nIcon != 0;
}

// What the drawing leaves on a square of a dialog's colour.
template <typename Draw>
PIXELS Paint(Draw draw)
{
    BITMAPINFO info = {};
    info.bmiHeader = { sizeof(info.bmiHeader), kIconSize, -kIconSize, 1, 32, BI_RGB, 0, 0, 0, 0, 0 };
    void* pBits = nullptr;
    const HDC hdc = CreateCompatibleDC(nullptr);
    const HBITMAP hBitmap = CreateDIBSection(hdc, &info, DIB_RGB_COLORS, &pBits, nullptr, 0);
    const HGDIOBJ hEarlier = SelectObject(hdc, hBitmap);
    const RECT square = { 0, 0, kIconSize, kIconSize };
    FillRect(hdc, &square, GetSysColorBrush(COLOR_3DFACE));
    draw(hdc);
    GdiFlush();
    const auto* pPixels = static_cast<const DWORD*>(pBits);
    PIXELS pixels(pPixels, pPixels + kIconPixels);
    SelectObject(hdc, hEarlier);
    DeleteObject(hBitmap);
    DeleteDC(hdc);
    return pixels;
}

// The system's icon that is exactly what is painted; 0 if it is none of them, or not yet whole.
UINT IconOf(HWND hLabel)
{
    static const std::pair<const wchar_t*, UINT> kIcons[] = { { IDI_ERROR, MB_ICONERROR },
                                                              { IDI_QUESTION, MB_ICONQUESTION },
                                                              { IDI_EXCLAMATION, MB_ICONEXCLAMATION },
                                                              { IDI_INFORMATION, MB_ICONINFORMATION } };
    const HDC hScreen = GetDC(nullptr);
    RECT place;
    GetWindowRect(hLabel, &place);
    const PIXELS painted =
        Paint([&](HDC hdc) { BitBlt(hdc, 0, 0, kIconSize, kIconSize, hScreen, place.left, place.top, SRCCOPY); });
    ReleaseDC(nullptr, hScreen);
    for (const auto& icon : kIcons)
    {
        const HICON hIcon = LoadIconW(nullptr, icon.first);
        if (painted ==
            Paint([&](HDC hdc) { DrawIconEx(hdc, 0, 0, hIcon, kIconSize, kIconSize, 0, nullptr, DI_NORMAL); }))
            return icon.second;
    }
    return 0;
}

// The box, if it is painted: one that should show an icon and shows none yet gets another look.
bool DescribeBox(HWND hWnd, BOX& box)
{
    box = {};
    box.hWnd = hWnd;
    box.strCaption = TextOf(hWnd);
    bool bPainted = true;
    for (const HWND hChild : VisibleChildren(hWnd))
    {
        if (ClassOf(hChild) == L"Button")
        {
            box.buttons.push_back(GetDlgCtrlID(hChild));
            if ((GetWindowLongW(hChild, GWL_STYLE) & BS_TYPEMASK) == BS_DEFPUSHBUTTON)
                box.nDefault = GetDlgCtrlID(hChild);
        }
        else if (IsIconLabel(hChild))
        {
            box.nIcon = HasIcon(hChild) ? IconOf(hChild) : 0;
            bPainted = box.nIcon != 0 || !HasIcon(hChild);
        }
        else
        {
            box.strText = TextOf(hChild);
        }
    }
    std::sort(box.buttons.begin(), box.buttons.end());
    return bPainted;
}

struct SEARCH
{
    DWORD nProcessId;
    HWND hWnd;
};

BOOL CALLBACK LookAtWindow(HWND hWnd, LPARAM lParam)
{
    auto* pSearch = reinterpret_cast<SEARCH*>(lParam);
    DWORD nProcessId = 0;
    GetWindowThreadProcessId(hWnd, &nProcessId);
    if (nProcessId != pSearch->nProcessId || !IsBox(hWnd))
        return TRUE;
    pSearch->hWnd = hWnd;
    return FALSE;
}

HWND FindBoxWindow(DWORD nProcessId)
{
    SEARCH search = { nProcessId, nullptr };
    EnumWindows(LookAtWindow, reinterpret_cast<LPARAM>(&search));
    return search.hWnd;
}

} // namespace

bool FindBox(DWORD nProcessId, BOX& box, DWORD nMilliseconds)
{
    return WaitUntil(
        [&]
        {
            const HWND hWnd = FindBoxWindow(nProcessId);
            return hWnd != nullptr && DescribeBox(hWnd, box);
        },
        nMilliseconds);
}

bool AnswerBox(const BOX& box, int nCommand)
{
    PostMessageW(box.hWnd, WM_COMMAND, MAKEWPARAM(nCommand, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(box.hWnd, nCommand)));
    return WaitUntil([&] { return !IsWindow(box.hWnd); });
}

BOX ExpectBox(DWORD nProcessId, int nCommand)
{
    BOX box;
    if (!FindBox(nProcessId, box))
        ADD_FAILURE() << "no message box came";
    else
        EXPECT_TRUE(AnswerBox(box, nCommand)) << "the box stays";
    return box;
}

CBoxRecorder::CBoxRecorder(std::vector<int> answers)
    : m_answers(std::move(answers)), m_hook("USER32.dll", "MessageBoxW", &MessageBoxW)
{
    m_hook.Replace(
        [this](HWND hOwner, LPCWSTR pszText, LPCWSTR pszCaption, UINT nStyle)
        {
            const size_t nAnswer = std::min(m_boxes.size(), m_answers.size() - 1);
            m_boxes.push_back({ hOwner, pszText ? pszText : L"", pszCaption ? pszCaption : L"", nStyle });
            return m_answers[nAnswer];
        });
}
