// The fixture of most suites: a clean corner of a machine that is thrown away. It clears what earlier tests may have
// left and puts nothing back.
#pragma once

#include <afxwin.h>
#include <gtest/gtest.h>

#include "app/InstanceManager.h"
#include "app/SetupApp.h"
#include "tests/support/Calls.h"
#include "tests/support/Machine.h"

// An empty folder; the system's folders moved into it ("all\\Desktop", "all\\Programs\\Startup", "user\\Desktop", ...,
// "Program Files", "temp"); no product in the registry, no other user's hive, an empty boot list, Windows 7, the
// program's state that of a start. A suite's own SetUp calls this one.
class World : public testing::Test
{
protected:
    void SetUp() override;

    std::wstring At(const std::wstring& strRelative) const { return m_strFolder + L"\\" + strRelative; }

    // Files of that content, parted by |; a path that ends in a backslash is a folder.
    void Make(const std::wstring& strPaths, const std::string& strBytes = "x") const;

    // All below the folder in one text, parted by blanks.
    std::wstring Tree(const std::wstring& strRelative = L"") const { return Join(ListTree(At(strRelative)), L" "); }

    // The boot list in one text, parted by blanks, with paths relative to the folder, which itself is ".".
    std::wstring Pending(const std::wstring& strBelow = L"") const;

    // The sample package, in "package".
    void PutPackage() const;

    const std::wstring m_strFolder = L"C:\\corner";
};

// Gives the program's global state the values of a process that has just started. The first call, which comes before
// any test, notes the values that the start itself has found out. The list of instances, the test program's own, holds
// this process alone.
void ResetProgramState();

// Gives the program this command line, as the run-time library splits it, for the object's life. The first argument is
// the program's own name, and its path for those who ask for it.
class CArguments
{
public:
    explicit CArguments(TEXTS arguments);
    ~CArguments();

private:
    TEXTS m_arguments;
    std::vector<wchar_t*> m_pointers;
    int m_nEarlierCount;
    wchar_t** m_ppszEarlier;
    CCalls m_calls;
};
