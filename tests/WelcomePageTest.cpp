// The web page after an install: when it opens, and the query that the installed "HomePage.url" gives.
#include "wizard/WelcomePage.h"

#include "tests/support/WizardCorner.h"

namespace
{

class WelcomePage : public WizardCorner
{
protected:
    // The address that is opened, or an empty text.
    std::wstring Open()
    {
        m_addresses.clear();
        g_strInstDir = Folder().c_str();
        OpenWelcomePage();
        EXPECT_LE(m_addresses.size(), 1u);
        return m_addresses.empty() ? L"" : m_addresses[0];
    }
};

const std::wstring kPage = L"http://www.lumacap.example/lcdx/InstScript.asp";

} // namespace

TEST_F(WelcomePage, OpensAfterAFirstInstallOrAnUpgradeByTheWizard)
{
    const struct
    {
        int nSilent;
        int bFresh;
        int bUpgrade;
        int bSettings;
        bool bOpens;
    } kCases[] = {
        { 0, 1, 0, 0, true },  { 0, 0, 1, 0, true },  { 0, 1, 1, 0, true },  { 0, 0, 0, 0, false },
        { 1, 1, 1, 0, false }, { 2, 1, 1, 0, false }, { 0, 1, 0, 1, false }, { 0, 0, 1, 5, false },
    };
    for (const auto& test : kCases)
    {
        g_nSilent = test.nSilent;
        g_bFreshInstall = test.bFresh;
        g_bUpgrade = test.bUpgrade;
        g_bSettingsCopied = test.bSettings;
        EXPECT_EQ(Open(), test.bOpens ? kPage : L"") << &test - kCases;
    }
}

TEST_F(WelcomePage, QueryComesFromTheAddressesOfTheInstalledShortcut)
{
    EXPECT_EQ(Open(), kPage) << "without a file";
    const std::string strLong(300, 'l');
    const struct
    {
        std::string strFile;
        const wchar_t* pszQuery;
    } kCases[] = {
        { "", L"" },
        { "[InternetShortcut]\r\nURL=http://w.example/?x=1\r\nUpdate=http://w.example/de\r\n", L"?x=1&Lang=DE" },
        { "Update=http://w.example/de\n", L"?Lang=DE" },
        { "Update=http://w.example/de", L"?Lang=DE" },
        { "Update=http://w.example/7\n", L"" },
        { "Update=http://w.example/12\n", L"" },
        { "Update=http://w.example/a1\n", L"" },
        { "Update=http://w.example/1a\n", L"" },
        { "Update=http://w.example/\n", L"?Lang=E/" },
        { "Update=http://\n", L"?Lang=//" },
        { "Update=http://a/de\nURL=http://w/?x\n", L"?x" }, // the address overwrites the whole query
        { "URL=http://w/?x\nURL=http://w/?y\n", L"?y" },
        { "URL=http://w/?x\nURL=http://w/\n", L"?x" },
        { "URL=http://w/?a?b=c\n", L"?a?b=c" },
        { "URL=http://w/?\nUpdate=http://w/fr\n", L"?&Lang=FR" },
        { "Update=http://w/en\nUpdate=http://w/fr\n", L"?Lang=EN&Lang=FR" },
        { "  \tURL=http://w/?x \t\r\n\t Update=http://w/de\t \r\n", L"?x&Lang=DE" },
        { "url=http://w/?x\nURL=https://w/?x\nXURL=http://w/?x\nupdate=http://w/de\nUpdate=https://w/de\n", L"" },
        // Read in pieces of 259 characters, of which each counts as a line.
        { "URL=http://w/?" + strLong + "\n", nullptr },
    };
    for (const auto& test : kCases)
    {
        WriteBytes(At(L"HomePage.url"), test.strFile);
        const std::wstring strCut = L"?" + std::wstring(259 - strlen("URL=http://w/?"), L'l');
        EXPECT_EQ(Open(), kPage + (test.pszQuery != nullptr ? test.pszQuery : strCut)) << test.strFile;
    }
}
