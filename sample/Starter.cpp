// The portable starter. A portable install puts it beside the product's folder, whose name was the user's choice; so
// it starts the product in the first folder beside it that holds one, and hands on its own arguments.

#include <windows.h>

#include <iterator>
#include <wchar.h>

namespace
{

// `pszFolder` ends in a backslash. False if no folder in it holds the product.
bool FindProduct(const wchar_t* pszFolder, wchar_t (&szProduct)[2 * MAX_PATH])
{
    wchar_t szMask[MAX_PATH + 2];
    _snwprintf(szMask, std::size(szMask), L"%ls*", pszFolder);
    WIN32_FIND_DATAW found;
    const HANDLE hFind = FindFirstFileW(szMask, &found);
    if (hFind == INVALID_HANDLE_VALUE)
        return false;
    bool bProduct = false;
    do
    {
        _snwprintf(szProduct, std::size(szProduct), L"%ls%ls\\Lumacap8.exe", pszFolder, found.cFileName);
        bProduct = GetFileAttributesW(szProduct) != INVALID_FILE_ATTRIBUTES;
    } while (!bProduct && FindNextFileW(hFind, &found));
    FindClose(hFind);
    return bProduct;
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR pszArguments, int)
{
    wchar_t szFolder[MAX_PATH] = L"";
    wchar_t szProduct[2 * MAX_PATH];
    wchar_t szCommand[4096];
    GetModuleFileNameW(nullptr, szFolder, MAX_PATH);
    if (wchar_t* pszName = wcsrchr(szFolder, L'\\'))
        pszName[1] = L'\0';
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process;
    if (!FindProduct(szFolder, szProduct) ||
        _snwprintf(szCommand, std::size(szCommand), L"\"%ls\" %ls", szProduct, pszArguments) < 0 ||
        !CreateProcessW(szProduct, szCommand, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
    {
        MessageBoxW(nullptr, L"Lumacap 8 was not found in a folder beside this program.", L"Lumacap 8", MB_ICONERROR);
        return 1;
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return 0;
}
