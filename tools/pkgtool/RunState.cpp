// The variables of a run that the engine's readers fill or ask, and those that are bound beside them. This program has
// these alone of them, and no run.
#include "app/RunState.h"

int g_nInstallKind = KIND_ALL_USERS;
int g_bAutoStart;
CString g_strInstDir;
CString g_strGroup;
unsigned int g_nVerMajor;
unsigned int g_nVerMinor;
unsigned int g_nVerFix;
unsigned int g_nVerBuild;
decltype(&LookupPrivilegeValueW) g_pfnLookupPrivilegeValue;
decltype(&AdjustTokenPrivileges) g_pfnAdjustTokenPrivileges;
decltype(&OpenProcessToken) g_pfnOpenProcessToken;
decltype(&IsWow64Process) g_pfnIsWow64Process;
decltype(&IsWow64Process) g_pfnIsWow64ProcessOf;
RTL_OSVERSIONINFOEXW g_osVersion;
