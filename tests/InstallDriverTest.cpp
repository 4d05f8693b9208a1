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
    void SetUp() override
    {
        InstallCorner::SetUp();
        Choose(KIND_ALL_USERS);
    }

    // Everything anew, with these choices; the target is the folder "target", which isn't there.
    void Choose(int nKind, int bDeskIcon = 1, int bAutoStart = 1) const
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

TEST_F(InstallDriver, LogIsThePackagesListWithWhatTheInstallMadeInItsOrder)
{
    const int kCases[][3] = { { 1, 1, 1 }, { 1, 0, 1 }, { 1, 0, 0 }, { 0, 1, 1 }, { 0, 1, 0 }, { 0, 0, 0 } };
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
        EXPECT_EQ(Split(Links(), L'|').size(), Split(strLinks, L'|').size());
        EXPECT_EQ(Join(ListTree(At(L"target"))), L"LumUnInst.log|Lumacap8.exe|Sub\\");
    }
}

TEST_F(InstallDriver, LinksLeadToProductAndManual)
{
    PerformInstall();
    wchar_t szPictures[MAX_PATH] = L"";
    SHGetFolderPathW(nullptr, CSIDL_MYPICTURES, nullptr, SHGFP_TYPE_CURRENT, szPictures);
    ASSERT_STRNE(szPictures, L"");
    for (const std::wstring& strPath : Split(Links(), L'|'))
    {
        const bool bHelp = strPath == L"all\\Programs\\Lumacap 8\\Lumacap 8 Help.lnk";
        LINK link;
        ASSERT_TRUE(ReadLink(At(strPath), link));
        EXPECT_EQ(link.strTarget, At(bHelp ? L"target\\Lumacap8Man.chm" : L"target\\Lumacap8.exe"));
        EXPECT_EQ(link.strFolder, bHelp ? L"" : szPictures);
        EXPECT_EQ(link.strArguments + link.strDescription + link.strIcon, L"");
    }
}

TEST_F(InstallDriver, LinksThenRegistryThenThumbnailHandlerThenProduct)
{
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
    const wchar_t* const kCases[][3] = { { L"A/B\\C/", L"A\\B\\C", L"A\\|A\\B\\|A\\B\\C\\|" },
                                         { L"\\\\A\\", L"A", L"A\\|" },
                                         { L" \t\r\n/ Two words \\ \n", L"Two words", L"Two words\\|" },
                                         { L"A\\ B", L"A\\ B", L"A\\|A\\ B\\|" },
                                         { L" /\\ ", L"", L"" } };
    for (const auto& row : kCases)
    {
        Choose(KIND_ALL_USERS, 0, 0);
        g_strGroup = row[0];
        PerformInstall();
        EXPECT_STREQ(g_strGroup, row[1]);
        const std::wstring strGroup = std::wstring(L"all\\Programs\\") + row[1];
        EXPECT_EQ(Log(),
                  LogOf(m_strList, strGroup, strGroup + L"\\Lumacap 8.lnk|" + strGroup + L"\\Lumacap 8 Help.lnk"));
        std::wstring strFolders;
        for (const std::wstring& strPath : ListTree(OfAll(L"Programs")))
            strFolders += strPath.back() == L'\\' && strPath != L"Startup\\" ? strPath + L"|" : L"";
        EXPECT_EQ(strFolders, row[2]);
    }
}

TEST_F(InstallDriver, GroupFolderThatCannotBeMadeIsRecordedAndLosesItsLinksAlone)
{
    g_strGroup = L"A\\B?\\C";
    PerformInstall();
    const std::wstring strLinks = L"all\\Desktop\\Lumacap 8.lnk|all\\Programs\\Startup\\Lumacap 8.lnk";
    EXPECT_EQ(Log(), LogOf(m_strList, L"all\\Programs\\A\\B?\\C", strLinks));
    EXPECT_EQ(Links(), strLinks);
    EXPECT_EQ(KeyText(HKEY_LOCAL_MACHINE, kProductKey, L"AllUsers"), L"B");
}

TEST_F(InstallDriver, MachineWithoutACommonProgramsFolderGetsAnInstallForTheUser)
{
    MakeFolder(L"C:\\q");
    for (const std::wstring strCommon : { L"C:\\", L"C:\\q" })
    {
        Choose(KIND_ALL_USERS);
        CCallHook folder("SHELL32.dll", "SHGetFolderPathW", &SHGetFolderPathW);
        folder.Replace(
            [&](HWND hWnd, int nFolder, HANDLE hToken, DWORD dwFlags, LPWSTR psz)
            {
                if ((nFolder & 0xFF) != CSIDL_COMMON_PROGRAMS)
                    return folder.Original()(hWnd, nFolder, hToken, dwFlags, psz);
                return wcscpy(psz, strCommon.c_str()), S_OK;
            });
        PerformInstall();
        const bool bUser = strCommon.size() < 4;
        EXPECT_EQ(g_nInstallKind, bUser ? KIND_CURRENT_USER : KIND_ALL_USERS);
        EXPECT_EQ(KeyText(HKEY_LOCAL_MACHINE, kProductKey, L"AllUsers"), bUser ? L"A" : L"B");
        EXPECT_EQ(Links(), bUser ? L"user\\Desktop\\Lumacap 8.lnk|user\\Programs\\Lumacap 8\\Lumacap 8 Help.lnk|"
                                   L"user\\Programs\\Lumacap 8\\Lumacap 8.lnk|user\\Programs\\Startup\\Lumacap 8.lnk"
                                 : L"all\\Desktop\\Lumacap 8.lnk|all\\Programs\\Startup\\Lumacap 8.lnk");
        EXPECT_EQ(IsThere(L"C:\\q\\Lumacap 8\\Lumacap 8.lnk"), !bUser);
    }
    RemoveTree(L"C:\\q");
}

TEST_F(InstallDriver, SettingsBesideASelfExtractingPackageAreTakenOver)
{
    const struct
    {
        const wchar_t* pszSfx; // empty: not started by one
        const wchar_t* pszPresent;
        int bCopied;
        const wchar_t* pszLanded;
    } kCases[] = { { L"", L"ini|reg", 0, L"" },        { L"sfx", L"ini|reg", 1, L"ini|reg|" },
                   { L"sfx", L"reg", 0, L"reg|" },     { L"sfx", L"ini", 1, L"ini|" },
                   { L"missing", L"ini|reg", 0, L"" }, { L"target", L"", 1, L"" } };
    for (const auto& row : kCases)
    {
        RemoveTree(At(L"sfx"));
        Choose(KIND_PORTABLE);
        if (*row.pszSfx != 0)
            g_strSfxName = At(row.pszSfx).c_str();
        for (const std::wstring& strType : Split(row.pszPresent, L'|'))
            WriteBytes(At(L"sfx\\Lumacap8." + strType), "settings");
        PerformInstall();
        EXPECT_EQ(g_bSettingsCopied, row.bCopied) << Bytes(row.pszSfx);
        std::wstring strLanded;
        for (const wchar_t* pszType : { L"ini", L"reg" })
            strLanded += IsThere(At(L"target\\Lumacap8.") + pszType) ? std::wstring(pszType) + L"|" : L"";
        EXPECT_EQ(strLanded, row.pszLanded) << Bytes(row.pszSfx);
    }
}

TEST_F(InstallDriver, PackageInTheInstallFolderIsLeftInPlaceAndItsListExtended)
{
    Choose(KIND_CURRENT_USER, 0, 0);
    g_strInstDir = g_strSourceDir;
    CCallHook copy("KERNEL32.dll", "CopyFileW", &CopyFileW);
    PerformInstall();
    EXPECT_EQ(copy.Calls(), 0);
    EXPECT_EQ(ReadBytes(At(L"package\\LumUnInst.log")).substr(0, m_strList.size() + 12), m_strList + "\r\nMade Dir: ");
    EXPECT_EQ(Join(ListTree(At(L"package"))), L"LumUnInst.log|Lumacap8.exe|Sub\\");
}

// The earlier installation has links by both logs, and files that the new list names or doesn't.
TEST_F(InstallDriver, OnlyARepeatedInstallClearsWhatTheEarlierOneMade)
{
    for (const int bFresh : { 0, 1 })
    {
        Choose(KIND_ALL_USERS, 0, 0);
        g_bFreshInstall = bFresh;
        WriteBytes(At(L"package\\LumUnInst.log"),
                   "File Copy: Lumacap8.exe\r\nFile Overwrite: kept.txt\r\nMake Dir: Sub\r\nMake Dir: Full\r\n"
                   "File Del: old*.dll | of 7\r\n");
        WriteBytes(At(L"target\\LumUnInst.log"),
                   LogOf(m_strList, L"all\\Programs\\A\\Old", L"all\\Programs\\A\\Old\\a.lnk") +
                       "File Del: kept.txt\r\n");
        WriteBytes(At(L"target\\install.log"), LogOf(m_strList, L"user\\Programs\\B", L"user\\Programs\\B\\b.lnk"));
        for (const wchar_t* pszName : { L"target\\kept.txt", L"target\\old1.dll", L"target\\old2.dll",
                                        L"target\\Lumacap8.exe", L"target\\Full\\x", L"target\\Sub\\old3.dll",
                                        L"all\\Programs\\A\\Old\\a.lnk", L"user\\Programs\\B\\b.lnk" })
            WriteBytes(At(pszName), "old");
        PerformInstall();

        EXPECT_EQ(IsThere(OfAll(L"Programs\\A")), bFresh);
        EXPECT_EQ(IsThere(OfUser(L"Programs\\B")), bFresh);
        EXPECT_EQ(Join(ListTree(At(L"target"))),
                  std::wstring(L"Full\\|Full\\x|LumUnInst.log|Lumacap8.exe|Sub\\|Sub\\old3.dll|install.log|kept.txt") +
                      (bFresh ? L"|old1.dll|old2.dll" : L""));
        EXPECT_EQ(ReadBytes(At(L"target\\Lumacap8.exe")), "product");
        // Folders of the list that hold something wait for the boot, where they stay for the same reason.
        EXPECT_EQ(PendingEntries().size(), bFresh ? 0u : 2u);
        ClearPending();
    }
}
