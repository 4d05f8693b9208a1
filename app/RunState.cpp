// The global objects. They come into being in the order in which they stand here, before the framework starts the
// application, and go in the reverse order at every normal end of the process and every exit().
#include "app/RunState.h"

#include <exception>

#include "app/InstanceManager.h"
#include "app/Product.h"
#include "app/SetupApp.h"
#include "app/StartBindings.h"
#include "foundation/ProcessStop.h"

int g_nSilent = SILENT_ON;
int g_nInstallKind = KIND_ALL_USERS;
int g_bFreshInstall = 0;
int g_bUpgrade = 0;
int g_bRunAfter = 0;
int g_bAutoStart = 0;
int g_bDeskIcon = 1;
int g_bRebootNeeded = 0;
int g_bSettingsCopied = 0;
unsigned int g_nVerMajor = 0;
unsigned int g_nVerMinor = 0;
unsigned int g_nVerFix = 0;
unsigned int g_nVerBuild = 0;
RTL_OSVERSIONINFOEXW g_osVersion = {};
decltype(&LookupPrivilegeValueW) g_pfnLookupPrivilegeValue = nullptr;
decltype(&AdjustTokenPrivileges) g_pfnAdjustTokenPrivileges = nullptr;
decltype(&OpenProcessToken) g_pfnOpenProcessToken = nullptr;
decltype(&IsWow64Process) g_pfnIsWow64Process = nullptr;
decltype(&IsWow64Process) g_pfnIsWow64ProcessOf = nullptr;

namespace
{
// A step of the start: done where the object stands.
struct CStartStep
{
    explicit CStartStep(void (*pfnStep)()) { pfnStep(); }
};
} // namespace

// Before all objects: the constructor of the list of instances may throw.
static void StopOnUncaughtException()
{
    std::set_terminate(StopProcess);
}

static const CStartStep g_stopOnUncaughtException(StopOnUncaughtException);

static constexpr DWORD kAdditionalDataSize = 1024; // bytes; the product gives the same

// The list of instances comes first and goes last: the process stands in it for all of its life.
COXInstanceManager g_InstanceManager(kInstanceListName, kAdditionalDataSize, true);
CSetupApp theApp;
CString g_strInstDir;
CString g_strSourceDir;
CString g_strGroup;
CString g_strSfxName;

static void NameApplication()
{
    // Set ahead of the framework's own start, which would else take the name from another text.
    theApp.m_pszAppName = _wcsdup(kProductName);
}

static void ReadPresentSystem()
{
    ReadOsVersion(&g_osVersion);
}

static const CStartStep g_nameApplication(NameApplication);
static const CStartStep g_readPresentSystem(ReadPresentSystem);
static const CStartStep g_bindDynamicApis(BindDynamicApis);
CString g_strNextText;
CString g_strCancelText;
static const CStartStep g_bindLibraryApi(BindLibraryApi);
