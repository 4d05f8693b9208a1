// No library is taken from the package's folder, which may be any folder that a user downloads to.
#include <gtest/gtest.h>
#include <windows.h>

#include "res/resource.h"
#include "tests/support/Corner.h"
#include "tests/support/DialogDriver.h"
#include "tests/support/Environment.h"
#include "tests/support/ProcessRun.h"

namespace
{

// What programs like this one are known to fall for. Those that Windows takes from its own protected list can't be
// planted there, and are left out.
const wchar_t* const kPlanted[] = {
    L"version",  L"uxtheme",  L"dwmapi",   L"cryptbase", L"profapi",     L"propsys",  L"apphelp",  L"ntmarta",
    L"secur32",  L"sspicli",  L"netapi32", L"winmm",     L"msimg32",     L"linkinfo", L"ntshrui",  L"srvcli",
    L"cscapi",   L"netutils", L"riched20", L"shfolder",  L"cfgmgr32",    L"wintrust", L"userenv",  L"oleacc",
    L"comctl32", L"mpr",      L"wtsapi32", L"edputil",   L"textshaping", L"urlmon",   L"iertutil", L"winhttp",
    L"wldp",     L"usp10",    L"wininet",  L"winsta",    L"dbghelp",     L"devobj",   L"fxsst",
};

class PlantedLibrary : public ProductCorner
{
protected:
    void SetUp() override
    {
        ProductCorner::SetUp();
        // Without this the platform's own libraries come before those beside a program, whatever the program does.
        const std::wstring strOverrides = L"Software\\Wine\\DllOverrides";
        m_registry.Keep(HKEY_CURRENT_USER, strOverrides);
        for (const wchar_t* pszName : kPlanted)
            SetKeyText(HKEY_CURRENT_USER, strOverrides, pszName, L"native,builtin");
    }

    static void PlantIn(const std::wstring& strFolder)
    {
        for (const wchar_t* pszName : kPlanted)
            CopyOneFile(BuildFolder() + L"\\tests\\planted.dll", strFolder + L"\\" + pszName + L".dll");
    }

    // The traces in the folder, each with a blank behind it: what was loaded there, and what was used. They go.
    static std::wstring TakenIn(const std::wstring& strFolder)
    {
        std::wstring strTaken;
        for (const std::wstring strName : kPlanted)
            for (const wchar_t* pszTrace : { L".loaded", L".called" })
                if (DeleteFileW((strFolder + L"\\" + strName + L".dll" + pszTrace).c_str()))
                    strTaken += strName + pszTrace + L" ";
        return strTaken;
    }

    // What it takes of a folder with all of them planted: without a name, what the platform takes for any program.
    std::wstring TakenByVictim(const std::wstring& strNames)
    {
        const std::wstring strFolder = At(L"victim");
        MakeFolder(strFolder);
        CopyOneFile(BuildFolder() + L"\\tests\\victim.exe", strFolder + L"\\victim.exe");
        PlantIn(strFolder);
        EXPECT_EQ(RunToEnd(strFolder + L"\\victim.exe " + strNames), 0u);
        return TakenIn(strFolder);
    }

private:
    CRegistryCorner m_registry;
};

} // namespace

TEST_F(PlantedLibrary, IsTakenAndUsedByACarelessProgram)
{
    std::wstring strNames;
    std::wstring strAll;
    for (const std::wstring strName : kPlanted)
    {
        strNames += strName + L".dll ";
        strAll += strName + L".loaded " + strName + L".called ";
    }
    EXPECT_EQ(TakenByVictim(strNames), strAll);
}

TEST_F(PlantedLibrary, BesideTheSetupIsNeitherTakenByASilentInstallNorByTheWizard)
{
    const std::wstring strByPlatform = TakenByVictim(L"");
    EXPECT_EQ(strByPlatform.find(L".called"), std::wstring::npos);

    const CPackage package(At(L"package"));
    PlantIn(package.Folder());
    EXPECT_EQ(RunToEnd(package.Setup() + L" -install -s"), 0u);
    EXPECT_TRUE(IsThere(m_strProduct + L"\\Lumacap8.exe"));
    EXPECT_EQ(TakenIn(package.Folder()), strByPlatform);

    CProcessRun wizard(package.Setup() + L" -install -v -instdir " + At(L"elsewhere"));
    ASSERT_TRUE(wizard.Start());
    const CDialogDriver frame(wizard.Id(), L"Lumacap");
    EXPECT_TRUE(frame.HasControl(IDOK));
    wizard.End();
    EXPECT_EQ(TakenIn(package.Folder()), strByPlatform);
}
