// Files in use are handed to the operating system for the next boot. The program only leaves word: it keeps no list
// of its own and asks for no restart. Where the delayed move isn't to be had, the profile file of old takes its place.
#pragma once

// Asks that a file or folder be gone after the next boot. Whether it exists isn't tested.
void DeleteAtReboot(const wchar_t* pszPath);

// Asks that the new file take the target's place at the next boot. Sets g_bRebootNeeded to what the platform returned
// for this request, whatever an earlier one left there.
void ReplaceAtReboot(const wchar_t* pszNewFile, const wchar_t* pszTarget);
