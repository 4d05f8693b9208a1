// Takes every variable of the run state back; what the start of the process finds out is put back from a copy.
#include "tests/support/ProgramState.h"

#include <stdlib.h>

#include "app/RunState.h"
#include "foundation/AssocExtensions.h"

static void ResetChoices()
{
    g_nSilent = SILENT_ON;
    g_nInstallKind = KIND_ALL_USERS;
    g_bDeskIcon = 1;
    for (int* pFlag :
         { &g_bFreshInstall, &g_bUpgrade, &g_bRunAfter, &g_bAutoStart, &g_bRebootNeeded, &g_bSettingsCopied })
        *pFlag = 0;
    for (unsigned int* pPart : { &g_nVerMajor, &g_nVerMinor, &g_nVerFix, &g_nVerBuild })
        *pPart = 0;
    for (CString* pText :
         { &g_strInstDir, &g_strSourceDir, &g_strGroup, &g_strSfxName, &g_strNextText, &g_strCancelText })
        pText->Empty();
    theApp.m_pMainWnd = nullptr;
    g_InstanceManager.ResetInstanceList();
    g_InstanceManager.AddInstance(GetCurrentProcessId());
}

void ResetProgramState()
{
    static const RTL_OSVERSIONINFOEXW osVersion = g_osVersion;
    static const auto pfnLookupPrivilegeValue = g_pfnLookupPrivilegeValue;
    static const auto pfnAdjustTokenPrivileges = g_pfnAdjustTokenPrivileges;
    static const auto pfnOpenProcessToken = g_pfnOpenProcessToken;
    static const auto pfnIsWow64Process = g_pfnIsWow64Process;
    static const auto pfnIsWow64ProcessOf = g_pfnIsWow64ProcessOf;
    static const std::vector<AssocExtension> extensions(g_aAssocExts, g_aAssocExts + kAssocExtCount);

    ResetChoices();
    g_osVersion = osVersion;
    g_pfnLookupPrivilegeValue = pfnLookupPrivilegeValue;
    g_pfnAdjustTokenPrivileges = pfnAdjustTokenPrivileges;
    g_pfnOpenProcessToken = pfnOpenProcessToken;
    g_pfnIsWow64Process = pfnIsWow64Process;
    g_pfnIsWow64ProcessOf = pfnIsWow64ProcessOf;
    for (int i = 0; i < kAssocExtCount; i++)
        g_aAssocExts[i].nFlag = extensions[i].nFlag;
}

CArguments::CArguments(std::vector<std::wstring> arguments)
    : m_arguments(std::move(arguments)), m_nEarlierCount(__argc), m_ppszEarlier(__wargv)
{
    for (std::wstring& strArgument : m_arguments)
        m_pointers.push_back(&strArgument[0]);
    m_pointers.push_back(nullptr);
    __argc = static_cast<int>(m_arguments.size());
    __wargv = m_pointers.data();
}

CArguments::~CArguments()
{
    __argc = m_nEarlierCount;
    __wargv = m_ppszEarlier;
}
