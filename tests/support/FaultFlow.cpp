// What reaches beyond the machine's files, links and registry (programs, boxes, the restart, the end of the process) is
// replaced; it comes about unless the fault prevents it.
#include "tests/support/FaultFlow.h"

#include <afxwin.h>
#include <shlobj.h>

#include <new>
#include <stdlib.h>

#include "app/RunState.h"
#include "app/StartBindings.h"
#include "foundation/AssocExtensions.h"
#include "tests/support/CallFaults.h"
#include "tests/support/Files.h"
#include "tests/support/PendingList.h"
#include "tests/support/ProgramState.h"
#include "tests/support/RegistryCorner.h"
#include "tests/support/SharedList.h"

#define WINDOWS_KEY L"Software\\Microsoft\\Windows\\CurrentVersion\\"

const BYSTANDER_KEY kBystanderKeys[9] = {
    { HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tandrel\\Other 8" },
    { HKEY_CURRENT_USER, L"SOFTWARE\\Tandrel\\Other 8" },
    { HKEY_USERS, OTHER_HIVE L"\\Software\\Tandrel\\Other 8" },
    { HKEY_LOCAL_MACHINE, WINDOWS_KEY L"App Paths\\Other.exe" },
    { HKEY_LOCAL_MACHINE, WINDOWS_KEY L"Uninstall\\Other 8" },
    { HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes\\Applications\\Other.exe" },
    { HKEY_CLASSES_ROOT, L"Other.8\\shell" },
    { HKEY_LOCAL_MACHINE, L"SOFTWARE\\Mozilla\\NativeMessagingHosts\\other" },
    { HKEY_CURRENT_USER, WINDOWS_KEY L"Explorer\\FileExts\\.other\\UserChoice" },
};

namespace
{

const wchar_t* const kBystanderFiles[] = {
    L"user.txt",
    L"target\\user.txt",
    L"target\\Sub\\user.txt",
    L"package\\a.txt",
    L"package",
    L"all\\Desktop\\Other.lnk",
    L"all\\Programs\\Other\\Other.lnk",
    L"user\\Startup\\Other.lnk",
    L"other\\Startup\\Other.lnk",
};

const char kMine[] = "mine"; // what they hold

const int kRegisteredValues = kAssocExtCount + 18; // the formats, and what the other tables of the registration hold

const char kList[] = "File Del: old.dll\nMake Dir: Sub\nFile Copy: Lumacap8.exe\nFile Copy: a.txt\n"
                     "File Copy: b.txt > c.txt\nFile Copy: Lang\\*.*\nFile Copy x64: x64\\simd.dll\n"
                     "File Copy ind: absent.dll\nFile Copy: busy.txt\n";

// What the stand-ins tell of one run.
struct WORLD
{
    std::wstring strModule;
    std::wstring strLastFolder; // that a removal takes away
    int nValues = 0;            // that were tried
    std::string strActs;
    std::string strBoxes;
    int nExitCode = 0;
    bool bListed = false;    // the list of instances stands
    HANDLE ahEnded[16] = {}; // of programs that have ended, ready to be handed out
    int nEnded = 0;
    decltype(&CoCreateInstance) pfnCreateInstance = nullptr;
    decltype(&GetProcAddress) pfnGetProcAddress = nullptr;
    decltype(&TerminateProcess) pfnTerminate = nullptr;
    decltype(&RegCreateKeyW) pfnCreateKey = nullptr;
    decltype(&RemoveDirectoryW) pfnRemoveDirectory = nullptr;
};
WORLD* s_pWorld;
void* s_aExit[5]; // where exit() goes to. No exception can leave it: the compiler takes it for one that throws none

DWORD WINAPI StandInModuleFileName(HMODULE, LPWSTR psz, DWORD)
{
    return static_cast<DWORD>(wcslen(wcscpy(psz, s_pWorld->strModule.c_str())));
}

BOOL WINAPI StandInCreateProcess(LPCWSTR, LPWSTR pszCommandLine, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL,
                                 DWORD, LPVOID, LPCWSTR, LPSTARTUPINFOW, LPPROCESS_INFORMATION pProcess)
{
    const std::wstring strCommandLine = pszCommandLine;
    const auto has = [&](const wchar_t* psz) { return strCommandLine.find(psz) != std::wstring::npos; };
    s_pWorld->strActs += has(L"regsvr32.exe /s /u") ? 'h'
                         : has(L"regsvr32.exe")     ? 'H'
                         : has(L"-unregonly")       ? 'r'
                         : has(L"-regonly")         ? 'R'
                                                    : 'P';
    pProcess->hProcess = s_pWorld->ahEnded[s_pWorld->nEnded++];
    pProcess->hThread = s_pWorld->ahEnded[s_pWorld->nEnded++];
    return TRUE;
}

BOOL WINAPI StandInTerminateProcess(HANDLE hProcess, UINT nCode)
{
    if (hProcess == GetCurrentProcess())
        return s_pWorld->pfnTerminate(hProcess, nCode);
    s_pWorld->strActs += 'T';
    return TRUE;
}

int WINAPI StandInMessageBox(HWND, LPCWSTR pszText, LPCWSTR, UINT)
{
    const std::wstring strText(pszText, wcscspn(pszText, L"\n"));
    s_pWorld->strBoxes += ": " + std::string(strText.begin(), strText.end());
    return IDOK;
}

HINSTANCE WINAPI StandInShellExecute(HWND, LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR, INT)
{
    s_pWorld->strActs += 'W';
    return reinterpret_cast<HINSTANCE>(42);
}

BOOL WINAPI StandInExitWindows(UINT, DWORD)
{
    s_pWorld->strActs += 'E';
    return TRUE;
}

// A started successor ends the first stage; so does the return.
intptr_t StandInExecute(const wchar_t*, ...)
{
    s_pWorld->strActs += 'X';
    return -1;
}

void StandInExit(int nCode)
{
    s_pWorld->nExitCode = nCode;
    __builtin_longjmp(s_aExit, 1);
}

void WINAPI StandInSleep(DWORD) {}

BOOL WINAPI StandInPostMessage(HWND, UINT, WPARAM, LPARAM)
{
    return TRUE;
}

FARPROC WINAPI StandInGetProcAddress(HMODULE hModule, LPCSTR pszName)
{
    void* pfn = reinterpret_cast<void*>(s_pWorld->pfnGetProcAddress(hModule, pszName));
    return reinterpret_cast<FARPROC>(pfn != nullptr ? CCallFaults::EntryOf(pszName, pfn) : nullptr);
}

// The registration makes the key anew for each of its values.
LSTATUS WINAPI WatchCreateKey(HKEY hRoot, LPCWSTR pszKey, PHKEY phKey)
{
    s_pWorld->nValues++;
    if (wcscmp(pszKey, L"Applications\\Lumacap8.exe\\shell\\open\\command") == 0)
        s_pWorld->strActs += s_pWorld->nValues == kRegisteredValues ? 'K' : 'k';
    return s_pWorld->pfnCreateKey(hRoot, pszKey, phKey);
}

BOOL WINAPI WatchRemoveDirectory(LPCWSTR pszFolder)
{
    if (pszFolder == s_pWorld->strLastFolder)
        s_pWorld->strActs += 'S';
    return s_pWorld->pfnRemoveDirectory(pszFolder);
}

struct METHOD
{
    int nIndex;
    const char* pszName;
};

// Gives the object a table of its own, with entries in front of the methods.
template <size_t nMethods>
void DivertMethods(void* pObject, void* (&table)[32], size_t nTableSize, const METHOD (&methods)[nMethods])
{
    void**& ppTable = *static_cast<void***>(pObject);
    memcpy(table, ppTable, nTableSize * sizeof(void*));
    for (const METHOD& method : methods)
        table[method.nIndex] = CCallFaults::EntryOf(method.pszName, table[method.nIndex]);
    ppTable = table;
}

HRESULT WINAPI StandInCreateInstance(REFCLSID clsid, LPUNKNOWN pOuter, DWORD nContext, REFIID iid, LPVOID* ppv)
{
    const METHOD kLinkMethods[] = { { 0, "IShellLinkW::QueryInterface" },
                                    { 7, "IShellLinkW::SetDescription" },
                                    { 9, "IShellLinkW::SetWorkingDirectory" },
                                    { 20, "IShellLinkW::SetPath" } };
    const METHOD kFileMethods[] = { { 6, "IPersistFile::Save" } };
    static void* s_linkTable[32];
    static void* s_fileTable[32];
    const HRESULT hr = s_pWorld->pfnCreateInstance(clsid, pOuter, nContext, iid, ppv);
    if (FAILED(hr))
        return hr;
    IUnknown* const pLink = static_cast<IUnknown*>(*ppv);
    void* pFile = nullptr;
    pLink->QueryInterface(IID_IPersistFile, &pFile);
    DivertMethods(pFile, s_fileTable, 9, kFileMethods);
    static_cast<IUnknown*>(pFile)->Release();
    DivertMethods(pLink, s_linkTable, 21, kLinkMethods);
    return hr;
}

void PutStandIns(CCallFaults& faults)
{
    const struct
    {
        const char* pszFunction;
        void* pfn;
    } kStandIns[] = {
        { "GetModuleFileNameW", reinterpret_cast<void*>(&StandInModuleFileName) },
        { "CreateProcessW", reinterpret_cast<void*>(&StandInCreateProcess) },
        { "MessageBoxW", reinterpret_cast<void*>(&StandInMessageBox) },
        { "ShellExecuteW", reinterpret_cast<void*>(&StandInShellExecute) },
        { "ExitWindowsEx", reinterpret_cast<void*>(&StandInExitWindows) },
        { "_wexecl", reinterpret_cast<void*>(&StandInExecute) },
        { "exit", reinterpret_cast<void*>(&StandInExit) },
        { "Sleep", reinterpret_cast<void*>(&StandInSleep) },
        { "PostMessageW", reinterpret_cast<void*>(&StandInPostMessage) },
    };
    for (const auto& row : kStandIns)
        faults.Replace(row.pszFunction, row.pfn);
    const auto put = [&](auto method, const char* pszFunction, auto pfn, auto& pfnOriginal)
    {
        void* const pOriginal = (faults.*method)(pszFunction, reinterpret_cast<void*>(pfn));
        pfnOriginal = reinterpret_cast<std::decay_t<decltype(pfnOriginal)>>(pOriginal);
    };
    put(&CCallFaults::Replace, "TerminateProcess", &StandInTerminateProcess, s_pWorld->pfnTerminate);
    put(&CCallFaults::Replace, "GetProcAddress", &StandInGetProcAddress, s_pWorld->pfnGetProcAddress);
    put(&CCallFaults::Replace, "CoCreateInstance", &StandInCreateInstance, s_pWorld->pfnCreateInstance);
    put(&CCallFaults::Precede, "RegCreateKeyW", &WatchCreateKey, s_pWorld->pfnCreateKey);
    put(&CCallFaults::Precede, "RemoveDirectoryW", &WatchRemoveDirectory, s_pWorld->pfnRemoveDirectory);
}

// The folders of the machine and of the users are named like their settings.
void PutFolders(const std::wstring& strFolder)
{
    for (const wchar_t* pszName : { L"Programs", L"Startup", L"Desktop" })
    {
        const std::wstring strName = pszName;
        const std::wstring strKey = WINDOWS_KEY L"Explorer\\User Shell Folders";
        SetKeyText(HKEY_LOCAL_MACHINE, strKey, L"Common " + strName, strFolder + L"\\all\\" + strName);
        SetKeyText(HKEY_CURRENT_USER, strKey, strName, strFolder + L"\\user\\" + strName);
        SetKeyText(HKEY_USERS, OTHER_HIVE L"\\" WINDOWS_KEY L"Explorer\\Shell Folders", strName,
                   strFolder + L"\\other\\" + strName);
    }
    SetKeyText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion", L"ProgramFilesDir",
               strFolder + L"\\Program Files");
    for (const wchar_t* pszFolder : { L"all\\Startup", L"all\\Desktop", L"user\\Programs", L"temp" })
        MakeFolder(strFolder + L"\\" + pszFolder);
    SetEnvironmentVariableW(L"TMP", (strFolder + L"\\temp").c_str());
}

void PutProduct(const std::wstring& strFolder)
{
    const auto at = [&](const wchar_t* pszPath) { return strFolder + L"\\" + pszPath; };
    const std::wstring strProgram = strFolder.substr(0, strFolder.rfind(L'\\')) + L"\\Lumacap8.exe";
    CopyOneFile(strProgram, at(L"package\\Lumacap8.exe"));
    CopyOneFile(strProgram, at(L"target\\Lumacap8.exe"));
    for (const wchar_t* pszRoot : { L"package\\", L"target\\" })
        for (const wchar_t* pszName : { L"a.txt", L"b.txt", L"busy.txt", L"Lang\\a.txt", L"Lang\\b.txt" })
            WriteBytes(at(pszRoot) + pszName, "x");
    for (const wchar_t* pszName : { L"package\\absent.dll", L"target\\old.dll", L"target\\LumUnInst.exe",
                                    L"all\\Programs\\Lumacap 8\\Lumacap 8.lnk", L"user\\Programs\\Lumacap 8\\x.lnk",
                                    L"other\\Programs\\Lumacap 8\\x.lnk" })
        WriteBytes(at(pszName), "x");
    SetAttributes(at(L"target\\old.dll"), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    WriteBytes(at(L"package\\LumUnInst.log"), kList);
    const std::wstring strGroup = at(L"all\\Programs\\Lumacap 8");
    const std::wstring strLog = L"Made Dir: " + strGroup + L"\nShell Link: " + strGroup + L"\\Lumacap 8.lnk\n";
    WriteBytes(at(L"target\\LumUnInst.log"), kList + std::string(strLog.begin(), strLog.end()));
    WriteBytes(at(L"target\\install.log"), "Make Dir: Sub\n");

    SetKeyText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tandrel\\Lumacap 8", L"Path", at(L"target"));
    SetKeyText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Tandrel\\Lumacap 8", L"AllUsers", L"B");
    MakeKey(HKEY_CLASSES_ROOT, L"Lumacap.8\\shell\\open\\command");
    SetKeyText(HKEY_CURRENT_USER, WINDOWS_KEY L"Explorer\\FileExts\\.bmp\\UserChoice", L"Progid",
               L"Applications\\Lumacap8.exe");
    SetKeyText(HKEY_CURRENT_USER, WINDOWS_KEY L"Explorer\\FileExts\\.bmp", L"Application", L"Lumacap8.exe");
    SetKeyText(HKEY_CURRENT_USER, WINDOWS_KEY L"Explorer\\FileExts\\.bmp", L"LumacapOld", L"other");
}

void PutBystanders(const std::wstring& strFolder)
{
    for (const wchar_t* pszFile : kBystanderFiles)
        if (wcschr(pszFile, L'.') != nullptr)
            WriteBytes(strFolder + L"\\" + pszFile, kMine);
    for (const BYSTANDER_KEY& key : kBystanderKeys)
        SetKeyText(key.hRoot, key.pszKey, L"", L"mine");
}

std::string LostBystanders(Flow flow, const std::wstring& strFolder)
{
    std::wstring strLost;
    const std::string strProfile = PendingProfile();
    std::wstring strWaiting(strProfile.begin(), strProfile.end());
    for (const PENDING& entry : PendingEntries())
        strWaiting += entry.strSource + L"\n";
    for (size_t n = 0; (n = strWaiting.find(L"\\\\", n)) != std::wstring::npos;)
        strWaiting.erase(n, 1); // some of the program's paths have two separators in a row
    for (const wchar_t* pszFile : kBystanderFiles)
    {
        const std::wstring strPath = strFolder + L"\\" + pszFile;
        const bool bFile = wcschr(pszFile, L'.') != nullptr;
        if (!IsThere(strPath) || (bFile && ReadBytes(strPath) != kMine))
            strLost += L" lost " + std::wstring(pszFile);
        else if (bFile && strWaiting.find(strPath) != std::wstring::npos)
            strLost += L" lost at the restart " + std::wstring(pszFile);
    }
    for (const BYSTANDER_KEY& key : kBystanderKeys)
        if (KeyText(key.hRoot, key.pszKey, L"") != L"mine")
            strLost += L" lost " + std::wstring(key.pszKey);
    // Until the second stage runs nothing has gone.
    for (const wchar_t* pszFile : { L"target\\LumUnInst.exe", L"target\\old.dll", L"target\\LumUnInst.log" })
        if (flow == FLOW_RELAUNCH && !IsThere(strFolder + L"\\" + pszFile))
            strLost += L" lost " + std::wstring(pszFile);
    return std::string(strLost.begin(), strLost.end());
}

// From the start of the process on.
std::string RunProgram()
{
    try
    {
        new (&g_InstanceManager) COXInstanceManager(L"Tandrel.Lumacap-DX.v4", 1024, true);
        s_pWorld->bListed = true;
        ReadOsVersion(&g_osVersion);
        BindDynamicApis();
        BindLibraryApi();
        AfxWinInit(AfxGetModuleState()->m_hCurrentInstanceHandle, nullptr, nullptr, SW_SHOWNORMAL);
        return std::to_string(theApp.InitInstance());
    }
    catch (...)
    {
        return "exception";
    }
}

std::string RunToItsEnd()
{
    static std::string s_strCode; // what lives on the stack is lost with an exit
    if (__builtin_setjmp(s_aExit) == 0)
        s_strCode = RunProgram();
    else
        s_strCode = std::to_string(s_pWorld->nExitCode);
    if (s_pWorld->bListed)
        g_InstanceManager.~COXInstanceManager();
    return s_strCode;
}

} // namespace

std::string RunFlow(Flow flow, const FAULT* pFault, const FAULT* pWith, int nUses, const std::wstring& strFolder,
                    DWORD nListed)
{
    CRegistryCorner registry;
    registry.ClearProduct();
    MakeFolder(strFolder);
    PutFolders(strFolder);
    PutProduct(strFolder);
    PutBystanders(strFolder);
    ClearPending();
    SetCurrentDirectoryW(strFolder.c_str());
    ResetProgramState();
    AfxGetModuleState()->m_hCurrentInstanceHandle = GetModuleHandleW(nullptr);
    const CFileHold hold(strFolder + L"\\target\\busy.txt", FILE_SHARE_READ);

    const std::wstring strUninstaller = strFolder + L"\\target\\LumUnInst.exe";
    const CArguments arguments(
        flow == FLOW_INSTALL    ? std::vector<std::wstring>{ L"setup.exe", L"-install", L"-s", L"-runafter" }
        : flow == FLOW_RELAUNCH ? std::vector<std::wstring>{ L"LumUnInst.exe", L"-s" }
                                : std::vector<std::wstring>{ L"uni1.tmp", L"-delself", strUninstaller, L"-s" });
    WORLD world;
    world.strModule = flow == FLOW_INSTALL    ? strFolder + L"\\package\\setup.exe"
                      : flow == FLOW_RELAUNCH ? strUninstaller
                                              : strFolder + L"\\temp\\uni1.tmp";
    world.strLastFolder = strFolder + L"\\other\\Programs\\Lumacap 8\\";
    for (HANDLE& hEnded : world.ahEnded)
        hEnded = CreateEventW(nullptr, TRUE, TRUE, nullptr);
    s_pWorld = &world;

    g_InstanceManager.~COXInstanceManager();
    const CProductList list({ nListed });
    std::string strCode;
    {
        CCallFaults faults;
        PutStandIns(faults);
        if (pFault != nullptr)
            faults.Fail(pFault->pszFunction, nUses, pFault->nResult, pFault->nError);
        if (pWith != nullptr)
            faults.Fail(pWith->pszFunction, kEveryUse, pWith->nResult, pWith->nError);
        strCode = RunToItsEnd();
    }
    new (&g_InstanceManager) COXInstanceManager(L"Lumacap.Tests", 1024, true);
    _fcloseall(); // what a failed close has left open
    SetCurrentDirectoryW(L"C:\\");
    return strCode + " " + world.strActs + world.strBoxes + LostBystanders(flow, strFolder);
}
