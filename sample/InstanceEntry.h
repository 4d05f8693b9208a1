// The product's entry in the list of running instances, which it shares with the setup program through named memory.
// Written apart from the setup program's own class: the two meet in the memory's format alone, so that a slip on
// either side shows.
#pragma once

#include <windows.h>

// Stands in the list from construction to destruction. Where the memory can't be had the process runs unlisted.
class CInstanceEntry
{
public:
    CInstanceEntry();
    ~CInstanceEntry();
    CInstanceEntry(const CInstanceEntry&) = delete;
    CInstanceEntry& operator=(const CInstanceEntry&) = delete;

private:
    HANDLE m_hMutex;
    HANDLE m_hMapping;
};
