// The sample package and the stand-in product, looked at from outside: the list names what the package holds, and the
// product and its thumbnail handler do to the machine what the other tests take for granted.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/DialogDriver.h"
#include "tests/support/Environment.h"
#include "tests/support/Files.h"
#include "tests/support/ProcessRun.h"
#include "tests/support/RegistryCorner.h"
#include "tests/support/SharedList.h"

namespace
{

std::wstring InPackage(const std::wstring& strName)
{
    return PackageFolder() + L"\\" + strName;
}

std::wstring Product(const wchar_t* pszSwitches)
{
    return L"\"" + InPackage(L"Lumacap8.exe") + L"\" " + pszSwitches;
}

// Names below the package that a mask meets, with the mask's own folder.
std::vector<std::wstring> MatchesInPackage(const std::wstring& strMask)
{
    std::vector<std::wstring> matches;
    WIN32_FIND_DATAW found;
    const CFindOwner find(FindFirstFileW(InPackage(strMask).c_str(), &found));
    for (BOOL bFound = find.IsOpen(); bFound; bFound = FindNextFileW(find, &found))
        matches.push_back(strMask.substr(0, strMask.rfind(L'\\') + 1) + found.cFileName);
    return matches;
}

// The values of the list's records that begin with the prefix.
std::vector<std::wstring> ListValues(const std::string& strPrefix)
{
    std::vector<std::wstring> values;
    for (const std::string& strLine : ReadLines(InPackage(L"LumUnInst.log")))
        if (strLine.compare(0, strPrefix.size(), strPrefix) == 0)
            values.emplace_back(strLine.begin() + strPrefix.size(), strLine.end());
    return values;
}

// Line feeds without a carriage return before them.
template <typename Text>
size_t BareLineEnds(const Text& text)
{
    size_t nBare = 0;
    for (size_t n = 0; n < text.size(); ++n)
        nBare += text[n] == '\n' && (n == 0 || text[n - 1] != '\r');
    return nBare;
}

} // namespace

TEST(SamplePackage, ListNamesEveryFileOnceAndNothingThatIsMissing)
{
    std::vector<std::wstring> named = { L"LumUnInst.log", L"setup.exe" };
    for (const char* pszPrefix : { "File Copy: ", "File Copy x64: ", "File Copy ind: ", "File Copy prt: " })
    {
        for (const std::wstring& strValue : ListValues(pszPrefix))
        {
            const std::vector<std::wstring> matches = MatchesInPackage(strValue.substr(0, strValue.find(L" >")));
            EXPECT_FALSE(matches.empty()) << pszPrefix << testing::PrintToString(strValue);
            named.insert(named.end(), matches.begin(), matches.end());
        }
    }
    std::vector<std::wstring> held = ListTree(PackageFolder());
    held.erase(std::remove_if(held.begin(), held.end(), [](const std::wstring& str) { return str.back() == L'\\'; }),
               held.end());
    std::sort(named.begin(), named.end());
    std::sort(held.begin(), held.end());
    EXPECT_EQ(named, held);
}

TEST(SamplePackage, ListUsesEveryRecordAndMakesTheInstallFolderBeforeThoseInIt)
{
    for (const char* pszPrefix :
         { "File Copy x64: ", "File Copy ind: ", "File Copy prt: ", "File Overwrite: ", "File Del: " })
        EXPECT_FALSE(ListValues(pszPrefix).empty()) << pszPrefix;
    const std::string strList = ReadBytes(InPackage(L"LumUnInst.log"));
    EXPECT_LT(strList.find("\nFile Copy: Lumacap8.exe"), strList.find("\nMake Dir: "));
    const std::vector<std::wstring> folders = ListValues("Make Dir: ");
    for (const std::wstring& strPath : ListTree(PackageFolder()))
    {
        if (strPath.back() != L'\\' || strPath == L"x64\\") // which the uninstaller removes by name
            continue;
        EXPECT_EQ(1, std::count(folders.begin(), folders.end(), strPath.substr(0, strPath.size() - 1)));
    }
}

TEST(SamplePackage, TextsHaveWindowsLineEndsAndTheAgreementItsByteOrderMark)
{
    EXPECT_EQ(0u, BareLineEnds(ReadBytes(InPackage(L"LumUnInst.log"))));
    const std::string strBytes = ReadBytes(InPackage(L"agreement.txt"));
    const std::wstring strText(reinterpret_cast<const wchar_t*>(strBytes.data()), strBytes.size() / 2);
    EXPECT_EQ(L"\xFEFFLUMACAP 8 ", strText.substr(0, 11));
    EXPECT_EQ(0u, BareLineEnds(strText));
}

TEST(SampleProduct, StandsInTheListAndShowsItsWindowUntilToldToClose)
{
    CProductList list({});
    CProcessRun product(Product(L""));
    ASSERT_TRUE(product.Start());
    const CDialogDriver window(product.Id(), L"Lumacap 8");
    EXPECT_EQ(std::vector<DWORD>{ product.Id() }, list.Ids());
    PostMessageW(window.Window(), WM_CLOSE, 1001, 0);
    EXPECT_TRUE(product.WaitForEnd());
    EXPECT_EQ(0u, product.ExitCode());
    EXPECT_TRUE(list.Ids().empty());
}

TEST(SampleProduct, CanBeMadeToIgnoreTheWishToClose)
{
    CProcessRun product(Product(L"-ignoreclose"));
    ASSERT_TRUE(product.Start());
    const CDialogDriver window(product.Id(), L"Lumacap 8");
    DWORD_PTR nResult = 0;
    EXPECT_NE(0, SendMessageTimeoutW(window.Window(), WM_CLOSE, 1001, 0, SMTO_NORMAL, kPatience, &nResult));
    EXPECT_FALSE(product.WaitForEnd(200));
}

TEST(SampleProduct, RegistersAllOfItsKeysAndTakesBackAPartOnly)
{
    const std::wstring strFileExts = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts";
    const std::wstring strBrowserHost = L"SOFTWARE\\Mozilla\\NativeMessagingHosts\\capff";
    const struct
    {
        HKEY hRoot;
        std::wstring strKey;
        const wchar_t* pszValue;
        bool bTakenBack;
    } cases[] = {
        { HKEY_CLASSES_ROOT, L"LC8.Document", nullptr, false },
        { HKEY_CLASSES_ROOT, L"LC8.Document\\DefaultIcon", nullptr, true },
        { HKEY_LOCAL_MACHINE, strBrowserHost, nullptr, false },
        { HKEY_CURRENT_USER, strBrowserHost, nullptr, false },
        { HKEY_CURRENT_USER, L"SOFTWARE\\Tandrel\\Lumacap 8\\View", nullptr, false },
        { HKEY_CURRENT_USER, strFileExts + L"\\.bmp", L"LumacapOld", true },
        { HKEY_CURRENT_USER, strFileExts + L"\\.lcp", L"LumacapOld", false },
    };
    CRegistryCorner registry;
    registry.ClearProduct();
    for (const bool bRegistered : { true, false })
    {
        EXPECT_EQ(0u, RunToEnd(Product(bRegistered ? L"-regonly" : L"-unregonly")));
        for (const auto& c : cases)
            EXPECT_EQ(bRegistered || !c.bTakenBack,
                      c.pszValue ? ValueExists(c.hRoot, c.strKey, c.pszValue) : KeyExists(c.hRoot, c.strKey))
                << testing::PrintToString(c.strKey);
    }
}

TEST(SampleThumbnailHandler, EntersAndRemovesItselfThroughRegsvr32)
{
    CRegistryCorner registry;
    registry.ClearProduct();
    const std::wstring strLibrary = L"\"" + InPackage(L"ThumbLcp64.dll") + L"\"";
    const wchar_t kServer[] = L"CLSID\\{6B0F4C52-9D3E-4A71-8C25-1E7A90D4B3F6}";
    EXPECT_EQ(0u, RunToEnd(L"regsvr32.exe /s " + strLibrary));
    EXPECT_TRUE(ValueExists(HKEY_CLASSES_ROOT, kServer + std::wstring(L"\\InprocServer32"), L"ThreadingModel"));
    EXPECT_TRUE(KeyExists(HKEY_CLASSES_ROOT, L".lcp\\ShellEx\\{E357FCCD-A995-4576-B01F-234630154E96}"));
    EXPECT_EQ(0u, RunToEnd(L"regsvr32.exe /s /u " + strLibrary));
    EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, kServer));
    EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, L".lcp"));
}
