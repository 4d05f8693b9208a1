#include "install/InstallSwitches.h"

#include <afx.h>
#include <stdlib.h>

#include "app/RunState.h"
#include "foundation/TextEnds.h"

// A quoted folder that ends in a backslash reaches the program with its closing quote still on it, since the runtime
// reads the two as a literal quote. Both are cut.
static CString CleanFolderArgument(const wchar_t* pszArgument)
{
    CString strFolder(pszArgument);
    if (EndsWith(strFolder, L"\""))
        strFolder = strFolder.Left(strFolder.GetLength() - 1);
    if (EndsWith(strFolder, L"\\") || EndsWith(strFolder, L"/"))
        strFolder = strFolder.Left(strFolder.GetLength() - 1);
    return strFolder;
}

// Handles the switches that begin with "-inst"; -install lands here too, and is passed over. The folder in the next
// argument isn't skipped by the scan: it is tested as a switch like any other.
static void ScanFolderSwitch(int nIndex, CString& strFolder)
{
    const bool bPortable = wcscmp(__wargv[nIndex], L"-instport") == 0;
    if (bPortable)
        g_nInstallKind = KIND_PORTABLE;
    if ((bPortable || wcscmp(__wargv[nIndex], L"-instdir") == 0) && nIndex + 1 < __argc)
        strFolder = CleanFolderArgument(__wargv[nIndex + 1]);
}

void ScanInstallSwitches()
{
    CString strFolder;
    for (int i = 1; i < __argc; ++i)
    {
        const wchar_t* pszArgument = __wargv[i];
        if (StartsWith(pszArgument, L"-inst"))
            ScanFolderSwitch(i, strFolder);
        else if (_wcsicmp(pszArgument, L"-runafter") == 0)
            g_bRunAfter = 1;
        // Never the case, since the kind starts at all users: the switch is accepted and has no effect of its own.
        else if (g_nInstallKind == KIND_CURRENT_USER && _wcsicmp(pszArgument, L"-allusers") == 0)
            g_nInstallKind = KIND_ALL_USERS;
        else if (_wcsicmp(pszArgument, L"-autostart") == 0)
            g_bAutoStart = 1;
        else if (_wcsicmp(pszArgument, L"-nodeskico") == 0)
            g_bDeskIcon = 0;
    }
    if (!strFolder.IsEmpty())
        g_strInstDir = strFolder;
}
