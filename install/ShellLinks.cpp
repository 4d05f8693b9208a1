#include "install/ShellLinks.h"

#include <afxwin.h>
#include <shlobj.h>

#include "app/Product.h"
#include "app/RunState.h"
#include "foundation/BoundedText.h"
#include "foundation/InstallLog.h"
#include "foundation/Owners.h"

// Once for the process, and never undone: the process ends soon after.
static void StartCom()
{
    static bool bStarted = false;
    if (!bStarted)
        CoInitialize(nullptr);
    bStarted = true;
}

static void SetTarget(IShellLinkW* pLink, const wchar_t* pszTarget)
{
    wchar_t szTarget[512];
    CopyBounded(szTarget, *pszTarget == L'"' ? pszTarget + 1 : pszTarget);
    const size_t cch = wcslen(szTarget);
    if (cch > 0 && szTarget[cch - 1] == L'"')
        szTarget[cch - 1] = 0;
    if (FAILED(pLink->SetPath(szTarget)))
        AfxMessageBox(L"SetPath failed!");
}

HRESULT CreateShellLink(const wchar_t* pszTarget, const wchar_t* pszLinkPath, const wchar_t* pszDescription,
                        int nShowCommand, const wchar_t* pszArguments, const wchar_t* pszWorkingFolder)
{
    StartCom();
    CInterfaceOwner<IShellLinkW> link;
    HRESULT hr = CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(link.Receive()));
    if (FAILED(hr))
        return hr;
    CInterfaceOwner<IPersistFile> file;
    hr = link->QueryInterface(IID_PPV_ARGS(file.Receive()));
    if (FAILED(hr))
        return hr;

    SetTarget(link, pszTarget);
    if (FAILED(link->SetDescription(pszDescription)))
        AfxMessageBox(L"SetDescription failed!");
    // The buffer is the limit: a path that is too long ends the process here, and not somewhere in the shell.
    wchar_t szLinkPath[MAX_PATH];
    CopyBounded(szLinkPath, pszLinkPath);
    if (nShowCommand != SW_SHOWNORMAL)
        link->SetShowCmd(nShowCommand);
    if (pszArguments != nullptr)
        link->SetArguments(pszArguments);
    if (pszWorkingFolder != nullptr)
        link->SetWorkingDirectory(pszWorkingFolder);

    hr = file->Save(szLinkPath, TRUE);
    if (SUCCEEDED(hr))
        AppendLogLine(g_strInstDir + kFileListPath, CString(kShellLink) + pszLinkPath);
    return hr;
}
