// Starts programs as a user or a script does and waits for them with a bound. Ends only what it started.
#pragma once

#include <afx.h>

#include <functional>
#include <string>
#include <vector>

#include "foundation/Owners.h"

// Milliseconds: far above what any step takes, so that only a real fault meets it.
const DWORD kPatience = 20000;

// True as soon as the condition holds; false if it doesn't within the time. It is looked at every 20 milliseconds, and
// windows of this thread answer meanwhile.
bool WaitUntil(const std::function<bool()>& condition, DWORD nMilliseconds = kPatience);

class CProcessRun
{
public:
    // Starts nothing yet. The command line goes to the program as it stands.
    explicit CProcessRun(std::wstring strCommandLine) : m_strCommandLine(std::move(strCommandLine)) {}
    // Ends what still runs of the program and of those that it started.
    ~CProcessRun();

    // False, and the test fails, if the program can't be started.
    bool Start();

    // True if the program has ended within the time.
    bool WaitForEnd(DWORD nMilliseconds = kPatience);

    // True if the program, and all that it and its successors started, have ended within the time.
    bool WaitForFamily();

    // STILL_ACTIVE while it runs.
    DWORD ExitCode() const;
    DWORD Id() const { return GetProcessId(m_process); }
    // Of all running programs that it or its successors started, and its own.
    std::vector<DWORD> FamilyIds() const;
    // What they have written to standard output and standard error.
    std::string Output() const;
    void End();

private:
    std::wstring m_strCommandLine;
    std::wstring m_strOutput; // path
    CHandleOwner m_process;
    CHandleOwner m_job;
};

struct TOLD
{
    DWORD nExitCode;
    std::wstring strText; // with plain line ends
};

// Runs a program to the end of its whole family; fails the test if that takes too long.
TOLD RunToEnd(const std::wstring& strCommandLine);

// Runs the tool for packages.
TOLD RunPkgtool(const std::wstring& strArguments);

// Parts of the test program that need a process of their own: `setup_tests.exe --as NAME` runs that part in the place
// of the tests, in the state that a program has just after its start.
class CChildRole
{
public:
    // To be made at namespace level. The result of the function is the exit code.
    CChildRole(const wchar_t* pszName, int (*pfnRole)());

    // Runs the role that the command line names, and gives its result. False if it names none.
    static bool Run(int argc, wchar_t** argv, int& nResult);

    // The command line that starts it.
    static std::wstring CommandLine(const std::wstring& strName);
};
