// What is told of an installation and of its removal, against installs and removals by the engine in this process, and
// against every kind of damage. What they start is left out.
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>

#include "install/InstallRun.h"
#include "tests/support/Calls.h"
#include "tests/support/Programs.h"
#include "tests/support/World.h"
#include "uninstall/UninstallDriver.h"

namespace
{

const std::wstring kAppPath = kWindows + L"\\App Paths\\Lumacap8.exe";
const std::wstring kEntry = kWindows + L"\\Uninstall\\Lumacap 8";
const std::wstring kDesktop = L"user\\Desktop\\Lumacap 8.lnk";

class Verify : public World
{
protected:
    void SetUp() override
    {
        World::SetUp();
        PutPackage();
        Make(L"package\\page.url|package\\version.dll|package\\StartLC8.exe", std::string(0x40000, '0') + "!");
        Make(L"package\\LumUnInst.log", ReadBytes(At(L"package\\LumUnInst.log")) +
                                            "File Copy: page.url\nMake Dir: Empty\nFile Copy ind: version.dll");
    }

    void Install(const std::wstring& strArguments = L"-instdir C:\\corner\\T") const
    {
        ResetProgramState();
        const CArguments arguments(Split(L"C:\\corner\\package\\setup.exe -s " + strArguments, L' '));
        const CCalls calls({ { "CreateProcessW", [](CALL&) { return TRUE; } } });
        EXPECT_EQ(RunToExit(RunInstall), 0);
        SetCurrentDirectoryW(L"C:\\");
    }

    // The exit code and what comes before the sum, line by line, with paths relative to the corner.
    std::wstring Told(const std::wstring& strArguments = L"") const
    {
        const TOLD told = RunPkgtool(L"verify C:\\corner\\package " + strArguments);
        const std::wstring strLines = std::to_wstring(told.nExitCode) + L"\n" + told.strText;
        return Replaced(strLines.substr(0, strLines.rfind(L'\n', strLines.size() - 2)), L"C:\\corner\\", L"");
    }

    static void Edit(const std::wstring& strPath, const std::wstring& strFrom, const std::wstring& strTo)
    {
        WriteBytes(strPath, Bytes(Replaced(Wide(ReadBytes(strPath)), strFrom, strTo)));
    }
    // A replacement is marked in the list as one.
    static void MoveLater(const std::wstring& strFrom, const wchar_t* pszTo = nullptr)
    {
        MoveFileExW(strFrom.c_str(), pszTo, MOVEFILE_DELAY_UNTIL_REBOOT | (pszTo ? MOVEFILE_REPLACE_EXISTING : 0));
    }
};

} // namespace

TEST_F(Verify, InstallIsWholeAndNothingChangesByLooking)
{
    SetAttributes(At(L"package\\page.url"), FILE_ATTRIBUTE_READONLY);
    Install(L"-autostart");
    const TEXTS picture = TakePicture();
    EXPECT_EQ(RunPkgtool(L"verify C:\\corner\\package").strText,
              L"whole; differences: 0; waiting for the next start of the machine: 0; checked: 58; folder: "
              L"C:\\corner\\Program Files\\Lumacap 8\n");
    EXPECT_EQ(Told(), L"0");
    EXPECT_EQ(Told(L"--removed E:\\elsewhere"), L"0");
    EXPECT_EQ(Join(Difference(picture, TakePicture())), L"");
    RemoveTree(At(L"package\\page.url"));
    EXPECT_EQ(Told(), L"1\npackage\\LumUnInst.log names in line 31 what the package doesn't hold");
}

// Each is told, by itself, and the next install mends it.
TEST_F(Verify, EachDamageIsToldInItsOwnWords)
{
    std::shared_ptr<void> hold;
    const std::wstring strPage = At(L"T\\page.url");
    const std::wstring strLog = At(L"T\\LumUnInst.log");
    const std::wstring strDesktop = At(kDesktop);
    const std::wstring strHelp = At(L"user\\Programs\\Lumacap 8\\Lumacap 8 Help.lnk");
    const std::string strList = ReadBytes(At(L"package\\LumUnInst.log"));
    const std::wstring strLogEnd = L"T\\LumUnInst.log doesn't end as an install leaves it: links may outlive it";
    const std::wstring strGoes = L"T\\page.url goes at the next start, and the package's doesn't come";
    const std::wstring strUnread = L"T\\page.url can't be compared, since one can't be read";
    const std::pair<std::function<void()>, std::wstring> kCases[] = {
        { [] {}, L"" },
        { [&] { Make(L"T\\page.url", "01234"); }, L"T\\page.url has 5 bytes, and the package's file 262145" },
        { [&] { Edit(strPage, L"!", L"."); }, L"T\\page.url has the right size, and another content" },
        { [&] { RemoveTree(strPage), MakeFolder(strPage); }, L"T\\page.url is missing" },
        { [&] { RemoveTree(strPage), MoveLater(strHelp, strPage.c_str()); }, L"T\\page.url is missing" },
        { [&] { RemoveTree(At(L"T\\lcxshare.dll")); }, L"T\\lcxshare.dll is missing" },
        { [&] { hold = HoldFile(strPage, 0); }, strUnread },
        { [&] { hold = HoldFile(At(L"package\\page.url"), 0); }, strUnread },
        { [&] { SetAttributes(strPage, FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM); },
          L"T\\page.url is hidden, and the package's file isn't\n"
          L"T\\page.url is a system file, and the package's file isn't" },
        { [&] { SetAttributes(strLog, FILE_ATTRIBUTE_READONLY); },
          L"T\\LumUnInst.log is read-only, and the package's file isn't" },
        { [&] { CopyOneFile(ProductOfVersion(L"8.19.9.0"), At(L"T\\Lumacap8.exe")); },
          L"T\\Lumacap8.exe is of version 8.19.9.0, and the package's file of 8.20.1.0" },
        { [&] { Edit(At(L"T\\Lumacap8.exe"), L"OS", L"os"); },
          L"T\\Lumacap8.exe has the right size, and another content" },
        { [&] { RemoveTree(At(L"T\\Empty")); }, L"" },
        { [&] { RemoveTree(At(L"T")); }, L"T is missing: there is no such folder" },
        { [&] { Install(L"-instdir \\\\nowhere\\T"); }, L"\\\\nowhere\\T is missing: there is no such folder" },
        // What waits
        { [&]
          {
              Make(L"T\\page.url", "old");
              hold = HoldFile(strPage, FILE_SHARE_READ);
              Install();
          },
          L"3\nT\\page.url comes at the next start of the machine" },
        { [&] { hold = HoldFile(strPage, FILE_SHARE_READ), Install(), Install(); }, strGoes },
        { [&] { hold = HoldFile(strPage, FILE_SHARE_READ), Install(), MoveLater(strPage); }, strGoes },
        { [&] { hold = HoldFile(strLog, FILE_SHARE_READ), Install(); }, strLogEnd },
        { [&] { Install(L"-instdir C:/corner/./T"), MoveLater(strPage); },
          Replaced(strGoes, L"T\\", L"C:/corner/./T\\") },
        { [&] { MoveLater(strHelp, strPage.c_str()); }, strGoes },
        { [&]
          {
              BlockPending();
              WriteBytes(kPendingProfile, "[rename]\r\nnul=" + Bytes(strPage));
          },
          strGoes },
        // Links
        { [&] { RemoveTree(strHelp), RemoveTree(strDesktop), Edit(strLog, strHelp, strDesktop); },
          kDesktop + L" is missing: there is no such link\n"
                     L"user\\Programs\\Lumacap 8\\Lumacap 8 Help.lnk is missing: there is no such link" },
        { [&] { CopyOneFile(strHelp, strDesktop); },
          kDesktop + L" leads to T\\Lumacap8Man.chm, and should lead to T\\Lumacap8.exe" },
        { [&] { CopyOneFile(strDesktop, At(L"user\\Programs\\Startup\\Lumacap 8.lnk")); },
          L"user\\Programs\\Startup\\Lumacap 8.lnk is a link that the log doesn't name" },
        { [&] { WriteBytes(strDesktop, "x"); }, kDesktop + L" leads to nowhere, and should lead to T\\Lumacap8.exe" },
        // Registry
        { [&] { SetKeyText(kMachine, kEntry, L"DisplayVersion", L"1"); },
          L"HKLM\\" + kEntry + L" : DisplayVersion is 1, and should be 8.20.01" },
        { [&] { SetKeyText(kMachine, kEntry, L"MajorVersion", L"8"); },
          L"HKLM\\" + kEntry + L" : MajorVersion is of another kind, and should be 8" },
        { [&] { RemoveValue(kMachine, kAppPath, L""); },
          L"HKLM\\" + kAppPath + L" : (default) is missing, and should be T\\Lumacap8.exe" },
        { [&] { RemoveValue(kMachine, kProduct, L"Path"); },
          L"HKLM\\" + kProduct + L" : Path is missing, and should be T" },
        // The next install is of that kind, until the key is gone.
        { [&] { SetKeyText(kMachine, kProduct, L"AllUsers", L"B"); },
          L"HKLM\\" + kProduct + L" : AllUsers is B, and should be A" },
        { [&]
          {
              RemoveKey(kMachine, kProduct);
              RemoveKey(kMachine, kAppPath);
          },
          L"HKLM\\" + kProduct + L" : Path is missing: no installation is registered" },
        // The log
        { [&] { RemoveTree(strLog); }, L"T\\LumUnInst.log is missing" },
        { [&] { WriteBytes(strLog, strList.substr(0, 100)); }, L"T\\LumUnInst.log is cut: of the " +
                                                                   std::to_wstring(strList.size()) +
                                                                   L" bytes of the package's list it has 100" },
        { [&] { Edit(strLog, L"capff", L"CAPFF"); }, L"T\\LumUnInst.log isn't the package's list: line 11 differs" },
        { [&] { WriteBytes(strLog, ReadBytes(strLog).substr(0, ReadBytes(strLog).size() - 2)); }, strLogEnd },
        { [&] { Edit(strLog, L"version.dll", L"version.dll\r\nFile Del: x"); }, strLogEnd },
        // What is left of the group's name is taken over by the next install, unless the log has no group.
        { [&] { Edit(strLog, L"8.lnk\r\n", L"8.ln"); }, strLogEnd },
        { [&] { WriteBytes(strLog, strList + "\r\n"); }, strLogEnd },
        { [&] { Edit(strLog, L"Shell Link: " + strDesktop + L"\r\n", L""); },
          kDesktop + L" is a link that the log doesn't name" },
        { [&]
          {
              MoveFolder(HKEY_CURRENT_USER, L"Programs", At(L"\u017D"));
              Install();
          },
          strLogEnd },
    };
    for (const auto& [damage, strTold] : kCases)
    {
        Install();
        ClearPending();
        damage();
        EXPECT_EQ(Told(), strTold.empty() ? L"0" : strTold[0] == L'3' ? strTold : L"1\n" + strTold);
        hold.reset();
    }
}

TEST_F(Verify, PortableInstallHasNeitherLinksNorRegistration)
{
    Install(L"-instport C:\\corner\\stick\\P");
    EXPECT_EQ(Told(L"\"C:\\corner\\stick\\P\\\""), L"0");
    EXPECT_EQ(Told(), L"1\nHKLM\\SOFTWARE\\Tandrel\\Lumacap 8 : Path is missing: no installation is registered");
    Make(L"stick\\StartLC8.exe", "x");
    EXPECT_EQ(RunPkgtool(L"verify --json C:\\corner\\package corner\\stick\\P").strText,
              LR"({"kind":"file-size","path":"C:\\corner\\stick\\StartLC8.exe","found":"1","expected":"262145"}
{"kind":"summary","path":"C:\\corner\\stick\\P","result":"differs","differences":1,"waiting":0,"checked":24}
)");
}

TEST_F(Verify, RemovalLeavesNothing)
{
    Install(L"-autostart");
    std::map<std::string, int> kinds;
    for (const std::wstring& strLine :
         Split(Told(L"--removed --json \"c:\\CORNER\\Program Files\\Lumacap 8\"").substr(2), L'\n'))
        kinds[nlohmann::json::parse(strLine)["kind"]]++;
    EXPECT_EQ(nlohmann::json(kinds).dump(),
              R"({"file-left":21,"folder-left":7,"key-left":6,"link-left":4,"value-left":1})");
    {
        const CCalls calls({ { "CreateProcessW", [](CALL&) { return TRUE; } } });
        EXPECT_TRUE(DeleteFileW(At(L"Program Files\\Lumacap 8\\LumUnInst.exe").c_str()));
        RunUninstall(At(L"Program Files\\Lumacap 8\\").c_str());
    }
    EXPECT_EQ(RunPkgtool(L"verify --removed C:\\corner\\package").strText,
              L"gone; differences: 0; waiting for the next start of the machine: 0; checked: 54; folder: "
              L"C:\\corner\\Program Files\\Lumacap 8\n");

    Make(kDesktop + L"|user\\Desktop\\mine\\Lumacap 8.lnk|x|T\\page.url|user\\Programs\\Any\\Group\\Lumacap 8.lnk");
    MoveLater(At(L"T"));
    MoveLater(At(L"x"), At(L"T\\page.url").c_str());
    EXPECT_EQ(Told(L"--removed C:\\corner\\T"),
              L"1\nT is a folder that still stands\nT\\page.url still stands\n"
              L"user\\Programs\\Any\\Group\\Lumacap 8.lnk is a link that still stands\n" +
                  kDesktop + L" is a link that still stands");
    MoveLater(At(L"T\\page.url"));
    RemoveTree(At(L"user"));
    EXPECT_EQ(Told(L"--removed C:\\corner\\T"), L"3\nT stands until the next start of the machine\n"
                                                L"T\\page.url stands until the next start of the machine");
}
