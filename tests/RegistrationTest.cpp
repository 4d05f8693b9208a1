// What an install tells the system: every value with its type and bytes, in order, and the thumbnail handler's start.
#include "install/Registration.h"

#include <wchar.h>

#include "app/Product.h"
#include "app/RunState.h"
#include "tests/support/Environment.h"
#include "tests/support/InstallCorner.h"
#include "tests/support/ProcessRun.h"

const wchar_t kAssociations[] = L"SOFTWARE\\Tandrel\\Lumacap 8\\Capabilities\\FileAssociations";
const wchar_t* const kExtensions[] = { L".bmp", L".dib", L".gif", L".jpg", L".jpeg", L".tif", L".tiff",
                                       L".png", L".cmp", L".tga", L".wpg", L".jp2",  L".j2k", L".lcp" };

// The key's own path as the system knows it, in lower case, without the machine's software root.
static std::wstring PathOfKey(HKEY hKey)
{
    using QueryKey = LONG(WINAPI*)(HANDLE, int, void*, ULONG, ULONG*);
    const auto pfnQueryKey = reinterpret_cast<QueryKey>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryKey")));
    const int nKeyName = 3;
    struct
    {
        ULONG cb;
        wchar_t szName[512];
    } name = {};
    ULONG cbUsed = 0;
    pfnQueryKey(hKey, nKeyName, &name, sizeof name - sizeof(wchar_t), &cbUsed);
    _wcslwr(name.szName);
    const std::wstring strRoot = L"\\registry\\machine\\software\\";
    return wcsncmp(name.szName, strRoot.c_str(), strRoot.size()) == 0 ? name.szName + strRoot.size() : name.szName;
}

class Registration : public InstallCorner
{
protected:
    // One line for each value that is written: KEY : NAME = TYPE:DATA, where | stands for a terminator.
    Registration() : m_setValue("ADVAPI32.dll", "RegSetValueExW", &RegSetValueExW)
    {
        m_setValue.Replace(
            [this](HKEY hKey, LPCWSTR pszName, DWORD n, DWORD nType, const BYTE* pData, DWORD cb)
            {
                std::wstring strData(reinterpret_cast<const wchar_t*>(pData), cb / sizeof(wchar_t));
                for (wchar_t& ch : strData)
                    ch = ch != 0 ? ch : L'|';
                if (nType == REG_DWORD)
                    strData = std::to_wstring(*reinterpret_cast<const DWORD*>(pData)) + L"/" + std::to_wstring(cb);
                m_writes.push_back(PathOfKey(hKey) + L" : " + (pszName != nullptr ? pszName : L"") + L" = " +
                                   std::to_wstring(nType) + L":" + strData);
                return m_setValue.Original()(hKey, pszName, n, nType, pData, cb);
            });
    }

    void SetUp() override
    {
        InstallCorner::SetUp();
        g_strInstDir = L"C:\\Some Folder\\L8";
        g_nVerMajor = 8;
        g_nVerMinor = 1;
        g_nVerFix = 2;
        g_nVerBuild = 3;
    }

    static void SetSystem(DWORD nMajor, DWORD nMinor)
    {
        g_osVersion.dwMajorVersion = nMajor;
        g_osVersion.dwMinorVersion = nMinor;
    }

    CLaunchRecorder m_recorder;
    std::vector<std::wstring> m_writes;
    CCallHook<decltype(&RegSetValueExW)> m_setValue;
};

TEST_F(Registration, EveryValueIsWrittenInItsOrderWithItsTypeAndBytes)
{
    const std::wstring strProduct = L"tandrel\\lumacap 8 : ";
    const std::wstring strAppPath = L"microsoft\\windows\\currentversion\\app paths\\lumacap8.exe : ";
    const std::wstring strEntry = L"microsoft\\windows\\currentversion\\uninstall\\lumacap 8 : ";
    const std::wstring strOpen = L"\\shell\\open\\command :  = 1:\"C:\\Some Folder\\L8\\Lumacap8.exe\" \"%1\"|";
    std::vector<std::wstring> expected = {
        strProduct + L"AllUsers = 1:B|",
        strProduct + L"Path = 1:C:\\Some Folder\\L8|",
        L"classes\\lumacap.8" + strOpen,
        L"registeredapplications : Lumacap.8 = 1:SOFTWARE\\Tandrel\\Lumacap 8\\Capabilities|",
        strAppPath + L" = 1:C:\\Some Folder\\L8\\Lumacap8.exe|",
        strAppPath + L"Path = 1:C:\\Some Folder\\L8|",
        strEntry + L"Contact = 1:Support|",
        strEntry + L"DisplayName = 1:Lumacap 8|",
        strEntry + L"InstallLocation = 1:C:\\Some Folder\\L8|",
        strEntry + L"DisplayVersion = 1:8.01.02|",
        strEntry + L"VersionMajor = 1:8|",
        strEntry + L"VersionMinor = 1:1|",
        strEntry + L"MajorVersion = 4:8/4",
        strEntry + L"MinorVersion = 4:1/4",
        strEntry + L"Publisher = 1:Tandrel Technology LLC|",
        strEntry + L"UninstallString = 1:C:\\Some Folder\\L8\\LumUnInst.exe|",
        strEntry + L"URLInfoAbout = 1:http://www.lumacap.example/|",
        L"classes\\applications\\lumacap8.exe" + strOpen,
    };
    int nPlace = 3; // the extensions stand behind the first three
    for (const wchar_t* pszExtension : kExtensions)
        expected.insert(expected.begin() + nPlace++, L"tandrel\\lumacap 8\\capabilities\\fileassociations : " +
                                                         std::wstring(pszExtension) + L" = 1:Lumacap.8|");
    SetSystem(10, 0);
    RegisterWithSystem();
    EXPECT_EQ(m_writes, expected);

    // For the current user only the first value is another one.
    m_writes.clear();
    g_nInstallKind = KIND_CURRENT_USER;
    RegisterWithSystem();
    expected[0] = strProduct + L"AllUsers = 1:A|";
    EXPECT_EQ(m_writes, expected);
}

TEST_F(Registration, SystemVersionDecidesOnAssociationTargetAndThumbnailHandler)
{
    const int kCases[][4] = { { 5, 2, 0, 0 }, { 6, 0, 0, 1 }, { 6, 1, 0, 1 },  { 6, 2, 1, 1 },
                              { 6, 3, 1, 1 }, { 7, 0, 1, 1 }, { 10, 0, 1, 1 }, { 0, 0, 0, 0 } };
    for (const auto& row : kCases)
    {
        m_recorder.launches.clear();
        RemoveKey(HKEY_LOCAL_MACHINE, kAssociations);
        SetSystem(row[0], row[1]);
        RegisterWithSystem();
        for (const wchar_t* pszExtension : kExtensions)
            EXPECT_EQ(KeyText(HKEY_LOCAL_MACHINE, kAssociations, pszExtension),
                      row[2] ? L"Lumacap.8" : L"Applications\\Lumacap8.exe");
        EXPECT_EQ(Join(m_recorder.launches), row[3] ? L"regsvr32.exe /s \"C:\\Some Folder\\L8\\ThumbLcp64.dll\" "
                                                      L"in C:\\Some Folder\\L8"
                                                    : L"");
    }
}

TEST_F(Registration, FailedWriteDoesNotStopTheNext)
{
    m_setValue.FailAll(ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED);
    RegisterWithSystem();
    EXPECT_EQ(m_setValue.Calls(), 32);
    EXPECT_EQ(m_recorder.launches.size(), 1u);

    CCallHook createKey("ADVAPI32.dll", "RegCreateKeyW", &RegCreateKeyW);
    createKey.FailFrom(2, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED);
    RegisterWithSystem();
    EXPECT_EQ(createKey.Calls(), 32);
    EXPECT_EQ(m_setValue.Calls(), 33);
}

// The built setup on each Windows: what it writes and whether the thumbnail handler is entered.
class RegistrationOfSetup : public InstallCorner
{
};

TEST_F(RegistrationOfSetup, FollowsTheWindowsThatItRunsOn)
{
    const struct
    {
        const wchar_t* pszWindows;
        const wchar_t* pszTarget;
        bool bHandler;
    } kCases[] = {
        { L"winxp64", L"Applications\\Lumacap8.exe", false },
        { L"win7", L"Applications\\Lumacap8.exe", true },
        { L"win8", L"Lumacap.8", true },
        { L"win10", L"Lumacap.8", true },
    };
    const wchar_t kHandler[] = L"CLSID\\{6B0F4C52-9D3E-4A71-8C25-1E7A90D4B3F6}";
    const CPackage package(At(L"package"));
    for (const auto& row : kCases)
    {
        RemoveKey(HKEY_CLASSES_ROOT, kHandler);
        RemoveKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tandrel");
        const CWindowsVersion windows(row.pszWindows);
        EXPECT_EQ(RunToEnd(L"\"" + package.Setup() + L"\" -s"), 0u);
        EXPECT_EQ(KeyText(HKEY_LOCAL_MACHINE, kAssociations, L".bmp"), row.pszTarget);
        EXPECT_EQ(KeyText(HKEY_LOCAL_MACHINE, kAssociations, L".lcp"), row.pszTarget);
        EXPECT_EQ(KeyText(HKEY_LOCAL_MACHINE, kUninstallKey, L"DisplayVersion"), L"8.20.01");
        EXPECT_EQ(KeyExists(HKEY_CLASSES_ROOT, kHandler), row.bHandler) << Bytes(row.pszWindows);
    }
}
