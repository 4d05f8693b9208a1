// These folders come from the environment as paths of the host, which this machine sees on its drive Z.
#include "tests/support/Environment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdlib.h>

#include "tests/support/Files.h"

static std::wstring HostFolder(const wchar_t* pszVariable)
{
    const wchar_t* pszFolder = _wgetenv(pszVariable);
    if (pszFolder == nullptr)
    {
        ADD_FAILURE() << testing::PrintToString(pszVariable) << " names no folder";
        return L"";
    }
    std::wstring strFolder = pszFolder[0] == L'/' ? L"Z:" : L"";
    strFolder += pszFolder;
    std::replace(strFolder.begin(), strFolder.end(), L'/', L'\\');
    return strFolder;
}

std::wstring BuildFolder()
{
    return HostFolder(L"LUMACAP_BUILD");
}

std::wstring SourceFolder()
{
    return HostFolder(L"LUMACAP_SOURCE");
}

std::wstring PackageFolder()
{
    return BuildFolder() + L"\\package";
}

CPackage::CPackage(const std::wstring& strFolder) : m_strFolder(strFolder)
{
    CopyTree(PackageFolder(), strFolder);
}

std::wstring CPackage::ProductOfVersion(const std::wstring& strVersion)
{
    return BuildFolder() + L"\\variants\\Lumacap8-" + strVersion + L".exe";
}

void CPackage::SetProductVersion(const std::wstring& strVersion) const
{
    CopyOneFile(ProductOfVersion(strVersion), At(L"Lumacap8.exe"));
}
