// The sequence of a removal against real files, links and hives: its order, its judgement of folders, its sweep of the
// default links and groups, and what it leaves to the next boot.
#include "uninstall/UninstallDriver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "tests/support/Corner.h"
#include "tests/support/Environment.h"
#include "tests/support/ImportHook.h"
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
        m_startup.emplace(HKEY_LOCAL_MACHINE, L"Common Startup", At(L"Startup"));
        m_desktop.emplace(HKEY_LOCAL_MACHINE, L"Common Desktop", At(L"Desktop"));
        m_programs.emplace(HKEY_LOCAL_MACHINE, L"Common Programs", At(L"Programs"));
        for (const wchar_t* pszName : { L"Startup", L"Desktop", L"Programs" })
            SetKeyText(HKEY_USERS, std::wstring(kHive) + kShellFolders, pszName, At(L"User") + L"\\" + pszName);
    }

    void Remove() const { RunUninstall((m_strProduct + L"\\").c_str()); }

    // Texts with "~" for the corner's path, and the way back.
    std::wstring ToCorner(std::wstring strText) const
    {
        for (size_t n; (n = strText.find(L'~')) != std::wstring::npos;)
            strText.replace(n, 1, Folder());
        return strText;
    }
    std::wstring FromCorner(std::wstring strText) const
    {
        for (size_t n; (n = strText.find(Folder())) != std::wstring::npos;)
            strText.replace(n, Folder().size(), L"~");
        return strText;
    }

    // Lists of paths in the corner, each with a bar behind it; a folder ends in a backslash.
    void Make(const std::wstring& strPaths) const
    {
        for (size_t nStart = 0, nEnd; (nEnd = strPaths.find(L'|', nStart)) != std::wstring::npos; nStart = nEnd + 1)
        {
            const std::wstring strPath = At(strPaths.substr(nStart, nEnd - nStart));
            strPath.back() == L'\\' ? MakeFolder(strPath) : WriteBytes(strPath, "x");
        }
    }
    std::wstring Tree() const
    {
        std::wstring strPaths;
        for (const std::wstring& strPath : ListTree(Folder()))
            strPaths += strPath + L"|";
        return strPaths;
    }
    std::wstring Pending() const
    {
        std::wstring strPaths;
        for (const PENDING& entry : PendingEntries())
            strPaths += entry.strSource == Folder() ? L".|" : entry.strSource.substr(Folder().size() + 1) + L"|";
        return strPaths;
    }

    void WriteLog(const std::wstring& strRecords, const wchar_t* pszName = L"LumUnInst.log") const
    {
        const std::wstring strText = ToCorner(strRecords);
        WriteBytes(m_strProduct + L"\\" + pszName, std::string(strText.begin(), strText.end()));
    }

    // One log, the corner before and after the removal, and what is put on the boot list.
    struct CASE
    {
        const wchar_t* pszLog;
        const wchar_t* pszMade;
        const wchar_t* pszLeft;
        const wchar_t* pszPending;
    };
    void Try(const CASE& row) const
    {
        SCOPED_TRACE(testing::PrintToString(row.pszLog) + testing::PrintToString(row.pszMade));
        WriteLog(row.pszLog);
        Make(row.pszMade);
        Remove();
        EXPECT_EQ(Tree(), row.pszLeft);
        EXPECT_EQ(Pending(), row.pszPending);
        for (const std::wstring& strPath : ListTree(Folder()))
            RemoveTree(At(strPath));
        ClearPending();
    }

    // Runs the program's second stage from the corner, in a folder.
    std::unique_ptr<CProcessRun> StartProgram(const std::wstring& strFolder = L"") const
    {
        CopyOneFile(BuildFolder() + L"\\setup.exe", At(L"stage.exe"));
        auto pRun = std::make_unique<CProcessRun>(At(L"stage.exe") + L" -delself " + m_strProduct + L"\\LumUnInst.exe");
        pRun->SetFolder(strFolder);
        return pRun;
    }

    CRegistryCorner m_registry;
    std::optional<CFolderRedirection> m_startup;
    std::optional<CFolderRedirection> m_desktop;
    std::optional<CFolderRedirection> m_programs;
    std::wstring m_strProduct = At(L"P");
};

// Notes calls as lines: the function's name and the texts that it was given.
class CCallOrder
{
public:
    template <typename Function>
    void Watch(const char* pszDll, const char* pszFunction, Function pfn)
    {
        auto pHook = std::make_shared<CCallHook<Function>>(pszDll, pszFunction, pfn);
        m_hooks.push_back(pHook);
        pHook->Replace(
            [this, pszFunction, pRaw = pHook.get()](auto... arguments)
            {
                std::wstring strLine(pszFunction, pszFunction + strlen(pszFunction));
                (Add(strLine, arguments), ...);
                m_lines.push_back(strLine);
                return pRaw->Original()(arguments...);
            });
    }
    const TEXTS& Lines() const { return m_lines; }

private:
    template <typename Argument>
    static void Add(std::wstring& strLine, Argument argument)
    {
        if constexpr (std::is_same_v<Argument, const wchar_t*>)
            strLine += L" " + std::wstring(IS_INTRESOURCE(argument) ? L"" : argument);
    }

    std::vector<std::shared_ptr<void>> m_hooks;
    TEXTS m_lines;
};

// The calls that a removal makes of what StepsComeInTheirOrder puts in its way, "~" being the corner.
const TEXTS kSteps = {
    L"CreateProcessW  ~\\P\\",
    L"RegDeleteKeyW SOFTWARE\\Tandrel\\Lumacap 8",
    L"RegOpenKeyExW Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts",
    L"_wfopen ~\\P\\install.log r",
    L"DeleteFileW ~\\a.lnk",
    L"RemoveDirectoryW ~\\Group",
    L"_wfopen ~\\P\\LumUnInst.log r",
    L"DeleteFileW ~\\b.lnk",
    L"_wfopen ~\\P\\install.log r",
    L"DeleteFileW ~\\P\\a.dll",
    L"RemoveDirectoryW ~\\P\\\\Sub",
    L"MoveFileExW ~\\P\\\\Sub ",
    L"_wfopen ~\\P\\LumUnInst.log r",
    L"DeleteFileW ~\\P\\b.dll",
    L"RemoveDirectoryW ~\\P\\\\x32",
    L"MoveFileExW ~\\P\\\\x32 ",
    L"DeleteFileW ~\\P\\LumUnInst.log",
    L"SetCurrentDirectoryW \\",
    L"RemoveDirectoryW ~\\P\\\\x64",
    L"MoveFileExW ~\\P\\\\x64 ",
    L"RemoveDirectoryW ~\\P\\\\x32",
    L"RemoveDirectoryW ~\\P\\",
    L"DeleteFileW ~\\Startup\\Lumacap 8.lnk",
    L"DeleteFileW ~\\Desktop\\Lumacap 8.lnk",
    L"DeleteFileW ~\\Programs\\Lumacap 8\\.",
    L"MoveFileExW ~\\Programs\\Lumacap 8\\. ",
    L"DeleteFileW ~\\Programs\\Lumacap 8\\..",
    L"MoveFileExW ~\\Programs\\Lumacap 8\\.. ",
    L"RemoveDirectoryW ~\\Programs\\Lumacap 8\\",
    L"DeleteFileW ~\\User\\Startup\\Lumacap 8.lnk",
    L"DeleteFileW ~\\User\\Desktop\\Lumacap 8.lnk",
    L"RemoveDirectoryW ~\\User\\Programs\\Lumacap 8\\",
};

TEST_F(UninstallDriver, StepsComeInTheirOrder)
{
    RedirectFolders();
    WriteLog(L"Make Dir: Sub\nFile Copy: a.dll\nShell Link: ~\\a.lnk\nMade Dir: ~\\Group", L"install.log");
    WriteLog(L"Make Dir: x32\nFile Copy: b.dll\nShell Link: ~\\b.lnk");
    Make(L"P\\a.dll|P\\b.dll|Programs\\Lumacap 8\\|");
    CCallOrder order;
    order.Watch("KERNEL32.dll", "CreateProcessW", &CreateProcessW);
    order.Watch("ADVAPI32.dll", "RegDeleteKeyW", &RegDeleteKeyW);
    order.Watch("ADVAPI32.dll", "RegOpenKeyExW", &RegOpenKeyExW);
    order.Watch("msvcrt.dll", "_wfopen", &_wfopen);
    order.Watch("KERNEL32.dll", "DeleteFileW", &DeleteFileW);
    order.Watch("KERNEL32.dll", "RemoveDirectoryW", &RemoveDirectoryW);
    order.Watch("KERNEL32.dll", "MoveFileExW", &MoveFileExW);
    order.Watch("KERNEL32.dll", "SetCurrentDirectoryW", &SetCurrentDirectoryW);
    Remove();

    TEXTS lines;
    for (const std::wstring& strLine : order.Lines())
        if (strLine.find(Folder()) != std::wstring::npos || strLine == L"RegDeleteKeyW SOFTWARE\\Tandrel\\Lumacap 8" ||
            strLine.find(L"\\FileExts") != std::wstring::npos || strLine == L"SetCurrentDirectoryW \\")
            lines.push_back(FromCorner(strLine));
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
    EXPECT_EQ(lines, kSteps);
    EXPECT_TRUE(IsThere(m_strProduct + L"\\install.log")) << "no record names it";
}

// One folder is asked for at the boot even where it never was, the next only if it stands, and the product's own only
// while that second one stands.
TEST_F(UninstallDriver, SubfoldersAndProductFolderAreJudgedDifferently)
{
    const CASE cases[] = {
        { L"", L"", L"", L"P\\x64|" },
        { L"", L"P\\x64\\|", L"", L"" },
        { L"", L"P\\x64\\a|", L"P\\|P\\x64\\|P\\x64\\a|", L"P\\x64|" },
        { L"", L"P\\x32\\|P\\x64\\|", L"", L"" },
        { L"", L"P\\x32\\a|", L"P\\|P\\x32\\|P\\x32\\a|", L"P\\x64|P\\x32|P\\|" },
        { L"", L"P\\x32\\a|P\\x64\\|", L"P\\|P\\x32\\|P\\x32\\a|", L"P\\x32|P\\|" },
        { L"", L"P\\mine|", L"P\\|P\\mine|", L"P\\x64|" },
        { L"", L"P\\mine|P\\x32\\|P\\x64\\|", L"P\\|P\\mine|", L"" },
    };
    for (const CASE& row : cases)
        Try(row);
}

TEST_F(UninstallDriver, RecordIsFollowedToWhereverItLeads)
{
    const CASE cases[] = {
        { L"File Copy: Sub\\?.dll", L"P\\Sub\\a.dll|P\\a.dll|", L"P\\|P\\Sub\\|P\\a.dll|", L"P\\x64|" },
        // The search finds the file, and the path that is built is another one.
        { L"File Copy: Sub/*.dll", L"P\\Sub\\a.dll|", L"P\\|P\\Sub\\|P\\Sub\\a.dll|", L"P\\a.dll|P\\x64|" },
        // "." and ".." are matches; and the log itself, which is busy being read.
        { L"File Copy: *.*", L"P\\a|P\\Sub\\|", L"P\\|P\\Sub\\|", L"P|.|P\\LumUnInst.log|P\\Sub|P\\x64|" },
        { L"File Copy: ..\\outside", L"outside|", L"", L"P\\x64|" },
        { L"File Copy: ~\\outside", L"outside|", L"outside|", L"P\\x64|" },
        { L"Make Dir: ..\\Outside", L"Outside\\|", L"", L"P\\x64|" },
        { L"Make Dir: ..\\Outside", L"Outside\\a|", L"Outside\\|Outside\\a|", L"Outside|P\\x64|" },
        { L"Made Dir: ~\\Menu\\Group", L"Menu\\Group\\|", L"", L"P\\x64|" },
        { L"Made Dir: ~\\Menu\\Group", L"Menu\\Group\\a|", L"Menu\\|Menu\\Group\\|Menu\\Group\\a|", L"P\\x64|" },
        { L"Shell Link: ~\\outside", L"outside|", L"", L"P\\x64|" },
    };
    for (const CASE& row : cases)
        Try(row);
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
    Make(L"User\\Programs\\Lumacap 8\\Sub\\mine|");
    SetAttributes(At(L"Desktop\\Lumacap 8.lnk"), FILE_ATTRIBUTE_READONLY);
    Remove();

    EXPECT_EQ(Tree(), L"Desktop\\|Desktop\\Lumacap 8.lnk|"
                      L"Programs\\|Programs\\Lumacap 7\\|Programs\\Lumacap 7\\Lumacap 8.lnk|"
                      L"Startup\\|Startup\\Other.lnk|User\\|User\\Desktop\\|"
                      L"User\\Programs\\|User\\Programs\\Lumacap 7\\|User\\Programs\\Lumacap 7\\Lumacap 8.lnk|"
                      L"User\\Programs\\Lumacap 8\\|User\\Programs\\Lumacap 8\\Sub\\|"
                      L"User\\Programs\\Lumacap 8\\Sub\\mine|User\\Startup\\|User\\Startup\\Other.lnk|")
        << "a read-only link stays, and so does a folder below a group, with the group";
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tandrel"));
}

TEST_F(UninstallDriver, MachineFolderOfUpToFourCharactersIsSkipped)
{
    for (const auto& [pszFolder, bSwept] : { std::pair(L"C:\\q", false), { L"C:\\qq", true } })
    {
        const std::wstring strFolder = pszFolder;
        const TEXTS paths = { strFolder + L"\\Lumacap 8.lnk", strFolder + L"\\Lumacap 8\\Lumacap 8.lnk" };
        for (const std::wstring& strPath : paths)
            WriteBytes(strPath, "x");
        for (const wchar_t* pszName : { L"Common Startup", L"Common Desktop", L"Common Programs" })
        {
            const CFolderRedirection redirection(HKEY_LOCAL_MACHINE, pszName, strFolder);
            Remove();
            const bool bGroup = wcscmp(pszName, L"Common Programs") == 0;
            EXPECT_EQ(IsThere(paths[bGroup]), !bSwept) << testing::PrintToString(pszName);
            WriteBytes(paths[bGroup], "x");
        }
        RemoveTree(strFolder);
    }
}

TEST_F(UninstallDriver, ProductIsToldToUnregisterInItsOwnFolder)
{
    m_strProduct = At(L"product with blanks");
    CopyOneFile(PackageFolder() + L"\\Lumacap8.exe", m_strProduct + L"\\Lumacap8.exe");
    MakeKey(HKEY_CLASSES_ROOT, L"LC8.Document\\DefaultIcon");
    SetEnvironmentVariableW(L"LUMACAP_REPORT", At(L"report").c_str());
    CCallHook deletion("ADVAPI32.dll", "RegDeleteKeyW", &RegDeleteKeyW);
    deletion.Replace(
        [&](HKEY hKey, const wchar_t* pszKey)
        {
            EXPECT_TRUE(IsThere(At(L"report"))) << "the product wasn't waited for";
            return deletion.Original()(hKey, pszKey);
        });
    Remove();
    SetEnvironmentVariableW(L"LUMACAP_REPORT", nullptr);
    const std::string strProduct(m_strProduct.begin(), m_strProduct.end());
    EXPECT_EQ(ReadBytes(At(L"report")), "\"" + strProduct + "\\Lumacap8.exe\" -unregonly\t" + strProduct + "\r\n");
}

TEST_F(UninstallDriver, HangingProductIsWaitedForFiveSecondsAndLeftToTheBoot)
{
    CopyOneFile(PackageFolder() + L"\\Lumacap8.exe", m_strProduct + L"\\Lumacap8.exe");
    WriteLog(L"File Copy: Lumacap8.exe");
    const auto pRun = StartProgram();
    pRun->AddEnvironment(L"LUMACAP_HANG", L"1");
    const ULONGLONG nStart = GetTickCount64();
    pRun->Start();
    ASSERT_TRUE(pRun->WaitForEnd());
    const ULONGLONG nTaken = GetTickCount64() - nStart;
    EXPECT_TRUE(nTaken >= 6000 && nTaken < 10000) << nTaken << " ms, one second before the first act included";
    EXPECT_EQ(pRun->FamilyIds().size(), 1u) << "the product was to go on hanging";
    EXPECT_EQ(Pending(), L"stage.exe|P\\Lumacap8.exe|P\\x64|");
    pRun->End();
    RestartMachine();
    EXPECT_EQ(Tree(), L"P\\|") << "the emptied folder isn't on the list";
}

TEST_F(UninstallDriver, FolderThatIsTheCurrentOneGoes)
{
    WriteLog(L"");
    const auto pRun = StartProgram(m_strProduct);
    pRun->Start();
    EXPECT_TRUE(pRun->WaitForFamily());
    EXPECT_FALSE(IsThere(m_strProduct));
}

TEST_F(UninstallDriver, WithoutThePendingListTheProfileFileTakesOver)
{
    WriteLog(L"File Copy: busy.dll");
    Make(L"P\\busy.dll|");
    CFileHold hold(At(L"P\\busy.dll"), FILE_SHARE_READ);
    BlockPending();
    const auto pRun = StartProgram();
    pRun->Start();
    ASSERT_TRUE(pRun->WaitForFamily());
    const std::wstring strProfile =
        ToCorner(L"[rename]\r\nNUL=~\\stage.exe\r\nNUL=~\\P\\busy.dll\r\nNUL=~\\P\\\\x64\r\n");
    EXPECT_EQ(PendingProfile(), std::string(strProfile.begin(), strProfile.end()));
    hold.Release();
    RestartMachine();
    EXPECT_EQ(Tree(), L"P\\|");
}

} // namespace
