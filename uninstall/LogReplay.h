// Takes away what a log names: at the removal of the product, and before an upgrade. A busy file is left to the boot
// list. None of the conditions under which the install acted on a record is tested.
#pragma once

// Removes the files of the log's file records from the folder (with or without a trailing backslash), then the folders
// of its "Make Dir: " records. With a prefix, only that one's files; the folders go in any case. A log that can't be
// opened changes nothing.
void RemoveLoggedFiles(const wchar_t* pszLog, const wchar_t* pszFolder, const wchar_t* pszPrefix = nullptr);

// Deletes the links of the log, then removes its "Made Dir: " folders, each with the parents that this leaves empty.
void RemoveLoggedLinks(const wchar_t* pszLog);

// Deletes all matches of a mask, which may hold a relative subfolder, in a folder, which may be empty; read-only and
// hidden ones too. What can't be deleted goes on the boot list. Returns the number deleted at once. Folder and file
// name together: at most 263 characters.
int DeleteMatchingFiles(const wchar_t* pszFolder, const wchar_t* pszMask);

// The number of matches of a mask in a folder, without "." and "..". Folder and mask together: at most 518 characters.
int CountFolderEntries(const wchar_t* pszMask, const wchar_t* pszFolder);
