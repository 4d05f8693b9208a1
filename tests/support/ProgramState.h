// The program's global state and command line, for tests that call its functions in this process.
#pragma once

#include <string>
#include <vector>

// Gives the program's global state the values of a process that has just started. The first call, which comes before
// any test, notes the values that the start itself has found out. The list of instances holds this process alone; it is
// the test program's own list, not the one that the product and the setups under test share.
void ResetProgramState();

// Gives the program this command line, as the run-time library splits it, for the object's life. The first argument is
// the program's own name.
class CArguments
{
public:
    explicit CArguments(std::vector<std::wstring> arguments);
    ~CArguments();
    CArguments(const CArguments&) = delete;
    CArguments& operator=(const CArguments&) = delete;

private:
    std::vector<std::wstring> m_arguments;
    std::vector<wchar_t*> m_pointers;
    int m_nEarlierCount;
    wchar_t** m_ppszEarlier;
};
