// The subtle tools of the tests: those whose silent failure would make other tests pass.
#include <gtest/gtest.h>

#include "tests/support/Corner.h"
#include "tests/support/ImportHook.h"
#include "tests/support/MachineState.h"
#include "tests/support/ProcessRun.h"
#include "tests/support/RegistryCorner.h"

using SupportTools = MachineCorner;

// A call that a hook meets stands in a function of its own, as the program's do.
__attribute__((noinline)) static BOOL RemoveOneFile(const std::wstring& strPath)
{
    return DeleteFileW(strPath.c_str());
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
