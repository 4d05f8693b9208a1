// The measured package: files of one size in folders of fifty, and a list that names them by masks or one by one.
// Names follow from numbers alone, so that every program knows them without a list.
#pragma once

#include <string>

inline constexpr int kFilesInFolder = 50;

// Relative to the package or the target: "Part07\\file0371.bin" and its folder "Part07".
std::wstring FileName(int nFile);
std::wstring PartFolder(int nFolder);
int FolderCount(int nFiles); // folders that hold so many

// The size of a measured file in bytes: 2,000 of them are 160 MB.
inline constexpr int kFileSize = 81920;

enum ListForm
{
    BY_MASKS,   // one record a folder
    BY_RECORDS, // one record a file
};

// Makes the folder and in it that many files, each of other content.
void MakePackageFiles(const std::wstring& strFolder, int nFiles);

// Writes a list for the files from the first number up to the last, that one left out: a record each for the
// executables of the product, if the package has any, and those for the files. Both numbers are multiples of
// kFilesInFolder.
void WritePackageList(const std::wstring& strPath, const std::wstring& strPackage, int nFirst, int nLast,
                      ListForm form);

// The path of the list in the package that begins with that file.
std::wstring SliceList(const std::wstring& strPackage, int nFirst);

// Writes a list of that many lines, every second one a remark and the others records of files that aren't there.
void WriteIdleList(const std::wstring& strPath, int nLines);

// Each ends the benchmark if what it asks for isn't so: a figure counts only if the work was done.
void Require(bool bTrue, const wchar_t* pszWhatIsWrong);
void RequireGone(const std::wstring& strPath);
void RequireThere(const std::wstring& strPath);
