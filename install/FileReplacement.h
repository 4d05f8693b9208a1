// Puts one package file in its place, whatever stands there: a read-only file, a hidden one, one in use.
// The only writer of product files. Nothing is compared: an existing target is always replaced.
#pragma once

// Copies the file of that name in the source folder (it may hold a relative subfolder) into the target folder, under
// the target name if one is given. Folders may end in a separator or not. Non-zero for success, also if both folders
// are the same and no target name is given, which does nothing. A target that can be neither deleted nor renamed is
// marked to go at the boot, and the new file, if it can be copied beside it, waits to take its place. The result is
// then that of a last plain copy, 0 as a rule. Within one folder, a target that can't be deleted is left alone and
// counts as success.
int ReplaceOneFile(const wchar_t* pszName, const wchar_t* pszSourceFolder, const wchar_t* pszTargetFolder,
                   const wchar_t* pszTargetName);
