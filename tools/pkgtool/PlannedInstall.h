// What an install of a package would make, told without making it: the engine's steps over the package's real files and
// a planned machine. A first installation in its usual way: the target isn't there, the group has its default name,
// the desktop link is wanted and the startup link isn't. Of the machine's libraries it is taken that none is there.
#pragma once

#include <map>
#include <set>

#include "app/RunState.h"
#include "tools/pkgtool/CheckedList.h"
#include "tools/pkgtool/FileTree.h"
#include "tools/pkgtool/Findings.h"

// The places of the group and of the desktop link, by kind; a portable install has none.
const wchar_t* ProgramsPlace(InstallKind nKind);
const wchar_t* DesktopPlace(InstallKind nKind);

// True for a folder of the disk.
bool IsRealFolder(const wchar_t* pszPath);

struct Package
{
    CString strFolder;
    CheckedList list;
};

struct Plan
{
    InstallKind nKind;
    CFileTree tree;
    std::set<CString> named; // the package's files that a record met, folded whole paths
    CFindings& findings;
    std::map<CString, std::map<CString, WIN32_FIND_DATAW>> folders = {}; // of the package, read once; names folded
};

// Carries the install out on the plan's tree, and notes what goes wrong with each record.
void PlanInstall(const Package& package, Plan& plan);
