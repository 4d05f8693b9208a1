// The subtle tools of the tests: those whose silent failure would make other tests pass.
#include <gtest/gtest.h>

#include "tests/support/BoxDriver.h"
#include "tests/support/Corner.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Machine.h"
#include "tests/support/MachineState.h"
#include "tests/support/PendingList.h"
#include "tests/support/ProcessRun.h"
#include "tests/support/RegistryCorner.h"

using SupportTools = MachineCorner;

// Calls that a hook meets stand in functions of their own, as the program's do.
__attribute__((noinline)) static BOOL RemoveOneFile(const std::wstring& strPath)
{
    return DeleteFileW(strPath.c_str());
}

__attribute__((noinline)) static int ShowBox(const wchar_t* pszText, UINT nStyle)
{
    return MessageBoxW(nullptr, pszText, L"Caption", nStyle);
}

TEST_F(SupportTools, HookFailsTheChosenCallsOfItsFunctionAndIsGoneAfterwards)
{
    WriteBytes(At(L"a"), "a");
    WriteBytes(At(L"b"), "b");
    {
        CCallHook hook("KERNEL32.dll", "DeleteFileW", &DeleteFileW);
        CCallHook other("KERNEL32.dll", "RemoveDirectoryW", &RemoveDirectoryW); // of the same signature
        other.FailAll(ERROR_DIR_NOT_EMPTY);
        hook.FailOnly(2, ERROR_SHARING_VIOLATION);
        EXPECT_TRUE(RemoveOneFile(At(L"a")));
        EXPECT_FALSE(RemoveOneFile(At(L"b")));
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
        EXPECT_EQ(hook.Texts(), (std::vector<std::wstring>{ At(L"a"), At(L"b") }));
        EXPECT_EQ(other.Calls(), 0);
    }
    EXPECT_EQ(TreeText(Folder()), L"b");
    EXPECT_TRUE(RemoveOneFile(At(L"b")));
}

TEST_F(SupportTools, HeldFilesRefuseWhatTheirHolderRefuses)
{
    WriteBytes(At(L"read"), "1");
    WriteBytes(At(L"write"), "1");
    WriteBytes(At(L"new"), "22");
    CFileHold readOnly(At(L"read"), FILE_SHARE_READ);
    CFileHold readWrite(At(L"write"), FILE_SHARE_READ | FILE_SHARE_WRITE);
    CImageHold image(At(L"image.exe"));
    const auto overwrite = [&](const wchar_t* pszName)
    { return CopyFileW(At(L"new").c_str(), At(pszName).c_str(), 0); };
    EXPECT_FALSE(overwrite(L"read"));
    EXPECT_TRUE(overwrite(L"write"));
    EXPECT_FALSE(overwrite(L"image.exe"));
    EXPECT_FALSE(DeleteFileW(At(L"image.exe").c_str()));
    EXPECT_FALSE(MoveFileW(At(L"write").c_str(), At(L"moved").c_str()));
    EXPECT_TRUE(MoveFileW(At(L"image.exe").c_str(), At(L"moved").c_str()));
}

TEST_F(SupportTools, RestartWorksThroughListAndProfile)
{
    for (const wchar_t* pszName : { L"gone", L"from", L"to", L"byprofile" })
        WriteBytes(At(pszName), "x");
    MoveFileExW(At(L"gone").c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
    MoveFileExW(At(L"from").c_str(), At(L"to").c_str(), MOVEFILE_DELAY_UNTIL_REBOOT | MOVEFILE_REPLACE_EXISTING);
    WritePrivateProfileStringW(L"rename", L"NUL", At(L"byprofile").c_str(), PendingProfilePath().c_str());
    RestartMachine();
    EXPECT_EQ(TreeText(Folder()), L"to");
}

TEST_F(SupportTools, RegistryCornerPutsBackContentAndAbsence)
{
    const std::wstring strKey = L"Software\\SupportTest";
    SetKeyText(HKEY_CURRENT_USER, strKey + L"\\kept", L"a", L"1");
    SetKeyText(HKEY_CURRENT_USER, strKey + L"\\kept\\below", L"", L"7");
    const std::vector<std::wstring> before = FlattenKey(HKEY_CURRENT_USER, strKey, L"K");
    EXPECT_EQ(before, (std::vector<std::wstring>{ L"K", L"K\\kept", L"K\\kept : a = 1:1", L"K\\kept\\below",
                                                  L"K\\kept\\below :  = 1:7" }));
    {
        CRegistryCorner corner;
        corner.Clear(HKEY_CURRENT_USER, strKey + L"\\kept");
        corner.Keep(HKEY_CURRENT_USER, strKey + L"\\absent");
        MakeKey(HKEY_CURRENT_USER, strKey + L"\\absent\\x");
        SetKeyText(HKEY_CURRENT_USER, strKey + L"\\kept\\other", L"b", L"2");
    }
    EXPECT_EQ(FlattenKey(HKEY_CURRENT_USER, strKey, L"K"), before);
    RemoveKey(HKEY_CURRENT_USER, strKey);
}

TEST_F(SupportTools, BoxIsReadAsShown)
{
    for (const bool bSecond : { true, false })
    {
        BOX box;
        std::thread answer([&] { box = ExpectBox(GetCurrentProcessId(), IDNO); });
        EXPECT_EQ(ShowBox(L"First\n\nSecond", MB_YESNO | (bSecond ? MB_ICONERROR | MB_DEFBUTTON2 : 0)), IDNO);
        answer.join();
        EXPECT_EQ(box.strCaption, L"Caption");
        EXPECT_EQ(box.strText, L"First\n\nSecond");
        EXPECT_EQ(box.buttons, (std::vector<int>{ IDYES, IDNO }));
        EXPECT_EQ(box.nDefault, bSecond ? IDNO : IDYES);
    }
}

TEST_F(SupportTools, RunWaitsForItsSuccessorsAndTakesThemWithIt)
{
    CProcessRun run(L"cmd.exe /c echo %SUPPORT_WORD%& start /b cmd.exe /c \"ping -n 2 127.0.0.1 >nul & echo later> f\" "
                    L"& exit 5");
    run.SetFolder(Folder());
    run.AddEnvironment(L"SUPPORT_WORD", L"hello");
    ASSERT_TRUE(run.Start() && run.WaitForEnd());
    EXPECT_EQ(run.ExitCode(), 5u);
    ASSERT_TRUE(run.WaitForFamily());
    EXPECT_EQ(run.Output().substr(0, 7), "hello\r\n");
    EXPECT_TRUE(IsThere(At(L"f")));

    CProcessRun endless(L"cmd.exe /c start /b ping -n 60 127.0.0.1");
    ASSERT_TRUE(endless.Start() && endless.WaitForEnd());
    ASSERT_TRUE(WaitUntil([] { return !ProcessesNamed(L"pin*.exe").empty(); }));
    endless.End();
    EXPECT_TRUE(ProcessesNamed(L"PING.EXE").empty());
}

TEST_F(SupportTools, PictureShowsWhatAProgramDidAndNothingElse)
{
    const std::vector<std::wstring> before = TakeMachinePicture();
    RunToEnd(L"cmd.exe /c mkdir made & reg add HKCU\\Software\\SupportTest /v n /d text", Folder());
    const std::vector<std::wstring> difference = PictureDifference(before, TakeMachinePicture());
    ASSERT_EQ(difference.size(), 3u) << JoinLines(difference);
    EXPECT_EQ(difference[2], L"+ folder " + At(L"made") + L" 16");
    EXPECT_NE(difference[1].find(L"\\Software\\SupportTest : n = 1:text"), std::wstring::npos);
    RemoveKey(HKEY_CURRENT_USER, L"Software\\SupportTest");
}
