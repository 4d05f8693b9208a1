// Puts one package file in its place, whatever stands there.
#include "install/FileReplacement.h"

#include <windows.h>

#include "foundation/FolderPaths.h"
#include "uninstall/BootList.h"

// A free name for a target that is in use. If the first one is in use too, it goes at the boot; there is one further
// name and no third.
static CString FreeOldName(const wchar_t* pszTarget)
{
    CString strOld = CString(pszTarget) + L".old";
    if (PathExists(strOld) && !DeleteFileW(strOld))
    {
        DeleteAtReboot(strOld);
        strOld += L"2";
        DeleteFileW(strOld);
    }
    return strOld;
}

// The two requests run in their order at the boot, so that the new file finds its place free.
static void LeaveForReboot(const wchar_t* pszSource, const wchar_t* pszTarget)
{
    DeleteAtReboot(pszTarget);
    const CString strNew = CString(pszTarget) + L".new";
    DeleteFileW(strNew);
    if (CopyFileW(pszSource, strNew, FALSE))
        ReplaceAtReboot(strNew, pszTarget);
}

// Makes way for a new file where one stands: deletes it, or renames it if it is in use, or leaves both to the boot.
static void ClearTarget(const wchar_t* pszSource, const wchar_t* pszTarget)
{
    if (DeleteProtectedFile(pszTarget))
        return;

    const CString strOld = FreeOldName(pszTarget);
    if (MoveFileW(pszTarget, strOld))
        DeleteAtReboot(strOld);
    else
        LeaveForReboot(pszSource, pszTarget);
}

// Where nothing stands the copy itself tells whether there is a source, which saves a look at each file of a first
// install. A target is touched only for a source that exists. The copy is tried even where the new file waits for the
// boot: a target that is still locked makes it fail.
static int ReplaceTarget(const wchar_t* pszSource, const wchar_t* pszTarget)
{
    if (PathExists(pszTarget))
    {
        if (!PathExists(pszSource))
            return FALSE;
        ClearTarget(pszSource, pszTarget);
    }
    return CopyFileW(pszSource, pszTarget, FALSE);
}

// A copy within one folder whose target is in use is left as it is, and counts as made.
static int ReplaceWithinFolder(const wchar_t* pszSource, const wchar_t* pszTarget)
{
    if (!PathExists(pszSource))
        return FALSE;
    if (!PathExists(pszSource)) // gone between the two looks
        return PathExists(pszTarget);
    if (PathExists(pszTarget) && !DeleteFileW(pszTarget))
        return TRUE;
    return ReplaceTarget(pszSource, pszTarget);
}

int ReplaceOneFile(const wchar_t* pszName, const wchar_t* pszSourceFolder, const wchar_t* pszTargetFolder,
                   const wchar_t* pszTargetName)
{
    const CString strSourceFolder = WithSeparator(pszSourceFolder);
    const CString strTargetFolder = WithSeparator(pszTargetFolder);
    const bool bSameFolder = _wcsicmp(strSourceFolder, strTargetFolder) == 0;
    if (bSameFolder && pszTargetName == nullptr)
        return TRUE;

    const CString strSource = strSourceFolder + pszName;
    const CString strTarget = strTargetFolder + (pszTargetName != nullptr ? pszTargetName : pszName);
    if (bSameFolder)
        return ReplaceWithinFolder(strSource, strTarget);
    return ReplaceTarget(strSource, strTarget);
}
