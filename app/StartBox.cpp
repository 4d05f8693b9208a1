#include "app/StartBox.h"

#include <afxwin.h>

#include "res/resource.h"

static wchar_t g_szCaption[128];

void LoadStartCaption()
{
    LoadStringW(AfxGetResourceHandle(), IDS_SETUP_CAPTION, g_szCaption, _countof(g_szCaption));
}

int ShowStartBox(const wchar_t* pszText, UINT nStyle)
{
    return MessageBoxW(nullptr, pszText, g_szCaption, nStyle);
}

CString LoadStartText(UINT nId)
{
    wchar_t szText[256] = L"";
    LoadStringW(AfxGetResourceHandle(), nId, szText, _countof(szText));
    return szText;
}
