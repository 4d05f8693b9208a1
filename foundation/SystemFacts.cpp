#include "foundation/SystemFacts.h"

#include <shlobj.h>

#include "app/RunState.h"
#include "foundation/FolderPaths.h"
#include "foundation/RegistryValues.h"

namespace
{
struct ShellFolderValue
{
    int nFolder;
    HKEY hRoot;
    const wchar_t* pszValueName;
};
} // namespace

static const ShellFolderValue kShellFolderValues[] = {
    { CSIDL_DESKTOP, HKEY_CURRENT_USER, L"Desktop" },
    { CSIDL_PROGRAMS, HKEY_CURRENT_USER, L"Programs" },
    { CSIDL_PERSONAL, HKEY_CURRENT_USER, L"Personal" },
    { CSIDL_STARTUP, HKEY_CURRENT_USER, L"Startup" },
    { CSIDL_COMMON_PROGRAMS, HKEY_LOCAL_MACHINE, L"Common Programs" },
    { CSIDL_COMMON_STARTUP, HKEY_LOCAL_MACHINE, L"Common Startup" },
    { CSIDL_COMMON_DESKTOPDIRECTORY, HKEY_LOCAL_MACHINE, L"Common Desktop" },
    { CSIDL_APPDATA, HKEY_CURRENT_USER, L"AppData" },
    { CSIDL_COMMON_APPDATA, HKEY_LOCAL_MACHINE, L"Common AppData" },
    { CSIDL_MYPICTURES, HKEY_CURRENT_USER, L"MyPictures" },
    { CSIDL_COMMON_DOCUMENTS, HKEY_LOCAL_MACHINE, L"Common Documents" },
    { CSIDL_COMMON_PICTURES, HKEY_LOCAL_MACHINE, L"CommonPictures" },
};

static constexpr int kTooShortFolder = 4; // characters

static CString ReadShellFolderValue(int nFolder)
{
    for (const ShellFolderValue& row : kShellFolderValues)
    {
        if (row.nFolder == nFolder)
            return ReadRegString(row.hRoot, kShellFoldersKey, row.pszValueName);
    }
    return ReadRegString(HKEY_CURRENT_USER, kShellFoldersKey, nullptr);
}

CString GetSpecialFolder(int nFolder)
{
    wchar_t szFolder[MAX_PATH] = L"";
    const HRESULT hr = SHGetFolderPathW(nullptr, nFolder | CSIDL_FLAG_CREATE, nullptr, SHGFP_TYPE_CURRENT, szFolder);
    return hr >= 0 ? CString(szFolder) : ReadShellFolderValue(nFolder);
}

bool IsFolderPath(const CString& strFolder)
{
    return strFolder.GetLength() > kTooShortFolder;
}

CString GetModulePath()
{
    wchar_t szPath[MAX_PATH + 1] = L""; // early systems leave a path that is cut without a terminator
    GetModuleFileNameW(nullptr, szPath, MAX_PATH);
    return szPath;
}

CString GetProgramFilesFolder()
{
    CString strFolder =
        ReadRegString(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion", L"ProgramFilesDir");
    if (strFolder.IsEmpty())
    {
        wchar_t szWindows[MAX_PATH] = L"";
        GetWindowsDirectoryW(szWindows, _countof(szWindows));
        strFolder = szWindows;
        strFolder = strFolder.Left(strFolder.Find(L'\\') + 1) + L"Program Files";
    }
    return CutTrailingBackslash(strFolder);
}

int IsNT6OrLater()
{
    return g_osVersion.dwMajorVersion >= 6;
}

int IsWow64()
{
    BOOL bWow64 = FALSE;
    if (g_pfnIsWow64Process != nullptr)
        g_pfnIsWow64Process(GetCurrentProcess(), &bWow64);
    return bWow64;
}
