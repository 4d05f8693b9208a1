// The corner's folders have short paths, so that long relative ones fit below them.
#include "tests/support/World.h"

#include <filesystem>
#include <stdlib.h>
#include <tuple>

#include "app/RunState.h"
#include "app/StartBindings.h"
#include "foundation/AssocExtensions.h"

// What tests and the programs under test may leave.
static const std::pair<HKEY, const wchar_t*> kLeavings[] = {
    { kMachine, L"Tandrel|Mozilla|RegisteredApplications|Microsoft\\Windows\\CurrentVersion\\Uninstall\\Lumacap 8|"
                L"Microsoft\\Windows\\CurrentVersion\\App Paths\\Lumacap8.exe|Classes\\LC8.Document|Classes\\.lcp|"
                L"Classes\\Lumacap.8|Classes\\Applications\\Lumacap8.exe|"
                L"Classes\\CLSID\\{6B0F4C52-9D3E-4A71-8C25-1E7A90D4B3F6}" }, // the sample's thumbnail handler
    { kUser, L"Tandrel|Mozilla|Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts|"
             L"Classes\\Applications\\Lumacap8.exe" },
};

void World::SetUp()
{
    SetCurrentDirectoryW(L"C:\\");
    RemoveTree(m_strFolder);
    RemoveTree(L"C:\\Program Files\\Lumacap 8");
    for (const auto& [hRoot, pszKeys] : kLeavings)
        for (const std::wstring& strKey : Split(pszKeys, L'|'))
            RemoveKey(hRoot, L"SOFTWARE\\" + strKey);
    for (const wchar_t* pszUser : { L"1001", L"1002" }) // logged on by tests
        RemoveKey(HKEY_USERS, std::wstring(L"S-1-5-21-7-7-7-") + pszUser);
    for (const auto& [hRoot, strPrefix, strUsers] :
         { std::make_tuple(kMachine, L"Common ", L"all\\"), std::make_tuple(kUser, L"", L"user\\") })
        for (const wchar_t* pszPath : { L"Desktop", L"Programs", L"Programs\\Startup" })
        {
            const std::wstring strPath = pszPath;
            MakeFolder(At(strUsers + strPath));
            MoveFolder(hRoot, strPrefix + strPath.substr(strPath.rfind(L'\\') + 1), At(strUsers + strPath));
        }
    SetKeyText(kMachine, kWindows, L"ProgramFilesDir", At(L"Program Files"));
    MakeFolder(At(L"temp"));
    SetEnvironmentVariableW(L"TMP", At(L"temp").c_str());
    SetWindowsVersion(L"win7");
    ClearPending();
    ResetProgramState();
}

void World::Make(const std::wstring& strPaths, const std::string& strBytes) const
{
    for (const std::wstring& strPath : Split(strPaths, L'|'))
        strPath.back() == L'\\' ? MakeFolder(At(strPath)) : WriteBytes(At(strPath), strBytes);
}

std::wstring World::Pending(const std::wstring& strBelow) const
{
    const std::wstring strFolder = strBelow.empty() ? m_strFolder : At(strBelow);
    return Replaced(Replaced(Join(PendingEntries(), L" "), strFolder + L"\\", L""), strFolder, L".");
}

void World::PutPackage() const
{
    std::filesystem::copy(BuildFolder() + L"\\package", At(L"package"), std::filesystem::copy_options::recursive);
}

void ResetProgramState()
{
    static const RTL_OSVERSIONINFOEXW osVersion = g_osVersion;
    static const std::vector<AssocExtension> extensions(g_aAssocExts, g_aAssocExts + kAssocExtCount);
    g_nSilent = SILENT_ON;
    g_nInstallKind = KIND_ALL_USERS;
    g_bDeskIcon = 1;
    for (int* pFlag :
         { &g_bFreshInstall, &g_bUpgrade, &g_bRunAfter, &g_bAutoStart, &g_bRebootNeeded, &g_bSettingsCopied })
        *pFlag = 0;
    for (unsigned int* pPart : { &g_nVerMajor, &g_nVerMinor, &g_nVerFix, &g_nVerBuild })
        *pPart = 0;
    for (CString* pText :
         { &g_strInstDir, &g_strSourceDir, &g_strGroup, &g_strSfxName, &g_strNextText, &g_strCancelText })
        pText->Empty();
    for (int i = 0; i < kAssocExtCount; i++)
        g_aAssocExts[i].nFlag = extensions[i].nFlag;
    theApp.m_pMainWnd = nullptr;
    g_InstanceManager.ResetInstanceList();
    g_InstanceManager.AddInstance(GetCurrentProcessId());
    g_osVersion = osVersion;
    BindDynamicApis();
    BindLibraryApi();
}

CArguments::CArguments(TEXTS arguments)
    : m_arguments(std::move(arguments)), m_nEarlierCount(__argc), m_ppszEarlier(__wargv),
      m_calls({ { "GetModuleFileNameW", [this](CALL& call)
                  { return wcslen(wcscpy(reinterpret_cast<wchar_t*>(call.args[1]), m_arguments[0].c_str())); } } })
{
    for (std::wstring& strArgument : m_arguments)
        m_pointers.push_back(&strArgument[0]);
    m_pointers.push_back(nullptr);
    __argc = static_cast<int>(m_arguments.size());
    __wargv = m_pointers.data();
}

CArguments::~CArguments()
{
    __argc = m_nEarlierCount;
    __wargv = m_ppszEarlier;
}
