#include "install/RegisteredValues.h"

#include "app/Product.h"
#include "app/RunState.h"
#include "foundation/AssocExtensions.h"
#include "foundation/BoundedText.h"
#include "foundation/StringTable.h"
#include "res/resource.h"

template <typename... Numbers>
static CString FormatNumbers(const wchar_t* pszFormat, Numbers... numbers)
{
    wchar_t szText[128];
    FormatBounded(szText, pszFormat, numbers...);
    return szText;
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

// The version's fourth part is left out. The first two stand as texts and as numbers. Not to be tidied away.
void ForEachRegisteredValue(void (*pfnVisit)(const RegisteredValue& value, LPARAM lParam), LPARAM lParam)
{
    const HKEY hMachine = HKEY_LOCAL_MACHINE;
    const HKEY hClasses = HKEY_CLASSES_ROOT;
    const CString strVersion = FormatNumbers(L"%d.%02d.%02d", g_nVerMajor, g_nVerMinor, g_nVerFix);
    RegisteredValue values[] = {
        { hMachine, kProductKey, kKindValue, g_nInstallKind == KIND_ALL_USERS ? kAllUsersLetter : L"A" },
        { hMachine, kProductKey, kFolderValue, g_strInstDir },
        { hClasses, kClassOpenKey, nullptr, GetOpenCommand() },
        { hMachine, kFileAssociationsKey, nullptr, GetAssociationTarget(), true },
        { hMachine, kRegisteredApplicationsKey, kProductClass, kCapabilitiesKey },
        { hMachine, kAppPathsKey, nullptr, g_strInstDir + kProductExePath },
        { hMachine, kAppPathsKey, L"Path", g_strInstDir },
        { hMachine, kUninstallKey, L"Contact", L"Support" },
        { hMachine, kUninstallKey, L"DisplayName", LoadResString(IDS_PRODUCT_NAME) },
        { hMachine, kUninstallKey, L"InstallLocation", g_strInstDir },
        { hMachine, kUninstallKey, L"DisplayVersion", strVersion },
        { hMachine, kUninstallKey, L"VersionMajor", FormatNumbers(L"%d", g_nVerMajor) },
        { hMachine, kUninstallKey, L"VersionMinor", FormatNumbers(L"%d", g_nVerMinor) },
        { hMachine, kUninstallKey, L"MajorVersion", g_nVerMajor },
        { hMachine, kUninstallKey, L"MinorVersion", g_nVerMinor },
        { hMachine, kUninstallKey, L"Publisher", kPublisherName },
        { hMachine, kUninstallKey, L"UninstallString", g_strInstDir + kUninstallerPath },
        { hMachine, kUninstallKey, L"URLInfoAbout", kHomePageAddress },
        { hClasses, kApplicationOpenKey, nullptr, GetOpenCommand() },
    };
    for (RegisteredValue& value : values)
    {
        for (int i = 0; i < (value.bEachFormat ? kAssocExtCount : 1); ++i)
        {
            if (value.bEachFormat)
                value.pszName = g_aAssocExts[i].pszExtension;
            pfnVisit(value, lParam);
        }
    }
}
