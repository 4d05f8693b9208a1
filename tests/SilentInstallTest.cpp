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
const wchar_t kGroupLinks[] = L"all\\Programs\\Lumacap 8\\Lumacap 8.lnk|all\\Programs\\Lumacap 8\\Lumacap 8 Help.lnk";

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

    // Starts the setup; the product that it starts reports to a file.
    void StartReporting(CProcessRun& run) const
    {
        run.AddEnvironment(L"LUMACAP_REPORT", At(L"report.txt"));
        ASSERT_TRUE(run.Start());
        ASSERT_TRUE(run.WaitForEnd());
        EXPECT_EQ(run.ExitCode(), 0u);
    }

    const CPackage m_package;
    const std::wstring m_strTarget;
};

TEST_F(SilentInstall, FirstInstallGivesFilesLogLinksRegistryAndTheProductsOwnFirstRun)
{
    CProcessRun run(Command(L"-s -autostart"));
    StartReporting(run);
    ASSERT_TRUE(run.WaitForFamily());

    EXPECT_EQ(TargetTree(), kTree);
    EXPECT_TRUE(IsFromPackage(L"Lumacap8.exe") && IsFromPackage(L"Lang\\German.txt"));
    EXPECT_TRUE(ReadBytes(InTarget(L"License.txt")) == Package(L"agreement.txt"));
    const std::wstring strLinks = kGroupLinks + std::wstring(L"|all\\Desktop\\Lumacap 8.lnk|all\\Programs\\Startup\\"
                                                             L"Lumacap 8.lnk");
    EXPECT_EQ(ReadBytes(InTarget(L"LumUnInst.log")),
              LogOf(Package(L"LumUnInst.log"), L"all\\Programs\\Lumacap 8", strLinks));
    EXPECT_EQ(Links().size(), strLinks.size());
    EXPECT_EQ(Product(L"Path") + L" " + Product(L"AllUsers"), m_strTarget + L" B");
    EXPECT_EQ(Entry(L"UninstallString") + L" " + Entry(L"DisplayVersion"), InTarget(L"LumUnInst.exe 8.20.01"));
    EXPECT_EQ(KeyText(HKEY_CLASSES_ROOT, kHandler, L""), InTarget(L"ThumbLcp64.dll"));
    EXPECT_EQ(ReadBytes(At(L"report.txt")),
              Bytes(L"\"" + InTarget(L"Lumacap8.exe\" -regonly\t") + m_strTarget + L"\r\n"));
    EXPECT_TRUE(PendingEntries().empty());
}

// As whole command lines, so that the runtime's own splitting takes part. * stands for the corner.
TEST_F(SilentInstall, FolderArrivesAsItStandsOnTheCommandLine)
{
    const wchar_t* const kCases[][2] = {
        { L"-s -instdir \"*\\To ols\\\"", L"To ols" },  { L"-s -instdir \"*\\To ols/\"", L"To ols" },
        { L"-s -instdir \"*\\To ols\"", L"To ols" },    { L"-s -instdir *\\Tools", L"Tools" },
        { L"-s -instdir *\\Tools\\", L"Tools" },        { L"-instdir *\\Tools\\\" -s", L"Tools" },
        { L"-s -instport \"*\\To ols\\\"", L"To ols" }, { L"-instdir *\\A -instdir *\\Tools -s", L"Tools" },
        { L"-s -INSTDIR *\\Tools", L"Program Files" },  { L"-s -instdir", L"Program Files" },
    };
    for (const auto& row : kCases)
    {
        for (const wchar_t* pszName : { L"To ols", L"Tools", L"A", L"Program Files" })
            RemoveTree(At(pszName));
        RemoveKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tandrel");
        RemoveKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\Lumacap8.exe");
        std::wstring strSwitches = row[0];
        for (size_t n; (n = strSwitches.find(L'*')) != std::wstring::npos;)
            strSwitches.replace(n, 1, Folder());
        Install(strSwitches);
        for (const wchar_t* pszName : { L"To ols", L"Tools", L"A", L"Program Files" })
            EXPECT_EQ(IsThere(At(pszName)), wcscmp(pszName, row[1]) == 0) << Bytes(strSwitches);
    }
}

TEST_F(SilentInstall, NewerSameAndOlderPackagesAllGoInWithoutAQuestion)
{
    const wchar_t* const kCases[][2] = { { L"8.19.9.0", L"8.19.09" }, { L"8.21.0.0", L"8.21.00" },
                                         { L"8.21.0.0", L"8.21.00" }, { L"8.19.9.0", L"8.19.09" },
                                         { L"2.0.0.0", L"2.00.00" },  { L"1.100.0.0", L"1.100.00" } };
    for (const auto& row : kCases)
    {
        m_package.SetProductVersion(row[0]);
        Install(L"-s");
        EXPECT_EQ(Entry(L"DisplayVersion"), row[1]);
        EXPECT_TRUE(IsFromPackage(L"Lumacap8.exe")) << Bytes(row[0]);
        EXPECT_EQ(TargetTree(), kTree);
        EXPECT_EQ(Split(Links(), L'|').size(), 3u);
    }
}

// The first install is altered into what the choice of another group in the wizard would have left.
TEST_F(SilentInstall, RepeatedInstallFollowsItsPredecessorsGroupKindAndAutoStart)
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
    Install(L"-s -nodeskico");

    const std::wstring strLinks = strGroup + L"\\Lumacap 8.lnk|" + strGroup + L"\\Lumacap 8 Help.lnk|" + strStartup;
    EXPECT_EQ(ReadBytes(InTarget(L"LumUnInst.log")), LogOf(Package(L"LumUnInst.log"), strGroup, strLinks));
    EXPECT_EQ(Links().size(), strLinks.size());
    EXPECT_FALSE(IsThere(OfAll(L"Programs\\Lumacap 8")));
    EXPECT_EQ(Product(L"AllUsers"), L"B");
    EXPECT_EQ(TargetTree(), kTree + L"|user.txt");
    // The list's folders, which held files when they should have gone, wait for the boot and survive it.
    RestartMachine();
    EXPECT_EQ(TargetTree(), kTree + L"|user.txt");
}

TEST_F(SilentInstall, PortableInstallLeavesFilesAndTheStarterBesideThem)
{
    Install(L"-s -autostart -instport " + At(L"usb\\Lumacap"));
    EXPECT_EQ(Join(ListTree(At(L"usb\\Lumacap"))), kTree + L"|x64\\|x64\\lc8simd.dll");
    EXPECT_EQ(Join(ListTree(At(L"usb"))).substr(0, 10), L"Lumacap\\|L");
    EXPECT_TRUE(ReadBytes(At(L"usb\\StartLC8.exe")) == Package(L"StartLC8.exe"));
    EXPECT_EQ(ReadBytes(At(L"usb\\Lumacap\\LumUnInst.log")), Package(L"LumUnInst.log") + "\r\n");
    EXPECT_EQ(Links(), L"");
    for (const wchar_t* pszKey :
         { L"SOFTWARE\\Tandrel", kUninstall, L"SOFTWARE\\Classes\\Lumacap.8", L"SOFTWARE\\Mozilla" })
        EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, pszKey)) << Bytes(pszKey);
    EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, kHandler));
}

TEST_F(SilentInstall, FolderOnACleanMachineMakesAnInstallForTheCurrentUser)
{
    Install(L"-s -autostart -instdir " + At(L"Tools"));
    EXPECT_EQ(Join(ListTree(At(L"Tools"))), kTree);
    EXPECT_EQ(Product(L"AllUsers"), L"A");
    EXPECT_EQ(Links(), L"user\\Desktop\\Lumacap 8.lnk|user\\Programs\\Lumacap 8\\Lumacap 8 Help.lnk|"
                       L"user\\Programs\\Lumacap 8\\Lumacap 8.lnk");
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
    SetAttributes(InTarget(L"HomePage.url"), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    WriteBytes(m_package.At(L"HomePage.url"), "newer");
    WriteBytes(m_package.At(L"capff.json"), "newer");
    {
        const CImageHold image(InTarget(L"lc8core.dll"));
        const CFileHold file(InTarget(L"capff.json"), FILE_SHARE_READ);
        Install(L"-s");
        EXPECT_TRUE(IsFromPackage(L"lc8core.dll"));
        EXPECT_FALSE(IsFromPackage(L"capff.json"));
        EXPECT_EQ(ReadBytes(InTarget(L"capff.json.new")), "newer");
    }
    EXPECT_TRUE(IsFromPackage(L"HomePage.url"));
    EXPECT_EQ(AttributesOf(InTarget(L"HomePage.url")) & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN), 0u);

    std::wstring strFiles; // of the boot list, which names folders too
    for (const PENDING& entry : PendingEntries())
        strFiles +=
            entry.strSource.find(L'.') != std::wstring::npos ? entry.strSource + L">" + entry.strTarget + L"|" : L"";
    EXPECT_EQ(strFiles, InTarget(L"lc8core.dll.old>|") + InTarget(L"capff.json>|") + InTarget(L"capff.json.new>") +
                            InTarget(L"capff.json|"));
    RestartMachine();
    EXPECT_EQ(TargetTree(), kTree);
    EXPECT_TRUE(IsFromPackage(L"capff.json"));
}

// Below a file nothing can be made, and in the host's tree of settings not even an administrator makes a file.
TEST_F(SilentInstall, FolderThatCannotBeWrittenEndsTheRunInSilenceWithLinksAndRegistry)
{
    WriteBytes(At(L"file"), "stays");
    for (const std::wstring& strFolder : { At(L"file\\Lumacap"), std::wstring(L"Z:\\proc\\sys\\Lumacap") })
    {
        EmptyFolders();
        Install(L"-s -instdir " + strFolder);
        EXPECT_FALSE(IsThere(strFolder));
        EXPECT_EQ(Product(L"Path"), strFolder);
        EXPECT_EQ(Split(Links(), L'|').size(), 3u);
    }
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
        EXPECT_EQ(box.nIcon, static_cast<UINT>(MB_ICONERROR));
        EXPECT_EQ(box.buttons, std::vector<int>{ IDOK });
        ASSERT_TRUE(run.WaitForFamily());
        EXPECT_EQ(run.ExitCode(), 1u);
        EXPECT_EQ(ReadBytes(At(L"page.txt")), "http://www.lumacap.example/\r\n");
        EXPECT_FALSE(IsThere(At(L"Program Files")) || KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tandrel"));
        EXPECT_EQ(Links(), L"");
        m_package.SetProductVersion(L"8.21.0.0");
        RemoveTree(m_package.List());
    }
    WriteBytes(m_package.List(), ""); // an empty one is no damage
    Install(L"-s");
    EXPECT_EQ(Split(Links(), L'|').size(), 3u);
}

TEST_F(SilentInstall, RunAfterStartsTheProductInTheTargetFolder)
{
    CProcessRun run(Command(L"-s -runafter"));
    StartReporting(run);
    ASSERT_TRUE(WaitUntil([&] { return IsThere(At(L"report.txt")) && ReadLines(At(L"report.txt")).size() == 2; }));
    std::vector<std::string> lines = ReadLines(At(L"report.txt"));
    std::sort(lines.begin(), lines.end()); // the two run side by side
    EXPECT_EQ(lines[0], Bytes(L"\"" + InTarget(L"Lumacap8.exe\"\t") + m_strTarget));
    EXPECT_EQ(lines[1], Bytes(L"\"" + InTarget(L"Lumacap8.exe\" -regonly\t") + m_strTarget));
}

// Of the package's further files only those of the good lines land: what stands behind the 511th character of a line is
// a line of its own.
TEST_F(SilentInstall, BrokenLinesArePassedOverAndLongOnesReadInPieces)
{
    for (const wchar_t* pszName : { L"no.txt", L"y\xE9.txt", L"yes.txt", L"yet.txt" })
        WriteBytes(m_package.At(pszName), "x");
    for (const char* pszLine : { "File Copy:no.txt", "file copy: no.txt", " File Copy: no.txt",
                                 "File Copy: ", "Make Dir: ", "File Copy: >", "\x01\xFF\xFE", "File Copy: y\xE9.txt" })
        m_package.AppendListLine(pszLine);
    m_package.AppendListLine("File Copy: " + std::string(600, 'a'));
    m_package.AppendListLine(std::string(511, '-') + "File Copy: yes.txt");
    m_package.AppendListLine(std::string(510, '-') + "File Copy: no.txt");
    m_package.AppendListLine("File Copy: yet.txt \t ");
    Install(L"-s");
    EXPECT_EQ(TargetTree(), kTree + L"|yes.txt|yet.txt|y\xE9.txt");
    EXPECT_EQ(ReadBytes(InTarget(L"LumUnInst.log")).find(Package(L"LumUnInst.log") + "\r\nMade Dir: "), 0u);
}
