#include "install/FileReplacement.h"

#include "foundation/DiskFiles.h"
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

int ReplaceOneFile(const wchar_t* pszName, const wchar_t* pszSourceFolder, const wchar_t* pszTargetFolder,
                   const wchar_t* pszTargetName)
{
    const CString strSourceFolder = WithSeparator(pszSourceFolder);
    const CString strTargetFolder = WithSeparator(pszTargetFolder);
    const bool bSameFolder = _wcsicmp(strSourceFolder, strTargetFolder) == 0;
    if (bSameFolder && pszTargetName == nullptr)
        return TRUE;

    const CString strSource = strSourceFolder + pszName;
    if (!PathExists(strSource))
        return FALSE;

    const CString strTarget = strTargetFolder + (pszTargetName != nullptr ? pszTargetName : pszName);
    if (bSameFolder)
    {
        // Asked for anew, and not to be tidied away: the file can have gone since.
        if (!PathExists(strSource))
            return PathExists(strTarget);
        // A copy within one folder whose target is in use is left as it is, and counts as made.
        if (PathExists(strTarget) && !DeleteFileW(strTarget))
            return TRUE;
    }

    if (PathExists(strTarget))
        ClearTarget(strSource, strTarget);
    // Tried even where the new file waits for the boot: a target that is still locked makes it fail.
    return CopyFileW(strSource, strTarget, FALSE);
}
