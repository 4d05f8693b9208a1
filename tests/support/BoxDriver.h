// Message boxes: the shown ones of another process, found and answered as a user does, and this process's own, which
// are recorded and answered without a window.
#pragma once

#include <windows.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/ImportHook.h"
#include "tests/support/ProcessRun.h"

struct BOX
{
    HWND hWnd = nullptr;
    std::wstring strCaption;
    std::wstring strText;
    std::vector<int> buttons; // command ids, ascending
    int nDefault = 0;         // command id of the default button
};

// Finds the message box that the process shows, within the time. False if none came.
bool FindBox(DWORD nProcessId, BOX& box, DWORD nMilliseconds = kPatience);

// Presses the button and waits until the box is gone. False if it stays.
bool AnswerBox(const BOX& box, int nCommand);

// Both: the box as it was. Fails the test if none came.
BOX ExpectBox(DWORD nProcessId, int nCommand);

struct RECORDED_BOX
{
    HWND hOwner;
    std::wstring strText;
    std::wstring strCaption;
    UINT nStyle;
};

// Takes the place of MessageBoxW: records each box, shows none, and gives the scripted answers in order, the last one
// again for all that follow.
class CBoxRecorder
{
public:
    explicit CBoxRecorder(std::vector<int> answers = { IDOK });
    const std::vector<RECORDED_BOX>& Boxes() const { return m_boxes; }

private:
    std::vector<int> m_answers;
    std::vector<RECORDED_BOX> m_boxes;
    CCallHook<decltype(&MessageBoxW)> m_hook;
};
