// Starts programs and waits for them, or for all that came of them.
#pragma once

#include <afx.h>

#include <string>

#include "foundation/Owners.h"

class CProgram
{
public:
    // Ends the benchmark if the program can't be started.
    explicit CProgram(const std::wstring& strCommandLine);

    HANDLE Process() const { return m_process; }
    DWORD Id() const { return m_nId; }
    void WaitForEnd() const { WaitForSingleObject(m_process, INFINITE); }
    DWORD ExitCode() const;     // waits for its end
    void WaitForFamily() const; // it and all that it and its successors started
    void End() const;           // all of them

private:
    CHandleOwner m_job;
    CHandleOwner m_process;
    DWORD m_nId = 0;
};

// Makes a package that setup.exe installs: the executables of the sample package, and files named by masks.
void MakeProductPackage(const std::wstring& strFolder, const std::wstring& strProduct, int nFiles);
