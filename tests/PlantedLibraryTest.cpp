// No library is taken from the package's folder, which may be any folder that a user downloads to.
#include <gtest/gtest.h>
#include <windows.h>

#include "tests/support/Corner.h"
#include "tests/support/DialogDriver.h"
#include "tests/support/Environment.h"
#include "tests/support/ProcessRun.h"

namespace
{

const wchar_t* const kPlanted[] = {
    L"version.dll",  L"uxtheme.dll", L"dwmapi.dll",  L"cryptbase.dll", L"profapi.dll",   L"propsys.dll", L"apphelp.dll",
    L"ntmarta.dll",  L"secur32.dll", L"sspicli.dll", L"netapi32.dll",  L"winmm.dll",     L"msimg32.dll", L"linkinfo.dll",
    L"ntshrui.dll",  L"srvcli.dll",  L"cscapi.dll",  L"netutils.dll",  L"riched20.dll",  L"shfolder.dll", L"setupapi.dll",
    L"cfgmgr32.dll", L"wintrust.dll", L"userenv.dll", L"oleacc.dll",   L"textshaping.dll", L"comctl32.dll", L"mpr.dll", L"winspool.drv", L"wtsapi32.dll", L"edputil.dll", L"urlmon.dll", L"iertutil.dll", L"windows.storage.dll", L"wldp.dll", L"usp10.dll", L"shcore.dll", L"rpcrt4.dll",L"imm32.dll",L"comdlg32.dll",L"shlwapi.dll",
};

class PlantedLibrary : public ProductCorner
{
protected:
    void SetUp() override
    {
        ProductCorner::SetUp();
        m_registry.Keep(HKEY_CURRENT_USER, kOverrides);
        for (const wchar_t* pszName : kPlanted)
            SetKeyText(HKEY_CURRENT_USER, kOverrides, Stem(pszName), L"native,builtin");
    }
    void TearDown() override
    {
        ProductCorner::TearDown();
    }

    static std::wstring Stem(const std::wstring& strName)
    {
        return strName.size() > 4 && strName.compare(strName.size() - 4, 4, L".dll") == 0
                   ? strName.substr(0, strName.size() - 4)
                   : strName;
    }

    static void PlantIn(const std::wstring& strFolder)
    {
        for (const wchar_t* pszName : kPlanted)
            CopyOneFile(BuildFolder() + L"\\release\\tests\\planted.dll", strFolder + L"\\" + pszName);
    }

    // The planted libraries of the folder that were loaded, each with a blank behind it. Their traces go.
    static std::wstring LoadedIn(const std::wstring& strFolder)
    {
        std::wstring strLoaded;
        for (const wchar_t* pszName : kPlanted)
        {
            const std::wstring strTrace = strFolder + L"\\" + pszName + L".loaded";
            if (DeleteFileW(strTrace.c_str()))
                strLoaded += std::wstring(pszName) + L" ";
        }
        return strLoaded;
    }

    // Without this the platform's own libraries come before those beside a program, whatever the program does.
    const std::wstring kOverrides = L"Software\\Wine\\DllOverrides";
    CRegistryCorner m_registry;
};

} // namespace

TEST_F(PlantedLibrary, IsTakenByACarelessProgram)
{
    MakeFolder(Folder());
    CopyOneFile(BuildFolder() + L"\\release\\tests\\victim.exe", At(L"victim.exe"));
    PlantIn(Folder());
    std::wstring strNames;
    for (const wchar_t* pszName : kPlanted)
        strNames += std::wstring(pszName) + L" ";
    RunToEnd(At(L"victim.exe ") + strNames);
    EXPECT_EQ(strNames, LoadedIn(Folder()));
}

TEST_F(PlantedLibrary, BesideTheSetupIsNeverLoaded)
{
    const CPackage package(At(L"package"));
    PlantIn(package.Folder());
    EXPECT_EQ(0u, RunToEnd(package.Setup() + L" -install -s"));
    EXPECT_EQ(L"", LoadedIn(package.Folder()));

    CProcessRun wizard(package.Setup() + L" -install -v -instdir " + At(L"elsewhere"));
    ASSERT_TRUE(wizard.Start());
    {
        const CDialogDriver frame(wizard.Id(), L"Lumacap");
        frame.Command(IDCANCEL);
    }
    wizard.End();
    EXPECT_EQ(L"", LoadedIn(package.Folder()));
}
