// The version of the product's executable.
#include "install/FileVersion.h"

#include <stdlib.h>

#include "app/RunState.h"
#include "foundation/BoundFunction.h"
#include "foundation/Owners.h"

// The version library isn't among those that Windows takes from its own protected list. It is loaded by its full path,
// since a file of that name beside the setup must not be trusted.
struct CVersionLibrary
{
    CVersionLibrary() : module(LoadFromSystemFolder())
    {
        Bind(pfnGetSize, "GetFileVersionInfoSizeW");
        Bind(pfnGetInfo, "GetFileVersionInfoW");
        Bind(pfnQueryValue, "VerQueryValueW");
    }

    bool IsBound() const { return pfnGetSize != nullptr && pfnGetInfo != nullptr && pfnQueryValue != nullptr; }

    static HMODULE LoadFromSystemFolder()
    {
        CString strPath;
        GetSystemDirectoryW(strPath.GetBuffer(MAX_PATH), MAX_PATH);
        strPath.ReleaseBuffer();
        return LoadLibraryW(strPath + L"\\version.dll");
    }

    template <typename Function>
    void Bind(Function& pfn, const char* pszName)
    {
        pfn = FindFunction<Function>(module, pszName);
    }

    CLibraryOwner module;
    decltype(&GetFileVersionInfoSizeW) pfnGetSize;
    decltype(&GetFileVersionInfoW) pfnGetInfo;
    decltype(&VerQueryValueW) pfnQueryValue;
};

static void TakeFixedVersion(const VS_FIXEDFILEINFO& info)
{
    g_nVerMajor = HIWORD(info.dwFileVersionMS);
    g_nVerMinor = LOWORD(info.dwFileVersionMS);
    g_nVerFix = HIWORD(info.dwFileVersionLS);
    g_nVerBuild = LOWORD(info.dwFileVersionLS);
}

void ReadFileVersion(const wchar_t* pszPath)
{
    g_nVerMajor = g_nVerMinor = g_nVerFix = g_nVerBuild = 0;

    const CVersionLibrary library;
    if (!library.IsBound())
        return;
    DWORD dwIgnored;
    const DWORD cb = library.pfnGetSize(pszPath, &dwIgnored);
    if (cb == 0)
        return;

    void* pBlock = malloc(cb);
    VS_FIXEDFILEINFO* pInfo = nullptr;
    UINT cbInfo = 0;
    if (pBlock != nullptr && library.pfnGetInfo(pszPath, 0, cb, pBlock) &&
        library.pfnQueryValue(pBlock, L"\\", reinterpret_cast<void**>(&pInfo), &cbInfo) && pInfo != nullptr)
        TakeFixedVersion(*pInfo);
    free(pBlock);
}

unsigned int FoldVersion(unsigned int nMajor, unsigned int nMinor, unsigned int nFix, unsigned int nBuild)
{
    return ((nMajor * 100 + nMinor) * 100 + nFix) * 100 + nBuild;
}
