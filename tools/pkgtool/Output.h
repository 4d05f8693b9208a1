// The program's words: to a console as they are, to a file or a pipe as UTF-8.
#pragma once

#include <afx.h>
#include <stdio.h>

#include <string>

std::string ToUtf8(const CString& strText);
CString FromUtf8(const std::string& strBytes);

// Writes the text and a line end to the stream, which is stdout or stderr.
void PrintLine(FILE* pStream, const wchar_t* pszText);

// Tells how many files were looked at, in a line that is written over and, at the end, cleared. Only on a terminal.
void ShowProgress(size_t nDone, size_t nAll);
