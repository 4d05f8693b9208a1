#include "app/StartBindings.h"

#include <string.h>

#include "app/RunState.h"
#include "foundation/BoundFunction.h"

// The modules are asked for and not loaded: the program imports them, so that they are there.
template <typename Function>
static void BindFromAdvapi(Function& pfn, const char* pszName)
{
    pfn = FindFunction<Function>(GetModuleHandleA("Advapi32.dll"), pszName);
}

static void BindIsWow64Process(decltype(&IsWow64Process)& pfn)
{
    pfn = FindFunction<decltype(&IsWow64Process)>(GetModuleHandleW(L"kernel32"), "IsWow64Process");
}

int ReadOsVersion(RTL_OSVERSIONINFOEXW* pVersion)
{
    memset(pVersion, 0, sizeof *pVersion);
    pVersion->dwOSVersionInfoSize = sizeof *pVersion;

    using RtlGetVersionFunction = LONG(WINAPI*)(RTL_OSVERSIONINFOEXW*);
    const auto pfnGetVersion = FindFunction<RtlGetVersionFunction>(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion");
    if (pfnGetVersion == nullptr)
        return 0;
    return pfnGetVersion(pVersion) == 0;
}

void BindDynamicApis()
{
    BindFromAdvapi(g_pfnLookupPrivilegeValue, "LookupPrivilegeValueW");
    BindFromAdvapi(g_pfnAdjustTokenPrivileges, "AdjustTokenPrivileges");
    BindFromAdvapi(g_pfnOpenProcessToken, "OpenProcessToken");
    BindIsWow64Process(g_pfnIsWow64Process);
}

void BindLibraryApi()
{
    BindIsWow64Process(g_pfnIsWow64ProcessOf);
}
