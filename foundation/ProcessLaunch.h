// Starts other programs, with a bounded wait or none, and asks for the privilege that a restart needs. What becomes of
// a started program is never known here.
#pragma once

#include <afx.h>

// How long a program that unregisters the product is waited for.
inline constexpr DWORD kBoundedWaitMs = 5000;

// Starts a program and waits at most dwWaitMs milliseconds for its end; 0 doesn't wait at all. A null working folder
// stands for the install folder. Returns non-zero if the program was started. A program that outlasts the wait goes on.
// The command line holds at most 519 characters.
int RunAndWait(const wchar_t* pszCommandLine, const wchar_t* pszWorkingFolder, DWORD dwWaitMs);

// Enables or disables one privilege of a token opened for adjusting. Returns 1 when the change was made, else 0.
int SetPrivilege(HANDLE hToken, const wchar_t* pszPrivilege, bool bEnable);

// Writes to the process's standard output, which leads nowhere unless it was redirected.
[[gnu::format(printf, 1, 2)]] void DiagPrint(const char* pszFormat, ...);

// Asks for the shutdown privilege and restarts the computer. Returns to the caller in any case; failures aren't told.
void RestartComputer();
