#include "foundation/FolderPaths.h"

#include "foundation/TextEnds.h"

CString CutTrailingBackslash(const wchar_t* pszPath)
{
    const CString strPath(pszPath);
    return EndsWith(strPath, L"\\") ? strPath.Left(strPath.GetLength() - 1) : strPath;
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
    if (!EndsWith(strFolder, L"\\") && !EndsWith(strFolder, L"/"))
        strFolder += L'\\';
    return strFolder;
}

bool IsDotName(const wchar_t* pszName)
{
    return wcscmp(pszName, L".") == 0 || wcscmp(pszName, L"..") == 0;
}
