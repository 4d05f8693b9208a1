// The sample package and the stand-in product, looked at from outside: the list names what the package holds, and the
// product and its thumbnail handler do to the machine what the other tests take for granted.

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <stdio.h>
#include <stdlib.h>
#include <string>
#include <vector>

namespace
{

const DWORD kPatience = 10000;

std::wstring PackagePath(const std::wstring& strName)
{
    std::wstring strPath = L"Z:" + std::wstring(_wgetenv(L"LUMACAP_BUILD")) + L"/package/" + strName;
    std::replace(strPath.begin(), strPath.end(), L'/', L'\\');
    return strPath;
}

std::string ReadBytes(const std::wstring& strPath)
{
    std::string strBytes;
    FILE* pFile = _wfopen(strPath.c_str(), L"rb");
    if (pFile == nullptr)
        return strBytes;
    for (int nByte = fgetc(pFile); nByte != EOF; nByte = fgetc(pFile))
        strBytes += static_cast<char>(nByte);
    fclose(pFile);
    return strBytes;
}

// Names below the package that a mask meets, with the mask's own folder.
std::vector<std::wstring> MatchesInPackage(const std::wstring& strMask)
{
    std::vector<std::wstring> matches;
    WIN32_FIND_DATAW found;
    const HANDLE hFind = FindFirstFileW(PackagePath(strMask).c_str(), &found);
    if (hFind == INVALID_HANDLE_VALUE)
        return matches;
    const std::wstring strFolder = strMask.substr(0, strMask.rfind(L'\\') + 1);
    do
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            matches.push_back(strFolder + found.cFileName);
    while (FindNextFileW(hFind, &found));
    FindClose(hFind);
    return matches;
}

std::vector<std::wstring> FilesInPackage(const std::wstring& strFolder)
{
    std::vector<std::wstring> files = MatchesInPackage(strFolder + L"*");
    WIN32_FIND_DATAW found;
    const HANDLE hFind = FindFirstFileW(PackagePath(strFolder + L"*").c_str(), &found);
    do
    {
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 || found.cFileName[0] == L'.')
            continue;
        const std::vector<std::wstring> inner = FilesInPackage(strFolder + found.cFileName + L'\\');
        files.insert(files.end(), inner.begin(), inner.end());
    } while (FindNextFileW(hFind, &found));
    FindClose(hFind);
    return files;
}

// The values of the list's records that begin with `strPrefix`. Fails the test on a line end that isn't CR LF.
std::vector<std::wstring> ListValues(const std::string& strPrefix)
{
    std::vector<std::wstring> values;
    const std::string strList = ReadBytes(PackagePath(L"LumUnInst.log"));
    for (size_t nStart = 0, nEnd; nStart < strList.size(); nStart = nEnd + 1)
    {
        nEnd = std::min(strList.find('\n', nStart), strList.size());
        EXPECT_EQ(strList[nEnd - 1], '\r') << "line end at " << nEnd;
        const std::string strLine = strList.substr(nStart, nEnd - 1 - nStart);
        if (strLine.compare(0, strPrefix.size(), strPrefix) == 0)
            values.emplace_back(strLine.begin() + strPrefix.size(), strLine.end());
    }
    return values;
}

bool Exists(HKEY hRoot, const wchar_t* pszKey, const wchar_t* pszValue = nullptr)
{
    HKEY hKey = nullptr;
    if (RegOpenKeyExW(hRoot, pszKey, 0, KEY_READ, &hKey) != ERROR_SUCCESS)
        return false;
    const LSTATUS nStatus = pszValue ? RegQueryValueExW(hKey, pszValue, nullptr, nullptr, nullptr, nullptr) : 0;
    RegCloseKey(hKey);
    return nStatus == ERROR_SUCCESS;
}

HANDLE Start(const std::wstring& strCommand)
{
    std::wstring strBuffer = strCommand;
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    EXPECT_TRUE(
        CreateProcessW(nullptr, &strBuffer[0], nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
        << "error " << GetLastError();
    CloseHandle(process.hThread);
    return process.hProcess;
}

DWORD EndOf(HANDLE hProcess)
{
    DWORD dwCode = STILL_ACTIVE;
    if (WaitForSingleObject(hProcess, kPatience) != WAIT_OBJECT_0)
        TerminateProcess(hProcess, 999);
    GetExitCodeProcess(hProcess, &dwCode);
    CloseHandle(hProcess);
    return dwCode;
}

std::wstring Product(const wchar_t* pszSwitches)
{
    return L"\"" + PackagePath(L"Lumacap8.exe") + L"\" " + pszSwitches;
}

bool Soon(const std::function<bool()>& condition)
{
    const ULONGLONG ullEnd = GetTickCount64() + kPatience;
    while (!condition())
    {
        if (GetTickCount64() > ullEnd)
            return false;
        Sleep(10);
    }
    return true;
}

// The ids in the shared list, in its order.
std::vector<DWORD> ListedInstances()
{
    std::vector<DWORD> ids;
    const HANDLE hMapping =
        OpenFileMappingW(FILE_MAP_READ, FALSE, L"Local\\COXInstanceManager_FileMap_Tandrel.Lumacap-DX.v4");
    const DWORD* pList = static_cast<const DWORD*>(hMapping ? MapViewOfFile(hMapping, FILE_MAP_READ, 0, 0, 4008) : 0);
    if (pList != nullptr)
    {
        ids.assign(pList + 2, pList + 2 + pList[1]);
        UnmapViewOfFile(pList);
    }
    CloseHandle(hMapping);
    return ids;
}

// The window of a process whose caption is the product's.
HWND ProductWindow(DWORD dwProcessId)
{
    for (HWND hWnd = nullptr; (hWnd = FindWindowExW(nullptr, hWnd, nullptr, L"Lumacap 8")) != nullptr;)
    {
        DWORD dwOwner = 0;
        GetWindowThreadProcessId(hWnd, &dwOwner);
        if (dwOwner == dwProcessId)
            return hWnd;
    }
    return nullptr;
}

TEST(SamplePackage, ListNamesEveryFileOnceAndNothingThatIsMissing)
{
    std::vector<std::wstring> named = { L"LumUnInst.log", L"setup.exe" };
    for (const char* pszPrefix : { "File Copy: ", "File Copy x64: ", "File Copy ind: ", "File Copy prt: " })
    {
        const std::vector<std::wstring> values = ListValues(pszPrefix);
        EXPECT_FALSE(values.empty()) << pszPrefix;
        for (const std::wstring& strValue : values)
        {
            const std::vector<std::wstring> matches = MatchesInPackage(strValue.substr(0, strValue.find(L" >")));
            EXPECT_FALSE(matches.empty()) << pszPrefix << testing::PrintToString(strValue);
            named.insert(named.end(), matches.begin(), matches.end());
        }
    }
    std::vector<std::wstring> held = FilesInPackage(L"");
    std::sort(named.begin(), named.end());
    std::sort(held.begin(), held.end());
    EXPECT_EQ(named, held);
}

TEST(SamplePackage, ListMakesTheInstallFolderBeforeFoldersInItAndLeavesNoneBehind)
{
    const std::string strList = ReadBytes(PackagePath(L"LumUnInst.log"));
    EXPECT_LT(strList.find("\nFile Copy: Lumacap8.exe"), strList.find("\nMake Dir: "));
    const std::vector<std::wstring> folders = ListValues("Make Dir: ");
    for (const std::wstring& strFile : FilesInPackage(L""))
    {
        const std::wstring strFolder = strFile.substr(0, std::min(strFile.find(L'\\'), strFile.size()));
        // The uninstaller removes "x64" by name.
        if (strFolder == strFile || strFolder == L"x64")
            continue;
        EXPECT_EQ(std::count(folders.begin(), folders.end(), strFolder), 1) << testing::PrintToString(strFile);
    }
    EXPECT_FALSE(ListValues("File Overwrite: ").empty());
    EXPECT_FALSE(ListValues("File Del: ").empty());
}

TEST(SamplePackage, AgreementIsUtf16WithMarkAndWindowsLineEnds)
{
    const std::string strBytes = ReadBytes(PackagePath(L"agreement.txt"));
    const std::wstring strText(reinterpret_cast<const wchar_t*>(strBytes.data()), strBytes.size() / 2);
    ASSERT_EQ(strText.compare(0, 11, L"\xFEFFLUMACAP 8 "), 0);
    for (size_t n = strText.find(L'\n'); n != std::wstring::npos; n = strText.find(L'\n', n + 1))
        ASSERT_EQ(strText[n - 1], L'\r') << "at " << n;
}

TEST(SampleProduct, StandsInTheListAndShowsItsWindowUntilToldToClose)
{
    const HANDLE hProcess = Start(Product(L""));
    const DWORD dwId = GetProcessId(hProcess);
    EXPECT_TRUE(Soon([&] { return ProductWindow(dwId) != nullptr; }));
    // Kept open beside the product, so that the list can still be read when the product is gone.
    const HANDLE hMapping =
        OpenFileMappingW(FILE_MAP_READ, FALSE, L"Local\\COXInstanceManager_FileMap_Tandrel.Lumacap-DX.v4");
    EXPECT_NE(hMapping, nullptr);
    std::vector<DWORD> ids = ListedInstances();
    EXPECT_EQ(std::count(ids.begin(), ids.end(), dwId), 1);

    PostMessageW(ProductWindow(dwId), WM_CLOSE, 1001, 0);
    EXPECT_EQ(EndOf(hProcess), 0u);
    ids = ListedInstances();
    EXPECT_EQ(std::count(ids.begin(), ids.end(), dwId), 0);
    CloseHandle(hMapping);
}

TEST(SampleProduct, CanBeMadeToIgnoreTheWishToClose)
{
    const HANDLE hProcess = Start(Product(L"-ignoreclose"));
    const DWORD dwId = GetProcessId(hProcess);
    ASSERT_TRUE(Soon([&] { return ProductWindow(dwId) != nullptr; }));
    DWORD_PTR dwResult = 0;
    EXPECT_NE(SendMessageTimeoutW(ProductWindow(dwId), WM_CLOSE, 1001, 0, SMTO_NORMAL, kPatience, &dwResult), 0);
    EXPECT_EQ(WaitForSingleObject(hProcess, 200), static_cast<DWORD>(WAIT_TIMEOUT));
    TerminateProcess(hProcess, 0);
    EndOf(hProcess);
}

TEST(SampleProduct, RegistersAllOfItsKeysAndTakesBackAPartOnly)
{
    const wchar_t kFileExts[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts";
    const wchar_t kBrowserHost[] = L"SOFTWARE\\Mozilla\\NativeMessagingHosts\\capff";
    const struct
    {
        HKEY hRoot;
        std::wstring strKey;
        const wchar_t* pszValue;
        bool bTakenBack;
    } aCases[] = {
        { HKEY_CLASSES_ROOT, L"LC8.Document", nullptr, false },
        { HKEY_CLASSES_ROOT, L"LC8.Document\\DefaultIcon", nullptr, true },
        { HKEY_LOCAL_MACHINE, kBrowserHost, nullptr, false },
        { HKEY_CURRENT_USER, kBrowserHost, nullptr, false },
        { HKEY_CURRENT_USER, L"SOFTWARE\\Tandrel\\Lumacap 8\\View", nullptr, false },
        { HKEY_CURRENT_USER, std::wstring(kFileExts) + L"\\.bmp", L"LumacapOld", true },
        { HKEY_CURRENT_USER, std::wstring(kFileExts) + L"\\.lcp", L"LumacapOld", false },
    };
    for (const auto& c : aCases)
        EXPECT_FALSE(Exists(c.hRoot, c.strKey.c_str(), c.pszValue)) << testing::PrintToString(c.strKey);
    EXPECT_EQ(EndOf(Start(Product(L"-regonly"))), 0u);
    for (const auto& c : aCases)
        EXPECT_TRUE(Exists(c.hRoot, c.strKey.c_str(), c.pszValue)) << testing::PrintToString(c.strKey);
    EXPECT_EQ(EndOf(Start(Product(L"-unregonly"))), 0u);
    for (const auto& c : aCases)
        EXPECT_NE(Exists(c.hRoot, c.strKey.c_str(), c.pszValue), c.bTakenBack) << testing::PrintToString(c.strKey);

    RegDeleteTreeW(HKEY_CLASSES_ROOT, L"LC8.Document");
    RegDeleteTreeW(HKEY_CURRENT_USER, kFileExts);
    for (HKEY hRoot : { HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER })
    {
        RegDeleteTreeW(hRoot, L"SOFTWARE\\Mozilla");
        RegDeleteTreeW(hRoot, L"SOFTWARE\\Tandrel");
    }
}

TEST(SampleThumbnailHandler, EntersAndRemovesItselfThroughRegsvr32)
{
    const wchar_t kServer[] = L"CLSID\\{6B0F4C52-9D3E-4A71-8C25-1E7A90D4B3F6}\\InprocServer32";
    const std::wstring strLibrary = L"\"" + PackagePath(L"ThumbLcp64.dll") + L"\"";
    EXPECT_EQ(EndOf(Start(L"regsvr32.exe /s " + strLibrary)), 0u);
    EXPECT_TRUE(Exists(HKEY_CLASSES_ROOT, kServer, L"ThreadingModel"));
    EXPECT_TRUE(Exists(HKEY_CLASSES_ROOT, L".lcp\\ShellEx\\{E357FCCD-A995-4576-B01F-234630154E96}"));
    EXPECT_EQ(EndOf(Start(L"regsvr32.exe /s /u " + strLibrary)), 0u);
    EXPECT_FALSE(Exists(HKEY_CLASSES_ROOT, L"CLSID\\{6B0F4C52-9D3E-4A71-8C25-1E7A90D4B3F6}"));
    EXPECT_FALSE(Exists(HKEY_CLASSES_ROOT, L".lcp"));
}

} // namespace
