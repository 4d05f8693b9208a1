// Reads a link with IShellLinkW; its target isn't looked for.
#include "tests/support/LinkFile.h"

#include <windows.h>
#include <shlobj.h>

#include "foundation/Owners.h"

static void ReadFields(IShellLinkW* pLink, LINK& link)
{
    wchar_t szText[1024] = L"";
    pLink->GetPath(szText, 1024, nullptr, SLGP_RAWPATH);
    link.strTarget = szText;
    pLink->GetArguments(szText, 1024);
    link.strArguments = szText;
    pLink->GetWorkingDirectory(szText, 1024);
    link.strFolder = szText;
    pLink->GetDescription(szText, 1024);
    link.strDescription = szText;
    pLink->GetIconLocation(szText, 1024, &link.nIcon);
    link.strIcon = szText;
    pLink->GetShowCmd(&link.nShow);
}

static bool LoadLink(const std::wstring& strPath, LINK& link)
{
    CInterfaceOwner<IShellLinkW> pLink;
    CInterfaceOwner<IPersistFile> pFile;
    if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                                reinterpret_cast<void**>(pLink.Receive()))) ||
        FAILED(pLink->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(pFile.Receive()))) ||
        FAILED(pFile->Load(strPath.c_str(), STGM_READ)))
        return false;
    ReadFields(pLink, link);
    return true;
}

bool ReadLink(const std::wstring& strPath, LINK& link)
{
    const HRESULT hr = CoInitialize(nullptr);
    const bool bRead = LoadLink(strPath, link);
    if (SUCCEEDED(hr))
        CoUninitialize();
    return bRead;
}
