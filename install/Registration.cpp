#include "install/Registration.h"

#include <afx.h>

#include "app/Product.h"
#include "app/RunState.h"
#include "foundation/AssocExtensions.h"
#include "foundation/BoundedText.h"
#include "foundation/ProcessLaunch.h"
#include "foundation/RegistryValues.h"
#include "foundation/StringTable.h"
#include "foundation/SystemFacts.h"
#include "res/resource.h"

namespace
{
struct RegistryWrite
{
    HKEY hRoot;
    const wchar_t* pszKey;
    const wchar_t* pszValueName; // null: the default value
    CString strText;
    const unsigned int* pnNumber = nullptr; // written in the place of the text, if there is one
    bool bEachFormat = false;               // the text goes to a value for each image format
};
} // namespace

static void Write(const RegistryWrite& row)
{
    if (row.pnNumber != nullptr)
        WriteRegDword(row.hRoot, row.pszKey, row.pszValueName, *row.pnNumber);
    else if (!row.bEachFormat)
        WriteRegString(row.hRoot, row.pszKey, row.pszValueName, row.strText);
    else
        for (const AssocExtension& format : g_aAssocExts)
            WriteRegString(row.hRoot, row.pszKey, format.pszExtension, row.strText);
}

// Windows 8 and later are offered the product's class, earlier ones its entry among the applications.
static const wchar_t* GetAssociationTarget()
{
    const bool bWindows8 =
        g_osVersion.dwMajorVersion > 6 || (g_osVersion.dwMajorVersion == 6 && g_osVersion.dwMinorVersion >= 2);
    return bWindows8 ? kProductClass : kProductApplication;
}

static CString GetOpenCommand()
{
    return L"\"" + g_strInstDir + kProductExePath + L"\" \"%1\"";
}

template <typename... Numbers>
static CString FormatNumbers(const wchar_t* pszFormat, Numbers... numbers)
{
    wchar_t szText[128];
    FormatBounded(szText, pszFormat, numbers...);
    return szText;
}

// In the order in which they are written. Of the version the fourth part is left out, and the first two stand as text
// and as numbers, which is not to be tidied away. A later run tells the kinds apart by the letters of "AllUsers".
static void WriteValues()
{
    const HKEY hMachine = HKEY_LOCAL_MACHINE;
    const HKEY hClasses = HKEY_CLASSES_ROOT;
    const CString strVersion = FormatNumbers(L"%d.%02d.%02d", g_nVerMajor, g_nVerMinor, g_nVerFix);
    const RegistryWrite kWrites[] = {
        { hMachine, kProductKey, L"AllUsers", g_nInstallKind == KIND_ALL_USERS ? L"B" : L"A" },
        { hMachine, kProductKey, L"Path", g_strInstDir },
        { hClasses, kClassOpenKey, nullptr, GetOpenCommand() },
        { hMachine, kFileAssociationsKey, nullptr, GetAssociationTarget(), nullptr, true },
        { hMachine, kRegisteredApplicationsKey, kProductClass, kCapabilitiesKey },
        { hMachine, kAppPathsKey, nullptr, g_strInstDir + kProductExePath },
        { hMachine, kAppPathsKey, L"Path", g_strInstDir },
        { hMachine, kUninstallKey, L"Contact", L"Support" },
        { hMachine, kUninstallKey, L"DisplayName", LoadResString(IDS_PRODUCT_NAME) },
        { hMachine, kUninstallKey, L"InstallLocation", g_strInstDir },
        { hMachine, kUninstallKey, L"DisplayVersion", strVersion },
        { hMachine, kUninstallKey, L"VersionMajor", FormatNumbers(L"%d", g_nVerMajor) },
        { hMachine, kUninstallKey, L"VersionMinor", FormatNumbers(L"%d", g_nVerMinor) },
        { hMachine, kUninstallKey, L"MajorVersion", L"", &g_nVerMajor },
        { hMachine, kUninstallKey, L"MinorVersion", L"", &g_nVerMinor },
        { hMachine, kUninstallKey, L"Publisher", kPublisherName },
        { hMachine, kUninstallKey, L"UninstallString", g_strInstDir + kUninstallerPath },
        { hMachine, kUninstallKey, L"URLInfoAbout", kHomePageAddress },
        { hClasses, kApplicationOpenKey, nullptr, GetOpenCommand() },
    };
    for (const RegistryWrite& row : kWrites)
        Write(row);
}

static void RegisterThumbnailHandler()
{
    if (IsNT6OrLater())
        RunAndWait(L"regsvr32.exe /s \"" + g_strInstDir + L"\\" + kThumbnailDll + L"\"", nullptr, 0);
}

void RegisterWithSystem()
{
    WriteValues();
    RegisterThumbnailHandler();
}
