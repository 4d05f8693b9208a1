// The state of a run: plain process-wide variables, set by switches, wizard pages and engines. The program is
// single-threaded, so nothing locks them.
#pragma once

#include <afx.h>

enum SilentMode
{
    SILENT_OFF = 0,    // wizard, questions allowed
    SILENT_ON = 1,     // no wizard
    SILENT_REPORT = 2, // silent install, then the wizard's last page
};

enum InstallKind
{
    KIND_CURRENT_USER = 0,
    KIND_ALL_USERS = 1,
    KIND_PORTABLE = 2,
};

extern int g_nSilent;            // a SilentMode
extern int g_nInstallKind;       // an InstallKind
extern CString g_strInstDir;     // target folder, no trailing backslash
extern CString g_strSourceDir;   // folder of the running executable, no trailing backslash
extern CString g_strGroup;       // name of the program group
extern CString g_strSfxName;     // folder of the self-extracting package, or empty
extern CString g_strNextText;    // text of the wizard's Next button in its template
extern CString g_strCancelText;  // the same of its Cancel button
extern int g_bFreshInstall;      // no earlier folder was found or given
extern int g_bUpgrade;           // the earlier installation is older, or nobody is to be asked
extern int g_bRunAfter;          // start the product, or restart the computer, at the end
extern int g_bAutoStart;         // start the product at logon
extern int g_bDeskIcon;          // a desktop icon is wanted
extern int g_bRebootNeeded;      // a replacement waits for the boot: what the platform returned for the last one
extern int g_bSettingsCopied;    // a settings file beside the package was taken over
extern unsigned int g_nVerMajor; // the version of the package, parts 1 to 4
extern unsigned int g_nVerMinor;
extern unsigned int g_nVerFix;
extern unsigned int g_nVerBuild;

extern RTL_OSVERSIONINFOEXW g_osVersion; // all zero but for its size if the system doesn't tell

// Functions bound by name at start; null on a system that lacks them.
extern decltype(&LookupPrivilegeValueW) g_pfnLookupPrivilegeValue;
extern decltype(&AdjustTokenPrivileges) g_pfnAdjustTokenPrivileges;
extern decltype(&OpenProcessToken) g_pfnOpenProcessToken;
extern decltype(&IsWow64Process) g_pfnIsWow64Process;
extern decltype(&IsWow64Process) g_pfnIsWow64ProcessOf; // of the library operation IsWow64Of alone
