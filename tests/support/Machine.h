// Settings of the machine under test: its Windows version, its special folders, its restart.
#pragma once

#include <windows.h>

#include <string>

#include "tests/support/RegistryCorner.h"

// Programs started during the object's life run on that Windows: "winxp64" (5.2), "vista" (6.0), "win7" (6.1),
// "win8" (6.2), "win81" (6.3), "win10" (10.0). This process keeps its own.
class CWindowsVersion
{
public:
    explicit CWindowsVersion(const wchar_t* pszVersion);

private:
    CRegistryCorner m_registry;
};

// Moves a special folder for the object's life, for this process too. hRoot is HKEY_CURRENT_USER ("Desktop",
// "Programs", "Startup") or HKEY_LOCAL_MACHINE ("Common Desktop", "Common Programs", "Common Startup"). A folder below
// a file makes the platform's look-up fail.
class CFolderRedirection
{
public:
    CFolderRedirection(HKEY hRoot, const wchar_t* pszName, const std::wstring& strFolder);

private:
    CRegistryCorner m_registry;
};

// What the start of the machine does with its boot list, done now. Nothing else restarts.
void RestartMachine();
