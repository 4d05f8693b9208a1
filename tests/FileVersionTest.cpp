// The version of an executable: read from real ones and from a copy with altered numbers, and folded into one number.
#include "install/FileVersion.h"

#include "app/RunState.h"
#include "tests/support/Corner.h"
#include "tests/support/Environment.h"
#include "tests/support/ImportHook.h"

using Version = std::vector<unsigned int>;

class FileVersion : public MachineCorner
{
protected:
    static Version Read(const std::wstring& strPath)
    {
        g_nVerMajor = g_nVerMinor = g_nVerFix = g_nVerBuild = 77;
        ReadFileVersion(strPath.c_str());
        return { g_nVerMajor, g_nVerMinor, g_nVerFix, g_nVerBuild };
    }
};

TEST_F(FileVersion, FourPartsComeFromTheFileVersion)
{
    EXPECT_EQ(Read(PackageFolder() + L"\\Lumacap8.exe"), (Version{ 8, 20, 1, 0 }));
    EXPECT_EQ(Read(CPackage::ProductOfVersion(L"1.100.0.0")), (Version{ 1, 100, 0, 0 }));

    // The product version keeps its numbers.
    std::string strBytes = ReadBytes(CPackage::ProductOfVersion(L"8.21.0.0"));
    auto* pInfo = reinterpret_cast<VS_FIXEDFILEINFO*>(&strBytes[strBytes.find("\xBD\x04\xEF\xFE")]);
    pInfo->dwFileVersionMS = 0xFFFE8001;
    pInfo->dwFileVersionLS = 0x7FFFFFFD;
    WriteBytes(At(L"altered.exe"), strBytes);
    EXPECT_EQ(Read(At(L"altered.exe")), (Version{ 65534, 32769, 32767, 65533 }));
}

TEST_F(FileVersion, FileWithoutAVersionReadsAsZeros)
{
    WriteBytes(At(L"text.exe"), "no executable");
    for (const std::wstring& strPath : { CPackage::ProductOfVersion(L"none"), At(L"text.exe"), At(L"missing.exe") })
        EXPECT_EQ(Read(strPath), (Version{ 0, 0, 0, 0 })) << testing::PrintToString(strPath);
}

TEST_F(FileVersion, VersionLibraryIsTheSystemsOwn)
{
    CCallHook load("KERNEL32.dll", "LoadLibraryW", &LoadLibraryW);
    Read(At(L"missing.exe"));
    EXPECT_EQ(load.Texts(), std::vector<std::wstring>{ L"C:\\windows\\system32\\version.dll" });
}

TEST_F(FileVersion, PartsFoldByTwoDigitsAndSpillAndWrap)
{
    EXPECT_EQ(FoldVersion(8, 20, 1, 0), 8200100u);
    EXPECT_EQ(FoldVersion(8, 19, 9, 99), 8190999u);
    EXPECT_EQ(FoldVersion(1, 100, 0, 0), FoldVersion(2, 0, 0, 0));
    EXPECT_EQ(FoldVersion(4294, 96, 72, 95), 4294967295u);
    EXPECT_EQ(FoldVersion(4294, 96, 72, 96), 0u);
    EXPECT_EQ(FoldVersion(65535, 65535, 65535, 65535), 1772459595u);
}
