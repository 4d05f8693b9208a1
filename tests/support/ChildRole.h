// Parts of the test program that need a process of their own: `setup_tests.exe --as NAME` runs that part in the place
// of the tests, in the state that a program has just after its start.
#pragma once

#include <string>

class CChildRole
{
public:
    // To be made at namespace level. The result of the function is the exit code.
    CChildRole(const wchar_t* pszName, int (*pfnRole)());
    CChildRole(const CChildRole&) = delete;
    CChildRole& operator=(const CChildRole&) = delete;

    // Runs the role that the command line names, and gives its result. False if it names none.
    static bool Run(int argc, wchar_t** argv, int& nResult);

    // The command line that starts it.
    static std::wstring CommandLine(const std::wstring& strName);

private:
    const wchar_t* m_pszName;
    int (*m_pfnRole)();
    CChildRole* m_pNext;
};
