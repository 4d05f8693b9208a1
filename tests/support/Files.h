// Files and folders as the tests make and see them: byte by byte, with plain platform calls, never through the program.
// A helper that can't do its work fails the running test.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

bool IsThere(const std::wstring& strPath);       // a file or a folder
DWORD AttributesOf(const std::wstring& strPath); // INVALID_FILE_ATTRIBUTES for a path that isn't there
void SetAttributes(const std::wstring& strPath, DWORD nAttributes);

// Makes the folder with all its parents.
void MakeFolder(const std::wstring& strPath);

// Makes the file, its folder too, or overwrites it.
void WriteBytes(const std::wstring& strPath, const std::string& strBytes);

// The content; fails the test, and is empty, if the file can't be read. Reads also what others hold open for writing.
std::string ReadBytes(const std::wstring& strPath);

// The content's lines without their CR LF or LF.
std::vector<std::string> ReadLines(const std::wstring& strPath);

void CopyOneFile(const std::wstring& strFrom, const std::wstring& strTo);

// Copies the content of one folder into another, which is made.
void CopyTree(const std::wstring& strFrom, const std::wstring& strTo);

// What lies below the folder, as sorted relative paths; folders end in a backslash. Empty for a missing folder.
std::vector<std::wstring> ListTree(const std::wstring& strFolder);

// The same paths in one text, separated by blanks.
std::wstring TreeText(const std::wstring& strFolder);

// Removes a file, or a folder with all in it, read-only files too. A path that isn't there is no failure.
void RemoveTree(const std::wstring& strPath);

// Keeps a file open, as a program that works with it does. With FILE_SHARE_READ nobody can replace or remove it; with
// FILE_SHARE_READ | FILE_SHARE_WRITE it can be overwritten, but neither renamed nor removed; with 0 not even be read.
class CFileHold
{
public:
    CFileHold(const std::wstring& strPath, DWORD nSharing);
    ~CFileHold() { Release(); }
    CFileHold(const CFileHold&) = delete;
    CFileHold& operator=(const CFileHold&) = delete;
    void Release();

private:
    HANDLE m_hFile;
};

// Makes the file a copy of a small system program and maps it as a running program's image is mapped: it can be
// renamed, but neither overwritten nor removed.
class CImageHold
{
public:
    explicit CImageHold(const std::wstring& strPath);
    ~CImageHold() { Release(); }
    CImageHold(const CImageHold&) = delete;
    CImageHold& operator=(const CImageHold&) = delete;
    void Release();

private:
    HMODULE m_hImage;
};
