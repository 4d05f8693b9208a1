#include "tools/pkgtool/FolderList.h"

#include <algorithm>
#include <set>
#include <vector>

#include "app/Product.h"
#include "foundation/DiskFiles.h"
#include "foundation/FolderPaths.h"
#include "foundation/InstallLog.h"
#include "foundation/Owners.h"
#include "foundation/TextEnds.h"
#include "tools/pkgtool/Output.h"
#include "tools/pkgtool/PackageFolder.h"

namespace
{
// Relative to the product's folder, in the order of their names: files of a folder ahead of its folders, a folder ahead
// of what it holds.
struct FolderContent
{
    std::vector<CString> files;
    std::vector<CString> folders;
};

struct Name
{
    CString strName;
    bool bFolder;
};
} // namespace

// What the system's limit leaves below the folder that installs of the usual kind go to.
static constexpr int kLongestPath = MAX_PATH - static_cast<int>(_countof(L"C:\\Program Files\\" PRODUCT_NAME L"\\"));
static constexpr int kLongestFolder = kLongestPath - 12; // the system keeps room for a short name in a new folder

static std::vector<Name> NamesIn(const CString& strFolder)
{
    std::vector<Name> names;
    WIN32_FIND_DATAW found;
    const CFindOwner find(FindFirstFileW(strFolder + L"\\*", &found));
    for (BOOL bMore = find.IsOpen(); bMore; bMore = FindNextFileW(find, &found))
        if (!IsDotName(found.cFileName))
            names.push_back({ found.cFileName, (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 });
    std::sort(names.begin(), names.end(),
              [](const Name& a, const Name& b)
              {
                  if (a.bFolder != b.bFolder)
                      return b.bFolder;
                  const int nOrder = a.strName.CompareNoCase(b.strName);
                  return nOrder != 0 ? nOrder < 0 : a.strName < b.strName;
              });
    return names;
}

static void Collect(const CString& strFolder, const CString& strBelow, FolderContent& content)
{
    for (const Name& name : NamesIn(strFolder + L"\\" + strBelow))
    {
        const CString strPath = strBelow + name.strName;
        (name.bFolder ? content.folders : content.files).push_back(strPath);
        if (name.bFolder)
            Collect(strFolder, strPath + L"\\", content);
    }
}

static bool IsDevice(const CString& strName)
{
    CString strStem = strName.Left((strName + L".").Find(L'.'));
    strStem.TrimRight(L" ");
    return wcsstr(L"|CON|PRN|AUX|NUL|COM1|COM2|COM3|COM4|COM5|COM6|COM7|COM8|COM9|COM\xB9|COM\xB2|COM\xB3|"
                  L"LPT1|LPT2|LPT3|LPT4|LPT5|LPT6|LPT7|LPT8|LPT9|LPT\xB9|LPT\xB2|LPT\xB3|",
                  FoldCase(L"|" + strStem + L"|")) != nullptr;
}

// Why the path can't stand in a list, or nothing. On a disk of another system there may be names that Windows has no
// files of.
static CString WhyUnsayable(const CString& strPath, int nLongest)
{
    for (int i = 0; i < strPath.GetLength(); ++i)
        if (strPath[i] > 0xFF)
            return L"its name goes beyond Latin-1";
    if (const CString strForbidden = FindForbidden(strPath, false); !strForbidden.IsEmpty())
        return L"its name has " + strForbidden;
    if (IsDevice(strPath.Mid(strPath.ReverseFind(L'\\') + 1)))
        return L"its name is a device's";
    if (strPath.GetLength() > nLongest)
        return L"its path is too long";
    if (EndsWith(strPath, L" ") || EndsWith(strPath, L"."))
        return L"its name ends in a blank or a dot";
    if (strPath.CompareNoCase(kSecondListName) == 0)
        return L"a removal would read it as a list";
    return CString();
}

// The list comes by itself, and the setup stays behind.
static bool IsLeftOut(const CString& strPath)
{
    return strPath.CompareNoCase(kFileListName) == 0 || strPath.CompareNoCase(L"setup.exe") == 0;
}

// The records of the list that stands which are to be kept.
static std::vector<ListLine> KeptRecords(const CString& strList)
{
    std::vector<ListLine> kept;
    for (const ListLine& line : ReadCheckedList(strList).lines)
        for (const wchar_t* pszPrefix : { kFileCopyIfAbsent, kFileCopyPortable, kFileOverwrite, kFileDel })
            if (StartsWith(line.strText, pszPrefix))
                kept.push_back(line);
    return kept;
}

// The files that the records bring, as a plan's folded paths.
static std::set<CString> FilesOf(const CString& strFolder, const std::vector<ListLine>& records)
{
    Package package = { strFolder, {} };
    package.list.lines = records;
    CFindings findings;
    Plan plan = { KIND_PORTABLE, {}, {}, findings };
    PlanInstall(package, plan);
    return plan.named;
}

static CString Line(const wchar_t* pszPrefix, const CString& strValue)
{
    return pszPrefix + strValue + L"\r\n";
}

// A file copied as itself makes its folder, parents and all; a renamed one finds the folders made. An install makes a
// folder one level deep, so that those without files come from the top. A removal takes each folder where it is named,
// so that all are named once more from the bottom.
static CString Compose(const CString& strRoot, const FolderContent& content, const std::set<CString>& brought)
{
    CString strList;
    std::set<CString> made;
    for (const CString& strFile : content.files)
    {
        if (IsLeftOut(strFile) || brought.count(FoldPath(strRoot + L"\\" + strFile)) != 0)
            continue;
        strList += Line(kFileCopy, strFile);
        for (CString strFolder = ParentFolder(strFile); !strFolder.IsEmpty(); strFolder = ParentFolder(strFolder))
            made.insert(strFolder);
    }
    if (!PathExists(strRoot + kUninstallerPath))
        strList += Line(kFileCopy, CString(L"setup.exe > ") + kUninstallerName);
    for (const CString& strFolder : content.folders)
        if (made.count(strFolder) == 0)
            strList += Line(kMakeDir, strFolder);
    for (auto folder = content.folders.rbegin(); folder != content.folders.rend(); ++folder)
        strList += Line(kMakeDir, *folder);
    return strList;
}

static bool TellUnsayable(const CString& strRoot, const FolderContent& content)
{
    bool bAny = false;
    std::set<CString> folded;
    for (const std::vector<CString>* pPaths : { &content.files, &content.folders })
        for (const CString& strPath : *pPaths)
        {
            CString strWhy = WhyUnsayable(strPath, pPaths == &content.files ? kLongestPath : kLongestFolder);
            if (!folded.insert(FoldCase(strPath)).second)
                strWhy = L"another name differs from it in its case only";
            if (strWhy.IsEmpty() && !PathExists(strRoot + L"\\" + strPath))
                strWhy = L"nothing is found under its name"; // as if it has a backslash
            if (strWhy.IsEmpty())
                continue;
            PrintLine(stderr, strPath + L": can't be said in a list: " + strWhy);
            bAny = true;
        }
    return bAny;
}

// An earlier list stays until this one stands whole.
static bool WriteList(const CString& strFolder, const CString& strPath, const CString& strList)
{
    wchar_t szNew[MAX_PATH];
    if (GetTempFileNameW(strFolder, L"lst", 0, szNew) == 0)
        return false;
    std::string strBytes;
    for (int i = 0; i < strList.GetLength(); ++i)
        strBytes += static_cast<char>(strList[i]);
    bool bWritten = false;
    {
        const CStreamOwner file(_wfopen(szNew, L"wb"));
        bWritten =
            file.IsOpen() && fwrite(strBytes.data(), 1, strBytes.size(), file) == strBytes.size() && fflush(file) == 0;
    }
    if (bWritten && MoveFileExW(szNew, strPath, MOVEFILE_REPLACE_EXISTING))
        return true;
    DeleteFileW(szNew);
    return false;
}

int WriteFolderList(const wchar_t* pszFolder, bool bAnew)
{
    const CString strFolder = CleanFolderArgument(pszFolder);
    const CString strPath = strFolder + kFileListPath;
    if (!PathExists(strFolder + L"\\"))
        return Refuse(CString(L"there is no folder ") + pszFolder);
    if (!PathExists(strFolder + kProductExePath))
        return Refuse(CString(L"there is no product in ") + pszFolder);
    if (!PathExists(strFolder + kUninstallerPath) && !PathExists(strFolder + L"\\setup.exe"))
        return Refuse(CString(L"there is neither setup.exe nor LumUnInst.exe in ") + pszFolder);
    if (PathExists(strPath) && !bAnew)
        return Refuse(CString(L"there is a list already, which --force writes anew, in ") + pszFolder);

    FolderContent content;
    Collect(strFolder, L"", content);
    if (TellUnsayable(strFolder, content))
    {
        PrintLine(stderr, CString(L"pkgtool: no list was written in ") + pszFolder);
        return EXIT_FINDINGS;
    }
    const std::vector<ListLine> kept = KeptRecords(strPath);
    CString strList = Compose(strFolder, content, FilesOf(strFolder, kept));
    for (const ListLine& record : kept)
        strList += record.strText + L"\r\n";
    if (!WriteList(strFolder, strPath, strList))
        return Refuse(CString(L"the list can't be written in ") + pszFolder);
    CString strSum;
    strSum.Format(L"%d records in the list of ", strList.Replace(L"\n", L"\n"));
    PrintLine(stdout, strSum + pszFolder);
    return EXIT_CLEAN;
}
