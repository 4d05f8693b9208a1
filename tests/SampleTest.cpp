// The sample package and the stand-in product, looked at from outside: what the other tests take for granted and don't
// see themselves.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "tests/support/DialogDriver.h"
#include "tests/support/Environment.h"
#include "tests/support/Files.h"
#include "tests/support/ProcessRun.h"
#include "tests/support/RegistryCorner.h"

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

TEST(SamplePackage, ListUsesEveryRecordAndTextsHaveTheirLineEndsAndMark)
{
    const std::string strList = ReadBytes(InPackage(L"LumUnInst.log"));
    EXPECT_EQ(0u, BareLineEnds(strList));
    for (const char* pszPrefix :
         { "File Copy x64: ", "File Copy ind: ", "File Copy prt: ", "File Overwrite: ", "File Del: " })
        EXPECT_NE(strList.find(std::string("\n") + pszPrefix), std::string::npos) << pszPrefix;
    const std::string strBytes = ReadBytes(InPackage(L"agreement.txt"));
    const std::wstring strText(reinterpret_cast<const wchar_t*>(strBytes.data()), strBytes.size() / 2);
    EXPECT_EQ(L"\xFEFFLUMACAP 8 ", strText.substr(0, 11));
    EXPECT_EQ(0u, BareLineEnds(strText));
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
    const struct
    {
        HKEY hRoot;
        const wchar_t* pszKey;
        bool bTakenBack = false;
    } cases[] = {
        { HKEY_CLASSES_ROOT, L"LC8.Document" },
        { HKEY_CLASSES_ROOT, L"LC8.Document\\DefaultIcon", true },
        { HKEY_LOCAL_MACHINE, L"SOFTWARE\\Mozilla\\NativeMessagingHosts\\capff" },
        { HKEY_CURRENT_USER, L"SOFTWARE\\Mozilla\\NativeMessagingHosts\\capff" },
        { HKEY_CURRENT_USER, L"SOFTWARE\\Tandrel\\Lumacap 8\\View" },
    };
    CRegistryCorner registry;
    registry.ClearProduct();
    for (const bool bRegistered : { true, false })
    {
        EXPECT_EQ(0u, RunToEnd(Product(bRegistered ? L"-regonly" : L"-unregonly")));
        for (const auto& c : cases)
            EXPECT_EQ(KeyExists(c.hRoot, c.pszKey), bRegistered || !c.bTakenBack) << &c - cases;
    }
}
