#include "foundation/ProcessLaunch.h"

#include <stdarg.h>
#include <stdio.h>

#include "app/RunState.h"
#include "foundation/BoundedText.h"
#include "foundation/Owners.h"

int RunAndWait(const wchar_t* pszCommandLine, const wchar_t* pszWorkingFolder, DWORD dwWaitMs)
{
    wchar_t szCommandLine[520]; // CreateProcessW may alter it
    CopyBounded(szCommandLine, pszCommandLine);

    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    const wchar_t* pszFolder =
        pszWorkingFolder != nullptr ? pszWorkingFolder : static_cast<const wchar_t*>(g_strInstDir);
    const BOOL bStarted =
        CreateProcessW(nullptr, szCommandLine, nullptr, nullptr, FALSE, 0, nullptr, pszFolder, &startup, &process);
    if (!bStarted)
        return 0;

    const CHandleOwner processOwner(process.hProcess);
    const CHandleOwner threadOwner(process.hThread);
    if (dwWaitMs != 0)
        WaitForSingleObject(processOwner, dwWaitMs);
    return bStarted;
}

int SetPrivilege(HANDLE hToken, const wchar_t* pszPrivilege, bool bEnable)
{
    if (g_pfnLookupPrivilegeValue == nullptr || g_pfnAdjustTokenPrivileges == nullptr)
        return 0;

    TOKEN_PRIVILEGES privileges = {};
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0].Attributes = bEnable ? SE_PRIVILEGE_ENABLED : 0;
    if (!g_pfnLookupPrivilegeValue(nullptr, pszPrivilege, &privileges.Privileges[0].Luid))
    {
        DiagPrint("LookupPrivilegeValue error: %u\n", static_cast<unsigned int>(GetLastError()));
        return 0;
    }
    if (!g_pfnAdjustTokenPrivileges(hToken, FALSE, &privileges, sizeof privileges, nullptr, nullptr))
    {
        DiagPrint("AdjustTokenPrivileges error: %u\n", static_cast<unsigned int>(GetLastError()));
        return 0;
    }
    // The call succeeds also when it changes nothing.
    if (GetLastError() == ERROR_NOT_ALL_ASSIGNED)
    {
        DiagPrint("The token does not have the specified privilege. \n");
        return 0;
    }
    return 1;
}

void DiagPrint(const char* pszFormat, ...)
{
    va_list arguments;
    va_start(arguments, pszFormat);
    vprintf_s(pszFormat, arguments);
    va_end(arguments);
}

void RestartComputer()
{
    if (g_pfnOpenProcessToken != nullptr)
    {
        CHandleOwner token;
        g_pfnOpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, token.Receive());
        if (token.IsOpen())
            SetPrivilege(token, L"SeShutdownPrivilege", true);
    }
    ExitWindowsEx(EWX_REBOOT,
                  SHTDN_REASON_FLAG_PLANNED | SHTDN_REASON_MAJOR_APPLICATION | SHTDN_REASON_MINOR_INSTALLATION);
}
