#include "tools/pkgtool/Installation.h"

#include <shlobj.h>

#include "app/RunState.h"
#include "app/StartBindings.h"
#include "foundation/FolderPaths.h"
#include "foundation/Owners.h"
#include "foundation/TextEnds.h"
#include "install/EarlierInstallation.h"

CString FullPath(const CString& strPath)
{
    wchar_t szPath[MAX_PATH] = L"";
    GetFullPathNameW(strPath, _countof(szPath), szPath, nullptr);
    return szPath;
}

// A drive alone stays as it is: with a path it would be its current folder.
bool FindInstallation(const CString& strFolder)
{
    g_nInstallKind = strFolder.IsEmpty() ? KIND_ALL_USERS : KIND_PORTABLE;
    g_strInstDir = strFolder.IsEmpty() ? FindInstalledFolder() : strFolder;
    if (g_nInstallKind == KIND_PORTABLE && !EndsWith(strFolder, L":"))
        g_strInstDir = FullPath(strFolder);
    TakeOverKind();
    ReadOsVersion(&g_osVersion);
    return !g_strInstDir.IsEmpty();
}

CString FindShellFolder(int nFolder)
{
    wchar_t szFolder[MAX_PATH] = L"";
    SHGetFolderPathW(nullptr, nFolder, nullptr, SHGFP_TYPE_CURRENT, szFolder);
    return szFolder;
}

CString ReadLinkTarget(const wchar_t* pszLink)
{
    CoInitialize(nullptr);
    wchar_t szTarget[MAX_PATH] = L"";
    CInterfaceOwner<IShellLinkW> link;
    CInterfaceOwner<IPersistFile> file;
    if (SUCCEEDED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(link.Receive()))) &&
        SUCCEEDED(link->QueryInterface(IID_PPV_ARGS(file.Receive()))) && SUCCEEDED(file->Load(pszLink, STGM_READ)))
        link->GetPath(szTarget, _countof(szTarget), nullptr, 0);
    return szTarget;
}

bool ReadValue(const RegisteredValue& value, CString& strText)
{
    union
    {
        wchar_t szText[1024];
        DWORD dwNumber;
    } data;
    DWORD cb = sizeof(data);
    const bool bNumber = std::holds_alternative<unsigned int>(value.data);
    const DWORD dwType = bNumber ? RRF_RT_REG_DWORD : RRF_RT_REG_SZ | RRF_NOEXPAND;
    const LSTATUS status = RegGetValueW(value.hRoot, value.pszKey, value.pszName, dwType, nullptr, &data, &cb);
    if (status != ERROR_SUCCESS)
        strText = L"of another kind";
    else if (bNumber)
        strText.Format(L"%lu", data.dwNumber);
    else
        strText = data.szText;
    return status != ERROR_FILE_NOT_FOUND;
}
