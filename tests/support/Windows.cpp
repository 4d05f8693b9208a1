#include "tests/support/Windows.h"

#include <vector>

#include "tests/support/Machine.h"

LRESULT Send(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    DWORD_PTR nResult = 0;
    const bool bAnswered = SendMessageTimeoutW(hWnd, nMessage, wParam, lParam, SMTO_NORMAL, 5000, &nResult) != 0;
    return bAnswered ? static_cast<LRESULT>(nResult) : -1;
}

static std::wstring TextOf(HWND hWnd)
{
    std::vector<wchar_t> text(65536);
    Send(hWnd, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    return text.data();
}

static std::wstring ClassOf(HWND hWnd)
{
    wchar_t szClass[64] = L"";
    GetClassNameW(hWnd, szClass, _countof(szClass));
    return szClass;
}

static LONG StyleOf(HWND hWnd)
{
    return GetWindowLongW(hWnd, GWL_STYLE);
}

// All below it, in their order.
static std::vector<HWND> Descendants(HWND hWnd)
{
    std::vector<HWND> all;
    for (HWND hChild = GetWindow(hWnd, GW_CHILD); hChild != nullptr; hChild = GetWindow(hChild, GW_HWNDNEXT))
    {
        all.push_back(hChild);
        const std::vector<HWND> below = Descendants(hChild);
        all.insert(all.end(), below.begin(), below.end());
    }
    return all;
}

template <typename Predicate>
static HWND AwaitTopWindow(DWORD nProcessId, Predicate predicate)
{
    HWND hFound = nullptr;
    WaitUntil(
        [&]
        {
            for (HWND hWnd = GetTopWindow(nullptr); hWnd != nullptr && hFound == nullptr;
                 hWnd = GetWindow(hWnd, GW_HWNDNEXT))
            {
                DWORD nOwnerId = 0;
                GetWindowThreadProcessId(hWnd, &nOwnerId);
                if ((nOwnerId == nProcessId || nProcessId == 0) && IsWindowVisible(hWnd) && predicate(hWnd))
                    hFound = hWnd;
            }
            return hFound != nullptr;
        });
    return hFound;
}

CWindowDriver::CWindowDriver(DWORD nProcessId, const std::wstring& strCaption)
    : m_hWnd(AwaitTopWindow(nProcessId,
                            [&](HWND hWnd) { return TextOf(hWnd).compare(0, strCaption.size(), strCaption) == 0; }))
{
    if (m_hWnd == nullptr)
        Fail("no window " + Bytes(strCaption) + " came");
}

HWND CWindowDriver::Control(int nId) const
{
    HWND hAny = nullptr;
    for (const HWND hControl : Descendants(m_hWnd))
        if (GetDlgCtrlID(hControl) == nId && (hAny == nullptr || !IsWindowVisible(hAny)))
            hAny = hControl;
    return hAny;
}

std::wstring CWindowDriver::Text(int nId) const
{
    return TextOf(Control(nId));
}

void CWindowDriver::SetText(int nId, const std::wstring& strText) const
{
    Send(Control(nId), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(strText.c_str()));
}

static HWND FocusOf(HWND hWnd)
{
    GUITHREADINFO info = {};
    info.cbSize = sizeof(info);
    GetGUIThreadInfo(GetWindowThreadProcessId(hWnd, nullptr), &info);
    return info.hwndFocus;
}

int CWindowDriver::FocusId() const
{
    const HWND hFocus = FocusOf(m_hWnd);
    return hFocus != nullptr && IsChild(m_hWnd, hFocus) ? GetDlgCtrlID(hFocus) : 0;
}

void CWindowDriver::Click(int nId) const
{
    if (!IsVisible(nId) || !IsWindowEnabled(Control(nId)))
        Fail("control " + std::to_string(nId) + " can't be clicked");
    PostMessageW(Control(nId), BM_CLICK, 0, 0);
}

void CWindowDriver::Press(WPARAM nKey) const
{
    PostMessageW(FocusOf(m_hWnd), WM_KEYDOWN, nKey, 1);
    PostMessageW(FocusOf(m_hWnd), WM_KEYUP, nKey, 0xC0000001);
}

std::wstring CWindowDriver::Look() const
{
    std::wstring strLook = TextOf(m_hWnd);
    for (const HWND hControl : Descendants(m_hWnd))
    {
        if ((StyleOf(hControl) & WS_VISIBLE) == 0 || ClassOf(hControl) == L"#32770")
            continue;
        const LONG nType = ClassOf(hControl) == L"Button" ? StyleOf(hControl) & BS_TYPEMASK : 0;
        const wchar_t* pszMark = nType == BS_AUTOCHECKBOX || nType == BS_AUTORADIOBUTTON
                                     ? (Send(hControl, BM_GETCHECK, 0, 0) == BST_CHECKED ? L"(x) " : L"( ) ")
                                     : L"";
        strLook += L" | " + (IsWindowEnabled(hControl) ? pszMark + TextOf(hControl) : L"(" + TextOf(hControl) + L")");
    }
    return strLook;
}

bool CWindowDriver::AwaitText(int nId, const std::wstring& strText) const
{
    return WaitUntil([&] { return Text(nId) == strText; });
}

std::wstring AnswerBox(DWORD nProcessId, int nCommand)
{
    const int nIconLabel = 1088; // of this platform's boxes, shown or not
    const HWND hBox = AwaitTopWindow(nProcessId, [](HWND hWnd) { return GetDlgItem(hWnd, nIconLabel) != nullptr; });
    if (hBox == nullptr)
    {
        Fail("no message box came");
        return L"";
    }
    std::wstring strText;
    std::wstring strButtons;
    for (const HWND hChild : Descendants(hBox))
    {
        const bool bDefault = (StyleOf(hChild) & BS_TYPEMASK) == BS_DEFPUSHBUTTON;
        if (ClassOf(hChild) == L"Button")
            strButtons = bDefault ? TextOf(hChild) + L" " + strButtons : strButtons + TextOf(hChild) + L" ";
        else if ((StyleOf(hChild) & SS_TYPEMASK) != SS_ICON)
            strText = TextOf(hChild);
    }
    const std::wstring strBox = TextOf(hBox) + L": " + strText + L" [" + strButtons + L"]";
    PostMessageW(hBox, WM_COMMAND, nCommand, reinterpret_cast<LPARAM>(GetDlgItem(hBox, nCommand)));
    if (!WaitUntil([&] { return !IsWindow(hBox); }))
        Fail("the box stays");
    return strBox;
}
