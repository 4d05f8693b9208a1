// Messages that carry an answer are sent with a time limit: a box that hangs fails the test instead of holding it.
#include "tests/support/BoxDriver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace
{

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
    SendMessageTimeoutW(hWnd, WM_GETTEXT, 2048, reinterpret_cast<LPARAM>(szText), SMTO_NORMAL, 5000, &nResult);
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
    if (ClassOf(hWnd) != L"#32770")
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

BOX DescribeBox(HWND hWnd)
{
    BOX box;
    box.hWnd = hWnd;
    box.strCaption = TextOf(hWnd);
    for (const HWND hChild : VisibleChildren(hWnd))
    {
        if (ClassOf(hChild) == L"Button")
        {
            box.buttons.push_back(GetDlgCtrlID(hChild));
            if ((GetWindowLongW(hChild, GWL_STYLE) & BS_TYPEMASK) == BS_DEFPUSHBUTTON)
                box.nDefault = GetDlgCtrlID(hChild);
        }
        else if (!IsIconLabel(hChild))
        {
            box.strText = TextOf(hChild);
        }
    }
    std::sort(box.buttons.begin(), box.buttons.end());
    return box;
}

// The process's first top-level window that the predicate takes; null if there is none.
template <typename Predicate>
HWND FindTopWindow(DWORD nProcessId, Predicate predicate)
{
    for (HWND hWnd = GetTopWindow(nullptr); hWnd != nullptr; hWnd = GetWindow(hWnd, GW_HWNDNEXT))
    {
        DWORD nOwnerId = 0;
        GetWindowThreadProcessId(hWnd, &nOwnerId);
        if (nOwnerId == nProcessId && IsWindowVisible(hWnd) && predicate(hWnd))
            return hWnd;
    }
    return nullptr;
}

} // namespace

bool FindBox(DWORD nProcessId, BOX& box, DWORD nMilliseconds)
{
    return WaitUntil(
        [&]
        {
            const HWND hWnd = FindTopWindow(nProcessId, IsBox);
            if (hWnd != nullptr)
                box = DescribeBox(hWnd);
            return hWnd != nullptr;
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
