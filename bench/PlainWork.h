// The plain counterparts: what the same work costs in bare loops of the platform's calls, with no engine around them.
#pragma once

#include <initializer_list>
#include <string>

#include "bench/Package.h"

// Makes the target folder and those in it and copies by CopyFileW the files from the first number up to the last, that
// one left out. Both are multiples of kFilesInFolder.
void PlainCopy(const std::wstring& strFrom, const std::wstring& strTo, int nFirst, int nLast);

// Reads both folders' copies of so many files, one after the other. False if one can't be read.
bool PlainRead(const std::wstring& strFolder, const std::wstring& strOther, int nFiles);

// Deletes the files of these numbers by DeleteFileW, then their folders by RemoveDirectoryW; the folder itself stays.
void PlainRemove(const std::wstring& strFolder, int nFirst, int nLast);

// The same with the calls that an engine can't do without where it replaces whatever stands at a target, takes any name
// for a mask and removes protected files too: a search for each record of a list of that form and a look at each source
// and target, or at each file's attributes.
void DemandedCopy(const std::wstring& strFrom, const std::wstring& strTo, int nFirst, int nLast, ListForm form);
void DemandedRemove(const std::wstring& strFolder, int nFirst, int nLast, ListForm form);

// Reads the list by fgetws and looks by FindFirstFileW, in the folder, for the file of each line that begins with one
// of the prefixes: what finds nothing needs no more.
void PlainWalk(const std::wstring& strList, const std::wstring& strFolder,
               std::initializer_list<const wchar_t*> prefixes);
