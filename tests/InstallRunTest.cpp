// An install run in this process: switches, the choice of the folder, the version questions, the tests of the package,
// the ending. Its package holds the product's executable and an empty list.
#include "install/InstallRun.h"

#include <stdlib.h>

#include "app/Product.h"
#include "app/RunState.h"
#include "tests/support/BoxDriver.h"
#include "tests/support/Environment.h"
#include "tests/support/InstallCorner.h"

const int kDamaged = -1; // the process ended with exit code 1

class InstallRun : public InstallCorner
{
protected:
    InstallRun()
        : m_module("KERNEL32.dll", "GetModuleFileNameW", &GetModuleFileNameW), m_exit("msvcrt.dll", "exit", &exit),
          m_browser("SHELL32.dll", "ShellExecuteW", &ShellExecuteW),
          m_wizard("USER32.dll", "DialogBoxIndirectParamW", &DialogBoxIndirectParamW)
    {
        m_wizard.FailAll(ERROR_INVALID_FUNCTION, IDCANCEL);
        m_module.Replace([this](HMODULE, LPWSTR psz, DWORD)
                         { return static_cast<DWORD>(wcslen(wcscpy(psz, At(L"package\\setup.exe").c_str()))); });
        m_exit.Replace([](int nCode) { throw nCode; });
        m_browser.FailAll(0);
    }

    void SetUp() override
    {
        InstallCorner::SetUp();
        SetCurrentDirectoryW(Folder().c_str());
        PutProduct(L"package", L"8.21.0.0");
        WriteBytes(At(L"package\\LumUnInst.log"), "");
    }

    // The product's executable of that version, or none where there is no version, in a folder of the corner.
    void PutProduct(const std::wstring& strFolder, const std::wstring& strVersion) const
    {
        RemoveTree(At(strFolder + L"\\Lumacap8.exe"));
        if (!strVersion.empty())
            CopyOneFile(CPackage::ProductOfVersion(strVersion), At(strFolder + L"\\Lumacap8.exe"));
    }
    void DropList() const { RemoveTree(At(L"package\\LumUnInst.log")); }
    void SetEarlier() const { SetKeyText(HKEY_LOCAL_MACHINE, kProductKey, L"Path", At(L"Earlier")); }

    // The run's result, or the negative exit code if the process ended. Blanks part the arguments.
    static int Run(const std::wstring& strArguments)
    {
        const CArguments commandLine(Split(L"setup.exe" + (strArguments.empty() ? L"" : L" " + strArguments), L' '));
        try
        {
            return RunInstall();
        }
        catch (int nExitCode)
        {
            return -nExitCode;
        }
    }

    CLaunchRecorder m_recorder;
    CCallHook<decltype(&GetModuleFileNameW)> m_module;
    CCallHook<decltype(&exit)> m_exit;
    CCallHook<decltype(&ShellExecuteW)> m_browser;
    CCallHook<decltype(&DialogBoxIndirectParamW)> m_wizard; // which nobody sees: it is cancelled
};

// Looked at where the run ends for want of a list, ahead of all work. A digit each: kind, first installation, start
// afterwards, start at logon, desktop icon.
TEST_F(InstallRun, SwitchesChooseFolderKindAndOptions)
{
    const struct
    {
        const wchar_t* pszArguments;
        const wchar_t* pszChoices;
        bool bEarlier = false;
    } kCases[] = {
        { L"", L"Q:\\P\\Lumacap 8 11001" },
        { L"", L"Q:\\E 00001", true },
        { L"-s -RunAfter -AUTOSTART -noDeskIco -AllUsers", L"Q:\\P\\Lumacap 8 11110" },
        { L"-runafterx /runafter -auto -nodeskicon x  y", L"Q:\\P\\Lumacap 8 11001" },
        { L"-instdir A -autostart -allusers", L"A 00001", true },
        { L"-instdir A -instdir B", L"B 00001" },
        { L"-instdir A -instport B", L"B 20001" },
        { L"-instport A -instdir B", L"B 20001" },
        { L"-instport", L"Q:\\P\\Lumacap 8 21001" },
        { L"-instport", L"Q:\\E 20001", true },
        { L"-instport -allusers", L"-allusers 20001" },
        { L"-instdir", L"Q:\\P\\Lumacap 8 11001" },
        { L"-instdir -runafter", L"-runafter 00101" },
        { L"-instdir -instport", L"-instport 20001" },
        { L"-INSTDIR A -instDir B -instPORT C", L"Q:\\P\\Lumacap 8 11001" },
        { L"-inst A -install B -instdirs C -instportx D", L"Q:\\P\\Lumacap 8 11001" },
        { L"-instdir A/", L"A 00001" },
        { L"-instdir A\\\"", L"A 00001" },
        { L"-instdir A\\\\", L"A\\ 00001" },
        { L"-instdir A\"\\", L"A\" 00001" },
        { L"-instdir A\"\"", L"A\" 00001" },
        { L"-instdir A -instdir \\\"", L"Q:\\E 00001", true },
    };
    DropList();
    const CBoxRecorder boxes;
    MoveProgramFiles(L"Q:\\P\\");
    for (const auto& row : kCases)
    {
        ResetProgramState();
        SetKeyText(HKEY_LOCAL_MACHINE, kProductKey, L"Path", row.bEarlier ? L"Q:\\E" : L"");
        EXPECT_EQ(Run(row.pszArguments), kDamaged);
        std::wstring strChoices = g_strInstDir.GetString() + (L" " + std::to_wstring(g_nInstallKind));
        for (const int nFlag : { g_bFreshInstall, g_bRunAfter, g_bAutoStart, g_bDeskIcon })
            strChoices += std::to_wstring(nFlag);
        EXPECT_EQ(strChoices, row.pszChoices) << Bytes(row.pszArguments);
        EXPECT_STREQ(g_strGroup, L"Lumacap 8");
    }
}

TEST_F(InstallRun, ProgramFilesFolderLiesOnTheDriveOfWindowsWhereNothingElseIsSet)
{
    DropList();
    const CBoxRecorder boxes;
    CCallHook windows("KERNEL32.dll", "GetWindowsDirectoryW", &GetWindowsDirectoryW);
    windows.Replace([](LPWSTR psz, UINT) { return static_cast<UINT>(wcslen(wcscpy(psz, L"Q:\\Systems\\Windows"))); });
    MoveProgramFiles(nullptr);
    EXPECT_EQ(Run(L""), kDamaged);
    EXPECT_STREQ(g_strInstDir, L"Q:\\Program Files\\Lumacap 8");
}

// A run that goes on meets a package without a list and takes the kind over; one that is turned down does neither.
TEST_F(InstallRun, PackageThatIsNotNewerIsAskedAboutInTheWizardMode)
{
    const std::wstring strOlder = L"Lumacap v. 8.21.00.00 is already installed on this machine. You are trying to "
                                  L"install an older version 8.19.09.00 .\n\nDo you still want to continue?";
    const std::wstring strSame = L" is already installed on this machine.\n\nWould you like to run this setup again "
                                 L"to select different options or repair the files?";
    const struct
    {
        const wchar_t* pszInstalled; // empty: no such file
        const wchar_t* pszPackage;
        int nSilent;
        int nAnswer;
        std::wstring strQuestion; // empty: nobody is asked
    } kCases[] = { { L"8.19.9.0", L"8.21.0.0", SILENT_OFF, IDNO, L"" },
                   { L"", L"8.19.9.0", SILENT_OFF, IDNO, L"" },
                   { L"8.21.0.0", L"8.19.9.0", SILENT_OFF, IDNO, strOlder },
                   { L"8.21.0.0", L"8.19.9.0", SILENT_OFF, IDYES, strOlder },
                   { L"8.21.0.0", L"8.19.9.0", SILENT_ON, IDNO, L"" },
                   { L"8.21.0.0", L"8.21.0.0", SILENT_REPORT, IDNO, L"" },
                   { L"1.100.0.0", L"2.0.0.0", SILENT_OFF, IDNO, L"Lumacap ver. 2.00.00.00" + strSame },
                   { L"2.0.0.0", L"1.100.0.0", SILENT_OFF, IDYES, L"Lumacap ver. 1.100.00.00" + strSame } };
    DropList();
    SetEarlier();
    for (const auto& row : kCases)
    {
        ResetProgramState();
        PutProduct(L"Earlier", row.pszInstalled);
        PutProduct(L"package", row.pszPackage);
        g_nSilent = row.nSilent;
        const bool bAsked = !row.strQuestion.empty();
        const bool bGoesOn = !bAsked || row.nAnswer == IDYES;
        const CBoxRecorder boxes({ row.nAnswer });
        EXPECT_EQ(Run(L""), bGoesOn ? kDamaged : 1) << Bytes(row.pszInstalled);
        EXPECT_EQ(g_bUpgrade, !bAsked);
        EXPECT_EQ(g_nInstallKind, bGoesOn ? KIND_CURRENT_USER : KIND_ALL_USERS);
        ASSERT_EQ(boxes.Boxes().size(), static_cast<size_t>(bAsked + bGoesOn));
        if (!bAsked)
            continue;
        EXPECT_EQ(boxes.Boxes()[0].strText, row.strQuestion);
        EXPECT_EQ(boxes.Boxes()[0].nStyle, static_cast<UINT>(MB_YESNO | MB_ICONQUESTION));
    }
}

// The wizard installs by itself: behind it only the ending is left, and behind a cancelled one nothing.
TEST_F(InstallRun, CancelledWizardTurnsTheRunDown)
{
    for (const bool bFinished : { false, true })
    {
        ResetProgramState();
        g_nSilent = SILENT_OFF;
        if (bFinished)
            m_wizard.FailAll(0, IDOK);
        EXPECT_EQ(Run(L"-instport A -runafter"), bFinished ? 0 : 1);
        EXPECT_EQ(Join(m_recorder.launches), bFinished ? L"A\\Lumacap8.exe in A" : L"");
        EXPECT_FALSE(IsThere(At(L"A")));
    }
}

TEST_F(InstallRun, SilentFirstInstallGoesToAllUsersAlsoWithALonePortableSwitch)
{
    const std::wstring strFolder = At(L"Program Files\\Lumacap 8");
    EXPECT_EQ(Run(L"-runafter -instport"), 0); // the list is empty, which is no damage
    EXPECT_EQ(KeyText(HKEY_LOCAL_MACHINE, kProductKey, L"AllUsers"), L"B");
    EXPECT_EQ(m_recorder.launches.back(), strFolder + L"\\Lumacap8.exe in " + strFolder) << "no quotes around the path";
    wchar_t szCurrent[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, szCurrent);
    EXPECT_EQ(szCurrent, strFolder);
}

TEST_F(InstallRun, FileLeftForTheBootMakesRunAfterRestartTheComputer)
{
    WriteBytes(At(L"package\\LumUnInst.log"), "File Copy: a.txt\r\n");
    WriteBytes(At(L"package\\a.txt"), "new");
    WriteBytes(At(L"Earlier\\a.txt"), "old");
    SetEarlier();
    const CFileHold hold(At(L"Earlier\\a.txt"), FILE_SHARE_READ);
    CCallHook restart("USER32.dll", "ExitWindowsEx", &ExitWindowsEx);
    DWORD dwReason = 0;
    restart.Replace([&](UINT nFlags, DWORD dw) { return dwReason = dw, nFlags == EWX_REBOOT; });
    for (const bool bRunAfter : { false, true })
    {
        EXPECT_EQ(Run(bRunAfter ? L"-runafter" : L""), 0);
        EXPECT_EQ(restart.Calls(), bRunAfter);
        EXPECT_EQ(dwReason, bRunAfter ? 0x80040002 : 0);
        EXPECT_EQ(m_recorder.launches.back(), L"\"" + At(L"Earlier\\Lumacap8.exe\" -regonly in ") + At(L"Earlier"));
    }
}
