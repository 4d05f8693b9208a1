// The thumbnail handler's library as far as its registration goes: it enters and removes itself, but makes no pictures.

#include <windows.h>
#include <olectl.h>

#include <initializer_list>
#include <wchar.h>

namespace
{

#define HANDLER_CLSID L"{6B0F4C52-9D3E-4A71-8C25-1E7A90D4B3F6}"
const wchar_t kClassKey[] = L"CLSID\\" HANDLER_CLSID;
const wchar_t kServerKey[] = L"CLSID\\" HANDLER_CLSID L"\\InprocServer32";
// The shell's own id for thumbnail handlers.
const wchar_t kHandlerKey[] = L".lcp\\ShellEx\\{E357FCCD-A995-4576-B01F-234630154E96}";

HINSTANCE g_hInstance;

bool SetText(const wchar_t* pszKey, const wchar_t* pszValue, const wchar_t* pszText)
{
    const DWORD cb = static_cast<DWORD>((wcslen(pszText) + 1) * sizeof(wchar_t));
    return RegSetKeyValueW(HKEY_CLASSES_ROOT, pszKey, pszValue, REG_SZ, pszText, cb) == ERROR_SUCCESS;
}

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD dwReason, LPVOID)
{
    if (dwReason == DLL_PROCESS_ATTACH)
        g_hInstance = hInstance;
    return TRUE;
}

extern "C" HRESULT WINAPI DllRegisterServer()
{
    wchar_t szPath[MAX_PATH] = L"";
    GetModuleFileNameW(g_hInstance, szPath, MAX_PATH);
    const bool bWritten =
        SetText(kClassKey, nullptr, L"Lumacap thumbnail handler") && SetText(kServerKey, nullptr, szPath) &&
        SetText(kServerKey, L"ThreadingModel", L"Apartment") && SetText(kHandlerKey, nullptr, HANDLER_CLSID);
    return bWritten ? S_OK : SELFREG_E_CLASS;
}

extern "C" HRESULT WINAPI DllUnregisterServer()
{
    RegDeleteTreeW(HKEY_CLASSES_ROOT, kClassKey);
    // From the inside out, and no further than to the first key that somebody else put a key into.
    for (const wchar_t* pszKey : { kHandlerKey, L".lcp\\ShellEx", L".lcp" })
        if (RegDeleteKeyW(HKEY_CLASSES_ROOT, pszKey) != ERROR_SUCCESS)
            break;
    return S_OK;
}
