// A removal's second stage, and its parts, against real files, keys, hives and associations; and the start of that
// stage.
#include "app/RunState.h"
#include "tests/support/Calls.h"
#include "tests/support/World.h"
#include "uninstall/AssociationRepair.h"
#include "uninstall/RegistryRemoval.h"
#include "uninstall/Relaunch.h"
#include "uninstall/UninstallDriver.h"

namespace
{

const std::wstring kExplorer = kWindows + L"\\Explorer\\";

class Uninstall : public World
{
protected:
    // What the second stage does to files, starts, waits for and says, and two of the values that it deletes.
    std::wstring Finish() const
    {
        const CArguments arguments({ At(L"copy") });
        TEXTS lines;
        const auto add = [&](const std::wstring& strLine) { return lines.push_back(strLine), TRUE; };
        CCalls trace;
        for (const char* pszName :
             { "MoveFileExW", "RegDeleteValueW", "_wfopen", "DeleteFileW", "RemoveDirectoryW", "SetCurrentDirectoryW" })
            trace.On(pszName,
                     [=](CALL& call)
                     {
                         add(Wide(call.pszName) + L" " + call.Text(call.pszName[0] == 'R' && call.pszName[2] == 'g'));
                         return call.Pass();
                     });
        trace.On("Sleep", [=](CALL& call) { return add(std::to_wstring(call.args[0])); });
        trace.On("WaitForSingleObject", [=](CALL& call) { return add(std::to_wstring(call.args[1])); });
        trace.On("CreateProcessW",
                 [=](CALL& call) { return add(call.Text(1) + std::wstring(L" in ") + call.Text(7)); });
        trace.On("MessageBoxW", [=](CALL& call) { return add(std::wstring(call.Text(1), 20)); });
        EXPECT_EQ(RunToExit([&]() -> int { FinishUninstall(At(L"P\\LumUnInst.exe").c_str()); }), 0);
        return L"\n" + Replaced(Join(lines, L"\n"), m_strFolder + L"\\", L"");
    }

    CCalls m_calls;
};

TEST_F(Uninstall, SecondStageTakesItsStepsInTheirOrder)
{
    const std::wstring strKey = kExplorer + L"Shell Folders";
    for (const wchar_t* pszName : { L"Startup", L"Desktop", L"Programs" })
    {
        RemoveValue(kUser, strKey, pszName); // users without folders
        RemoveValue(HKEY_USERS, L".DEFAULT\\" + strKey, pszName);
        SetKeyText(HKEY_USERS, L"S-1-5-21-7-7-7-1001\\" + strKey, pszName, At(L"u\\") + pszName);
    }
    MakeKey(kMachine, L"SOFTWARE\\RegisteredApplications");
    MakeKey(kUser, kExplorer + L"FileExts\\.bmp");
    Make(L"P\\install.log", "Shell Link: 1.lnk");
    Make(L"P\\LumUnInst.log", "Shell Link: 2.lnk");
    g_nSilent = 0;
    EXPECT_EQ(Finish(), LR"(
1000
MoveFileExW copy
regsvr32.exe /s /u "P\ThumbLcp64.dll" in P\
5000
DeleteFileW P\LumUnInst.exe
"P\Lumacap8.exe" -unregonly in P\
5000
RegDeleteValueW Lumacap.8
RegDeleteValueW LumacapOld
_wfopen P\install.log
DeleteFileW 1.lnk
_wfopen P\LumUnInst.log
DeleteFileW 2.lnk
_wfopen P\install.log
_wfopen P\LumUnInst.log
DeleteFileW P\LumUnInst.log
SetCurrentDirectoryW \
RemoveDirectoryW P\\x64
MoveFileExW P\\x64
RemoveDirectoryW P\\x32
RemoveDirectoryW P\
DeleteFileW all\Programs\Startup\Lumacap 8.lnk
DeleteFileW all\Desktop\Lumacap 8.lnk
RemoveDirectoryW all\Programs\Lumacap 8\
DeleteFileW u\Startup\Lumacap 8.lnk
DeleteFileW u\Desktop\Lumacap 8.lnk
RemoveDirectoryW u\Programs\Lumacap 8\
Lumacap 8 has been c)");

    g_nSilent = 1;
    g_osVersion.dwMajorVersion = 5; // a system without thumbnails
    for (const wchar_t* pszName : { L"Startup", L"Desktop", L"Programs" })
        MoveFolder(kMachine, std::wstring(L"Common ") + pszName, L"C:\\q"); // too short to be true
    MakeFolder(L"C:\\q");
    const std::wstring strActs = Finish();
    EXPECT_NE(strActs.find(L"u\\Programs\\Lumacap 8\\"), std::wstring::npos);
    for (const wchar_t* pszMissing : { L"regsvr32", L"C:\\q", L"been" })
        EXPECT_EQ(strActs.find(pszMissing), std::wstring::npos) << pszMissing;
}

TEST_F(Uninstall, FirstStageQuotesAPathWithBlanksAndHandsOverItsSilence)
{
    Make(L"a b\\");
    SetEnvironmentVariableW(L"TMP", At(L"a b").c_str());
    const CArguments arguments({ L"x" });
    TEXTS start;
    m_calls.On("_wexecl",
               [&](CALL& call)
               {
                   for (int i = 0; call.Text(i) != nullptr; i++)
                       start.emplace_back(call.Text(i));
                   return -1;
               });
    for (g_nSilent = 1; g_nSilent <= 2; g_nSilent++)
    {
        start.clear();
        RelaunchFromTemp();
        const std::wstring strCopy = At(L"a b\\" + Tree(L"a b"));
        EXPECT_EQ(start, TEXTS({ strCopy, L"\"" + strCopy + L"\"", L"-delself", L"x", L"-s" })) << g_nSilent;
        RemoveTree(strCopy);
    }
}

// One folder is asked for at the boot even where it never was, the next only if it stands, and the product's own only
// while that second one stands.
TEST_F(Uninstall, EachFolderIsJudgedForItself)
{
    const std::tuple<const wchar_t*, const wchar_t*, const wchar_t*> rows[] = {
        { L"P\\x64\\a|all\\Programs\\Lumacap 8\\mine", L"x64\\ x64\\a",
          L"-P\\x64 -all\\Programs\\Lumacap 8 -all\\Programs" },
        { L"P\\x32\\|P\\x64\\", L"", L"" },
        { L"P\\x32\\a", L"x32\\ x32\\a", L"-P\\x64 -P\\x32 -P\\" },
        { L"P\\mine|P\\x32\\|P\\x64\\", L"mine", L"" },
    };
    for (const auto& [pszMade, pszLeft, pszPending] : rows)
    {
        SCOPED_TRACE(Bytes(pszMade));
        World::SetUp();
        Make(pszMade);
        RunUninstall(At(L"P\\").c_str());
        EXPECT_EQ(Tree(L"P"), pszLeft);
        EXPECT_EQ(Pending(), pszPending);
    }
}

// A key that can't be deleted keeps those above it. Another product keeps the company's key, in each hive for itself.
// The current user's hive, which has two names, opens under one of them alone. Each row names the hives that keep a
// key.
TEST_F(Uninstall, RegistryLosesTheProductInEachHive)
{
    const std::pair<HKEY, std::wstring> hives[] = { { kMachine, L"SOFTWARE\\" },
                                                    { kUser, L"SOFTWARE\\" },
                                                    { HKEY_USERS, L".DEFAULT\\SOFTWARE\\" },
                                                    { HKEY_USERS, L"S-1-5-21-7-7-7-1002\\SOFTWARE\\" } };
    const std::pair<const wchar_t*, std::string> rows[] = {
        { L"Tandrel\\Lumacap 7", "" },
        { L"Classes\\Applications\\Lumacap8.exe\\A", "1" },
        { L"Classes\\LC8.Document\\A", "123" },
        { L"Classes\\LC8.Document\\Stuck", "0123" },
        { L"Classes\\LC8.Document\\Z", "123" },
        { L"Classes\\Lumacap.8\\A", "123" },
        { L"Mozilla\\NativeMessagingHosts\\capff\\A", "23" },
        { L"Microsoft\\Windows\\CurrentVersion\\Uninstall\\Lumacap 8\\A", "0123" },
    };
    for (const auto& row : rows)
        for (const auto& hive : hives)
            MakeKey(hive.first, hive.second + row.first);
    const auto deny = [](const wchar_t* pszBeginning)
    {
        return [=](CALL& call)
        { return wcsstr(call.Text(1), pszBeginning) == call.Text(1) ? ERROR_ACCESS_DENIED : call.Pass(); };
    };
    m_calls.On("RegDeleteKeyW", deny(L"Stuck"));
    m_calls.On("RegOpenKeyExW", deny(L"S-1-5-21-0"));
    for (const auto& hive : hives)
    {
        MakeKey(hive.first, hive.second + L"Tandrel\\Lumacap 8\\A\\S-1-5-21-0");
        MakeKey(hive.first, hive.second + L"Tandrel\\Lumacap 8\\B");
        RemoveKey(hive.first, hive.second + L"Tandrel\\Lumacap 7");
        RemoveProductRegistry(L"Tandrel", L"Lumacap 8", L"Lumacap 8", L"Lumacap8.exe");
        for (const auto& other : hives)
            EXPECT_EQ(KeyExists(other.first, other.second + L"Tandrel"), &other > &hive) << &other - hives;
    }
    for (const auto& row : rows)
    {
        std::string strLeft;
        for (const auto& hive : hives)
            if (KeyExists(hive.first, hive.second + row.first))
                strLeft += std::to_string(&hive - hives);
        EXPECT_EQ(strLeft, row.second) << row.first;
    }
}

TEST_F(Uninstall, AssociationsAreRepairedFormatByFormat)
{
    const std::tuple<DWORD, std::wstring, std::wstring> rows[] = {
        { 6,
          L".bmp\\UserChoice,Progid,x.Applications\\Lumacap8.exe.y|.bmp,LumacapOld,older|"
          L".lcp,LumacapOld,older|.png\\UserChoice,Progid,applications\\Lumacap8.exe",
          L"\\.bmp\\|\\.gif\\|\\.lcp\\|\\.png\\UserChoice : Progid = applications\\Lumacap8.exe" },
        { 5,
          L".dib,Application,Lumacap8.exe|.gif,Application,Lumacap8.exe|.png,Application,lumacap8.EXE|"
          L".png,LumacapOld,older|.lcp,Application,Applications\\Lumacap8.exe|.lcp,LumacapOld,older",
          L"\\.dib\\|\\.gif : Application = oldacap8.exe|\\.lcp : Application = older|"
          L"\\.png : Application = lumacap8.EXE|\\.png : LumacapOld = older" },
    };
    const std::wstring strKey = kExplorer + L"FileExts";
    UINT_PTR nTold = 0;
    m_calls.On("SHChangeNotify", [&](CALL& call) { return nTold += call.args[0], 0; });
    for (const auto& [nMajor, strBefore, strAfter] : rows)
    {
        RemoveKey(kUser, strKey);
        for (const std::wstring& strValue : Split(strBefore, L'|'))
        {
            const TEXTS parts = Split(strValue, L',');
            SetKeyText(kUser, strKey + L"\\" + parts[0], parts[1], parts[2]);
        }
        RegSetKeyValueW(kUser, (strKey + L"\\.gif").c_str(), L"LumacapOld", REG_BINARY, L"old", 6); // unterminated
        SCOPED_TRACE(nMajor);
        g_osVersion.dwMajorVersion = nMajor;
        nTold = 0;
        RepairFileAssociations();
        RepairFileAssociations();
        TEXTS lines;
        FlattenKey(kUser, strKey, L"", lines);
        EXPECT_EQ(Join(lines), strAfter);
        EXPECT_EQ(nTold, 0x8000000u); // the shell hears of the first repair alone
    }
    RemoveKey(kUser, strKey);
    SetKeyText(HKEY_CLASSES_ROOT, L".lcp", L"", L"Lumacap8.exe");
    RepairFileAssociations();
    EXPECT_EQ(KeyText(HKEY_CLASSES_ROOT, L".lcp"), L"(absent)");
}

} // namespace
