// No library is taken from the package's folder, which may be any folder that a user downloads to.
#include "tests/support/Windows.h"
#include "tests/support/World.h"

namespace
{

// What programs like this one are known to fall for. Those that Windows takes from its own protected list can't be
// planted there, and are left out.
const wchar_t kNames[] =
    L"version uxtheme dwmapi cryptbase profapi propsys apphelp ntmarta secur32 sspicli netapi32 winmm msimg32 linkinfo "
    L"ntshrui riched20 shfolder wintrust userenv comctl32 mpr wtsapi32 urlmon winhttp wininet dbghelp srvcli cscapi "
    L"netutils cfgmgr32 oleacc edputil textshaping iertutil wldp usp10 winsta devobj fxsst";

class PlantedLibrary : public World
{
protected:
    // What the programs of the package's folder took there: the traces, which go.
    std::wstring Taken() const
    {
        std::wstring strTaken;
        for (const std::wstring& strName : Split(kNames, L' '))
            for (const wchar_t* pszTrace : { L".called", L".loaded" })
                if (DeleteFileW(At(L"package\\" + strName + L".dll" + pszTrace).c_str()))
                    strTaken += strName + pszTrace + L" ";
        return strTaken;
    }
};

} // namespace

TEST_F(PlantedLibrary, IsTakenByACarelessProgramButByNoSetup)
{
    PutPackage();
    const std::wstring strVictim = At(L"package\\victim.exe");
    CopyOneFile(BuildFolder() + L"\\tests\\victim.exe", strVictim);
    std::wstring strAll;
    for (const std::wstring& strName : Split(kNames, L' '))
    {
        // Without this the platform's own libraries come before those beside a program, whatever the program does.
        SetKeyText(kUser, L"Software\\Wine\\DllOverrides", strName, L"native,builtin");
        CopyOneFile(BuildFolder() + L"\\tests\\planted.dll", At(L"package\\" + strName + L".dll"));
        strAll += strName + L".called " + strName + L".loaded ";
    }
    RunToEnd(strVictim + L" " + kNames);
    EXPECT_EQ(Taken(), strAll);
    RunToEnd(strVictim);
    const std::wstring strByPlatform = Taken(); // as for any program with windows
    EXPECT_EQ(strByPlatform.find(L"called"), std::wstring::npos);

    CProcessRun wizard(At(L"package\\setup.exe -install -v"));
    wizard.Start();
    EXPECT_TRUE(CWindowDriver(wizard.Id(), L"Lumacap Setup").IsVisible(IDOK));
    wizard.End();
    EXPECT_EQ(Taken(), strByPlatform);
    EXPECT_EQ(RunToEnd(At(L"package\\setup.exe -install -s")).nExitCode, 0u);
    EXPECT_EQ(Taken(), strByPlatform);
    CopyOneFile(BuildFolder() + L"\\dist\\Lumacap8Setup.exe", At(L"package\\Lumacap8Setup.exe"));
    EXPECT_EQ(RunToEnd(At(L"package\\Lumacap8Setup.exe -install -s")).nExitCode, 0u);
    EXPECT_EQ(Taken(), strByPlatform);
}
