// Bare loops. They look at no result, as the engine's last step doesn't either.
#include "bench/PlainWork.h"

#include <windows.h>

#include <stdio.h>
#include <wchar.h>

static void MakeFolders(const std::wstring& strTo, int nFirst, int nLast)
{
    CreateDirectoryW(strTo.c_str(), nullptr);
    for (int i = nFirst; i < nLast; i += kFilesInFolder)
        CreateDirectoryW((strTo + L"\\" + PartFolder(i / kFilesInFolder)).c_str(), nullptr);
}

static void RemoveFolders(const std::wstring& strFolder, int nFirst, int nLast)
{
    for (int i = nFirst; i < nLast; i += kFilesInFolder)
        RemoveDirectoryW((strFolder + L"\\" + PartFolder(i / kFilesInFolder)).c_str());
}

void PlainCopy(const std::wstring& strFrom, const std::wstring& strTo, int nFirst, int nLast)
{
    MakeFolders(strTo, nFirst, nLast);
    for (int i = nFirst; i < nLast; ++i)
        CopyFileW((strFrom + L"\\" + FileName(i)).c_str(), (strTo + L"\\" + FileName(i)).c_str(), FALSE);
}

static bool ReadWhole(const std::wstring& strPath)
{
    static char buffer[65536];
    const HANDLE hFile =
        CreateFileW(strPath.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    DWORD cbRead = 0;
    DWORD cbAll = 0;
    while (ReadFile(hFile, buffer, sizeof(buffer), &cbRead, nullptr) && cbRead > 0)
        cbAll += cbRead;
    CloseHandle(hFile);
    return cbAll == kFileSize;
}

bool PlainRead(const std::wstring& strFolder, const std::wstring& strOther, int nFiles)
{
    for (int i = 0; i < nFiles; ++i)
        if (!ReadWhole(strFolder + L"\\" + FileName(i)) || !ReadWhole(strOther + L"\\" + FileName(i)))
            return false;
    return true;
}

void PlainRemove(const std::wstring& strFolder, int nFirst, int nLast)
{
    for (int i = nFirst; i < nLast; ++i)
        DeleteFileW((strFolder + L"\\" + FileName(i)).c_str());
    RemoveFolders(strFolder, nFirst, nLast);
}

static bool Exists(const std::wstring& strPath)
{
    return GetFileAttributesW(strPath.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// Calls act with the relative path of each file that the patterns of the list's form meet.
template <typename Act>
static void ForEachMatch(const std::wstring& strFolder, int nFirst, int nLast, ListForm form, Act act)
{
    const int nStep = form == BY_MASKS ? kFilesInFolder : 1;
    for (int i = nFirst; i < nLast; i += nStep)
    {
        const std::wstring strPart = PartFolder(i / kFilesInFolder) + L"\\";
        WIN32_FIND_DATAW match;
        const HANDLE hFind =
            FindFirstFileW((strFolder + L"\\" + (form == BY_MASKS ? strPart + L"*.bin" : FileName(i))).c_str(), &match);
        do
            act(strPart + match.cFileName);
        while (FindNextFileW(hFind, &match));
        FindClose(hFind);
    }
}

void DemandedCopy(const std::wstring& strFrom, const std::wstring& strTo, int nFirst, int nLast, ListForm form)
{
    MakeFolders(strTo, nFirst, nLast);
    ForEachMatch(strFrom, nFirst, nLast, form,
                 [&](const std::wstring& strName)
                 {
                     const std::wstring strSource = strFrom + L"\\" + strName;
                     const std::wstring strTarget = strTo + L"\\" + strName;
                     if (Exists(strSource) && !Exists(strTarget))
                         CopyFileW(strSource.c_str(), strTarget.c_str(), FALSE);
                 });
}

void DemandedRemove(const std::wstring& strFolder, int nFirst, int nLast, ListForm form)
{
    ForEachMatch(strFolder, nFirst, nLast, form,
                 [&](const std::wstring& strName)
                 {
                     if (Exists(strFolder + L"\\" + strName))
                         DeleteFileW((strFolder + L"\\" + strName).c_str());
                 });
    RemoveFolders(strFolder, nFirst, nLast);
}

void PlainWalk(const std::wstring& strList, const std::wstring& strFolder,
               std::initializer_list<const wchar_t*> prefixes)
{
    wchar_t szLine[512];
    WIN32_FIND_DATAW found;
    FILE* pList = _wfopen(strList.c_str(), L"r");
    while (pList != nullptr && fgetws(szLine, 512, pList) != nullptr)
    {
        szLine[wcscspn(szLine, L"\n")] = 0;
        for (const wchar_t* pszPrefix : prefixes)
        {
            if (wcsncmp(szLine, pszPrefix, wcslen(pszPrefix)) != 0)
                continue;
            const HANDLE hFind = FindFirstFileW((strFolder + L"\\" + (szLine + wcslen(pszPrefix))).c_str(), &found);
            if (hFind != INVALID_HANDLE_VALUE)
                FindClose(hFind);
        }
    }
    if (pList != nullptr)
        fclose(pList);
}
