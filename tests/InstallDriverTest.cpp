// All the work of an install, run in this process over a package of two files. What it starts is recorded only.
#include "install/InstallDriver.h"

#include <shlobj.h>

#include "app/Product.h"
#include "app/RunState.h"
#include "tests/support/InstallCorner.h"
#include "tests/support/LinkFile.h"
#include "tests/support/PendingList.h"

class InstallDriver : public InstallCorner
{
protected:
    // Everything anew, with these choices; the target is the folder "target", which isn't there.
    void Choose(int nKind, int bDeskIcon, int bAutoStart) const
    {
        RemoveTree(At(L"target"));
        EmptyFolders();
        WriteBytes(At(L"package\\LumUnInst.log"), m_strList);
        WriteBytes(At(L"package\\Lumacap8.exe"), "product");
        ResetProgramState();
        g_strSourceDir = At(L"package").c_str();
        g_strInstDir = At(L"target").c_str();
        g_strGroup = L"Lumacap 8";
        g_bFreshInstall = 1;
        g_nInstallKind = nKind;
        g_bDeskIcon = bDeskIcon;
        g_bAutoStart = bAutoStart;
    }

    std::string Log() const { return ReadBytes(At(L"target\\LumUnInst.log")); }

    const std::string m_strList = "A remark.\nFile Copy: Lumacap8.exe\r\nMake Dir: Sub"; // no line end behind it
    CLaunchRecorder m_recorder;
};

TEST_F(InstallDriver, LogIsThePackagesListWithTheLinksThatLeadToProductAndManual)
{
    wchar_t szPictures[MAX_PATH] = L"";
    SHGetFolderPathW(nullptr, CSIDL_MYPICTURES, nullptr, SHGFP_TYPE_CURRENT, szPictures);
    ASSERT_STRNE(szPictures, L"");
    const int kCases[][3] = { { 1, 1, 1 }, { 1, 0, 0 }, { 0, 1, 0 }, { 0, 0, 1 } };
    for (const auto& row : kCases)
    {
        Choose(row[0], row[1], row[2]);
        EXPECT_EQ(PerformInstall(), 0);
        const std::wstring strRoot = row[0] == KIND_ALL_USERS ? L"all\\" : L"user\\";
        const std::wstring strGroup = strRoot + L"Programs\\Lumacap 8";
        const std::wstring strLinks = strGroup + L"\\Lumacap 8.lnk|" + strGroup + L"\\Lumacap 8 Help.lnk" +
                                      (row[1] ? L"|" + strRoot + L"Desktop\\Lumacap 8.lnk" : L"") +
                                      (row[2] ? L"|" + strRoot + L"Programs\\Startup\\Lumacap 8.lnk" : L"");
        EXPECT_EQ(Log(), LogOf(m_strList, strGroup, strLinks));
        EXPECT_EQ(Links().size(), strLinks.size());
        EXPECT_EQ(Join(ListTree(At(L"target"))), L"LumUnInst.log|Lumacap8.exe|Sub\\");
        for (const std::wstring& strPath : Split(strLinks, L'|'))
        {
            const bool bHelp = strPath.find(L"Help") != std::wstring::npos;
            LINK link;
            ASSERT_TRUE(ReadLink(At(strPath), link));
            EXPECT_EQ(link.strTarget, At(bHelp ? L"target\\Lumacap8Man.chm" : L"target\\Lumacap8.exe"));
            EXPECT_EQ(link.strFolder, bHelp ? L"" : szPictures);
            EXPECT_EQ(link.strArguments + link.strDescription + link.strIcon, L"");
        }
    }
}

TEST_F(InstallDriver, LinksThenRegistryThenThumbnailHandlerThenProduct)
{
    Choose(KIND_ALL_USERS, 1, 1);
    CCallHook setValue("ADVAPI32.dll", "RegSetValueExW", &RegSetValueExW);
    setValue.Replace(
        [&](HKEY, LPCWSTR, DWORD, DWORD, const BYTE*, DWORD)
        {
            EXPECT_EQ(Split(Links(), L'|').size(), 4u);
            EXPECT_TRUE(m_recorder.launches.empty());
            return ERROR_SUCCESS;
        });
    PerformInstall();
    EXPECT_EQ(setValue.Calls(), 32);
    EXPECT_EQ(Join(m_recorder.launches), L"regsvr32.exe /s \"" + At(L"target\\ThumbLcp64.dll\" in ") + At(L"target") +
                                             L"|\"" + At(L"target\\Lumacap8.exe\" -regonly in ") + At(L"target"));
}

TEST_F(InstallDriver, GroupNameIsNormalisedAndOnlyItsDeepestFolderRecorded)
{
    const wchar_t* const kCases[][2] = { { L"A/B\\C/", L"A\\B\\C" },
                                         { L"\\\\A\\", L"A" },
                                         { L" \t\r\n/ Two words \\ \n", L"Two words" },
                                         { L" /\\ ", L"" },
                                         { L"A\\B?\\C", L"A\\B?\\C" } }; // can't be made, and has no links
    for (const auto& row : kCases)
    {
        Choose(KIND_ALL_USERS, 1, 0);
        g_strGroup = row[0];
        PerformInstall();
        EXPECT_STREQ(g_strGroup, row[1]);
        const std::wstring strGroup = std::wstring(L"all\\Programs\\") + row[1];
        const std::wstring strLinks = strGroup + L"\\Lumacap 8.lnk|" + strGroup + L"\\Lumacap 8 Help.lnk|";
        EXPECT_EQ(Log(),
                  LogOf(m_strList, strGroup, (wcschr(row[1], L'?') ? L"" : strLinks) + L"all\\Desktop\\Lumacap 8.lnk"));
    }
}

TEST_F(InstallDriver, MachineWithoutACommonProgramsFolderGetsAnInstallForTheUser)
{
    MakeFolder(L"C:\\q");
    for (const std::wstring strCommon : { L"C:\\", L"C:\\q" })
    {
        Choose(KIND_ALL_USERS, 1, 1);
        const CFolderRedirection programs(HKEY_LOCAL_MACHINE, L"Common Programs", strCommon);
        PerformInstall();
        const bool bUser = strCommon.size() < 4;
        EXPECT_EQ(KeyText(HKEY_LOCAL_MACHINE, kProductKey, L"AllUsers"), bUser ? L"A" : L"B");
        EXPECT_EQ(Links().find(bUser ? L"all" : L"user"), std::wstring::npos);
        EXPECT_EQ(IsThere(L"C:\\q\\Lumacap 8\\Lumacap 8.lnk"), !bUser);
    }
    RemoveTree(L"C:\\q");
}

// A portable install, which starts nothing.
TEST_F(InstallDriver, SettingsBesideASelfExtractingPackageAreTakenOver)
{
    const struct
    {
        const wchar_t* pszSfx; // empty: not started by one, with settings in the drive's root
        const wchar_t* pszPresent;
        int bCopied;
        const wchar_t* pszLanded;
    } kCases[] = { { L"", L"ini", 0, L"" },
                   { L"sfx", L"reg", 0, L"|Lumacap8.reg" },
                   { L"sfx", L"ini", 1, L"|Lumacap8.ini" },
                   { L"target", L"", 1, L"" } };
    SetCurrentDirectoryW(Folder().c_str());
    for (const auto& row : kCases)
    {
        RemoveTree(At(L"sfx"));
        Choose(KIND_PORTABLE, 1, 1);
        if (*row.pszSfx != 0)
            g_strSfxName = At(row.pszSfx).c_str();
        const std::wstring strPresent = *row.pszSfx != 0 ? At(row.pszSfx) : L"C:";
        if (*row.pszPresent != 0)
            WriteBytes(strPresent + L"\\Lumacap8." + row.pszPresent, "settings");
        PerformInstall();
        RemoveTree(L"C:\\Lumacap8.ini");
        EXPECT_EQ(g_bSettingsCopied, row.bCopied) << Bytes(row.pszSfx);
        EXPECT_EQ(Join(ListTree(At(L"target"))),
                  L"LumUnInst.log|Lumacap8.exe" + std::wstring(row.pszLanded) + L"|Sub\\");
    }
    EXPECT_EQ(Links() + Join(m_recorder.launches), L"");
}

// The earlier installation has links by both logs, and files that the new list names or doesn't.
TEST_F(InstallDriver, OnlyARepeatedInstallClearsWhatTheEarlierOneMade)
{
    for (const int bFresh : { 0, 1 })
    {
        Choose(KIND_ALL_USERS, 0, 0);
        g_bFreshInstall = bFresh;
        WriteBytes(At(L"package\\LumUnInst.log"), "File Copy: Lumacap8.exe\r\nFile Overwrite: kept.txt\r\n"
                                                  "Make Dir: Full\r\nFile Del: old*.dll | of 7\r\n");
        WriteBytes(At(L"target\\LumUnInst.log"),
                   LogOf("", L"all\\Programs\\A\\Old", L"all\\Programs\\A\\Old\\a.lnk") + "File Del: kept.txt\r\n");
        WriteBytes(At(L"target\\install.log"), LogOf("", L"user\\Programs\\B", L"user\\Programs\\B\\b.lnk"));
        for (const wchar_t* pszName :
             { L"target\\kept.txt", L"target\\old1.dll", L"target\\old2.dll", L"target\\Lumacap8.exe",
               L"target\\Full\\old3.dll", L"all\\Programs\\A\\Old\\a.lnk", L"user\\Programs\\B\\b.lnk" })
            WriteBytes(At(pszName), "old");
        PerformInstall();

        EXPECT_EQ(IsThere(OfAll(L"Programs\\A")), bFresh);
        EXPECT_EQ(IsThere(OfUser(L"Programs\\B")), bFresh);
        EXPECT_EQ(Join(ListTree(At(L"target"))),
                  std::wstring(L"Full\\|Full\\old3.dll|LumUnInst.log|Lumacap8.exe|install.log|kept.txt") +
                      (bFresh ? L"|old1.dll|old2.dll" : L""));
        EXPECT_EQ(ReadBytes(At(L"target\\Lumacap8.exe")), "product");
        // A folder of the list that holds something waits for the boot, where it stays for the same reason.
        EXPECT_EQ(PendingText(At(L"target")), bFresh ? L"" : L"-Full");
        ClearPending();
    }
}
