// Where the built program and the sample package stand, and private copies of the package.
#pragma once

#include <string>

// Folders without a trailing backslash, as this machine sees them.
std::wstring BuildFolder();
std::wstring SourceFolder(); // of the whole project
std::wstring PackageFolder();

// A copy of the sample package that a test may change. It belongs to the corner that it is made in.
class CPackage
{
public:
    explicit CPackage(const std::wstring& strFolder); // the folder is made

    const std::wstring& Folder() const { return m_strFolder; }
    std::wstring At(const std::wstring& strRelative) const { return m_strFolder + L"\\" + strRelative; }
    std::wstring Setup() const { return At(L"setup.exe"); }
    std::wstring List() const { return At(L"LumUnInst.log"); }

    // Another version of the product's executable: "8.19.9.0", "8.21.0.0", "1.100.0.0", "2.0.0.0", or "none" for one
    // without a version.
    void SetProductVersion(const std::wstring& strVersion) const;
    static std::wstring ProductOfVersion(const std::wstring& strVersion); // path of that executable

private:
    std::wstring m_strFolder;
};
