// Stands in for a library that somebody planted beside a program: once loaded it leaves a file beside itself.
#include <windows.h>

#include <wchar.h>

BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD nReason, LPVOID)
{
    if (nReason != DLL_PROCESS_ATTACH)
        return TRUE;
    wchar_t szTrace[MAX_PATH + 8] = L"";
    GetModuleFileNameW(hInstance, szTrace, MAX_PATH);
    wcscat_s(szTrace, MAX_PATH + 8, L".loaded");
    CloseHandle(CreateFileW(szTrace, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    return TRUE;
}
