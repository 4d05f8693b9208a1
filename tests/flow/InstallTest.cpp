// Installs in this process, under conditions that a plain run doesn't meet. What they show and start is only told.
#include "install/InstallRun.h"

#include "app/RunState.h"
#include "install/FileVersion.h"
#include "install/InstallDriver.h"
#include "install/ShellLinks.h"
#include "tests/support/Calls.h"
#include "tests/support/World.h"

namespace
{

class Install : public World
{
protected:
    void SetUp() override
    {
        World::SetUp();
        SetCurrentDirectoryW(m_strFolder.c_str());
        Make(L"T\\|package\\LumUnInst.log", "");
        PutProduct(L"package", L"2.0.0.0");
        g_strSourceDir = L"package";
        g_strInstDir = L"T";
    }

    void PutProduct(const std::wstring& strFolder, const std::wstring& strVersion) const
    {
        CopyOneFile(ProductOfVersion(strVersion), At(strFolder + L"\\Lumacap8.exe"));
    }

    int Run(const std::wstring& strArguments)
    {
        const CArguments arguments(Split(L"C:\\corner\\package\\setup.exe " + strArguments, L' '));
        m_strTold.clear();
        return RunToExit(RunInstall);
    }

    // Tells of a call, by the first line of its text argument if it has one.
    HANDLER Telling(const std::wstring& strWhat, int nText = 0)
    {
        return [=](CALL& call)
        {
            m_strTold += strWhat + (nText != 0 ? Split(call.Text(nText), L'\n')[0] : L"") + L";";
            return m_nAnswer;
        };
    }

    int m_nAnswer = IDOK;
    std::wstring m_strTold;
    CCalls m_calls{ {
        { "CreateProcessW", Telling(L"", 1) },
        { "DialogBoxIndirectParamW", Telling(L"wizard") },
        { "ExitWindowsEx", Telling(L"restart") },
        { "MessageBoxW", [this](CALL& call) { return Telling(std::to_wstring(call.args[3]) + L" ", 1)(call); } },
        { "ShellExecuteW", Telling(L"", 2) },
    } };
};

// The lines of a table, each in columns.
std::vector<TEXTS> Rows(const wchar_t* pszTable)
{
    std::vector<TEXTS> rows;
    for (const std::wstring& strLine : Split(pszTable, L'\n'))
        rows.push_back(Split(strLine + L"||||", L'|'));
    return rows;
}

} // namespace

// Arguments; what they choose: folder, a digit each for kind, first installation, start afterwards and at logon, icon,
// then the group; registered folder and kind; link that stands; registered application. P stands for the product's
// name. All is looked at where the run ends for want of a list.
TEST_F(Install, SwitchesAndTheEarlierOneChoose)
{
    const wchar_t kRows[] = LR"(-instdirs A -INSTDIR B -inst C -instPORT D -runafterx /runafter -auto|Q:\P 11001 P
-s -RunAfter -AUTOSTART -noDeskIco -AllUsers -instdir|Q:\P 11110 P
-instport|Q:\P 21001 P
-instdir A -instdir B/|B 00001 P|Q:\E
-instdir A -instport B\"|B 20001 P
-instport A -instdir B\\|B\ 20001 P
-instdir -runafter|-runafter 00101 P
-instdir A""|A" 00001 P
-instdir \"|Q:\E\ 00001 P|Q:\E\\|||Q:\X\Lumacap8.exe
|Q:\E 00001 P||||Q:\E\\Lumacap8.exe\Lumacap8.exe
-autostart|T 10001 A\Sub|T|B
|T 00011 Two|T|b|all\Programs\Startup\Lumacap 8.lnk
|E 00011 |E|BB|user\Programs\Startup\Lumacap 8.lnk
-instport T -allusers|T 20001 P)";
    const wchar_t kLinks[] = LR"(
all\Programs\One\x
ALL\programs\A\Sub\x
all\Programs\StartUP\x
all\Programs\Startup2\x
all\Programss\x
user\Programs\Two\x
user\Programs\Startup\x
user\x)";
    Make(L"T\\LumUnInst.log", Bytes(Replaced(kLinks, L"\n", L"\nShell Link: C:\\corner\\")));
    Make(L"T\\install.log|E\\install.log", "Shell Link: C:\\corner\\user\\Programs\\x");
    RemoveTree(L"package\\LumUnInst.log");
    SetKeyText(kMachine, kWindows, L"ProgramFilesDir", L"Q:\\");
    for (const TEXTS& row : Rows(kRows))
    {
        Make(row[4]);
        SetKeyText(kMachine, kProduct, L"Path", row[2]);
        SetKeyText(kMachine, kProduct, L"AllUsers", row[3]);
        SetKeyText(kMachine, kWindows + L"\\App Paths\\Lumacap8.exe", L"", row[5]);
        ResetProgramState();
        Run(row[0]);
        CString strChosen;
        strChosen.Format(L"%s %d%d%d%d%d %s", g_strInstDir.GetString(), g_nInstallKind, g_bFreshInstall, g_bRunAfter,
                         g_bAutoStart, g_bDeskIcon, g_strGroup.GetString());
        EXPECT_EQ(Replaced(strChosen.GetString(), L"Lumacap 8", L"P"), row[1]) << Bytes(row[0]);
        RemoveTree(row[4]);
    }
    EXPECT_GT(m_calls.Count("GetTempFileNameW"), 0);

    // A folder of four characters is passed over.
    MoveFolder(kMachine, L"Common Startup", L"C:\\s");
    WriteBytes(L"C:\\s\\Lumacap 8.lnk", "");
    Run(L"-autostart -instdir T");
    EXPECT_EQ(g_bAutoStart, 0);

    RemoveValue(kMachine, kWindows, L"ProgramFilesDir");
    g_nInstallKind = KIND_ALL_USERS;
    Run(L"");
    EXPECT_STREQ(g_strInstDir, L"C:\\Program Files\\Lumacap 8");
}

// Installed version and the package's; a digit each for silent mode, a restart that is needed, the answer to all that
// is shown, the result, settings that stand in the target already; what is told.
TEST_F(Install, VersionsAreComparedAndTheReportComesFirst)
{
    const wchar_t kRows[] = LR"(8.19.9.0|8.21.0.0|00100|wizard;T\Lumacap8.exe;
8.21.0.0|8.19.9.0|00110|36 Lumacap v. 8.21.00.00 is already installed on this machine. You are trying to install an older version 8.19.09.00 .;
1.100.0.0|2.0.0.0|00610|36 Lumacap ver. 2.00.00.00 is already installed on this machine.;wizard;
none|8.19.9.0|00100|wizard;T\Lumacap8.exe;
8.21.0.0|8.19.9.0|20201|wizard;T\Lumacap8.exe;
8.21.0.0|8.19.9.0|11701|restart;
8.21.0.0|none|10710|16 This setup files are damaged, installation aborted.;http://www.lumacap.example/;)";
    for (const TEXTS& row : Rows(kRows))
    {
        SCOPED_TRACE(Bytes(Join(row)));
        PutProduct(L"T", row[0]);
        PutProduct(L"package", row[1]);
        SetCurrentDirectoryW(m_strFolder.c_str());
        ResetProgramState();
        g_nSilent = row[2][0] - L'0';
        g_bRebootNeeded = row[2][1] - L'0';
        g_strSfxName = L"T";
        m_nAnswer = row[2][2] - L'0';
        EXPECT_EQ(Run(L"-runafter -instport T"), row[2][3] - L'0');
        EXPECT_EQ(m_strTold, row[3]);
        EXPECT_EQ(g_bUpgrade, m_strTold[0] != L'3');
        EXPECT_EQ(g_bSettingsCopied, row[2][4] - L'0');
    }
    EXPECT_EQ(FoldVersion({ 8, 19, 9, 199 }), 8191099u);
}

TEST_F(Install, SilentFirstOneGoesToAllUsersStepByStep)
{
    Make(L"sfx\\Lumacap8.ini");
    g_strSfxName = L"sfx";
    g_nSilent = SILENT_REPORT;
    g_bRebootNeeded = 1;
    const char* pszLast = "";
    for (const char* pszName : { "CoCreateInstance", "CopyFileW", "RegSetValueExW" })
        m_calls.On(pszName,
                   [&](CALL& call)
                   {
                       if (call.pszName != pszLast)
                           Telling(Wide(pszLast = call.pszName))(call);
                       return call.Pass();
                   });
    EXPECT_EQ(Run(L"-instport"), 0);
    EXPECT_EQ(Replaced(m_strTold, At(L"Program Files\\Lumacap 8\\"), L""),
              L"CopyFileW;CoCreateInstance;RegSetValueExW;regsvr32.exe /s \"ThumbLcp64.dll\";CopyFileW;"
              L"\"Lumacap8.exe\" -regonly;wizard;");
    // The run ends in the target.
    EXPECT_TRUE(IsThere(L"LumUnInst.log"));
    EXPECT_EQ(KeyText(kMachine, kProduct, L"AllUsers"), L"B");
    EXPECT_EQ(m_calls.Count("RegSetValueExW"), 32);
    EXPECT_EQ(KeyText(kMachine, kWindows + L"\\Uninstall\\Lumacap 8", L"DisplayVersion"), L"2.00.00");
}

// The group's name, in which ~ stands for what is trimmed; the group; folder in which settings are looked for. Only the
// last one is a first installation, and meets no common folder.
TEST_F(Install, GroupIsMadeAndEarlierTracesGo)
{
    const wchar_t kRows[] = LR"(A/B\C/|C:\q\A\B\C
\\A\|C:\q\A|sfx
~/~Two words~\|C:\q\Two words
~/\~|C:\q\
A?|C:\q\A?
P|C:\corner\user\Programs\P)";
    Make(L"package\\LumUnInst.log", "File Del: x.txt");
    Make(L"T\\install.log", "Shell Link: C:\\corner\\x.lnk");
    Make(L"sfx\\Lumacap8.reg");
    WriteBytes(L"C:\\Lumacap8.ini", "");
    g_bAutoStart = 1;
    for (const TEXTS& row : Rows(kRows))
    {
        MoveFolder(kMachine, L"Common Programs", row[0] == L"P" ? L"C:\\" : L"C:\\q");
        g_strGroup = Replaced(row[0], L"~", L" \t\r\n").c_str();
        g_strSfxName = row[2].c_str();
        g_bFreshInstall = row[0] == L"P";
        SCOPED_TRACE(Bytes(row[0]));
        Make(L"T\\x.txt|x.lnk");
        PerformInstall();
        const std::wstring strLink = L"\r\nShell Link: ";
        const std::wstring strUsers = strLink + At(g_bFreshInstall ? L"user" : L"all");
        const std::wstring strGroup = strLink + row[1] + L"\\Lumacap 8";
        EXPECT_EQ(Wide(ReadBytes(L"T\\LumUnInst.log")),
                  L"File Del: x.txt\r\nMade Dir: " + row[1] +
                      (row[0] != L"A?" ? strGroup + L".lnk" + strGroup + L" Help.lnk" : L"") + strUsers +
                      L"\\Desktop\\Lumacap 8.lnk" + strUsers + L"\\Programs\\Startup\\Lumacap 8.lnk\r\n");
        EXPECT_EQ(IsThere(row[1] + L"\\Lumacap 8 Help.lnk"), row[0] != L"A?");
        EXPECT_EQ(IsThere(L"x.lnk"), g_bFreshInstall);
        EXPECT_EQ(IsThere(L"T\\x.txt"), g_bFreshInstall);
        EXPECT_EQ(g_bSettingsCopied, 0);
    }
    EXPECT_TRUE(IsThere(L"user\\Programs\\Startup\\Lumacap 8.lnk"));
    EXPECT_TRUE(IsThere(L"T\\Lumacap8.reg"));
}

TEST_F(Install, LinkHoldsWhatItIsGiven)
{
    const auto create = [](size_t nTarget, size_t nPath) -> DWORD
    {
        const std::wstring strTarget(nTarget, L't');
        const std::wstring strPath(nPath, L'l');
        return RunToExit([&] { return CreateShellLink(strTarget.c_str(), strPath.c_str(), L"", 1, nullptr, nullptr); },
                         "TerminateProcess", 1);
    };
    EXPECT_EQ(create(511, 259), 0x80070002);
    EXPECT_EQ(create(512, 259), 0xC0000409);
    EXPECT_EQ(create(511, 260), 0xC0000409);
    CreateShellLink(L"\"C:\\a b.exe\"", L"a.lnk", L"A text", SW_SHOWMAXIMIZED, L"-x \"y z\"", L"C:\\Pictures");
    EXPECT_EQ(ReadBytes(L"T\\LumUnInst.log"), "Shell Link: a.lnk\r\n");
    EXPECT_EQ(ReadBytes(L"a.lnk")[60], SW_SHOWMAXIMIZED);
    const std::wstring strLink = Replaced(Wide(ReadBytes(L"a.lnk")), std::wstring(1, 0), L"");
    EXPECT_EQ(strLink.substr(strLink.find(L"C:\\a")), L"C:\\a b.exe\aA text\fC:\\Pictures\t-x \"y z\"");
}
