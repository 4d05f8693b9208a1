// What the flows ask of the machine: where a shell folder is, which Windows runs, how and from where the process runs.
#pragma once

#include <afx.h>

// The path of a shell folder by its CSIDL number, made by the shell if it is missing. If the shell fails, the path that
// the registry's list of shell folders gives; empty if that has none either.
CString GetSpecialFolder(int nFolder);

// The registry's list of shell folders, for the machine and for each user.
inline constexpr wchar_t kShellFoldersKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

// False for a path of four characters or fewer: whoever looks for links in a shell folder passes over such a one.
bool IsFolderPath(const CString& strFolder);

// The full path of the running executable, at most 259 characters.
CString GetModulePath();

// The folder that programs go to, without a trailing backslash.
CString GetProgramFilesFolder();

// Non-zero on Windows Vista and later.
int IsNT6OrLater();

// Non-zero if this process is a 32-bit one on a 64-bit system; 0 if the system can't tell. Always 0 in a 64-bit build.
int IsWow64();
