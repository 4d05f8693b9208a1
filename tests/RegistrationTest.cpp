// What an install tells the system: every value in order, and none left out for the failure of another.
#include "install/Registration.h"

#include "app/Product.h"
#include "app/RunState.h"
#include "tests/support/InstallCorner.h"

class Registration : public InstallCorner
{
protected:
    void SetUp() override
    {
        InstallCorner::SetUp();
        g_strInstDir = L"C:\\Some Folder\\L8";
        g_nVerMajor = 8;
        g_nVerMinor = 1;
        g_nVerFix = 2;
        g_nVerBuild = 3;
    }

    CLaunchRecorder m_recorder;
};

TEST_F(Registration, EveryValueIsWrittenInItsOrder)
{
    const std::wstring strProduct = L"SOFTWARE\\Tandrel\\Lumacap 8";
    const std::wstring strAppPath = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\Lumacap8.exe";
    const std::wstring strEntry = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Lumacap 8";
    const std::wstring strOpen = L"\"C:\\Some Folder\\L8\\Lumacap8.exe\" \"%1\"";
    std::vector<std::vector<std::wstring>> expected = {
        // key, value, text
        { strProduct, L"AllUsers", L"B" },
        { strProduct, L"Path", L"C:\\Some Folder\\L8" },
        { L"Lumacap.8\\shell\\open\\command", L"", strOpen },
        { L"SOFTWARE\\RegisteredApplications", L"Lumacap.8", L"SOFTWARE\\Tandrel\\Lumacap 8\\Capabilities" },
        { strAppPath, L"", L"C:\\Some Folder\\L8\\Lumacap8.exe" },
        { strAppPath, L"Path", L"C:\\Some Folder\\L8" },
        { strEntry, L"Contact", L"Support" },
        { strEntry, L"DisplayName", L"Lumacap 8" },
        { strEntry, L"InstallLocation", L"C:\\Some Folder\\L8" },
        { strEntry, L"DisplayVersion", L"8.01.02" },
        { strEntry, L"VersionMajor", L"8" },
        { strEntry, L"VersionMinor", L"1" },
        { strEntry, L"MajorVersion", L"(type 4)" },
        { strEntry, L"MinorVersion", L"(type 4)" },
        { strEntry, L"Publisher", L"Tandrel Technology LLC" },
        { strEntry, L"UninstallString", L"C:\\Some Folder\\L8\\LumUnInst.exe" },
        { strEntry, L"URLInfoAbout", L"http://www.lumacap.example/" },
        { L"Applications\\Lumacap8.exe\\shell\\open\\command", L"", strOpen },
    };
    int nPlace = 3; // the extensions stand behind the first three
    for (const wchar_t* pszExtension : { L".bmp", L".dib", L".gif", L".jpg", L".jpeg", L".tif", L".tiff", L".png",
                                         L".cmp", L".tga", L".wpg", L".jp2", L".j2k", L".lcp" })
        expected.insert(expected.begin() + nPlace++,
                        { strProduct + L"\\Capabilities\\FileAssociations", pszExtension, L"Lumacap.8" });

    g_osVersion.dwMajorVersion = 10;
    for (const int nKind : { KIND_ALL_USERS, KIND_CURRENT_USER })
    {
        g_nInstallKind = nKind;
        expected[0][2] = nKind == KIND_ALL_USERS ? L"B" : L"A";
        CCallHook createKey("ADVAPI32.dll", "RegCreateKeyW", &RegCreateKeyW);
        CCallHook setValue("ADVAPI32.dll", "RegSetValueExW", &RegSetValueExW);
        RegisterWithSystem();
        ASSERT_TRUE(createKey.Calls() == 32 && setValue.Calls() == 32);
        for (size_t i = 0; i < expected.size(); i++)
        {
            EXPECT_EQ(createKey.Texts()[i] + L" : " + setValue.Texts()[i], expected[i][0] + L" : " + expected[i][1]);
            const HKEY hRoot = expected[i][0].find(L"SOFTWARE") == 0 ? HKEY_LOCAL_MACHINE : HKEY_CLASSES_ROOT;
            EXPECT_EQ(KeyText(hRoot, expected[i][0], expected[i][1]), expected[i][2]);
        }
        EXPECT_EQ(KeyNumber(HKEY_LOCAL_MACHINE, strEntry, L"MajorVersion"), 8u);
        EXPECT_EQ(KeyNumber(HKEY_LOCAL_MACHINE, strEntry, L"MinorVersion"), 1u);
    }
}

TEST_F(Registration, FailedWriteDoesNotStopTheNext)
{
    CCallHook setValue("ADVAPI32.dll", "RegSetValueExW", &RegSetValueExW);
    setValue.FailAll(ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED);
    RegisterWithSystem();
    EXPECT_EQ(setValue.Calls(), 32);
}
