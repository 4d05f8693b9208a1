// Windows of this or another process, driven by control id, with bounded waits. Messages that carry an answer are sent
// with a time limit, clicks and keys are posted: what hangs fails the test instead of holding it.
#pragma once

#include <afx.h>

#include <string>

#include "tests/support/Programs.h"

// -1 if no answer comes within five seconds.
LRESULT Send(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);

class CWindowDriver
{
public:
    // Waits for a visible top-level window of the process, or of any if the id is 0, whose caption begins so. Fails the
    // test if none comes.
    CWindowDriver(DWORD nProcessId, const std::wstring& strCaption);
    explicit CWindowDriver(HWND hWnd) : m_hWnd(hWnd) {}

    HWND Window() const { return m_hWnd; }
    // In a child dialog too; of several the visible one; null if there is none.
    HWND Control(int nId) const;
    std::wstring Text(int nId) const;
    void SetText(int nId, const std::wstring& strText) const;
    bool IsVisible(int nId) const { return IsWindowVisible(Control(nId)); }
    // 0 if none of its controls has it.
    int FocusId() const;
    // Fails the test if it is missing or disabled.
    void Click(int nId) const;
    // To the control with the focus.
    void Press(WPARAM nKey) const;

    // All that a user sees: the caption, and for each visible control its text, with (x) or ( ) before it where it can
    // be ticked, in parentheses where it is disabled, with | between.
    std::wstring Look() const;

    bool AwaitText(int nId, const std::wstring& strText) const;

private:
    HWND m_hWnd = nullptr;
};

// The message box that the process shows, or any process if the id is 0: its `CAPTION: TEXT [BUTTONS]`, the default one
// first. It is answered, and waited for until it has gone. Fails the test if none comes.
std::wstring AnswerBox(DWORD nProcessId, int nCommand);

// Top-level, of the test program.
class CTestWindow
{
public:
    explicit CTestWindow(const wchar_t* pszCaption = L"Lumacap 8", DWORD nStyle = WS_OVERLAPPEDWINDOW,
                         DWORD nExStyle = 0, HWND hOwner = nullptr)
        : m_hWnd(CreateWindowExW(nExStyle, L"STATIC", pszCaption, nStyle, 0, 0, 100, 100, hOwner, nullptr, nullptr,
                                 nullptr))
    {
    }
    ~CTestWindow() { DestroyWindow(m_hWnd); }
    CTestWindow(const CTestWindow&) = delete;
    CTestWindow& operator=(const CTestWindow&) = delete;
    operator HWND() const { return m_hWnd; }

private:
    HWND m_hWnd;
};
