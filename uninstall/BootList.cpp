#include "uninstall/BootList.h"

#include "app/RunState.h"
#include "foundation/ProcessStop.h"

static constexpr wchar_t kDeletionKey[] = L"NUL=";

// Adds a deletion behind the entries of the profile section. Returns what WritePrivateProfileSectionW gave. A section
// that would be too long ends the process.
static BOOL AddProfileDeletion(const wchar_t* pszPath)
{
    wchar_t szSection[kBootSectionCapacity];
    szSection[0] = 0;
    const DWORD cch = GetPrivateProfileSectionW(kBootSection, szSection, _countof(szSection), kBootProfile);

    const size_t cchKey = wcslen(kDeletionKey);
    const size_t cchPath = wcslen(pszPath);
    const size_t nEnd = cch + cchKey + cchPath + 1;
    if (nEnd >= _countof(szSection))
        StopProcess();
    wmemcpy(szSection + cch, kDeletionKey, cchKey);
    wmemcpy(szSection + cch + cchKey, pszPath, cchPath + 1);
    szSection[nEnd] = 0;
    return WritePrivateProfileSectionW(kBootSection, szSection, kBootProfile);
}

void DeleteAtReboot(const wchar_t* pszPath)
{
    if (!MoveFileExW(pszPath, nullptr, MOVEFILE_DELAY_UNTIL_REBOOT))
        AddProfileDeletion(pszPath);
}

void ReplaceAtReboot(const wchar_t* pszNewFile, const wchar_t* pszTarget)
{
    g_bRebootNeeded = MoveFileExW(pszNewFile, pszTarget, MOVEFILE_DELAY_UNTIL_REBOOT);
    // The profile entry deletes the new file and doesn't name the target. No replacement is ever written there.
    if (!g_bRebootNeeded)
        g_bRebootNeeded = AddProfileDeletion(pszNewFile);
}
