// The folders are moved by the settings that the shell itself reads, so that programs under test find them moved too.
#include "tests/support/InstallCorner.h"

#include <algorithm>

static const wchar_t kWindowsKey[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion";

CLaunchRecorder::CLaunchRecorder() : m_hook("KERNEL32.dll", "CreateProcessW", &CreateProcessW)
{
    m_hook.Replace(
        [this](LPCWSTR pszProgram, LPWSTR pszCommandLine, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL bInherit,
               DWORD, LPVOID, LPCWSTR pszFolder, LPSTARTUPINFOW, LPPROCESS_INFORMATION)
        {
            EXPECT_TRUE(pszProgram == nullptr && !bInherit);
            launches.push_back(pszCommandLine + std::wstring(L" in ") + (pszFolder != nullptr ? pszFolder : L"none"));
            return TRUE;
        });
}

InstallCorner::InstallCorner()
    : m_strProgramFiles(KeyText(HKEY_LOCAL_MACHINE, kWindowsKey, L"ProgramFilesDir")), m_folders{
          { HKEY_LOCAL_MACHINE, L"Common Programs", OfAll(L"Programs") },
          { HKEY_LOCAL_MACHINE, L"Common Startup", OfAll(L"Programs\\Startup") },
          { HKEY_LOCAL_MACHINE, L"Common Desktop", OfAll(L"Desktop") },
          { HKEY_CURRENT_USER, L"Programs", OfUser(L"Programs") },
          { HKEY_CURRENT_USER, L"Startup", OfUser(L"Programs\\Startup") },
          { HKEY_CURRENT_USER, L"Desktop", OfUser(L"Desktop") }
      }
{
    EmptyFolders();
    m_registry.ClearProduct();
    MoveProgramFiles(At(L"Program Files").c_str());
}

InstallCorner::~InstallCorner()
{
    MoveProgramFiles(m_strProgramFiles.c_str());
}

void InstallCorner::MoveProgramFiles(const wchar_t* pszFolder)
{
    if (pszFolder != nullptr)
        SetKeyText(HKEY_LOCAL_MACHINE, kWindowsKey, L"ProgramFilesDir", pszFolder);
    else
        RemoveValue(HKEY_LOCAL_MACHINE, kWindowsKey, L"ProgramFilesDir");
}

void InstallCorner::EmptyFolders() const
{
    for (const wchar_t* pszRoot : { L"all", L"user" })
    {
        RemoveTree(At(pszRoot));
        MakeFolder(At(pszRoot) + L"\\Programs\\Startup");
        MakeFolder(At(pszRoot) + L"\\Desktop");
    }
}

std::wstring InstallCorner::Links() const
{
    std::vector<std::wstring> links;
    for (const std::wstring& strPath : ListTree(Folder()))
        if (strPath.find(L".lnk") != std::wstring::npos)
            links.push_back(strPath);
    return Join(links);
}

std::string InstallCorner::LogOf(const std::string& strList, const std::wstring& strGroup,
                                 const std::wstring& strLinks) const
{
    std::wstring strLog = L"\r\nMade Dir: " + At(strGroup) + L"\r\n";
    for (const std::wstring& strLink : Split(strLinks, L'|'))
        strLog += L"Shell Link: " + At(strLink) + L"\r\n";
    return strList + Bytes(strLog);
}

std::wstring Join(const std::vector<std::wstring>& texts)
{
    std::wstring strJoined;
    for (const std::wstring& strText : texts)
        strJoined += (strJoined.empty() ? L"" : L"|") + strText;
    return strJoined;
}

std::vector<std::wstring> Split(const std::wstring& strText, wchar_t chSeparator)
{
    std::vector<std::wstring> parts;
    for (size_t nStart = 0, nEnd = 0; !strText.empty() && nEnd != std::wstring::npos; nStart = nEnd + 1)
    {
        nEnd = strText.find(chSeparator, nStart);
        parts.push_back(strText.substr(nStart, nEnd == std::wstring::npos ? nEnd : nEnd - nStart));
    }
    return parts;
}
