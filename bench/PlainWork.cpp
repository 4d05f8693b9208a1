// Bare loops. They look at no result, as the engine's last step doesn't either.
#include "bench/PlainWork.h"

#include <windows.h>

#include <stdio.h>
#include <wchar.h>

#include "bench/Package.h"

void PlainCopy(const std::wstring& strFrom, const std::wstring& strTo, int nFirst, int nLast)
{
    CreateDirectoryW(strTo.c_str(), nullptr);
    for (int i = nFirst; i < nLast; i += kFilesInFolder)
        CreateDirectoryW((strTo + L"\\" + PartFolder(i / kFilesInFolder)).c_str(), nullptr);
    for (int i = nFirst; i < nLast; ++i)
        CopyFileW((strFrom + L"\\" + FileName(i)).c_str(), (strTo + L"\\" + FileName(i)).c_str(), FALSE);
}

void PlainRemove(const std::wstring& strFolder, int nFirst, int nLast)
{
    for (int i = nFirst; i < nLast; ++i)
        DeleteFileW((strFolder + L"\\" + FileName(i)).c_str());
    for (int i = nFirst; i < nLast; i += kFilesInFolder)
        RemoveDirectoryW((strFolder + L"\\" + PartFolder(i / kFilesInFolder)).c_str());
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
