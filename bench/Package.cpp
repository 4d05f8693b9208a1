// Makes what is measured. The content doesn't matter to any program; it differs so that no file system folds it.
#include "bench/Package.h"

#include <afx.h>

#include <stdio.h>
#include <stdlib.h>

#include <vector>

#include "app/Product.h"
#include "foundation/Owners.h"

static std::wstring Numbered(const wchar_t* pszFormat, int nNumber)
{
    wchar_t szName[32];
    swprintf_s(szName, 32, pszFormat, nNumber);
    return szName;
}

std::wstring PartFolder(int nFolder)
{
    return Numbered(L"Part%02d", nFolder);
}

std::wstring FileName(int nFile)
{
    return PartFolder(nFile / kFilesInFolder) + Numbered(L"\\file%04d.bin", nFile);
}

int FolderCount(int nFiles)
{
    return (nFiles + kFilesInFolder - 1) / kFilesInFolder;
}

[[noreturn]] static void Stop(const char* pszWhy, const std::wstring& strPath)
{
    fprintf(stderr, "%s: %ls\n", pszWhy, strPath.c_str());
    exit(1);
}

static bool IsThere(const std::wstring& strPath)
{
    return GetFileAttributesW(strPath.c_str()) != INVALID_FILE_ATTRIBUTES;
}

void Require(bool bTrue, const wchar_t* pszWhatIsWrong)
{
    if (!bTrue)
        Stop("the benchmark went wrong", pszWhatIsWrong);
}

void RequireGone(const std::wstring& strPath)
{
    if (IsThere(strPath))
        Stop("still there", strPath);
}

void RequireThere(const std::wstring& strPath)
{
    if (!IsThere(strPath))
        Stop("not there", strPath);
}

static void WriteWhole(const std::wstring& strPath, const void* pData, size_t cb)
{
    const CStreamOwner file(_wfopen(strPath.c_str(), L"wb"));
    if (!file.IsOpen() || fwrite(pData, 1, cb, file) != cb)
        Stop("can't be written", strPath);
}

void MakePackageFiles(const std::wstring& strFolder, int nFiles)
{
    CreateDirectoryW(strFolder.c_str(), nullptr);
    for (int i = 0; i < FolderCount(nFiles); ++i)
        CreateDirectoryW((strFolder + L"\\" + PartFolder(i)).c_str(), nullptr);

    std::vector<unsigned> content(kFileSize / sizeof(unsigned));
    unsigned nState = 1;
    for (unsigned& nWord : content)
        nWord = nState = nState * 1664525u + 1013904223u;
    for (int i = 0; i < nFiles; ++i)
    {
        content[0] = i;
        WriteWhole(strFolder + L"\\" + FileName(i), content.data(), kFileSize);
    }
}

static void AppendRecord(std::string& strList, const wchar_t* pszPrefix, const std::wstring& strValue)
{
    for (const wchar_t ch : pszPrefix + strValue)
        strList += static_cast<char>(ch);
    strList += "\r\n";
}

void WritePackageList(const std::wstring& strPath, const std::wstring& strPackage, int nFirst, int nLast, ListForm form)
{
    std::string strList;
    for (const wchar_t* pszName : { kProductExe, kUninstallerName })
        if (IsThere(strPackage + L"\\" + pszName))
            AppendRecord(strList, L"File Copy: ", pszName);
    const int nStep = form == BY_MASKS ? kFilesInFolder : 1;
    for (int i = nFirst; i < nLast; i += nStep)
        AppendRecord(strList, L"File Copy: ",
                     form == BY_MASKS ? PartFolder(i / kFilesInFolder) + L"\\*.bin" : FileName(i));
    for (int i = nFirst; i < nLast; i += kFilesInFolder)
        AppendRecord(strList, L"Make Dir: ", PartFolder(i / kFilesInFolder));
    WriteWhole(strPath, strList.data(), strList.size());
}

std::wstring SliceList(const std::wstring& strPackage, int nFirst)
{
    return strPackage + Numbered(L"\\list%04d.log", nFirst);
}

void WriteIdleList(const std::wstring& strPath, int nLines)
{
    const wchar_t* const prefixes[] = {
        L"A remark on ", L"File Copy: ",     L"A remark on ", L"File Overwrite: ",
        L"A remark on ", L"File Copy prt: ", L"A remark on ", L"File Del: ",
    };
    std::string strList;
    for (int i = 0; i < nLines; ++i)
        AppendRecord(strList, prefixes[i % 8], Numbered(L"missing%06d.bin", i));
    WriteWhole(strPath, strList.data(), strList.size());
}
