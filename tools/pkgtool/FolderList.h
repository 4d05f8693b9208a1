// The list of a product's folder, made of what lies there.
#pragma once

#include <afx.h>

// Writes FOLDER\LumUnInst.log: a record for each file, the folders in an order that serves install and removal, and the
// uninstaller, for which setup.exe stands in where the folder has none. Of a list that stands the records are kept that
// only a person can decide. Tells what can't be said in a list, and then writes nothing. Gives the exit code.
int WriteFolderList(const wchar_t* pszFolder, bool bAnew);
