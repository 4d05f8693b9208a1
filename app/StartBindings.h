// What is found out by name before the program starts: the Windows version, and functions that not every Windows has.
#pragma once

#include <afx.h>

// Fills the record; all zero, but for its size, if the system has no RtlGetVersion. Non-zero if the call succeeded.
int ReadOsVersion(RTL_OSVERSIONINFOEXW* pVersion);

// Binds the function pointers of the run state; one whose function isn't there becomes null.
void BindDynamicApis();

// Binds the pointer of the library operation IsWow64Of.
void BindLibraryApi();
