// The build folder comes from the environment as a path of the host, which this machine sees on its drive Z.
#include "tests/support/Environment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdlib.h>

#include "tests/support/Files.h"

std::wstring BuildFolder()
{
    const wchar_t* pszFolder = _wgetenv(L"LUMACAP_BUILD");
    if (pszFolder == nullptr)
    {
        ADD_FAILURE() << "LUMACAP_BUILD doesn't name the build folder";
        return L"";
    }
    std::wstring strFolder = pszFolder[0] == L'/' ? L"Z:" : L"";
    strFolder += pszFolder;
    std::replace(strFolder.begin(), strFolder.end(), L'/', L'\\');
    return strFolder;
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

void CPackage::AppendListLine(const std::string& strLine) const
{
    std::string strList = ReadBytes(List());
    if (!strList.empty() && strList.back() != '\n')
        strList += "\r\n";
    WriteBytes(List(), strList + strLine + "\r\n");
}
