#include "wizard/WelcomePage.h"

#include <afx.h>
#include <stdio.h>

#include "app/Product.h"
#include "app/RunState.h"
#include "foundation/Owners.h"
#include "foundation/TextEnds.h"

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
    if (StartsWith(strLine, L"URL=http://"))
    {
        const int nQuery = strLine.Find(L'?');
        if (nQuery >= 0)
            strQuery = strLine.Mid(nQuery);
    }
    else if (StartsWith(strLine, L"Update=http://"))
    {
        AddLanguage(strLine, strQuery);
    }
}

static CString ReadQuery()
{
    CString strQuery;
    const CStreamOwner file(_wfopen(g_strInstDir + kHomePageFilePath, L"r"));
    if (!file.IsOpen())
        return strQuery;

    wchar_t szLine[260];
    while (fgetws(szLine, _countof(szLine), file) != nullptr)
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
