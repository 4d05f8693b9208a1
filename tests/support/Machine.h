// The machine as the tests make and see it, with plain platform calls, byte by byte, never through the program. It is
// thrown away after the run, so nothing is put back. A helper that can't do its work tells of a failure.
#pragma once

#include <afx.h>

#include <memory>
#include <string>
#include <vector>

using TEXTS = std::vector<std::wstring>;

// Makes the running test or scenario fail, and goes on. Each program with tests has its own.
void Fail(const std::string& strWhat);

// A folder of the host, as this machine sees it; no trailing backslash.
std::wstring BuildFolder();
// Path of the product's executable in that version: "8.19.9.0", ..., or "none", which has no version.
std::wstring ProductOfVersion(const std::wstring& strVersion);

// An empty text has no parts.
TEXTS Split(const std::wstring& strText, wchar_t chSeparator);
std::wstring Join(const TEXTS& texts, const wchar_t* pszBetween = L"|");
std::wstring Replaced(std::wstring strText, const std::wstring& strFrom, const std::wstring& strTo);
// Characters to bytes and back, one by one; what is above 0xFF becomes a `?`.
std::string Bytes(const std::wstring& strText);
std::wstring Wide(const std::string& strBytes);

// A path is that of a file or of a folder. What is written or copied gets its folder with it.
bool IsThere(const std::wstring& strPath);
// INVALID_FILE_ATTRIBUTES for a path that isn't there.
DWORD AttributesOf(const std::wstring& strPath);
void SetAttributes(const std::wstring& strPath, DWORD nAttributes);
void MakeFolder(const std::wstring& strPath);
void WriteBytes(const std::wstring& strPath, const std::string& strBytes);
// Reads files that others hold open for writing too.
std::string ReadBytes(const std::wstring& strPath);
void CopyOneFile(const std::wstring& strFrom, const std::wstring& strTo);
// Removes read-only files too, and does nothing if the path isn't there.
void RemoveTree(const std::wstring& strPath);
// Sorted paths relative to the folder, those of folders with a backslash at their end. None without the folder.
TEXTS ListTree(const std::wstring& strFolder);

// Keeps a file open as long as the result lives. As a rule nobody can replace or remove it; with FILE_SHARE_WRITE
// besides it can be overwritten; with 0 not even be read. With kAsImage it becomes a mapped program, which can only be
// renamed.
const DWORD kAsImage = ~0u;
std::shared_ptr<void> HoldFile(const std::wstring& strPath, DWORD nSharing = FILE_SHARE_READ);

// Keys that many ask about.
const HKEY kMachine = HKEY_LOCAL_MACHINE;
const HKEY kUser = HKEY_CURRENT_USER;
const std::wstring kProduct = L"SOFTWARE\\Tandrel\\Lumacap 8";
const std::wstring kWindows = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion";

// A value as a text: that of a REG_SZ as it stands, "dword 8" of a number, "type 3" of another one,
// "(absent)" without the value.
std::wstring KeyText(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName = L"");
bool KeyExists(HKEY hRoot, const std::wstring& strKey);
void SetKeyText(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName, const std::wstring& strText);
void MakeKey(HKEY hRoot, const std::wstring& strKey);
// Removes it with all below it, and does nothing if it isn't there.
void RemoveKey(HKEY hRoot, const std::wstring& strKey);
void RemoveValue(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName);

// Adds a line `LABEL : NAME = TEXT` for each value of the key and those below it, and `LABEL\` for a key that has
// neither values nor keys. Nothing without the key.
void FlattenKey(HKEY hRoot, const std::wstring& strKey, const std::wstring& strLabel, TEXTS& lines);

// What waits for the next start, in its order: "-PATH" for a deletion, "SOURCE>TARGET" for a replacement.
TEXTS PendingEntries();
// The file that takes the list's place where that is blocked.
const wchar_t kPendingProfile[] = L"C:\\windows\\WININIT.INI";
// No call can add to the list from here on.
void BlockPending();
void ClearPending();

// Sorted lines of the whole machine: its registry and, for each file and folder, `PATH = NUMBER`, where the number
// stands for the content, `PATH -> LINK` or `PATH\`, with ` (attributes N)` behind it if it is read-only or hidden; of
// Windows' own files size and time. Two pictures tell all that a program left: "+ LINE" and "- LINE" for what only the
// later and only the earlier one has, in the order of the lines.
TEXTS TakePicture();
TEXTS Difference(const TEXTS& earlier, const TEXTS& later);

// "winxp64" (5.2), "vista", "win7", "win8", "win81", "win10".
void SetWindowsVersion(const std::wstring& strVersion);

// Moves a special folder: "Desktop", "Programs", "Startup" of HKEY_CURRENT_USER, "Common Desktop" and so on of
// HKEY_LOCAL_MACHINE. A folder below a file makes the platform's look-up fail.
void MoveFolder(HKEY hRoot, const std::wstring& strName, const std::wstring& strFolder);

// What the start of the machine does with its boot list, done now. Nothing else restarts.
void RestartMachine();
