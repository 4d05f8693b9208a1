// Install, removal and restart as the whole machine sees them: two pictures of all files and of the registry differ in
// what a removal is to leave and in nothing else. Wine changes nothing by itself meanwhile, so nothing is filtered out.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/Corner.h"
#include "tests/support/Environment.h"
#include "tests/support/InstallCorner.h"
#include "tests/support/Machine.h"
#include "tests/support/MachineState.h"
#include "tests/support/PendingList.h"
#include "tests/support/ProcessRun.h"

namespace
{

using TEXTS = std::vector<std::wstring>;

const std::wstring kCommonPrograms = L"C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\Programs\\";
const std::wstring kThisUser = L"+ HKU\\S-1-5-21-0-0-0-1000\\Software\\";
const std::wstring kFileExts = kThisUser + L"Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts";

// Keys that come with the first value below them and are nobody's to remove: of the browser's hosts, of the system's
// list of programs and of the shell's notes on formats. They stay empty.
const TEXTS kKeysLeft =
    Split(L"+ HKLM\\Software\\Mozilla|+ HKLM\\Software\\Mozilla\\NativeMessagingHosts|"
          L"+ HKLM\\Software\\RegisteredApplications|" +
              kThisUser + L"Mozilla|" + kThisUser + L"Mozilla\\NativeMessagingHosts|" + kFileExts + L"|" + kFileExts +
              L"\\.bmp|" + kFileExts + L"\\.jpg|" + kFileExts + L"\\.lcp|" + kFileExts + L"\\.png",
          L'|');

// What an install puts into its folder, but for the uninstaller and the log.
const TEXTS kProductFiles =
    Split(L"Filters\\blur.dll|Filters\\sharpen.dll|HomePage.url|Lang\\English.txt|Lang\\French.txt|"
          L"Lang\\German.txt|License.txt|Lumacap8.exe|Lumacap8Man.chm|Samples\\About the samples.txt|"
          L"Samples\\Checks.lcp|Samples\\Gradient.lcp|Samples\\Ring.lcp|ThumbLcp64.dll|capff.json|lc8codec.dll|"
          L"lc8core.dll|lcxshare.dll|Filters\\|Lang\\|Presets\\|Samples\\|",
          L'|');

class RoundTrip : public ProductCorner
{
protected:
    void SetUp() override
    {
        ProductCorner::SetUp();
        m_pPackage = std::make_unique<CPackage>(At(L"package"));
        m_before = TakeMachinePicture();
    }

    void Install(const std::wstring& strArguments) const
    {
        EXPECT_EQ(RunToEnd(m_pPackage->Setup() + L" " + strArguments), 0u);
    }
    static void Uninstall(const std::wstring& strFolder)
    {
        EXPECT_EQ(RunToEnd(L"\"" + strFolder + L"\\LumUnInst.exe\""), 0u);
    }

    // The difference to the machine before the test. Files lose their sizes, folders get a backslash at their end.
    TEXTS Difference() const
    {
        TEXTS lines = PictureDifference(m_before, TakeMachinePicture());
        for (std::wstring& strLine : lines)
        {
            const bool bFolder = strLine.compare(2, 7, L"folder ") == 0;
            if (!bFolder && strLine.compare(2, 5, L"file ") != 0)
                continue;
            strLine.erase(2, bFolder ? 7 : 5);
            for (int nField = bFolder ? 1 : 0; nField < 2; nField++)
                strLine.erase(strLine.rfind(L' '));
            strLine += bFolder ? L"\\" : L"";
            const size_t nCorner = strLine.find(Folder());
            if (nCorner != std::wstring::npos)
                strLine.replace(nCorner, Folder().size(), L"~");
        }
        return lines;
    }

    void ExpectDifference(TEXTS expected, const TEXTS& added) const
    {
        for (const std::wstring& strPath : added)
            expected.push_back(L"+ " + strPath);
        TEXTS left = Difference();
        std::sort(expected.begin(), expected.end());
        std::sort(left.begin(), left.end());
        EXPECT_EQ(JoinLines(left), JoinLines(expected));
    }
    void ExpectLeftAfterRestart(const TEXTS& paths) const
    {
        RestartMachine();
        ExpectDifference(kKeysLeft, paths);
    }

    static TEXTS Below(const std::wstring& strFolder, TEXTS paths)
    {
        for (std::wstring& strPath : paths)
            strPath.insert(0, strFolder + L"\\");
        return paths;
    }

    std::unique_ptr<CPackage> m_pPackage;
    TEXTS m_before;
};

TEST_F(RoundTrip, AllUsersInstallLeavesEmptyKeysAlone)
{
    Install(L"-s -autostart");
    for (const std::wstring& strLink :
         { kCommonPrograms + L"Lumacap 8\\Lumacap 8.lnk", kCommonPrograms + L"Lumacap 8\\Lumacap 8 Help.lnk",
           kCommonPrograms + L"Startup\\Lumacap 8.lnk", std::wstring(L"C:\\users\\Public\\Desktop\\Lumacap 8.lnk") })
        EXPECT_TRUE(IsThere(strLink)) << testing::PrintToString(strLink);
    Uninstall(m_strProduct);
    ExpectLeftAfterRestart({});
}

TEST_F(RoundTrip, CurrentUsersInstallLeavesEmptyKeysAndTheFolderAboveItsOwn)
{
    Install(L"-s -instdir \"" + At(L"my tools\\Lumacap 8") + L"\"");
    EXPECT_EQ(KeyText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tandrel\\Lumacap 8", L"AllUsers"), L"A");
    EXPECT_FALSE(IsThere(kCommonPrograms + L"Lumacap 8"));
    Uninstall(At(L"my tools\\Lumacap 8"));
    ExpectLeftAfterRestart({ L"~\\my tools\\" });
}

// Nobody starts it, since nothing points there; but the uninstaller stands in the folder and does what it always does.
// The starter beside the folder stays: its record is looked up in the folder itself.
TEST_F(RoundTrip, PortableInstallIsFilesAloneAndItsUninstallerLeavesTheStarter)
{
    const std::wstring strFolder = L"~\\Stick\\Lumacap";
    Install(L"-s -instport " + At(L"Stick\\Lumacap"));
    ClearPending(); // the folders of the list, which weren't there to be emptied
    TEXTS expected = Below(strFolder, kProductFiles);
    for (const wchar_t* pszName : { L"LumUnInst.exe", L"LumUnInst.log", L"x64\\", L"x64\\lc8simd.dll" })
        expected.push_back(strFolder + L"\\" + pszName);
    expected.insert(expected.end(), { L"~\\Stick\\", L"~\\Stick\\StartLC8.exe" });
    ExpectDifference({}, expected);

    Uninstall(At(L"Stick\\Lumacap"));
    RestartMachine();
    ExpectDifference({}, { L"~\\Stick\\", L"~\\Stick\\StartLC8.exe" });
}

TEST_F(RoundTrip, RepeatedInstallsWithAnotherGroupAndFolderAreRemovedOneByOne)
{
    const std::wstring strGroup = kCommonPrograms + L"Pictures\\Lumacap\\";
    const std::wstring strLog = m_strProduct + L"\\LumUnInst.log";
    Install(L"-s");
    // The group is taken over from the log, where this link makes it another one.
    WriteBytes(strLog, ReadBytes(strLog) + "Shell Link: " + std::string(strGroup.begin(), strGroup.end()) + "x.lnk");
    Install(L"-s");
    EXPECT_TRUE(IsThere(strGroup + L"Lumacap 8.lnk"));
    EXPECT_FALSE(IsThere(kCommonPrograms + L"Lumacap 8"));

    Install(L"-s -instdir " + At(L"Other\\Lumacap"));
    Uninstall(At(L"Other\\Lumacap"));
    TEXTS left = Below(m_strProduct, kProductFiles);
    left.insert(left.end(), { m_strProduct + L"\\LumUnInst.exe", strLog, kCommonPrograms + L"Pictures\\", strGroup,
                              strGroup + L"Lumacap 8.lnk", strGroup + L"Lumacap 8 Help.lnk", L"~\\Other\\" });
    ExpectLeftAfterRestart(left);

    Uninstall(m_strProduct);
    ExpectLeftAfterRestart({ L"~\\Other\\" });
}

TEST_F(RoundTrip, InstallWhoseLogWasLostLeavesItsFiles)
{
    Install(L"-s");
    RemoveTree(m_strProduct + L"\\LumUnInst.log");
    Uninstall(m_strProduct);
    ExpectLeftAfterRestart(Below(m_strProduct, kProductFiles));
}

TEST_F(RoundTrip, RestartReplacesAndRemovesBusyFilesAndUsersFilesStay)
{
    const std::wstring strFile = m_strProduct + L"\\lc8core.dll";
    Install(L"-s");
    WriteBytes(strFile, "of an earlier version");
    {
        const CFileHold hold(strFile, FILE_SHARE_READ);
        Install(L"-s");
        EXPECT_EQ(ReadBytes(strFile), "of an earlier version");
        EXPECT_TRUE(IsThere(strFile + L".new"));
    }
    RestartMachine();
    EXPECT_EQ(ReadBytes(strFile), ReadBytes(m_pPackage->At(L"lc8core.dll")));
    EXPECT_FALSE(IsThere(strFile + L".new"));

    WriteBytes(m_strProduct + L"\\Samples\\mine.txt", "of a user");
    SetAttributes(m_strProduct + L"\\License.txt", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    {
        const CFileHold hold(strFile, FILE_SHARE_READ);
        const CFileHold uninstallerHold(m_strProduct + L"\\LumUnInst.exe", FILE_SHARE_READ);
        Uninstall(m_strProduct);
        EXPECT_EQ(ListTree(m_strProduct),
                  (TEXTS{ L"LumUnInst.exe", L"Samples\\", L"Samples\\mine.txt", L"lc8core.dll" }));
    }
    ExpectLeftAfterRestart(Below(m_strProduct, { L"", L"Samples\\", L"Samples\\mine.txt" }));
}

} // namespace
