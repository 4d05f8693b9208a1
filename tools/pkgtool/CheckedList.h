// A package's list as the engine reads it, line by line, with what the engine doesn't know: where in the file each line
// stands, and what the file holds that no reader of records sees.
#pragma once

#include <afx.h>

#include <string>
#include <vector>

struct ListLine
{
    int nNumber;     // of the line in the file, from 1
    bool bRest;      // what stands behind the 511th character of a line, and is read as one of its own
    CString strText; // with its end trimmed
};

struct CheckedList
{
    bool bReadable = false;
    bool bByteOrderMark = false;
    bool bZeroBytes = false;
    bool bLoneReturns = false; // carriage returns are its only line ends
    int nEndMarkLine = 0;      // where a Ctrl-Z ends the reading; 0 if none does
    std::vector<ListLine> lines;
};

// The bytes of a file; none if it can't be read.
std::string ReadBytes(const wchar_t* pszPath);

// A list that can't be opened is not readable and has no lines.
CheckedList ReadCheckedList(const wchar_t* pszList);

// What was meant by a text of the list whose bytes are UTF-8. Empty for other texts, and for plain ASCII.
CString DecodeUtf8(const CString& strText);
