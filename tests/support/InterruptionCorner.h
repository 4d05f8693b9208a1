// Installs and removals that are ended in their midst, as by a user's task manager or the end of a session: the built
// program after a time, or the program's own code in a process of the test program, just before a platform call that
// changes something on the machine. A copy that is met so leaves half a file.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/support/Environment.h"
#include "tests/support/InstallCorner.h"

class InterruptionCorner : public InstallCorner
{
protected:
    InterruptionCorner();
    void SetUp() override; // makes the pictures of undisturbed runs

    // Command lines: a silent install, and the second stage of the removal.
    std::wstring Setup() const { return L"\"" + m_package.Setup() + L"\" -s"; }
    std::wstring SecondStage() const
    {
        return At(L"temp\\uni1.tmp") + L" -delself \"" + m_strTarget + L"\\LumUnInst.exe\" -s";
    }

    // Runs the command to the end of all that it starts, in a process of the test program and without the program's
    // pauses; to the end of its own, or to just before its change of that number, counted from 1.
    static void Run(const std::wstring& strCommand, int nChange = kNever);

    // Calls the function again and again: each time it is to call its argument once, which runs the command to an end
    // before its time. The points are spread over the changes, or over the time, that the command takes. In the end the
    // whole machine must be as it was after the first one.
    using ATTEMPT = std::function<void(const std::function<void()>& interrupt)>;
    static void InterruptBeforeChanges(const std::wstring& strCommand, const ATTEMPT& attempt);
    static void InterruptAfterTimes(const std::wstring& strCommand, DWORD nPause, const ATTEMPT& attempt);

    // What stands in the corner and in the product's keys.
    std::vector<std::wstring> TakePicture() const;
    void ExpectPicture(const std::vector<std::wstring>& expected) const;

    // The product is gone, and what was put on the boot list meanwhile is either the second stage's own file or gone.
    void ExpectRemoved() const;

    const CPackage m_package;
    const std::wstring m_strTarget;
    std::vector<std::wstring> m_installed;
    std::wstring m_strRepeatPending; // the boot list of a repeated install, as PendingText gives it
    std::vector<std::wstring> m_removed;

private:
    static const int kNever = 0x7FFFFFFF;
};
