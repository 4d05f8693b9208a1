// The web page that greets the user after a first install or an upgrade.
#include "wizard/WelcomePage.h"

#include <stdio.h>
#include <windows.h>

#include "app/Product.h"
#include "app/RunState.h"
#include "foundation/InstallLog.h"
#include "foundation/Owners.h"

const int kLineCapacity = 260; // characters, the terminator included

// The last two characters of the update address are a language code, unless one of them is a digit.
static void AddLanguage(const wchar_t* pszLine, CString& strQuery)
{
    CString strLanguage = CString(pszLine).Right(2);
    if (iswdigit(strLanguage[0]) || iswdigit(strLanguage[1]))
        return;
    strLanguage.MakeUpper();
    strQuery += (strQuery.IsEmpty() ? L"?Lang=" : L"&Lang=") + strLanguage;
}

static void ReadQueryLine(const CString& strLine, CString& strQuery)
{
    if (FindRecordValue(strLine, L"URL=http://") != nullptr)
    {
        const int nQuery = strLine.Find(L'?');
        if (nQuery >= 0)
            strQuery = strLine.Mid(nQuery);
    }
    else if (FindRecordValue(strLine, L"Update=http://") != nullptr)
    {
        AddLanguage(strLine, strQuery);
    }
}

static CString ReadQuery()
{
    CString strQuery;
    const CStreamOwner file(_wfopen(g_strInstDir + L"\\HomePage.url", L"r"));
    if (!file.IsOpen())
        return strQuery;

    wchar_t szLine[kLineCapacity];
    while (fgetws(szLine, kLineCapacity, file) != nullptr)
    {
        CString strLine(szLine);
        strLine.Trim();
        ReadQueryLine(strLine, strQuery);
    }
    return strQuery;
}

void OpenWelcomePage()
{
    if (g_nSilent != SILENT_OFF)
        return;
    if (!g_bFreshInstall && !g_bUpgrade)
        return;
    if (g_bSettingsCopied)
        return;
    ShellExecuteW(nullptr, L"open", kWelcomePageAddress + ReadQuery(), nullptr, nullptr, SW_SHOW);
}
