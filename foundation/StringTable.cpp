#include "foundation/StringTable.h"

CString LoadResString(UINT nId)
{
    CString strText;
    strText.LoadString(nId);
    return strText;
}

CString FormatResString(UINT nId, const wchar_t* pszArgument)
{
    CString strText;
    strText.Format(LoadResString(nId), pszArgument);
    return strText;
}
