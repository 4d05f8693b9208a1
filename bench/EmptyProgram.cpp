// A windowed program that does nothing for half a second, long enough for its working set to be read. Like setup.exe it
// imports the system's windows, graphics, registry, shell and COM libraries, by a function each.
#include <windows.h>

#include <objbase.h>
#include <shellapi.h>

static const void* volatile g_imports[] = {
    reinterpret_cast<const void*>(&MessageBoxW),    reinterpret_cast<const void*>(&GetStockObject),
    reinterpret_cast<const void*>(&RegCloseKey),    reinterpret_cast<const void*>(&ShellExecuteW),
    reinterpret_cast<const void*>(&CoUninitialize),
};

// With an argument it shows an empty window meanwhile.
int WINAPI wWinMain(HINSTANCE hInstance, HINSTANCE, LPWSTR pszArguments, int)
{
    const bool bWindow = *pszArguments != 0;
    const HWND hWnd = bWindow ? CreateWindowExW(0, L"STATIC", L"empty", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 500,
                                                400, nullptr, nullptr, hInstance, nullptr)
                              : nullptr;
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 500, 0);
    return g_imports[0] == nullptr || (bWindow && hWnd == nullptr);
}
