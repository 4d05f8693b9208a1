// What waits for the next start of the machine: its pending list in the registry, and the profile file that takes its
// place where the pending list can't be written.
#pragma once

#include <string>
#include <vector>

struct PENDING
{
    std::wstring strSource;
    std::wstring strTarget; // empty: the source is deleted. A "!" at its start: a present target is replaced.
    bool operator==(const PENDING& other) const { return strSource == other.strSource && strTarget == other.strTarget; }
};

// The entries in their order. The paths lack the native prefix "\??\".
std::vector<PENDING> PendingEntries();

// The same in one text, separated by blanks: "-PATH" for a deletion, "SOURCE>TARGET" for a replacement. The paths are
// relative to the folder; the folder itself is ".".
std::wstring PendingText(const std::wstring& strFolder);

// Empties the list, lifts a block and removes the profile file.
void ClearPending();

// From here on, until ClearPending, MoveFileExW can't put anything on the list: its value has a type that it refuses.
void BlockPending();

std::wstring PendingProfilePath();
std::string PendingProfile(); // its bytes; empty without the file
