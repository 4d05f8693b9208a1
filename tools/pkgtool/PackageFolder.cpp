#include "tools/pkgtool/PackageFolder.h"

#include "app/Product.h"
#include "foundation/TextEnds.h"
#include "tools/pkgtool/Output.h"

CString CleanFolderArgument(const wchar_t* pszArgument)
{
    CString strFolder(pszArgument);
    if (EndsWith(strFolder, L"\""))
        strFolder = strFolder.Left(strFolder.GetLength() - 1);
    strFolder.TrimRight(L"\\/");
    return strFolder;
}

static const wchar_t* WhyUnreadable(const CString& strFolder)
{
    const DWORD dwAttributes = GetFileAttributesW(strFolder.IsEmpty() ? L"\\" : strFolder.GetString());
    if (dwAttributes == INVALID_FILE_ATTRIBUTES)
        return L"there is no folder ";
    if ((dwAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
        return L"this is a file, and no package's folder: ";
    return L"there is no " FILE_LIST_NAME L" that can be read in ";
}

bool ReadPackage(const wchar_t* pszArgument, Package& package)
{
    package.strFolder = CleanFolderArgument(pszArgument);
    package.list = ReadCheckedList(package.strFolder + kFileListPath);
    if (!package.list.bReadable)
        Refuse(WhyUnreadable(package.strFolder) + CString(pszArgument));
    return package.list.bReadable;
}

int Refuse(const CString& strReason)
{
    PrintLine(stderr, L"pkgtool: " + strReason);
    return EXIT_UNUSABLE;
}
