// What is told of an installation and of its removal, against installs and removals by the engine in this process, and
// against every kind of damage. What they start is only noted.
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>

#include "app/RunState.h"
#include "install/InstallRun.h"
#include "tests/support/Calls.h"
#include "tests/support/Programs.h"
#include "tests/support/World.h"
#include "uninstall/UninstallDriver.h"

namespace
{

const wchar_t kProduct[] = L"SOFTWARE\\Tandrel\\Lumacap 8";
const std::wstring kWindows = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\";
const std::wstring kEntry = kWindows + L"Uninstall\\Lumacap 8";

class Verify : public World
{
protected:
    void SetUp() override
    {
        World::SetUp();
        PutPackage();
        Make(L"package\\HomePage.url", "0123456789");
    }

    void Install(const std::wstring& strArguments = L"-instdir C:\\corner\\T") const
    {
        ResetProgramState();
        const CArguments arguments(Split(L"C:\\corner\\package\\setup.exe -s " + strArguments, L' '));
        const CCalls calls({ { "CreateProcessW", [](CALL&) { return TRUE; } } });
        EXPECT_EQ(RunToExit(RunInstall), 0);
        SetCurrentDirectoryW(L"C:\\");
    }

    // The exit code, and a line for each difference; paths are relative to the corner.
    std::wstring Told(const std::wstring& strArguments = L"C:\\corner\\package") const
    {
        const TOLD told = RunPkgtool(L"verify " + strArguments);
        TEXTS lines = Split(Replaced(told.strText, L"C:\\corner\\", L""), L'\n');
        lines.resize(std::max<size_t>(lines.size(), 2) - 2); // without the sum and what is behind its line end
        lines.insert(lines.begin(), std::to_wstring(told.nExitCode));
        return Join(lines);
    }

    std::wstring LogText() const { return Wide(ReadBytes(At(L"T\\LumUnInst.log"))); }
    void SetLogText(const std::wstring& strText) const { WriteBytes(At(L"T\\LumUnInst.log"), Bytes(strText)); }
};

} // namespace

TEST_F(Verify, InstallIsWholeAndNothingChangesByLooking)
{
    Install(L"-autostart");
    const TEXTS picture = TakePicture();
    const TOLD told = RunPkgtool(L"verify C:\\corner\\package");
    EXPECT_EQ(told.nExitCode, 0u);
    EXPECT_EQ(
        told.strText,
        L"C:\\corner\\Program Files\\Lumacap 8: whole; differences: 0; waiting for the next start of the machine: 0; "
        L"looked at: 20 files, 4 links, 32 registry values\n");
    EXPECT_EQ(Told(L"--removed C:\\corner\\package E:\\elsewhere"), L"0");
    EXPECT_EQ(Join(Difference(picture, TakePicture())), L"");
}

// Each damage is told, by itself, and the next install mends it.
TEST_F(Verify, EachDamageIsToldInItsOwnWords)
{
    std::shared_ptr<void> hold;
    const std::wstring strFile = At(L"T\\HomePage.url");
    const std::wstring strDesktop = At(L"user\\Desktop\\Lumacap 8.lnk");
    const std::wstring strHelp = At(L"user\\Programs\\Lumacap 8\\Lumacap 8 Help.lnk");
    const std::wstring strBytes = std::to_wstring(ReadBytes(At(L"package\\LumUnInst.log")).size());
    const struct
    {
        std::function<void()> damage;
        std::wstring strTold;
    } kCases[] = {
        { [] {}, L"0" },
        { [&] { WriteBytes(strFile, "01234"); }, L"1|T\\HomePage.url has 5 bytes, and the package's file 10" },
        { [&] { WriteBytes(strFile, "012345678!"); }, L"1|T\\HomePage.url has the right size, and another content" },
        { [&] { RemoveTree(strFile); }, L"1|T\\HomePage.url is missing" },
        { [&] { SetAttributes(strFile, FILE_ATTRIBUTE_READONLY); },
          L"1|T\\HomePage.url is read-only, and the package's file isn't" },
        { [&] { SetAttributes(strFile, FILE_ATTRIBUTE_HIDDEN); },
          L"1|T\\HomePage.url is hidden, and the package's file isn't" },
        { [&] { CopyOneFile(ProductOfVersion(L"8.19.9.0"), At(L"T\\Lumacap8.exe")); },
          L"1|T\\Lumacap8.exe is of version 8.19.9.0, and the package's file of 8.20.1.0" },
        { [&] { WriteBytes(At(L"T\\Lumacap8.exe"), "no program"); },
          L"1|T\\Lumacap8.exe is of version 0.0.0.0, and the package's file of 8.20.1.0" },
        { [&] { hold = HoldFile(strFile, 0); }, L"1|T\\HomePage.url can't be compared, since one can't be read" },
        { [&] { RemoveTree(At(L"T\\Presets")); }, L"1|T\\Presets is missing: there is no such folder" },
        { [&] { RemoveTree(At(L"T")); }, L"1|T is missing: there is no such folder" },
        // The boot list
        { [&]
          {
              WriteBytes(strFile, "old");
              hold = HoldFile(strFile, FILE_SHARE_READ);
              Install();
          },
          L"3|T\\HomePage.url comes at the next start of the machine" },
        { [&] { MoveFileExW(strFile.c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT); },
          L"1|T\\HomePage.url goes at the next start of the machine, and isn't replaced by the package's file" },
        { [&]
          {
              BlockPending();
              WriteBytes(kPendingProfile, "[rename]\r\nNUL=" + Bytes(strFile));
          },
          L"1|T\\HomePage.url goes at the next start of the machine, and isn't replaced by the package's file" },
        { [&]
          {
              CopyOneFile(strFile, strFile + L"2");
              WriteBytes(strFile, "old");
              WriteBytes(kPendingProfile, "[rename]\r\n" + Bytes(strFile + L"=" + strFile + L"2"));
          },
          L"3|T\\HomePage.url comes at the next start of the machine" },
        // Links
        { [&] { RemoveTree(strHelp); },
          L"1|user\\Programs\\Lumacap 8\\Lumacap 8 Help.lnk is missing: there is no such link" },
        { [&] { CopyOneFile(strHelp, strDesktop); },
          L"1|user\\Desktop\\Lumacap 8.lnk leads to T\\Lumacap8Man.chm, and should lead to T\\Lumacap8.exe" },
        { [&] { WriteBytes(strDesktop, "x"); },
          L"1|user\\Desktop\\Lumacap 8.lnk leads to nowhere, and should lead to T\\Lumacap8.exe" },
        // Registry
        { [&] { SetKeyText(HKEY_LOCAL_MACHINE, kEntry, L"DisplayVersion", L"1"); },
          L"1|HKLM\\" + kEntry + L" : DisplayVersion is 1, and should be 8.20.01" },
        { [&] { SetKeyText(HKEY_LOCAL_MACHINE, kEntry, L"MajorVersion", L"8"); },
          L"1|HKLM\\" + kEntry + L" : MajorVersion is of type 1, and should be 8" },
        { [&] { RemoveValue(HKEY_LOCAL_MACHINE, kWindows + L"App Paths\\Lumacap8.exe", L""); },
          L"1|HKLM\\" + kWindows + L"App Paths\\Lumacap8.exe : (default) is missing, and should be T\\Lumacap8.exe" },
        { [&] { RemoveValue(HKEY_LOCAL_MACHINE, kProduct, L"Path"); },
          L"1|HKLM\\SOFTWARE\\Tandrel\\Lumacap 8 : Path is missing, and should be T" },
        { [&]
          {
              RemoveKey(HKEY_LOCAL_MACHINE, kProduct);
              RemoveKey(HKEY_LOCAL_MACHINE, kWindows + L"App Paths\\Lumacap8.exe");
          },
          L"1|HKLM\\SOFTWARE\\Tandrel\\Lumacap 8 : Path is missing: no installation is registered" },
        // The log
        { [&] { RemoveTree(At(L"T\\LumUnInst.log")); }, L"1|T\\LumUnInst.log is missing" },
        { [&] { SetLogText(LogText().substr(0, 100)); },
          L"1|T\\LumUnInst.log is cut: of the " + strBytes + L" bytes of the package's list it has 100" },
        { [&] { SetLogText(Replaced(LogText(), L"capff", L"CAPFF")); },
          L"1|T\\LumUnInst.log isn't the package's list: line 11 differs" },
        { [&] { SetLogText(LogText().substr(0, LogText().size() - 3)); },
          L"1|T\\LumUnInst.log lacks lines behind the package's list, or one of them breaks off: a removal leaves what "
          L"they should name" },
        { [&] { SetLogText(Replaced(LogText(), L"Shell Link: " + strDesktop + L"\r\n", L"")); },
          L"1|user\\Desktop\\Lumacap 8.lnk is a link that the log doesn't name" },
        { [&]
          {
              MoveFolder(HKEY_CURRENT_USER, L"Programs", At(L"\u017D"));
              Install();
          },
          L"1|T\\LumUnInst.log lacks lines behind the package's list, or one of them breaks off: a removal leaves what "
          L"they should name" },
    };
    for (const auto& [damage, strTold] : kCases)
    {
        Install();
        ClearPending();
        damage();
        EXPECT_EQ(Told(), strTold);
        hold.reset();
    }
}

TEST_F(Verify, PortableInstallHasNeitherLinksNorRegistration)
{
    Install(L"-instport C:\\corner\\stick\\P");
    EXPECT_EQ(Told(L"C:\\corner\\package C:\\corner\\stick\\P\\"), L"0");
    EXPECT_EQ(Told(), L"1|HKLM\\SOFTWARE\\Tandrel\\Lumacap 8 : Path is missing: no installation is registered");
    WriteBytes(At(L"stick\\StartLC8.exe"), "");
    EXPECT_EQ(Told(L"C:\\corner\\package C:\\corner\\stick\\P").substr(0, 27), L"1|stick\\StartLC8.exe has 0 ");
}

// As JSON, by kind.
TEST_F(Verify, RemovalLeavesNothing)
{
    Install(L"-autostart");
    std::map<std::string, int> kinds;
    const TOLD told = RunPkgtool(L"verify --removed --json C:\\corner\\package");
    for (const std::wstring& strLine : Split(told.strText.substr(0, told.strText.size() - 1), L'\n'))
        kinds[nlohmann::json::parse(strLine)["kind"]]++;
    EXPECT_EQ(told.nExitCode, 1u);
    EXPECT_EQ(nlohmann::json(kinds).dump(),
              R"({"file-left":20,"folder-left":6,"key-left":6,"link-left":4,"summary":1,"value-left":1})");

    {
        const CCalls calls({ { "CreateProcessW", [](CALL&) { return TRUE; } } });
        EXPECT_TRUE(DeleteFileW(At(L"Program Files\\Lumacap 8\\LumUnInst.exe").c_str()));
        RunUninstall(At(L"Program Files\\Lumacap 8\\").c_str());
    }
    EXPECT_EQ(Told(L"--removed C:\\corner\\package"), L"0");

    Make(L"T\\HomePage.url|user\\Programs\\Any\\Lumacap 8.lnk");
    MoveFileExW(L"C:\\corner\\T", nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
    EXPECT_EQ(Told(L"--removed C:\\corner\\package C:\\corner\\T"),
              L"1|T is a folder that still stands|T\\HomePage.url still stands|"
              L"user\\Programs\\Any\\Lumacap 8.lnk is a link that still stands");
    MoveFileExW(L"C:\\corner\\T\\HomePage.url", nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
    RemoveTree(At(L"user\\Programs\\Any"));
    EXPECT_EQ(Told(L"--removed C:\\corner\\package C:\\corner\\T"),
              L"3|T stands until the next start of the machine|T\\HomePage.url stands until the next start of the "
              L"machine");
}
