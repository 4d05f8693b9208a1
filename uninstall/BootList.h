// Files in use are handed to the operating system for the next boot; the program keeps no list of its own. Where the
// delayed move fails, for whatever reason, a deletion goes to the profile file that early systems worked through.
#pragma once

// The profile file, in the Windows folder.
inline constexpr wchar_t kBootProfile[] = L"WININIT.INI";
inline constexpr wchar_t kBootSection[] = L"rename";
inline constexpr unsigned int kBootSectionCapacity = 16384; // characters, the terminators included

// Asks that a file or folder be gone after the next boot. Whether it exists isn't tested. A profile section without
// room for the entry ends the process.
void DeleteAtReboot(const wchar_t* pszPath);

// Asks that the new file take the target's place at the next boot. Sets g_bRebootNeeded to what the platform returned
// for this request, whatever an earlier one left there. A profile section without room for the entry ends the process.
void ReplaceAtReboot(const wchar_t* pszNewFile, const wchar_t* pszTarget);
