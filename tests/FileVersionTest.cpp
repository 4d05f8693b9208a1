// The version of an executable: read from files with and without one, and folded into one number.
#include "install/FileVersion.h"

#include "app/RunState.h"
#include "foundation/BoundFunction.h"
#include "foundation/Owners.h"
#include "tests/support/Corner.h"
#include "tests/support/Environment.h"
#include "tests/support/ImportHook.h"

class FileVersion : public MachineCorner
{
};

static DWORD s_cbRefused;

static void* RefuseBlock(size_t cb)
{
    return cb == s_cbRefused ? nullptr : calloc(1, cb);
}

// Of the block that a file's version is read into.
static DWORD VersionBlockSize(const std::wstring& strPath)
{
    const CLibraryOwner library(LoadLibraryW(L"version.dll"));
    const auto pfnGetSize = FindFunction<decltype(&GetFileVersionInfoSizeW)>(library, "GetFileVersionInfoSizeW");
    return pfnGetSize(strPath.c_str(), nullptr);
}

TEST_F(FileVersion, FourPartsAreReadByTheSystemsLibraryAndAreZeroWithoutAVersion)
{
    std::string strBytes = ReadBytes(CPackage::ProductOfVersion(L"8.21.0.0")); // the product version keeps its numbers
    auto* pInfo = reinterpret_cast<VS_FIXEDFILEINFO*>(&strBytes[strBytes.find("\xBD\x04\xEF\xFE")]);
    pInfo->dwFileVersionMS = 0xFFFE8001;
    pInfo->dwFileVersionLS = 0x7FFFFFFD;
    WriteBytes(At(L"altered.exe"), strBytes);
    WriteBytes(At(L"text.exe"), "no executable");
    for (const std::wstring& strPath :
         { At(L"altered.exe"), CPackage::ProductOfVersion(L"none"), At(L"text.exe"), At(L"missing.exe") })
    {
        g_nVerMajor = g_nVerMinor = g_nVerFix = g_nVerBuild = 77;
        CCallHook load("KERNEL32.dll", "LoadLibraryW", &LoadLibraryW);
        ReadFileVersion(strPath.c_str());
        EXPECT_EQ(load.Texts(), std::vector<std::wstring>{ L"C:\\windows\\system32\\version.dll" });
        const std::vector<unsigned int> parts{ g_nVerMajor, g_nVerMinor, g_nVerFix, g_nVerBuild };
        EXPECT_EQ(parts,
                  strPath == At(L"altered.exe") ? (std::vector{ 65534u, 32769u, 32767u, 65533u }) : std::vector(4, 0u));
    }
}

TEST_F(FileVersion, AFileHasNoneWhereTheBlockForItIsntToBeHad)
{
    const std::wstring strPath = CPackage::ProductOfVersion(L"8.21.0.0");
    for (const DWORD cbRefused : { VersionBlockSize(strPath), 0ul })
    {
        s_cbRefused = cbRefused;
        g_nVerMajor = 77;
        {
            const CImportHook hook("msvcrt.dll", "malloc", &RefuseBlock);
            ReadFileVersion(strPath.c_str());
        }
        EXPECT_EQ(g_nVerMajor, cbRefused != 0 ? 0u : 8u);
    }
}

TEST_F(FileVersion, PartsFoldByTwoDigitsAndSpillAndWrap)
{
    EXPECT_EQ(FoldVersion(8, 19, 9, 99), 8190999u);
    EXPECT_EQ(FoldVersion(1, 100, 0, 0), FoldVersion(2, 0, 0, 0));
    EXPECT_EQ(FoldVersion(4294, 96, 72, 96), 0u);
}
