// Leads every platform call of this process through an entry that counts it and, where a test wants it, fails it
// without doing it: whatever the function's signature, since a failed call needs none of its arguments. Functions that
// are bound by name or live in an object's table pass through an entry when the test puts it there.
#pragma once

#include <windows.h>

#include <set>
#include <string>
#include <vector>

class CCallFaults
{
public:
    CCallFaults(); // diverts all functions that this program imports, until the end of the object
    ~CCallFaults();
    CCallFaults(const CCallFaults&) = delete;
    CCallFaults& operator=(const CCallFaults&) = delete;

    // From here on the calls that don't fail go to this function. Returns the one that they went to.
    void* Replace(const char* pszFunction, void* pfn);

    // From here on all calls, failing ones too, come to this function first. Returns the one that it has to call.
    void* Precede(const char* pszFunction, void* pfn);

    // The next so many calls set the error and give that result.
    void Fail(const char* pszFunction, int nCalls, INT_PTR nResult, DWORD nError);

    // An entry of that name in front of a function that isn't imported. It stays for good, as do the pointers to it.
    static void* EntryOf(const char* pszFunction, void* pfn);

    static int Failures(const char* pszFunction); // calls that were failed
    static std::set<std::string> Called();        // the names of all that was called

private:
    struct SLOT
    {
        void** ppfn;
        void* pfnOriginal;
    };
    std::vector<SLOT> m_slots;
};
