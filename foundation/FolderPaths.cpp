// Paths as texts.
#include "foundation/FolderPaths.h"

#include <io.h>
#include <windows.h>

CString CutTrailingBackslash(const wchar_t* pszPath)
{
    const CString strPath(pszPath);
    return strPath.Right(1) == L"\\" ? strPath.Left(strPath.GetLength() - 1) : strPath;
}

CString ParentFolder(const wchar_t* pszPath)
{
    const CString strPath = CutTrailingBackslash(pszPath);
    const int nBackslash = strPath.ReverseFind(L'\\');
    return nBackslash > 0 ? strPath.Left(nBackslash) : CString();
}

CString CutLastPart(const wchar_t* pszPath)
{
    const CString strPath = CutTrailingBackslash(pszPath);
    const int nBackslash = strPath.ReverseFind(L'\\');
    return nBackslash >= 0 ? strPath.Left(nBackslash) : strPath;
}

CString WithSeparator(const wchar_t* pszFolder)
{
    CString strFolder(pszFolder);
    const CString strLast = strFolder.Right(1);
    if (strLast != L"\\" && strLast != L"/")
        strFolder += L'\\';
    return strFolder;
}

bool PathExists(const wchar_t* pszPath)
{
    return _waccess(pszPath, 0) == 0;
}

bool IsDotName(const wchar_t* pszName)
{
    return wcscmp(pszName, L".") == 0 || wcscmp(pszName, L"..") == 0;
}

bool DeleteProtectedFile(const wchar_t* pszPath)
{
    // Most files have neither bit. Writing back what was read would cost up to a third of the deletion itself.
    const DWORD dwProtection = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN;
    const DWORD dwAttributes = GetFileAttributesW(pszPath);
    if (dwAttributes & dwProtection)
        SetFileAttributesW(pszPath, dwAttributes & ~dwProtection);
    return DeleteFileW(pszPath) != FALSE;
}

CString GetModulePath()
{
    CString strPath;
    GetModuleFileNameW(nullptr, strPath.GetBuffer(MAX_PATH), MAX_PATH);
    strPath.ReleaseBuffer();
    return strPath;
}

void CreateFoldersAbove(const wchar_t* pszPath, int nFirst)
{
    const CString strPath(pszPath);
    for (int i = strPath.Find(L'\\', nFirst); i >= 0; i = strPath.Find(L'\\', i + 1))
        CreateDirectoryW(strPath.Left(i), nullptr);
}
