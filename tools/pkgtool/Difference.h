// What can differ between an installation and its package, or stand after a removal.
#pragma once

#include <afx.h>

struct DifferenceKind
{
    const char* pszName;    // for scripts, and never to change
    const wchar_t* pszText; // for people, behind the path; %1 is what was found, %2 what was expected
    bool bWaits = false;    // the next start of the machine mends it
};

inline constexpr DifferenceKind kNotRegistered = { "not-registered", L"is missing: no installation is registered" };
inline constexpr DifferenceKind kPackageLacks = { "package-lacks", L"names in line %1 what the package doesn't hold" };
inline constexpr DifferenceKind kFolderMissing = { "folder-missing", L"is missing: there is no such folder" };
inline constexpr DifferenceKind kFileMissing = { "file-missing", L"is missing" };
inline constexpr DifferenceKind kFileSize = { "file-size", L"has %1 bytes, and the package's file %2" };
inline constexpr DifferenceKind kFileContent = { "file-content", L"has the right size, and another content" };
inline constexpr DifferenceKind kFileVersion = { "file-version", L"is of version %1, and the package's file of %2" };
inline constexpr DifferenceKind kFileUnreadable = { "file-unreadable", L"can't be compared, since one can't be read" };
inline constexpr DifferenceKind kFileProtected = { "file-protected", L"is %1, and the package's file isn't" };
inline constexpr DifferenceKind kFileGoes = { "file-goes", L"goes at the next start, and the package's doesn't come" };
inline constexpr DifferenceKind kFileWaits = { "file-waits", L"comes at the next start of the machine", true };
inline constexpr DifferenceKind kLogCut = { "log-cut", L"is cut: of the %2 bytes of the package's list it has %1" };
inline constexpr DifferenceKind kLogChanged = { "log-changed", L"isn't the package's list: line %1 differs" };
inline constexpr DifferenceKind kLogEnd = { "log-end", L"doesn't end as an install leaves it: links may outlive it" };
inline constexpr DifferenceKind kLinkMissing = { "link-missing", L"is missing: there is no such link" };
inline constexpr DifferenceKind kLinkElsewhere = { "link-elsewhere", L"leads to %1, and should lead to %2" };
inline constexpr DifferenceKind kLinkUnlogged = { "link-unlogged", L"is a link that the log doesn't name" };
inline constexpr DifferenceKind kValueMissing = { "value-missing", L"is missing, and should be %2" };
inline constexpr DifferenceKind kValueChanged = { "value-changed", L"is %1, and should be %2" };

inline constexpr DifferenceKind kFileLeft = { "file-left", L"still stands" };
inline constexpr DifferenceKind kFolderLeft = { "folder-left", L"is a folder that still stands" };
inline constexpr DifferenceKind kLinkLeft = { "link-left", L"is a link that still stands" };
inline constexpr DifferenceKind kKeyLeft = { "key-left", L"is a key that still stands" };
inline constexpr DifferenceKind kValueLeft = { "value-left", L"still is %1" };
inline constexpr DifferenceKind kLeftWaits = { "left-waits", L"stands until the next start of the machine", true };

struct Difference
{
    const DifferenceKind* pKind; // null for none
    CString strPath;
    CString strFound;
    CString strExpected;
};
