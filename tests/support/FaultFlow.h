// The flows of the program, run in this process on a small product with one platform call failing: a silent install
// over an earlier one, the first stage of a removal and its second. Meant for a process of its own, which a fault may
// end.
#pragma once

#include <windows.h>

#include <string>

struct FAULT
{
    const char* pszFunction;
    INT_PTR nResult;     // what a failed call gives
    DWORD nError;        // and leaves as the system's error
    const char* pszWith; // fails too, at every use: without that the flows don't come to the function. Null: they do
};

enum Flow
{
    FLOW_INSTALL,
    FLOW_RELAUNCH,
    FLOW_REMOVAL,
    FLOW_COUNT,
};

const int kEveryUse = MAXINT;

// Runs the flow in an own folder, which is made, with so many failing uses. nListed is the process that the list of
// instances shows. Gives `CODE ACTS` and what else is to be told: `: BOX TEXT` (its first line) for each box shown, `
// lost THING` for what isn't the product's and has suffered. The acts are letters: T another instance ended, H handler
// registered, h unregistered, R product told to register, r to unregister, X second stage started, P product started, E
// computer restarted, W web page opened. Two letters tell how far the work got, whether the calls fail or not: K the
// last value of the registration tried, behind all others (k: not all), S the last act of a removal tried. The code is
// `exception` if one has left the program.
std::string RunFlow(Flow flow, const FAULT* pFault, const FAULT* pWith, int nUses, const std::wstring& strFolder,
                    DWORD nListed);

#define OTHER_HIVE L"S-1-5-21-7-7-7-1001" // of a user who is logged on beside the current one: the last of the hives

// The registry keys, outside of the product's own, that the flows' bystanders live in.
struct BYSTANDER_KEY
{
    HKEY hRoot;
    const wchar_t* pszKey;
};
extern const BYSTANDER_KEY kBystanderKeys[9];
