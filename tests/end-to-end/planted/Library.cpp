// Stands in for a library that somebody planted beside a program. It leaves a file beside itself when it is loaded, and
// another one when a function of the version library is called in it.
#include <windows.h>

#include <stdio.h>

static HINSTANCE g_hInstance;

static void LeaveTrace(const wchar_t* pszEnd)
{
    wchar_t szTrace[MAX_PATH + 8] = L"";
    GetModuleFileNameW(g_hInstance, szTrace, MAX_PATH);
    fclose(_wfopen(wcscat(szTrace, pszEnd), L"w"));
}

// The Wine layer's own USER32 asks for the version of each program that starts, in whatever library of that name it has
// got; what counts is a question about any other file.
extern "C" __declspec(dllexport) DWORD WINAPI GetFileVersionInfoSizeW(LPCWSTR pszFile, LPDWORD)
{
    wchar_t szProgram[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, szProgram, MAX_PATH);
    if (_wcsicmp(pszFile, szProgram) != 0)
        LeaveTrace(L".called");
    return 0;
}

BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD nReason, LPVOID)
{
    g_hInstance = hInstance;
    if (nReason == DLL_PROCESS_ATTACH)
        LeaveTrace(L".loaded");
    return TRUE;
}
