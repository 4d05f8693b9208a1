// What the machine tells of an installation.
#include "tools/pkgtool/Installation.h"

#include <shlobj.h>

#include "app/RunState.h"
#include "foundation/FolderPaths.h"
#include "foundation/Owners.h"
#include "install/EarlierInstallation.h"
#include "tools/pkgtool/FileTree.h"

bool FindInstallation(const CString& strFolder)
{
    g_nInstallKind = strFolder.IsEmpty() ? KIND_ALL_USERS : KIND_PORTABLE;
    g_strInstDir = strFolder.IsEmpty() ? FindInstalledFolder() : strFolder;
    TakeOverKind();
    return !g_strInstDir.IsEmpty();
}

CString RealPath(const CString& strPlanned)
{
    if (StartsWith(strPlanned, kTarget))
        return g_strInstDir + strPlanned.Mid(static_cast<int>(wcslen(kTarget)));
    return CutLastPart(g_strInstDir) + strPlanned.Mid(static_cast<int>(wcslen(kBeside)));
}

CString FindShellFolder(int nFolder)
{
    CString strFolder;
    SHGetFolderPathW(nullptr, nFolder, nullptr, SHGFP_TYPE_CURRENT, strFolder.GetBuffer(MAX_PATH));
    strFolder.ReleaseBuffer();
    return strFolder;
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
    DWORD dwType = REG_NONE;
    const LSTATUS status =
        RegGetValueW(value.hRoot, value.pszKey, value.pszName, RRF_RT_ANY | RRF_NOEXPAND, &dwType, &data, &cb);
    if (dwType != (value.pnNumber != nullptr ? REG_DWORD : REG_SZ))
        strText.Format(L"of type %lu", dwType);
    else if (dwType == REG_DWORD)
        strText.Format(L"%lu", data.dwNumber);
    else
        strText = status == ERROR_SUCCESS ? data.szText : L"too long";
    return status != ERROR_FILE_NOT_FOUND;
}
