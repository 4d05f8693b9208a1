// The line-oriented list that says what an installation consists of: the package's file list, and the log in the
// product's folder. This is its syntax; what a reader does with a record is the reader's own business.
#pragma once

#include <afx.h>

#include "foundation/Owners.h"

inline constexpr wchar_t kFileCopy[] = L"File Copy: ";
inline constexpr wchar_t kFileCopyX64[] = L"File Copy x64: ";
inline constexpr wchar_t kFileCopyIfAbsent[] = L"File Copy ind: ";
inline constexpr wchar_t kFileCopyPortable[] = L"File Copy prt: ";
inline constexpr wchar_t kFileOverwrite[] = L"File Overwrite: ";
inline constexpr wchar_t kFileDel[] = L"File Del: ";
inline constexpr wchar_t kMakeDir[] = L"Make Dir: "; // relative, from the package
inline constexpr wchar_t kMadeDir[] = L"Made Dir: "; // absolute, written by an install
inline constexpr wchar_t kShellLink[] = L"Shell Link: ";

// The file records that a removal goes by, in the order in which a line is tested for them.
inline constexpr const wchar_t* kRemovedPrefixes[] = {
    kFileCopy, kFileCopyX64, kFileCopyIfAbsent, kFileCopyPortable, kFileOverwrite, kFileDel,
};

inline constexpr int kLogLineCapacity = 512; // characters, the terminator included

// Reads a list line by line. A list that can't be opened reads as one without lines.
class CInstallLogReader
{
public:
    explicit CInstallLogReader(const wchar_t* pszPath);

    bool IsOpen() const { return m_file.IsOpen(); }

    // Reads the next line, at most 511 characters of it, and trims its end; false at the end of the list. The rest of
    // a longer line is the next line.
    bool ReadLine();

    // The line last read, valid until the next one.
    const wchar_t* Line() const { return m_szLine; }

    // Back to the first line.
    void Rewind();

private:
    CStreamOwner m_file;
    wchar_t m_szLine[kLogLineCapacity];
};

// What follows the prefix in the line, or null if the line isn't a record of that prefix. The prefix is exact.
const wchar_t* FindRecordValue(const wchar_t* pszLine, const wchar_t* pszPrefix);

// Takes a file value apart as an install reads it. With a `>`: true, the source name and the target name (which may be
// empty) are set. Without one: false, the whole value is the source mask, and the target is empty.
bool SplitFileValue(const wchar_t* pszValue, CString& strSource, CString& strTarget);

// The name that a removal takes from the line of a file record: the tail from " | " on dropped, the prefix dropped,
// and of a renamed file the name under which it landed.
CString GetNameToRemove(const wchar_t* pszLine, const wchar_t* pszPrefix);

// Appends the text as a line, and closes the file again, so that a line once written stands on disk whatever happens
// next. If the file can't be opened nothing is written.
void AppendLogLine(const wchar_t* pszPath, const wchar_t* pszText);
