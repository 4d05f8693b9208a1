// Every call that should work and doesn't fails the running test with the path and the system's error.
#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "foundation/Owners.h"
#include "tests/support/ProcessRun.h"

static void Demand(bool bDone, const char* pszAct, const std::wstring& strPath)
{
    if (!bDone)
        ADD_FAILURE() << pszAct << " " << testing::PrintToString(strPath) << ": error " << GetLastError();
}

static std::vector<WIN32_FIND_DATAW> EntriesOf(const std::wstring& strFolder)
{
    std::vector<WIN32_FIND_DATAW> entries;
    WIN32_FIND_DATAW found;
    const CFindOwner hFind(FindFirstFileW((strFolder + L"\\*").c_str(), &found));
    if (!hFind.IsOpen())
        return entries;
    do
        if (wcscmp(found.cFileName, L".") != 0 && wcscmp(found.cFileName, L"..") != 0)
            entries.push_back(found);
    while (FindNextFileW(hFind, &found));
    return entries;
}

static bool IsFolder(const WIN32_FIND_DATAW& entry)
{
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsThere(const std::wstring& strPath)
{
    return AttributesOf(strPath) != INVALID_FILE_ATTRIBUTES;
}

DWORD AttributesOf(const std::wstring& strPath)
{
    return GetFileAttributesW(strPath.c_str());
}

void SetAttributes(const std::wstring& strPath, DWORD nAttributes)
{
    Demand(SetFileAttributesW(strPath.c_str(), nAttributes), "attributes of", strPath);
}

void MakeFolder(const std::wstring& strPath)
{
    for (size_t nEnd = strPath.find(L'\\', 3); nEnd != std::wstring::npos; nEnd = strPath.find(L'\\', nEnd + 1))
        CreateDirectoryW(strPath.substr(0, nEnd).c_str(), nullptr);
    Demand(CreateDirectoryW(strPath.c_str(), nullptr) || GetLastError() == ERROR_ALREADY_EXISTS, "make", strPath);
}

void WriteBytes(const std::wstring& strPath, const std::string& strBytes)
{
    MakeFolder(strPath.substr(0, strPath.rfind(L'\\')));
    const CStreamOwner file(_wfopen(strPath.c_str(), L"wb"));
    Demand(file.IsOpen() && fwrite(strBytes.data(), 1, strBytes.size(), file) == strBytes.size(), "write", strPath);
}

std::string ReadBytes(const std::wstring& strPath)
{
    const DWORD nSharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE hFile = CreateFileW(strPath.c_str(), GENERIC_READ, nSharing, nullptr, OPEN_EXISTING, 0, nullptr);
    Demand(hFile != INVALID_HANDLE_VALUE, "read", strPath);
    if (hFile == INVALID_HANDLE_VALUE)
        return {};
    const CFileOwner file(hFile);
    std::string strBytes(GetFileSize(file, nullptr), '\0');
    DWORD cbRead = 0;
    Demand(ReadFile(file, &strBytes[0], static_cast<DWORD>(strBytes.size()), &cbRead, nullptr), "read", strPath);
    strBytes.resize(cbRead);
    return strBytes;
}

std::vector<std::string> ReadLines(const std::wstring& strPath)
{
    const std::string strBytes = ReadBytes(strPath);
    std::vector<std::string> lines;
    for (size_t nStart = 0, nEnd; nStart < strBytes.size(); nStart = nEnd + 1)
    {
        nEnd = std::min(strBytes.find('\n', nStart), strBytes.size());
        const bool bCarriageReturn = nEnd > nStart && strBytes[nEnd - 1] == '\r';
        lines.push_back(strBytes.substr(nStart, nEnd - nStart - bCarriageReturn));
    }
    return lines;
}

void CopyOneFile(const std::wstring& strFrom, const std::wstring& strTo)
{
    MakeFolder(strTo.substr(0, strTo.rfind(L'\\')));
    Demand(CopyFileW(strFrom.c_str(), strTo.c_str(), FALSE), "copy to", strTo);
}

void CopyTree(const std::wstring& strFrom, const std::wstring& strTo)
{
    MakeFolder(strTo);
    for (const WIN32_FIND_DATAW& entry : EntriesOf(strFrom))
    {
        const std::wstring strName = std::wstring(L"\\") + entry.cFileName;
        if (IsFolder(entry))
            CopyTree(strFrom + strName, strTo + strName);
        else
            Demand(CopyFileW((strFrom + strName).c_str(), (strTo + strName).c_str(), FALSE), "copy", strFrom + strName);
    }
}

static void AddBelow(const std::wstring& strFolder, const std::wstring& strPrefix, std::vector<std::wstring>& paths)
{
    for (const WIN32_FIND_DATAW& entry : EntriesOf(strFolder))
    {
        const std::wstring strPath = strPrefix + entry.cFileName;
        paths.push_back(IsFolder(entry) ? strPath + L"\\" : strPath);
        if (IsFolder(entry))
            AddBelow(strFolder + L"\\" + entry.cFileName, strPath + L"\\", paths);
    }
}

std::vector<std::wstring> ListTree(const std::wstring& strFolder)
{
    std::vector<std::wstring> paths;
    AddBelow(strFolder, L"", paths);
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::wstring TreeText(const std::wstring& strFolder)
{
    std::wstring strPaths;
    for (const std::wstring& strPath : ListTree(strFolder))
        strPaths += (strPaths.empty() ? L"" : L" ") + strPath;
    return strPaths;
}

static bool TryRemoveTree(const std::wstring& strPath)
{
    const DWORD nAttributes = AttributesOf(strPath);
    if (nAttributes == INVALID_FILE_ATTRIBUTES)
        return true;
    SetFileAttributesW(strPath.c_str(), FILE_ATTRIBUTE_NORMAL);
    if ((nAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
        return DeleteFileW(strPath.c_str());
    for (const WIN32_FIND_DATAW& entry : EntriesOf(strPath))
        if (!TryRemoveTree(strPath + L"\\" + entry.cFileName))
            return false;
    return RemoveDirectoryW(strPath.c_str());
}

void RemoveTree(const std::wstring& strPath)
{
    // An ended program's image stays busy for a moment.
    Demand(WaitUntil([&] { return TryRemoveTree(strPath); }, 3000), "remove", strPath);
}

CFileHold::CFileHold(const std::wstring& strPath, DWORD nSharing)
    : m_hFile(CreateFileW(strPath.c_str(), GENERIC_READ, nSharing, nullptr, OPEN_EXISTING, 0, nullptr))
{
    Demand(m_hFile != INVALID_HANDLE_VALUE, "hold", strPath);
}

void CFileHold::Release()
{
    if (m_hFile != INVALID_HANDLE_VALUE)
        CloseHandle(m_hFile);
    m_hFile = INVALID_HANDLE_VALUE;
}

CImageHold::CImageHold(const std::wstring& strPath)
{
    CopyOneFile(L"C:\\windows\\system32\\regsvr32.exe", strPath);
    m_hImage = LoadLibraryExW(strPath.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
    Demand(m_hImage != nullptr, "map", strPath);
}

void CImageHold::Release()
{
    if (m_hImage != nullptr)
        FreeLibrary(m_hImage);
    m_hImage = nullptr;
}
