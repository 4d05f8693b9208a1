// Drives a dialog of another process by control id, with bounded waits. A control can lie in a child dialog, such as
// a page; of controls with the same id the visible one counts.
#pragma once

#include <windows.h>

#include <string>

#include "tests/support/ProcessRun.h"

class CDialogDriver
{
public:
    // Waits for a visible top-level window of the process whose caption begins with the text. Fails the test if none
    // came.
    CDialogDriver(DWORD nProcessId, const std::wstring& strCaptionPrefix, DWORD nMilliseconds = kPatience);

    HWND Window() const { return m_hWnd; }

    HWND Control(int nId) const; // null if there is none
    bool HasControl(int nId) const { return Control(nId) != nullptr; }
    std::wstring Text(int nId) const;
    void SetText(int nId, const std::wstring& strText) const; // the dialog hears of it as of typing
    bool IsChecked(int nId) const;
    bool IsVisible(int nId) const;
    bool IsEnabled(int nId) const;
    int FocusId() const; // 0 if none of the dialog's controls has the focus

    // Clicks a button as a user does; returns at once. Fails the test if the control is missing or disabled.
    void Click(int nId) const;

    void PressKey(WPARAM nKey) const; // to the control with the focus

    // Bounded waits: true if it came.
    bool AwaitText(int nId, const std::wstring& strText, DWORD nMilliseconds = kPatience) const;
    bool AwaitVisible(int nId, DWORD nMilliseconds = kPatience) const;
    bool AwaitGone(DWORD nMilliseconds = kPatience) const;

private:
    HWND m_hWnd = nullptr;
};
