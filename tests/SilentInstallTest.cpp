// The built setup, started as a script starts it, over the sample package; then files, log, registry, links, boot list
// and exit code, looked at from outside.
#include <algorithm>

#include "tests/support/BoxDriver.h"
#include "tests/support/Environment.h"
#include "tests/support/InstallCorner.h"
#include "tests/support/PendingList.h"
#include "tests/support/ProcessRun.h"

const wchar_t kProduct[] = L"SOFTWARE\\Tandrel\\Lumacap 8";
const wchar_t kUninstall[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Lumacap 8";
const wchar_t kHandler[] = L"CLSID\\{6B0F4C52-9D3E-4A71-8C25-1E7A90D4B3F6}\\InprocServer32";

// What the sample package puts into the install folder.
const std::wstring kTree =
    L"Filters\\|Filters\\blur.dll|Filters\\sharpen.dll|HomePage.url|Lang\\|Lang\\English.txt|Lang\\French.txt|"
    L"Lang\\German.txt|License.txt|LumUnInst.exe|LumUnInst.log|Lumacap8.exe|Lumacap8Man.chm|Presets\\|Samples\\|"
    L"Samples\\About the samples.txt|Samples\\Checks.lcp|Samples\\Gradient.lcp|Samples\\Ring.lcp|ThumbLcp64.dll|"
    L"capff.json|lc8codec.dll|lc8core.dll|lcxshare.dll";

class SilentInstall : public InstallCorner
{
protected:
    SilentInstall() : m_package(At(L"package")), m_strTarget(At(L"Program Files\\Lumacap 8")) {}

    std::wstring Command(const std::wstring& strSwitches) const
    {
        return L"\"" + m_package.Setup() + L"\" " + strSwitches;
    }
    void Install(const std::wstring& strSwitches) const { EXPECT_EQ(RunToEnd(Command(strSwitches)), 0u); }

    std::wstring InTarget(const std::wstring& strName) const { return m_strTarget + L"\\" + strName; }
    std::string Package(const std::wstring& strName) const { return ReadBytes(m_package.At(strName)); }
    bool IsFromPackage(const wchar_t* pszName) const { return ReadBytes(InTarget(pszName)) == Package(pszName); }
    std::wstring TargetTree() const { return Join(ListTree(m_strTarget)); }
    static std::wstring Product(const wchar_t* pszName) { return KeyText(HKEY_LOCAL_MACHINE, kProduct, pszName); }
    static std::wstring Entry(const wchar_t* pszName) { return KeyText(HKEY_LOCAL_MACHINE, kUninstall, pszName); }

    const CPackage m_package;
    const std::wstring m_strTarget;
};

// The product that the setup starts reports to a file.
TEST_F(SilentInstall, FirstInstallGivesFilesLogLinksRegistryAndStartsTheProductInTheTargetFolder)
{
    CProcessRun run(Command(L"-s -autostart -runafter"));
    run.AddEnvironment(L"LUMACAP_REPORT", At(L"report.txt"));
    ASSERT_TRUE(run.Start());
    ASSERT_TRUE(run.WaitForEnd());
    EXPECT_EQ(run.ExitCode(), 0u);
    EXPECT_EQ(TargetTree(), kTree);
    EXPECT_TRUE(IsFromPackage(L"Lumacap8.exe") && IsFromPackage(L"Lang\\German.txt"));
    EXPECT_TRUE(ReadBytes(InTarget(L"License.txt")) == Package(L"agreement.txt"));
    const std::wstring strGroup = L"all\\Programs\\Lumacap 8";
    const std::wstring strLinks =
        strGroup + L"\\Lumacap 8.lnk|" + strGroup +
        L"\\Lumacap 8 Help.lnk|all\\Desktop\\Lumacap 8.lnk|all\\Programs\\Startup\\Lumacap 8.lnk";
    EXPECT_EQ(ReadBytes(InTarget(L"LumUnInst.log")), LogOf(Package(L"LumUnInst.log"), strGroup, strLinks));
    EXPECT_EQ(Links().size(), strLinks.size());
    EXPECT_EQ(Product(L"Path") + L" " + Product(L"AllUsers"), m_strTarget + L" B");
    EXPECT_EQ(Entry(L"UninstallString") + L" " + Entry(L"DisplayVersion"), InTarget(L"LumUnInst.exe 8.20.01"));
    EXPECT_TRUE(WaitUntil([&] { return KeyText(HKEY_CLASSES_ROOT, kHandler, L"") == InTarget(L"ThumbLcp64.dll"); }));
    EXPECT_TRUE(PendingEntries().empty());

    ASSERT_TRUE(WaitUntil([&] { return IsThere(At(L"report.txt")) && ReadLines(At(L"report.txt")).size() == 2; }));
    std::vector<std::string> lines = ReadLines(At(L"report.txt"));
    std::sort(lines.begin(), lines.end()); // the two run side by side
    EXPECT_EQ(lines[0], Bytes(L"\"" + InTarget(L"Lumacap8.exe\"\t") + m_strTarget));
    EXPECT_EQ(lines[1], Bytes(L"\"" + InTarget(L"Lumacap8.exe\" -regonly\t") + m_strTarget));
}

// As whole command lines, so that the runtime's own splitting takes part. * stands for the corner.
TEST_F(SilentInstall, FolderArrivesAsItStandsOnTheCommandLine)
{
    const wchar_t* const kCases[][2] = { { L"-s -INSTDIR *\\Tools", L"Program Files\\Lumacap 8" },
                                         { L"-s -instdir", L"Program Files\\Lumacap 8" },
                                         { L"-s -instdir \"*\\To ols\\\"", L"To ols" },
                                         { L"-instdir *\\Tools\\\" -s", L"Tools" },
                                         { L"-s -instport \"*\\Port able/\"", L"Port able" } };
    for (const auto& row : kCases)
    {
        RemoveTree(At(row[1]));
        std::wstring strSwitches = row[0];
        if (strSwitches.find(L'*') != std::wstring::npos)
            strSwitches.replace(strSwitches.find(L'*'), 1, Folder());
        Install(strSwitches);
        EXPECT_TRUE(IsThere(At(row[1]) + L"\\Lumacap8.exe")) << Bytes(strSwitches);
    }
}

// The first install is altered into what the choice of another group in the wizard would have left.
TEST_F(SilentInstall, OlderPackageFollowsItsPredecessorsGroupKindAndAutoStartWithoutAQuestion)
{
    Install(L"-s -autostart -nodeskico");
    RemoveTree(OfAll(L"Programs\\Lumacap 8"));
    const std::wstring strGroup = L"all\\Programs\\Imaging\\My tools";
    const std::wstring strStartup = L"all\\Programs\\Startup\\Lumacap 8.lnk";
    WriteBytes(At(strGroup + L"\\Lumacap 8.lnk"), "");
    WriteBytes(InTarget(L"LumUnInst.log"),
               LogOf(Package(L"LumUnInst.log"), strGroup, strGroup + L"\\Lumacap 8.lnk|" + strStartup));
    WriteBytes(InTarget(L"Lumacap7.chm"), "");
    WriteBytes(InTarget(L"Lang\\Dutch.lng"), "");
    WriteBytes(InTarget(L"user.txt"), "");
    m_package.SetProductVersion(L"8.19.9.0");
    Install(L"-s -nodeskico");

    EXPECT_EQ(Entry(L"DisplayVersion"), L"8.19.09");
    EXPECT_TRUE(IsFromPackage(L"Lumacap8.exe"));
    const std::wstring strLinks = strGroup + L"\\Lumacap 8.lnk|" + strGroup + L"\\Lumacap 8 Help.lnk|" + strStartup;
    EXPECT_EQ(ReadBytes(InTarget(L"LumUnInst.log")), LogOf(Package(L"LumUnInst.log"), strGroup, strLinks));
    EXPECT_EQ(Links().size(), strLinks.size());
    EXPECT_FALSE(IsThere(OfAll(L"Programs\\Lumacap 8")));
    EXPECT_EQ(Product(L"AllUsers"), L"B");
    // The list's folders, which held files when they should have gone, wait for the boot and survive it.
    RestartMachine();
    EXPECT_EQ(TargetTree(), kTree + L"|user.txt");
}

TEST_F(SilentInstall, RunningProductIsEndedAndReplaced)
{
    Install(L"-s");
    CProcessRun product(L"\"" + InTarget(L"Lumacap8.exe") + L"\" -ignoreclose -report " + At(L"running.txt"));
    ASSERT_TRUE(product.Start());
    ASSERT_TRUE(WaitUntil([&] { return IsThere(At(L"running.txt")); }));
    m_package.SetProductVersion(L"8.21.0.0");
    Install(L"-install -s");
    EXPECT_TRUE(product.WaitForEnd());
    EXPECT_TRUE(IsFromPackage(L"Lumacap8.exe"));
}

TEST_F(SilentInstall, BusyFilesMakeWayOrAreTakenOverAtTheBoot)
{
    Install(L"-s");
    WriteBytes(m_package.At(L"capff.json"), "newer");
    {
        const CImageHold image(InTarget(L"lc8core.dll"));
        const CFileHold file(InTarget(L"capff.json"), FILE_SHARE_READ);
        Install(L"-s");
        EXPECT_TRUE(IsFromPackage(L"lc8core.dll"));
        EXPECT_FALSE(IsFromPackage(L"capff.json"));
        EXPECT_EQ(ReadBytes(InTarget(L"capff.json.new")), "newer");
    }
    RestartMachine();
    EXPECT_EQ(TargetTree(), kTree);
    EXPECT_TRUE(IsFromPackage(L"capff.json"));
}

// Below a file nothing can be made.
TEST_F(SilentInstall, FolderThatCannotBeMadeEndsTheRunInSilenceWithLinksAndRegistry)
{
    WriteBytes(At(L"file"), "stays");
    Install(L"-s -instdir " + At(L"file\\Lumacap"));
    EXPECT_EQ(Product(L"Path"), At(L"file\\Lumacap"));
    EXPECT_EQ(Split(Links(), L'|').size(), 3u);
    EXPECT_EQ(ReadBytes(At(L"file")), "stays");
}

TEST_F(SilentInstall, DamagedPackageSpeaksOpensThePageAndEndsWithOne)
{
    CRegistryCorner browser;
    browser.Clear(HKEY_CLASSES_ROOT, L"http\\shell\\open");
    SetKeyText(HKEY_CLASSES_ROOT, L"http\\shell\\open\\command", L"",
               L"C:\\windows\\system32\\cmd.exe /c echo %1>" + At(L"page.txt"));
    m_package.SetProductVersion(L"none");
    for (const wchar_t* pszSwitches : { L"", L"-s" })
    {
        RemoveTree(At(L"page.txt"));
        CProcessRun run(Command(pszSwitches));
        ASSERT_TRUE(run.Start());
        const BOX box = ExpectBox(run.Id(), IDOK);
        EXPECT_EQ(box.strText, L"This setup files are damaged, installation aborted.\n\nPlease download the product "
                               L"again from http://www.lumacap.example/ and re-try the setup.");
        EXPECT_EQ(box.strCaption, L"Lumacap 8");
        ASSERT_TRUE(run.WaitForFamily());
        EXPECT_EQ(run.ExitCode(), 1u);
        EXPECT_EQ(ReadBytes(At(L"page.txt")), "http://www.lumacap.example/\r\n");
        EXPECT_FALSE(IsThere(At(L"Program Files")) || KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tandrel"));
        EXPECT_EQ(Links(), L"");
        m_package.SetProductVersion(L"8.21.0.0");
        RemoveTree(m_package.List());
    }
}
