#include "install/FileVersion.h"

#include <afx.h>
#include <stdlib.h>

#include "app/RunState.h"
#include "foundation/BoundFunction.h"
#include "foundation/Owners.h"

namespace
{
// The version library isn't among those that Windows takes from its own protected list. It is loaded by its full path,
// since a file of that name beside the setup must not be trusted. No path, no library.
class CVersionLibrary
{
public:
    CVersionLibrary() : m_module(LoadFromSystemFolder())
    {
        Bind(m_pfnGetSize, "GetFileVersionInfoSizeW");
        Bind(m_pfnGetInfo, "GetFileVersionInfoW");
        Bind(m_pfnQueryValue, "VerQueryValueW");
    }

    bool IsBound() const { return m_pfnGetSize != nullptr && m_pfnGetInfo != nullptr && m_pfnQueryValue != nullptr; }

private:
    static HMODULE LoadFromSystemFolder()
    {
        wchar_t szFolder[MAX_PATH];
        const UINT cch = GetSystemDirectoryW(szFolder, _countof(szFolder));
        return cch > 0 && cch < _countof(szFolder) ? LoadLibraryW(CString(szFolder) + L"\\version.dll") : nullptr;
    }

    template <typename Function>
    void Bind(Function& pfn, const char* pszName)
    {
        pfn = FindFunction<Function>(m_module, pszName);
    }

    CLibraryOwner m_module;

public:
    decltype(&GetFileVersionInfoSizeW) m_pfnGetSize;
    decltype(&GetFileVersionInfoW) m_pfnGetInfo;
    decltype(&VerQueryValueW) m_pfnQueryValue;
};
} // namespace

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
    const DWORD cb = library.m_pfnGetSize(pszPath, &dwIgnored);
    if (cb == 0)
        return;

    void* pBlock = malloc(cb);
    VS_FIXEDFILEINFO* pInfo = nullptr;
    UINT cbInfo = 0;
    if (pBlock != nullptr && library.m_pfnGetInfo(pszPath, 0, cb, pBlock) &&
        library.m_pfnQueryValue(pBlock, L"\\", reinterpret_cast<void**>(&pInfo), &cbInfo) && pInfo != nullptr)
        TakeFixedVersion(*pInfo);
    free(pBlock);
}

unsigned int FoldVersion(const Version& version)
{
    return ((version.nMajor * 100 + version.nMinor) * 100 + version.nFix) * 100 + version.nBuild;
}
