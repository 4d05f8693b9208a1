#include "foundation/FolderPaths.h"

bool StartsWith(const wchar_t* pszText, const wchar_t* pszBeginning)
{
    return wcsncmp(pszText, pszBeginning, wcslen(pszBeginning)) == 0;
}

bool EndsWith(const CString& strText, wchar_t ch)
{
    return !strText.IsEmpty() && strText[strText.GetLength() - 1] == ch;
}

CString CutTrailingBackslash(const wchar_t* pszPath)
{
    const CString strPath(pszPath);
    return EndsWith(strPath, L'\\') ? strPath.Left(strPath.GetLength() - 1) : strPath;
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
    if (!EndsWith(strFolder, L'\\') && !EndsWith(strFolder, L'/'))
        strFolder += L'\\';
    return strFolder;
}

bool IsDotName(const wchar_t* pszName)
{
    return wcscmp(pszName, L".") == 0 || wcscmp(pszName, L"..") == 0;
}
