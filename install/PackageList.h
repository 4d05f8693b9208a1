// The package's file list as an install reads it: each line does what its record says, at the place where it stands.
#pragma once

// Walks the list and copies the package from g_strSourceDir to g_strInstDir, under the conditions of the records and
// of g_nInstallKind. A failed record leaves no trace, and the next line is taken. A list that can't be opened does
// nothing.
void ProcessPackageList(const wchar_t* pszList);

// Copies all matches of a mask, which may hold a relative subfolder, and makes the folders that this needs; without a
// match none is made. Stops at the first file that fails. Returns the number of files copied.
int CopyMatchingFiles(const wchar_t* pszMask, const wchar_t* pszSourceFolder, const wchar_t* pszTargetFolder);
