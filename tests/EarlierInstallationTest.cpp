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
    void SetUp() override
    {
        InstallCorner::SetUp();
        g_strInstDir = At(L"target").c_str();
        MakeFolder(At(L"target"));
    }

    static std::wstring Group(int nKind)
    {
        g_nInstallKind = nKind;
        g_strGroup = L"unchanged";
        TakeOverGroup();
        return g_strGroup.GetString();
    }

    const std::wstring m_strStartupLink = L"Programs\\Startup\\Lumacap 8.lnk";
};

TEST_F(EarlierInstallation, FolderComesFromTheProductKeyOrElseFromTheApplicationPath)
{
    const struct
    {
        const wchar_t* pszPath;    // null: no such value
        const wchar_t* pszAppPath; // the same
        const wchar_t* pszFolder;
    } kCases[] = { { nullptr, nullptr, L"" },
                   { L"C:\\A", L"C:\\B\\Lumacap8.exe", L"C:\\A" },
                   { L"C:\\A\\", nullptr, L"C:\\A" },
                   { L"C:\\A\\\\", nullptr, L"C:\\A\\" },
                   { L"\\", L"C:\\B\\Lumacap8.exe", L"" }, // cut only once the second source has been passed over
                   { L"", L"C:\\B\\Lumacap8.exe", L"C:\\B" },
                   { nullptr, L"C:\\B\\\\Lumacap8.exe", L"C:\\B" },
                   { nullptr, L"C:\\B\\Lumacap8.exe\\C\\Lumacap8.exe", L"C:\\B" },
                   { nullptr, L"\"C:\\B\\Lumacap8.exe\"", L"\"C:\\B" },
                   { nullptr, L"C:\\B\\lumacap8.exe", L"" },
                   { nullptr, L"C:\\B", L"" } };
    for (const auto& row : kCases)
    {
        RemoveKey(HKEY_LOCAL_MACHINE, kProductKey);
        RemoveKey(HKEY_LOCAL_MACHINE, kAppPathsKey);
        if (row.pszPath != nullptr)
            SetKeyText(HKEY_LOCAL_MACHINE, kProductKey, L"Path", row.pszPath);
        if (row.pszAppPath != nullptr)
            SetKeyText(HKEY_LOCAL_MACHINE, kAppPathsKey, L"", row.pszAppPath);
        EXPECT_STREQ(FindInstalledFolder(), row.pszFolder);
    }
}

TEST_F(EarlierInstallation, KindIsForAllUsersByTheLetterBAloneAndPortableStays)
{
    const struct
    {
        int nKind;
        const wchar_t* pszValue;
        int nExpected;
    } kCases[] = { { KIND_ALL_USERS, L"A", KIND_CURRENT_USER },  { KIND_ALL_USERS, L"b", KIND_CURRENT_USER },
                   { KIND_ALL_USERS, L"BB", KIND_CURRENT_USER }, { KIND_CURRENT_USER, L"B", KIND_ALL_USERS },
                   { KIND_ALL_USERS, L"B", KIND_ALL_USERS },     { KIND_PORTABLE, L"B", KIND_PORTABLE } };
    TakeOverKind();
    EXPECT_EQ(g_nInstallKind, KIND_CURRENT_USER) << "without the value";
    for (const auto& row : kCases)
    {
        SetKeyText(HKEY_LOCAL_MACHINE, kProductKey, L"AllUsers", row.pszValue);
        g_nInstallKind = row.nKind;
        TakeOverKind();
        EXPECT_EQ(g_nInstallKind, row.nExpected) << Bytes(row.pszValue);
    }
}

// In the values of the links @ stands for the machine's Programs folder, # for the user's, ^ for the machine's in upper
// case.
TEST_F(EarlierInstallation, LastLinkInTheProgramsFolderOutsideStartupGivesTheGroup)
{
    const struct
    {
        const wchar_t* pszLinks;
        const wchar_t* pszGroup;
        int nKind = KIND_ALL_USERS;
    } kCases[] = { { L"@\\One\\x.lnk|@\\Two\\y.lnk", L"Two" },
                   { L"@\\One\\x.lnk|C:\\Desktop\\x.lnk", L"One" },
                   { L"@\\One\\x.lnk|@\\StartUP\\x.lnk", L"One" },
                   { L"@\\Startup tools\\x.lnk", L"unchanged" }, // begins as the Startup folder does
                   { L"@\\Tools\\Img\\Sub\\x.lnk", L"Tools\\Img\\Sub" },
                   { L"@\\One\\x.lnk|@\\x.lnk", L"" },
                   { L"^\\MiXed\\X.LNK \t ", L"MiXed" },
                   { L"@s\\One\\x.lnk|#\\One\\x.lnk| @\\One\\x.lnk", L"unchanged" },
                   { L"@\\One\\x.lnk|#\\Two\\x.lnk|@\\Three\\x.lnk", L"Two", KIND_CURRENT_USER },
                   { L"#\\Startup\\x.lnk", L"unchanged", KIND_CURRENT_USER },
                   { L"@\\One\\x.lnk|#\\Two\\x.lnk|\\Three\\x.lnk", L"unchanged", KIND_PORTABLE } };
    std::wstring strUpper = OfAll(L"Programs");
    CharUpperW(&strUpper[0]);
    for (const auto& row : kCases)
    {
        std::wstring strLog = L"shell link: @\\Small\\x.lnk\r\n";
        for (const std::wstring& strLink : Split(row.pszLinks, L'|'))
            strLog += L"Shell Link: " + strLink + L"\r\nMade Dir: @\\Made\\x\r\n";
        const std::wstring folders[] = { OfAll(L"Programs"), OfUser(L"Programs"), strUpper };
        for (int i = 0; i < 3; i++)
            for (size_t n; (n = strLog.find(L"@#^"[i])) != std::wstring::npos;)
                strLog.replace(n, 1, folders[i]);
        WriteBytes(At(L"target\\LumUnInst.log"), Bytes(strLog));
        EXPECT_EQ(Group(row.nKind), row.pszGroup) << Bytes(row.pszLinks) << " kind " << row.nKind;
    }
}

TEST_F(EarlierInstallation, SecondListIsReadOnlyWhereTheFirstIsMissing)
{
    EXPECT_EQ(Group(KIND_ALL_USERS), L"unchanged");
    WriteBytes(At(L"target\\install.log"), "Shell Link: " + Bytes(OfAll(L"Programs\\Second\\x.lnk")));
    EXPECT_EQ(Group(KIND_ALL_USERS), L"Second");
    WriteBytes(At(L"target\\LumUnInst.log"), "");
    EXPECT_EQ(Group(KIND_ALL_USERS), L"unchanged");
}

TEST_F(EarlierInstallation, AutoStartIsWhatTheLinksSayAndTheProbeLeavesNothing)
{
    CCallHook probe("KERNEL32.dll", "GetTempFileNameW", &GetTempFileNameW);
    for (int nCase = 0; nCase < 4; nCase++)
    {
        EmptyFolders();
        if (nCase & 1)
            WriteBytes(OfAll(m_strStartupLink), "");
        if (nCase & 2)
            WriteBytes(OfUser(m_strStartupLink), "");
        const std::wstring strLinks = Links();
        g_bAutoStart = nCase == 0;
        TakeOverAutoStart();
        EXPECT_EQ(g_bAutoStart, nCase != 0);
        EXPECT_EQ(ListTree(At(L"all")).size() + ListTree(At(L"user")).size(), 6 + Split(strLinks, L'|').size());
    }
    EXPECT_EQ(probe.Calls(), 4);
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
    {
        CCallHook folder("SHELL32.dll", "SHGetFolderPathW", &SHGetFolderPathW);
        folder.Replace([&](HWND, int, HANDLE, DWORD, LPWSTR psz) { return wcscpy(psz, strFolder.c_str()), S_OK; });
        WriteBytes(strFolder + L"\\Lumacap 8.lnk", "");
        TakeOverAutoStart();
        EXPECT_EQ(g_bAutoStart, strFolder == L"C:\\st");
        RemoveTree(strFolder);
    }
}
