#include "foundation/SystemTools.h"

#include <tlhelp32.h>
#include <time.h>
#include <wchar.h>

#include "app/RunState.h"
#include "foundation/BoundFunction.h"
#include "foundation/BoundedText.h"
#include "foundation/DiskFiles.h"
#include "foundation/Owners.h"

static constexpr wchar_t kDefaultExtension[] = L"TMP";
static constexpr wchar_t kDefaultPrefix[] = L"LUM";
static constexpr unsigned int kCounterMask = 0xFFFFFFF;
static constexpr size_t kFolderCapacity = 261;

using ModuleFileNameFunction = DWORD(WINAPI*)(HANDLE, HMODULE, LPWSTR, DWORD);

// Fills the buffer with the wanted folder if it is there, else with the temporary one, without a separator at its end.
static void ChooseTempFolder(wchar_t (&szFolder)[kFolderCapacity], const wchar_t* pszWanted)
{
    szFolder[0] = 0;
    if (pszWanted != nullptr && PathExists(pszWanted))
        CopyBounded(szFolder, pszWanted);
    else
        GetTempPathW(MAX_PATH, szFolder); // a character less than a wanted folder may have

    const size_t cch = wcslen(szFolder);
    if (cch != 0 && (szFolder[cch - 1] == L'\\' || szFolder[cch - 1] == L'/'))
        szFolder[cch - 1] = 0;
    for (wchar_t* pch = szFolder; *pch != 0; ++pch)
    {
        if (*pch == L'/')
            *pch = L'\\';
    }
}

// 0 when the current process isn't in the system's list or its entry names no parent.
static DWORD FindParentId(HANDLE hSnapshot)
{
    const DWORD dwSelf = GetCurrentProcessId();
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof(entry);
    for (BOOL bEntry = Process32FirstW(hSnapshot, &entry); bEntry; bEntry = Process32NextW(hSnapshot, &entry))
    {
        if (entry.th32ProcessID == dwSelf && entry.th32ParentProcessID != 0)
            return entry.th32ParentProcessID;
    }
    return 0;
}

// Systems before Windows 7 have the function in a library of its own, which is loaded into the owner then. Null if it
// is nowhere.
static ModuleFileNameFunction BindModuleFileName(CLibraryOwner& psapi)
{
    HMODULE hKernel = GetModuleHandleW(L"Kernel32.DLL");
    if (hKernel == nullptr)
        hKernel = LoadLibraryW(L"Kernel32.DLL");
    if (hKernel == nullptr)
        return nullptr;
    const ModuleFileNameFunction pfnModuleFileName =
        FindFunction<ModuleFileNameFunction>(hKernel, "K32GetModuleFileNameExW");
    if (pfnModuleFileName != nullptr)
        return pfnModuleFileName;

    *psapi.Receive() = LoadLibraryW(L"Psapi.dll");
    return psapi.IsOpen() ? FindFunction<ModuleFileNameFunction>(psapi, "GetModuleFileNameExW") : nullptr;
}

static void ReadProgramPath(DWORD dwProcess, wchar_t* pszPath, DWORD cchCapacity)
{
    CLibraryOwner psapi;
    const ModuleFileNameFunction pfnModuleFileName = BindModuleFileName(psapi);
    if (pfnModuleFileName == nullptr)
        return;
    CHandleOwner process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, dwProcess));
    if (process.IsOpen())
        pfnModuleFileName(process, nullptr, pszPath, cchCapacity);
}

int CopyTextToClipboard(const wchar_t* pszText)
{
    if (!OpenClipboard(nullptr))
        return 0;
    EmptyClipboard();
    // Neither the block nor its address is tested: there is no answer to a system out of memory here.
    const size_t cch = wcslen(pszText) + 1;
    const HGLOBAL hBlock = GlobalAlloc(GMEM_MOVEABLE | GMEM_DDESHARE, cch * sizeof(wchar_t));
    wmemcpy(static_cast<wchar_t*>(GlobalLock(hBlock)), pszText, cch);
    GlobalUnlock(hBlock);
    const HANDLE hTaken = SetClipboardData(CF_UNICODETEXT, hBlock);
    CloseClipboard();
    return hTaken != nullptr;
}

int IsWow64Of(HANDLE hProcess)
{
    BOOL bWow64 = FALSE;
    if (g_pfnIsWow64ProcessOf != nullptr)
        g_pfnIsWow64ProcessOf(hProcess != nullptr ? hProcess : GetCurrentProcess(), &bWow64);
    return bWow64;
}

CString MakeTempName(const wchar_t* pszExtension, const wchar_t* pszPrefix, const wchar_t* pszFolder)
{
    if (pszExtension == nullptr)
        pszExtension = kDefaultExtension;
    if (*pszExtension == L'.')
        ++pszExtension;
    wchar_t szFolder[kFolderCapacity];
    ChooseTempFolder(szFolder, pszFolder);
    if (pszPrefix == nullptr)
        pszPrefix = kDefaultPrefix;

    unsigned int nCounter = static_cast<unsigned int>(_time64(nullptr)) & kCounterMask;
    CString strName;
    do
        strName.Format(L"%s\\%s%X.%s", szFolder, pszPrefix, nCounter++, pszExtension);
    while (PathExists(strName));
    return strName;
}

DWORD GetParentProcess(wchar_t* pszPath, DWORD cchCapacity)
{
    // Never closed, on purpose: the handle stays with the process.
    const HANDLE hSnapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (hSnapshot == INVALID_HANDLE_VALUE)
        return 0;
    const DWORD dwParent = FindParentId(hSnapshot);
    if (pszPath != nullptr && cchCapacity != 0)
        ReadProgramPath(dwParent, pszPath, cchCapacity);
    return dwParent;
}
