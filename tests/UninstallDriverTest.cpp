// The sequence of a removal against real files, links and hives: its order, its judgement of folders, its sweep of the
// default links and groups, and what it leaves to the next boot.
#include "uninstall/UninstallDriver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "tests/support/Corner.h"
#include "tests/support/Environment.h"
#include "tests/support/ImportHook.h"
#include "tests/support/InstallCorner.h"
#include "tests/support/Machine.h"
#include "tests/support/PendingList.h"
#include "tests/support/ProcessRun.h"
#include "tests/support/RegistryCorner.h"

namespace
{

using TEXTS = std::vector<std::wstring>;

const wchar_t kHive[] = L"S-1-5-21-7-7-7-1001"; // of a user who is logged on beside the current one
const wchar_t kShellFolders[] = L"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

class UninstallDriver : public MachineCorner
{
protected:
    void SetUp() override
    {
        MachineCorner::SetUp();
        m_registry.ClearProduct();
        m_registry.Clear(HKEY_USERS, kHive);
        MakeFolder(m_strProduct);
    }

    // Moves the machine's default places of links into the corner, and gives the other user some there too.
    void RedirectFolders()
    {
        const std::wstring names[] = { L"Startup", L"Desktop", L"Programs" };
        for (int i = 0; i < 3; i++)
        {
            m_folders[i].emplace(HKEY_LOCAL_MACHINE, (L"Common " + names[i]).c_str(), At(names[i]));
            SetKeyText(HKEY_USERS, std::wstring(kHive) + kShellFolders, names[i], At(L"User\\") + names[i]);
        }
    }

    void Remove() const { RunUninstall((m_strProduct + L"\\").c_str()); }

    // The text with "~" for the corner's path.
    std::wstring FromCorner(std::wstring strText) const
    {
        for (size_t n; (n = strText.find(Folder())) != std::wstring::npos;)
            strText.replace(n, Folder().size(), L"~");
        return strText;
    }

    // Paths in the corner, with bars between; a folder ends in a backslash.
    void Make(const std::wstring& strPaths) const
    {
        for (const std::wstring& strPath : Split(strPaths, L'|'))
            strPath.back() == L'\\' ? MakeFolder(At(strPath)) : WriteBytes(At(strPath), "x");
    }

    void WriteLog(const std::wstring& strRecords, const wchar_t* pszName = L"LumUnInst.log") const
    {
        WriteBytes(m_strProduct + L"\\" + pszName, Bytes(strRecords));
    }

    CRegistryCorner m_registry;
    std::optional<CFolderRedirection> m_folders[3];
    std::wstring m_strProduct = At(L"P");
};

// The calls that a removal makes of what StepsComeInTheirOrder puts in its way, "~" being the corner.
const wchar_t kSteps[] = L"start ~\\P\\|unregister SOFTWARE\\Tandrel\\Lumacap 8|"
                         L"look Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts|"
                         L"read ~\\P\\install.log|delete ~\\a.lnk|remove ~\\Group|"
                         L"read ~\\P\\LumUnInst.log|delete ~\\b.lnk|"
                         L"read ~\\P\\install.log|delete ~\\P\\a.dll|remove ~\\P\\\\Sub|"
                         L"read ~\\P\\LumUnInst.log|delete ~\\P\\b.dll|remove ~\\P\\\\x32|"
                         L"delete ~\\P\\LumUnInst.log|remove ~\\P\\\\x64|remove ~\\P\\\\x32|remove ~\\P\\|"
                         L"delete ~\\Startup\\Lumacap 8.lnk|delete ~\\Desktop\\Lumacap 8.lnk|"
                         L"delete ~\\Programs\\Lumacap 8\\.|delete ~\\Programs\\Lumacap 8\\..|"
                         L"remove ~\\Programs\\Lumacap 8\\|"
                         L"delete ~\\User\\Startup\\Lumacap 8.lnk|delete ~\\User\\Desktop\\Lumacap 8.lnk|"
                         L"remove ~\\User\\Programs\\Lumacap 8\\";

TEST_F(UninstallDriver, StepsComeInTheirOrder)
{
    RedirectFolders();
    WriteLog(L"Make Dir: Sub\nFile Copy: a.dll\nShell Link: " + At(L"a.lnk\nMade Dir: ") + At(L"Group"),
             L"install.log");
    WriteLog(L"Make Dir: x32\nFile Copy: b.dll\nShell Link: " + At(L"b.lnk"));
    Make(L"P\\a.dll|P\\b.dll|Programs\\Lumacap 8\\");
    TEXTS lines;
    const auto watch = [&](auto& hook, const std::wstring& strVerb, int nText = 1) // which of the texts, from behind
    {
        hook.Replace(
            [&, strVerb, nText](auto... arguments)
            {
                const std::wstring strLine = strVerb + FromCorner(hook.Texts().end()[-nText]);
                if (strLine.find(L'~') != std::wstring::npos || strLine.find(L"\\FileExts") != std::wstring::npos ||
                    strLine == L"unregister SOFTWARE\\Tandrel\\Lumacap 8")
                    lines.push_back(strLine);
                return hook.Original()(arguments...);
            });
    };
    CCallHook start("KERNEL32.dll", "CreateProcessW", &CreateProcessW);
    CCallHook unregister("ADVAPI32.dll", "RegDeleteKeyW", &RegDeleteKeyW);
    CCallHook look("ADVAPI32.dll", "RegOpenKeyExW", &RegOpenKeyExW);
    CCallHook read("msvcrt.dll", "_wfopen", &_wfopen);
    CCallHook deletion("KERNEL32.dll", "DeleteFileW", &DeleteFileW);
    CCallHook removal("KERNEL32.dll", "RemoveDirectoryW", &RemoveDirectoryW);
    watch(start, L"start ");
    watch(unregister, L"unregister ");
    watch(look, L"look ");
    watch(read, L"read ", 2);
    watch(deletion, L"delete ");
    watch(removal, L"remove ");
    Remove();
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
    EXPECT_EQ(Join(lines), kSteps);
    EXPECT_TRUE(IsThere(m_strProduct + L"\\install.log")) << "no record names it";
}

// One folder is asked for at the boot even where it never was, the next only if it stands, and the product's own only
// while that second one stands.
TEST_F(UninstallDriver, SubfoldersAndProductFolderAreJudgedDifferently)
{
    const struct
    {
        std::wstring strLog;
        const wchar_t* pszMade;
        const wchar_t* pszLeft;
        const wchar_t* pszPending;
    } cases[] = {
        { L"", L"", L"", L"-P\\x64" },
        { L"", L"P\\x64\\a", L"P\\ P\\x64\\ P\\x64\\a", L"-P\\x64" },
        { L"", L"P\\x32\\|P\\x64\\", L"", L"" },
        { L"", L"P\\x32\\a", L"P\\ P\\x32\\ P\\x32\\a", L"-P\\x64 -P\\x32 -P\\" },
        { L"", L"P\\mine|P\\x32\\|P\\x64\\", L"P\\ P\\mine", L"" },
        // A record is followed to wherever it leads; "." and ".." are matches, and so is the log, busy being read.
        { L"File Copy: ..\\outside", L"outside", L"", L"-P\\x64" },
        { L"File Copy: *.*", L"P\\a|P\\Sub\\", L"P\\ P\\Sub\\", L"-P -. -P\\LumUnInst.log -P\\Sub -P\\x64" },
        { L"Made Dir: " + At(L"Menu\\Group"), L"Menu\\Group\\a", L"Menu\\ Menu\\Group\\ Menu\\Group\\a", L"-P\\x64" },
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(testing::PrintToString(row.strLog) + testing::PrintToString(row.pszMade));
        WriteLog(row.strLog);
        Make(row.pszMade);
        Remove();
        EXPECT_EQ(TreeText(Folder()), row.pszLeft);
        EXPECT_EQ(PendingText(Folder()), row.pszPending);
        for (const std::wstring& strPath : ListTree(Folder()))
            RemoveTree(At(strPath));
        ClearPending();
    }
}

TEST_F(UninstallDriver, DefaultLinksAndGroupsGoEverywhereEvenIfTheLogIsLost)
{
    RedirectFolders();
    m_registry.Clear(HKEY_USERS, L"S-1-5-21-7-7-7-1000"); // a hive without folders comes before the other one
    MakeKey(HKEY_USERS, L"S-1-5-21-7-7-7-1000");
    SetKeyText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tandrel\\Lumacap 8", L"Path", m_strProduct);
    for (const std::wstring& strUser : { At(L""), At(L"User\\") })
    {
        for (const wchar_t* pszFile : { L"Startup\\Lumacap 8.lnk", L"Startup\\Other.lnk", L"Desktop\\Lumacap 8.lnk",
                                        L"Programs\\Lumacap 8\\Lumacap 8.lnk", L"Programs\\Lumacap 8\\mine",
                                        L"Programs\\Lumacap 7\\Lumacap 8.lnk" })
            WriteBytes(strUser + pszFile, "x");
        SetAttributes(strUser + L"Programs\\Lumacap 8\\mine", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    }
    Make(L"User\\Programs\\Lumacap 8\\Sub\\mine");
    SetAttributes(At(L"Desktop\\Lumacap 8.lnk"), FILE_ATTRIBUTE_READONLY);
    Remove();

    EXPECT_EQ(TreeText(Folder()),
              L"Desktop\\ Desktop\\Lumacap 8.lnk "
              L"Programs\\ Programs\\Lumacap 7\\ Programs\\Lumacap 7\\Lumacap 8.lnk Startup\\ Startup\\Other.lnk "
              L"User\\ User\\Desktop\\ "
              L"User\\Programs\\ User\\Programs\\Lumacap 7\\ User\\Programs\\Lumacap 7\\Lumacap 8.lnk "
              L"User\\Programs\\Lumacap 8\\ User\\Programs\\Lumacap 8\\Sub\\ "
              L"User\\Programs\\Lumacap 8\\Sub\\mine User\\Startup\\ User\\Startup\\Other.lnk")
        << "a read-only link stays, and so does a folder below a group, with the group";
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tandrel"));
}

TEST_F(UninstallDriver, MachineFolderOfUpToFourCharactersIsSkipped)
{
    for (const std::wstring strFolder : { L"C:\\q", L"C:\\qq" })
    {
        for (const wchar_t* pszName : { L"Common Startup", L"Common Desktop", L"Common Programs" })
        {
            const CFolderRedirection redirection(HKEY_LOCAL_MACHINE, pszName, strFolder);
            const std::wstring strPath =
                strFolder +
                (wcscmp(pszName, L"Common Programs") == 0 ? L"\\Lumacap 8\\Lumacap 8.lnk" : L"\\Lumacap 8.lnk");
            WriteBytes(strPath, "x");
            Remove();
            EXPECT_EQ(IsThere(strPath), strFolder.size() == 4) << testing::PrintToString(pszName);
        }
        RemoveTree(strFolder);
    }
}

TEST_F(UninstallDriver, ProductIsToldToUnregisterWaitedForFiveSecondsAndLeftToTheBoot)
{
    m_strProduct = At(L"P with blanks");
    CopyOneFile(PackageFolder() + L"\\Lumacap8.exe", m_strProduct + L"\\Lumacap8.exe");
    CopyOneFile(BuildFolder() + L"\\setup.exe", At(L"stage.exe"));
    RemoveTree(At(L"P"));
    WriteLog(L"File Copy: Lumacap8.exe");
    CProcessRun run(At(L"stage.exe") + L" -delself \"" + m_strProduct + L"\\LumUnInst.exe\"");
    run.AddEnvironment(L"LUMACAP_HANG", L"1");
    run.AddEnvironment(L"LUMACAP_REPORT", At(L"report"));
    const ULONGLONG nStart = GetTickCount64();
    run.Start();
    ASSERT_TRUE(run.WaitForEnd());
    const ULONGLONG nTaken = GetTickCount64() - nStart;
    EXPECT_TRUE(nTaken >= 6000 && nTaken < 10000) << nTaken << " ms, one second before the first act included";
    EXPECT_EQ(run.FamilyIds().size(), 1u) << "the product was to go on hanging";
    EXPECT_EQ(ReadBytes(At(L"report")),
              Bytes(L"\"" + m_strProduct + L"\\Lumacap8.exe\" -unregonly\t" + m_strProduct + L"\r\n"));
    EXPECT_EQ(PendingText(Folder()), L"-stage.exe -P with blanks\\Lumacap8.exe -P with blanks\\x64");
    run.End();
    RestartMachine();
    EXPECT_EQ(TreeText(Folder()), L"P with blanks\\ report") << "the emptied folder isn't on the list";
}

} // namespace
