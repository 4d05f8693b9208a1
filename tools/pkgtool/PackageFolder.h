// A package's folder as the user names it.
#pragma once

#include "tools/pkgtool/PlannedInstall.h"

// Exit codes of all verbs.
enum ExitCode
{
    EXIT_CLEAN = 0,
    EXIT_FINDINGS = 1,
    EXIT_UNUSABLE = 2, // the command line, or the package
    EXIT_WAITING = 3,  // for the next start of the machine
};

// Takes a folder argument as a shell hands it on: a quoted folder that ends in a backslash arrives with its closing
// quote still on it, since the runtime reads the two as a literal quote.
CString CleanFolderArgument(const wchar_t* pszArgument);

// Reads the package. False, with the reason on stderr, if there is no list that can be read.
bool ReadPackage(const wchar_t* pszArgument, Package& package);

// Tells on stderr why the tool can't do what it is asked for. Gives EXIT_UNUSABLE.
int Refuse(const CString& strReason);
