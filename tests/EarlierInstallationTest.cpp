// What a repeated install takes over from the machine: folder and kind from the registry, the group from the log, the
// auto-start choice from the links that stand.
#include "install/EarlierInstallation.h"

#include <shlobj.h>

#include "app/Product.h"
#include "app/RunState.h"
#include "tests/support/InstallCorner.h"

class EarlierInstallation : public InstallCorner
{
protected:
    std::wstring Group(int nKind = KIND_ALL_USERS) const
    {
        g_strInstDir = At(L"target").c_str();
        g_nInstallKind = nKind;
        g_strGroup = L"unchanged";
        TakeOverGroup();
        return g_strGroup.GetString();
    }

    const std::wstring m_strStartupLink = L"Programs\\Startup\\Lumacap 8.lnk";
};

TEST_F(EarlierInstallation, FolderComesFromTheProductKeyOrElseFromTheApplicationPath)
{
    const wchar_t* const kCases[][3] = {
        // path, application path, folder
        { L"C:\\A", L"C:\\B\\Lumacap8.exe", L"C:\\A" },  { L"C:\\A\\\\", L"", L"C:\\A\\" },
        { L"\\", L"C:\\B\\Lumacap8.exe", L"" }, // cut only once the second source has been passed over
        { L"", L"C:\\B\\\\Lumacap8.exe", L"C:\\B" },     { L"", L"C:\\B\\Lumacap8.exe\\C\\Lumacap8.exe", L"C:\\B" },
        { L"", L"\"C:\\B\\Lumacap8.exe\"", L"\"C:\\B" }, { L"", L"C:\\B\\lumacap8.exe", L"" }
    };
    EXPECT_STREQ(FindInstalledFolder(), L"");
    for (const auto& row : kCases)
    {
        SetKeyText(HKEY_LOCAL_MACHINE, kProductKey, L"Path", row[0]);
        SetKeyText(HKEY_LOCAL_MACHINE, kAppPathsKey, L"", row[1]);
        EXPECT_STREQ(FindInstalledFolder(), row[2]);
    }
}

TEST_F(EarlierInstallation, KindIsForAllUsersByTheLetterBAloneAndPortableStays)
{
    TakeOverKind();
    EXPECT_EQ(g_nInstallKind, KIND_CURRENT_USER) << "without the value";
    for (const wchar_t* pszValue : { L"A", L"b", L"BB", L"B" })
        for (const int nKind : { KIND_ALL_USERS, KIND_CURRENT_USER, KIND_PORTABLE })
        {
            SetKeyText(HKEY_LOCAL_MACHINE, kProductKey, L"AllUsers", pszValue);
            g_nInstallKind = nKind;
            TakeOverKind();
            const int nExpected = wcscmp(pszValue, L"B") == 0 ? KIND_ALL_USERS : KIND_CURRENT_USER;
            EXPECT_EQ(g_nInstallKind, nKind == KIND_PORTABLE ? nKind : nExpected) << Bytes(pszValue);
        }
}

TEST_F(EarlierInstallation, LastLinkInTheProgramsFolderOutsideStartupGivesTheGroup)
{
    const struct
    {
        const wchar_t* pszLinks;
        const wchar_t* pszGroup;
        int nKind = KIND_ALL_USERS;
    } kCases[] = { { L"all\\Programs\\One\\x.lnk|all\\Programs\\Two\\y.lnk", L"Two" },
                   { L"all\\Programs\\One\\x.lnk|all\\Desktop\\x.lnk|all\\Programs\\StartUP\\x.lnk", L"One" },
                   { L"all\\Programs\\Startup tools\\x.lnk", L"unchanged" }, // begins as the Startup folder does
                   { L"all\\Programs\\Tools\\Img\\Sub\\x.lnk", L"Tools\\Img\\Sub" },
                   { L"all\\Programs\\One\\x.lnk|all\\Programs\\x.lnk", L"" },
                   { L"ALL\\programs\\MiXed\\X.LNK \t ", L"MiXed" },
                   { L"all\\Programss\\One\\x.lnk|user\\Programs\\One\\x.lnk", L"unchanged" },
                   { L"all\\Programs\\One\\x.lnk|user\\Programs\\Two\\x.lnk", L"Two", KIND_CURRENT_USER },
                   { L"user\\Programs\\Startup\\x.lnk", L"unchanged", KIND_CURRENT_USER },
                   { L"all\\Programs\\One\\x.lnk|user\\Programs\\Two\\x.lnk", L"unchanged", KIND_PORTABLE } };
    MakeFolder(At(L"target"));
    EXPECT_EQ(Group(), L"unchanged") << "without a log";
    WriteBytes(At(L"target\\install.log"), LogOf("", L"", L"all\\Programs\\Second\\x.lnk"));
    EXPECT_EQ(Group(), L"Second");
    for (const auto& row : kCases)
    {
        WriteBytes(At(L"target\\LumUnInst.log"), LogOf("shell link: " + Bytes(OfAll(L"Programs\\Small\\x.lnk")),
                                                       L"all\\Programs\\Made\\x", row.pszLinks));
        EXPECT_EQ(Group(row.nKind), row.pszGroup) << Bytes(row.pszLinks) << " kind " << row.nKind;
    }
}

TEST_F(EarlierInstallation, AutoStartIsWhatTheLinksSayAndTheProbeLeavesNothing)
{
    CCallHook probe("KERNEL32.dll", "GetTempFileNameW", &GetTempFileNameW);
    for (const std::wstring strLinks : { L"", L"all\\", L"user\\", L"all\\|user\\" })
    {
        EmptyFolders();
        for (const std::wstring& strRoot : Split(strLinks, L'|'))
            WriteBytes(At(strRoot + m_strStartupLink), "");
        const size_t nBefore = ListTree(Folder()).size();
        g_bAutoStart = strLinks.empty();
        TakeOverAutoStart();
        EXPECT_EQ(g_bAutoStart, !strLinks.empty());
        EXPECT_EQ(ListTree(Folder()).size(), nBefore);
    }
    EXPECT_EQ(probe.Texts()[0] + L" " + probe.Texts()[1], OfAll(L"Programs\\Startup h5t"));
}

TEST_F(EarlierInstallation, ProbeThatCannotBeOpenedStaysAndDecidesNothing)
{
    WriteBytes(OfAll(m_strStartupLink), "");
    CCallHook open("msvcrt.dll", "_wfopen", &_wfopen);
    open.FailAll(ERROR_ACCESS_DENIED);
    TakeOverAutoStart();
    EXPECT_EQ(g_bAutoStart, 1);
    EXPECT_EQ(ListTree(OfAll(L"Programs\\Startup")).back().substr(0, 3), L"h5t");
}

TEST_F(EarlierInstallation, StartupFolderOfFourCharactersIsNotLookedAt)
{
    for (const std::wstring strFolder : { L"C:\\s", L"C:\\st" })
        for (const int nFolder : { CSIDL_COMMON_STARTUP, CSIDL_STARTUP })
        {
            CCallHook folder("SHELL32.dll", "SHGetFolderPathW", &SHGetFolderPathW);
            folder.Replace([&](HWND, int n, HANDLE, DWORD, LPWSTR psz)
                           { return wcscpy(psz, (n & 0xFF) == nFolder ? strFolder.c_str() : L"C:\\"), S_OK; });
            WriteBytes(strFolder + L"\\Lumacap 8.lnk", "");
            g_bAutoStart = 1;
            TakeOverAutoStart();
            EXPECT_EQ(g_bAutoStart, strFolder == L"C:\\st");
            RemoveTree(strFolder);
        }
}
