#include "uninstall/LogReplay.h"

#include "foundation/BoundedText.h"
#include "foundation/DiskFiles.h"
#include "foundation/FolderPaths.h"
#include "foundation/InstallLog.h"
#include "foundation/Owners.h"
#include "foundation/TextEnds.h"
#include "uninstall/BootList.h"

// Deletes what a file record names; with a prefix, only of records of that prefix.
static void RemoveFilesOfLine(const wchar_t* pszLine, const wchar_t* pszFolder, const wchar_t* pszPrefix)
{
    const wchar_t* const* ppszPrefixes = pszPrefix != nullptr ? &pszPrefix : kRemovedPrefixes;
    const size_t nPrefixes = pszPrefix != nullptr ? 1 : _countof(kRemovedPrefixes);
    for (size_t i = 0; i < nPrefixes; ++i)
    {
        if (!StartsWith(pszLine, ppszPrefixes[i]))
            continue;
        DeleteMatchingFiles(pszFolder, GetNameToRemove(pszLine, ppszPrefixes[i]));
        return;
    }
}

void RemoveLoggedFiles(const wchar_t* pszLog, const wchar_t* pszFolder, const wchar_t* pszPrefix)
{
    CInstallLogReader log(pszLog);
    while (log.ReadLine())
        RemoveFilesOfLine(log.Line(), pszFolder, pszPrefix);

    // All files go before any folder. The prefix restricts the files alone: an upgrade goes through the folders too.
    // Empty ones go, and the copy makes them anew; full ones go on the boot list, where they do no harm.
    log.Rewind();
    while (log.ReadLine())
    {
        const wchar_t* pszValue = FindRecordValue(log.Line(), kMakeDir);
        if (pszValue == nullptr)
            continue;
        const CString strPath = CString(pszFolder) + L"\\" + pszValue;
        if (!RemoveDirectoryW(strPath))
            DeleteAtReboot(strPath);
    }
}

// Stops at the first folder that holds anything else, or at the top, where the parent is the empty text.
static void RemoveFolderAndEmptyParents(const wchar_t* pszFolder)
{
    CString strFolder(pszFolder);
    while (RemoveDirectoryW(strFolder))
        strFolder = ParentFolder(strFolder);
}

void RemoveLoggedLinks(const wchar_t* pszLog)
{
    CInstallLogReader log(pszLog);
    while (log.ReadLine())
    {
        // A link that can't be deleted stays: links never go on the boot list.
        if (const wchar_t* pszLink = FindRecordValue(log.Line(), kShellLink))
            DeleteFileW(pszLink);
    }

    log.Rewind();
    while (log.ReadLine())
    {
        if (const wchar_t* pszFolder = FindRecordValue(log.Line(), kMadeDir))
            RemoveFolderAndEmptyParents(pszFolder);
    }
}

// Deletes one match, or leaves it to the boot list, whatever the reason: a folder goes there too.
static bool DeleteMatch(const wchar_t* pszPath)
{
    if (DeleteProtectedFile(pszPath))
        return true;
    DeleteAtReboot(pszPath);
    return false;
}

int DeleteMatchingFiles(const wchar_t* pszFolder, const wchar_t* pszMask)
{
    const CString strBase = *pszFolder != 0 ? WithSeparator(pszFolder) : CString();
    const CString strMask(pszMask);

    WIN32_FIND_DATAW match;
    CFindOwner find(FindFirstFileW(strBase + strMask, &match));
    if (!find.IsOpen())
        return 0;

    // Only the backslash counts here: a mask with a forward slash leads to a path without its subfolder, and that
    // wrong path goes on the boot list. "." and ".." are matches like any other. Neither is to be tidied away.
    const CString strMatchFolder = strBase + strMask.Left(strMask.ReverseFind(L'\\') + 1);
    int nDeleted = 0;
    do
    {
        if (DeleteMatch(strMatchFolder + match.cFileName))
            ++nDeleted;
    } while (FindNextFileW(find, &match));
    return nDeleted;
}

int CountFolderEntries(const wchar_t* pszMask, const wchar_t* pszFolder)
{
    wchar_t szPattern[520];
    FormatBounded(szPattern, L"%s\\%s", pszFolder, pszMask);

    WIN32_FIND_DATAW match;
    CFindOwner find(FindFirstFileW(szPattern, &match));
    if (!find.IsOpen())
        return 0;

    int nEntries = 0;
    do
    {
        if (!IsDotName(match.cFileName))
            ++nEntries;
    } while (FindNextFileW(find, &match));
    return nEntries;
}
