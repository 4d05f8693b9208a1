// Tells the system about the product.
#include "install/Registration.h"

#include "app/Product.h"
#include "app/RunState.h"
#include "foundation/AssocExtensions.h"
#include "foundation/BoundedText.h"
#include "foundation/ProcessLaunch.h"
#include "foundation/RegistryValues.h"
#include "res/resource.h"

struct RegistryText
{
    HKEY hRoot;
    const wchar_t* pszKey;
    const wchar_t* pszValueName; // null: the default value
    CString strText;
};

template <size_t nRows>
static void WriteTexts(const RegistryText (&rows)[nRows])
{
    for (const RegistryText& row : rows)
        WriteRegString(row.hRoot, row.pszKey, row.pszValueName, row.strText);
}

static CString GetOpenCommand()
{
    return L"\"" + g_strInstDir + kProductExePath + L"\" \"%1\"";
}

// Windows 8 and later are offered the product's class, earlier ones its entry among the applications.
static const wchar_t* GetAssociationTarget()
{
    const bool bWindows8 =
        g_osVersion.dwMajorVersion > 6 || (g_osVersion.dwMajorVersion == 6 && g_osVersion.dwMinorVersion >= 2);
    return bWindows8 ? kProductClass : kProductApplication;
}

static CString FormatVersion(const wchar_t* pszFormat)
{
    wchar_t szText[128];
    FormatBounded(szText, 128, pszFormat, g_nVerMajor, g_nVerMinor, g_nVerFix);
    return szText;
}

static CString FormatNumber(unsigned int nNumber)
{
    wchar_t szText[128];
    FormatBounded(szText, 128, L"%d", nNumber);
    return szText;
}

// The letters are what a later run tells the kinds apart by.
static void WriteProductKey()
{
    const RegistryText rows[] = {
        { HKEY_LOCAL_MACHINE, kProductKey, L"AllUsers", g_nInstallKind == KIND_ALL_USERS ? L"B" : L"A" },
        { HKEY_LOCAL_MACHINE, kProductKey, L"Path", g_strInstDir },
        { HKEY_CLASSES_ROOT, L"Lumacap.8\\shell\\open\\command", nullptr, GetOpenCommand() },
    };
    WriteTexts(rows);
}

static void WriteCapabilities()
{
    for (const AssocExtension& row : g_aAssocExts)
        WriteRegString(HKEY_LOCAL_MACHINE, kFileAssociationsKey, row.pszExtension, GetAssociationTarget());
    WriteRegString(HKEY_LOCAL_MACHINE, kRegisteredApplicationsKey, kProductClass, kCapabilitiesKey);
}

// The version stands here without its fourth part, and its first two parts once as text and once as numbers. All of
// them stay.
static void WriteUninstallEntry()
{
    const RegistryText rowsBeforeNumbers[] = {
        { HKEY_LOCAL_MACHINE, kUninstallKey, L"Contact", L"Support" },
        { HKEY_LOCAL_MACHINE, kUninstallKey, L"DisplayName", LoadResString(IDS_PRODUCT_NAME) },
        { HKEY_LOCAL_MACHINE, kUninstallKey, L"InstallLocation", g_strInstDir },
        { HKEY_LOCAL_MACHINE, kUninstallKey, L"DisplayVersion", FormatVersion(L"%d.%02d.%02d") },
        { HKEY_LOCAL_MACHINE, kUninstallKey, L"VersionMajor", FormatNumber(g_nVerMajor) },
        { HKEY_LOCAL_MACHINE, kUninstallKey, L"VersionMinor", FormatNumber(g_nVerMinor) },
    };
    const RegistryText rowsAfterNumbers[] = {
        { HKEY_LOCAL_MACHINE, kUninstallKey, L"Publisher", kPublisherName },
        { HKEY_LOCAL_MACHINE, kUninstallKey, L"UninstallString", g_strInstDir + kUninstallerPath },
        { HKEY_LOCAL_MACHINE, kUninstallKey, L"URLInfoAbout", kHomePageAddress },
    };
    WriteTexts(rowsBeforeNumbers);
    WriteRegDword(HKEY_LOCAL_MACHINE, kUninstallKey, L"MajorVersion", g_nVerMajor);
    WriteRegDword(HKEY_LOCAL_MACHINE, kUninstallKey, L"MinorVersion", g_nVerMinor);
    WriteTexts(rowsAfterNumbers);
}

static void WriteAppPath()
{
    const RegistryText rows[] = {
        { HKEY_LOCAL_MACHINE, kAppPathsKey, nullptr, g_strInstDir + kProductExePath },
        { HKEY_LOCAL_MACHINE, kAppPathsKey, L"Path", g_strInstDir },
    };
    WriteTexts(rows);
}

static void RegisterThumbnailHandler()
{
    const CString strLibrary = g_osVersion.dwMajorVersion >= 6 ? g_strInstDir + L"\\" + kThumbnailDll : CString();
    if (!strLibrary.IsEmpty())
        RunAndWait(L"regsvr32.exe /s \"" + strLibrary + L"\"", nullptr, 0);
}

void RegisterWithSystem()
{
    WriteProductKey();
    WriteCapabilities();
    WriteAppPath();
    WriteUninstallEntry();
    WriteRegString(HKEY_CLASSES_ROOT, L"Applications\\Lumacap8.exe\\shell\\open\\command", nullptr, GetOpenCommand());
    RegisterThumbnailHandler();
}
