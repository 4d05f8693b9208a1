// Installs, removals and upgrades that are ended in their midst, as by a task manager or the end of a session: in a
// process of its own, which ends just before one of its changes to the machine; a copy that it comes to leaves half a
// file. What makes up for it runs in this process. Programs that a run starts aren't.
#include <afxwin.h>
#include <shlobj.h>

#include <algorithm>

#include "app/RunState.h"
#include "foundation/SystemFacts.h"
#include "tests/support/Calls.h"
#include "tests/support/Programs.h"
#include "tests/support/World.h"

namespace
{

const DWORD kInterrupted = 77; // exit code

// A link is written through an object, and a line of a log when its file is closed.
const char kChanges[] =
    " CopyFileW CreateDirectoryW CreateProcessW DeleteFileW GetTempFileNameW MoveFileExW MoveFileW "
    "RemoveDirectoryW SetFileAttributesW RegCreateKeyW RegDeleteKeyW RegDeleteValueW RegSetValueExW "
    "CoCreateInstance fclose ";

// Runs the program to its end. Each change is told before it is made. Gives the exit code.
int RunProgram(const TEXTS& arguments, const std::function<void(CALL&)>& onChange)
{
    ResetProgramState();
    const CArguments commandLine(arguments);
    CCalls calls({ { "CreateProcessW", [](CALL&) { return TRUE; } },
                   { "MessageBoxW", [](CALL& call) { return Fail(Bytes(call.Text(1))), IDCANCEL; } },
                   { "Sleep", [](CALL&) { return 0; } } });
    calls.OnAll(
        [&](CALL& call, INT_PTR&)
        {
            if (strstr(kChanges, (std::string(" ") + call.pszName + " ").c_str()) != nullptr)
                onChange(call);
            return false;
        });
    return RunToExit([] { return theApp.InitInstance(); });
}

// setup_tests.exe --as interrupted CHANGE PROGRAM ARGUMENT...
int RunUntilChange()
{
    int nLeft = _wtoi(__wargv[3]);
    return RunProgram({ __wargv + 4, __wargv + __argc },
                      [&](CALL& call)
                      {
                          if (--nLeft > 0)
                              return;
                          if (strcmp(call.pszName, "CopyFileW") == 0)
                              WriteBytes(call.Text(1), ReadBytes(call.Text(0)).substr(0, 100));
                          TerminateProcess(GetCurrentProcess(), kInterrupted);
                      });
}

const CChildRole s_role(L"interrupted", RunUntilChange);

class Interruption : public World
{
protected:
    void SetUp() override
    {
        World::SetUp();
        PutPackage();
        CopyOneFile(At(L"package\\setup.exe"), At(L"temp\\uni1.tmp"));
        // The system notes down each of its folders when somebody asks for it first, which not every run does.
        for (const int nFolder : { CSIDL_PROGRAMS, CSIDL_STARTUP, CSIDL_DESKTOP, CSIDL_COMMON_PROGRAMS,
                                   CSIDL_COMMON_STARTUP, CSIDL_COMMON_DESKTOPDIRECTORY })
            GetSpecialFolder(nFolder);
        Run(m_setup);
        m_installed = TakePicture();
        Run(m_setup);
        m_strRepeatPending = Pending();
        Remove();
        m_removed = TakePicture();
        EXPECT_NE(Join(Difference(m_removed, m_installed)).find(L"Lumacap8.exe"), std::wstring::npos);
    }

    // Gives the number of its changes.
    int Run(const TEXTS& arguments) const
    {
        int nChanges = 0;
        SetCurrentDirectoryW(m_strFolder.c_str());
        EXPECT_EQ(RunProgram(arguments, [&](CALL&) { nChanges++; }), 0);
        return nChanges;
    }

    void Remove() const
    {
        Run(m_secondStage);
        ClearPending();
    }

    // The attempt, with the command ended before one of its changes, again and again: the changes are spread over the
    // command.
    void InterruptEach(const TEXTS& arguments, const std::function<void()>& prepare,
                       const std::function<void()>& makeUpFor) const
    {
        prepare();
        const int nChanges = Run(arguments);
        makeUpFor();
        ASSERT_GT(nChanges, 50);
        const wchar_t* pszPoints = _wgetenv(L"LUMACAP_INTERRUPTIONS"); // for a denser run than that of every day
        const int nPoints = std::min(pszPoints != nullptr ? _wtoi(pszPoints) : 35, nChanges);
        for (int i = 0; i < nPoints && !HasFailure(); i++)
        {
            const int nChange = 1 + i * nChanges / nPoints;
            SCOPED_TRACE("ended before change " + std::to_string(nChange));
            std::wstring strCommand = CChildRole::CommandLine(L"interrupted") + L" " + std::to_wstring(nChange);
            for (const std::wstring& strArgument : arguments)
                strCommand += L" \"" + strArgument + L"\"";
            prepare();
            EXPECT_EQ(RunToEnd(strCommand).nExitCode, kInterrupted);
            makeUpFor();
        }
    }

    void ExpectPicture(const TEXTS& expected) const
    {
        EXPECT_EQ(Bytes(Join(Difference(expected, TakePicture()), L"\n")), "");
    }

    // What went on the boot list meanwhile is either the second stage's own file or gone.
    void ExpectRemoved() const
    {
        for (const std::wstring& strEntry : PendingEntries())
            if (strEntry != L"-" + At(L"temp\\uni1.tmp"))
            {
                EXPECT_FALSE(IsThere(strEntry.substr(1))) << Bytes(strEntry);
            }
        ClearPending();
        ExpectPicture(m_removed);
    }

    const std::wstring m_strTarget = At(L"Program Files\\Lumacap 8");
    const TEXTS m_setup = { At(L"package\\setup.exe"), L"-s" };
    const TEXTS m_secondStage = { At(L"temp\\uni1.tmp"), L"-delself", m_strTarget + L"\\LumUnInst.exe", L"-s" };
    TEXTS m_installed;
    TEXTS m_removed;
    std::wstring m_strRepeatPending; // the boot list of a repeated install
};

TEST_F(Interruption, OfAnInstallIsMadeUpForByTheNext)
{
    const auto installAgain = [&]
    {
        // Once its folder is known, an install counts as a repeated one. That asks the boot for the folders of the
        // list, which hold files and so stay.
        const bool bRepeat = KeyText(kMachine, kProduct, L"Path") != L"(absent)";
        Run(m_setup);
        EXPECT_EQ(Pending(), bRepeat ? m_strRepeatPending : L"");
        ClearPending();
        ExpectPicture(m_installed);
        Run(m_secondStage);
        ExpectRemoved();
    };
    InterruptEach(
        m_setup, [] {}, installAgain);
    // So an install leaves a file of its package that is ended while it asks whether the machine has that library.
    EXPECT_TRUE(MoveFileW(At(L"package\\lcxshare.dll").c_str(), At(L"package\\lcxshare.dll.toinst").c_str()));
    installAgain();
}

// The file that the system's list of programs names is the first to go: from then on only an install helps a user.
TEST_F(Interruption, OfARemovalIsMadeUpForByASecondRunOrByAnInstallAndItsRemoval)
{
    bool bByInstall = false;
    InterruptEach(
        m_secondStage, [&] { Run(m_setup); },
        [&]
        {
            bByInstall = !bByInstall;
            if (bByInstall && !IsThere(m_strTarget + L"\\LumUnInst.exe"))
            {
                Run(m_setup);
                EXPECT_EQ(ReadBytes(m_strTarget + L"\\Lumacap8.exe"), ReadBytes(At(L"package\\Lumacap8.exe")));
            }
            Run(m_secondStage);
            ExpectRemoved();
        });
}

// An upgrade that is run once more leaves what an undisturbed one leaves, but for two things that nothing tells the
// second run of: the choice of the start with the system, which is kept in its link alone; and the file by which it
// tries whether it can write in the Startup folder.
TEST_F(Interruption, OfAnUpgradeIsMadeUpForByTheNextButForWhatItAloneKnew)
{
    const auto installOlder = [&]
    {
        CopyOneFile(ProductOfVersion(L"8.19.9.0"), At(L"package\\Lumacap8.exe"));
        Run({ m_setup[0], L"-s", L"-autostart" });
        CopyOneFile(BuildFolder() + L"\\package\\Lumacap8.exe", At(L"package\\Lumacap8.exe"));
        WriteBytes(m_strTarget + L"\\Lumacap7.chm", "");
        WriteBytes(m_strTarget + L"\\Lang\\Dutch.lng", "");
    };
    installOlder();
    Run(m_setup);
    ClearPending();
    const TEXTS upgraded = TakePicture();
    Remove();
    InterruptEach(m_setup, installOlder,
                  [&]
                  {
                      for (const std::wstring& strName : ListTree(At(L"all\\Programs\\Startup")))
                          if (strName.compare(0, 3, L"h5t") == 0)
                              RemoveTree(At(L"all\\Programs\\Startup\\" + strName));
                      const bool bStarted = IsThere(At(L"all\\Programs\\Startup\\Lumacap 8.lnk"));
                      ClearPending();
                      Run(m_setup);
                      // A folder of the list that is away already waits for the boot as well.
                      EXPECT_EQ(Replaced(Pending(), L"-Program Files\\Lumacap 8\\Presets ", L""), m_strRepeatPending);
                      ClearPending();
                      ExpectPicture(bStarted ? upgraded : m_installed);
                      Run(m_secondStage);
                      ExpectRemoved();
                  });
}

} // namespace
