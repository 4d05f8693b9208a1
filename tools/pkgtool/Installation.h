// What the machine tells of an installation. It is only read: where the engine makes what it looks for, or tries
// whether it can write, this doesn't.
#pragma once

#include <afx.h>

#include "install/RegisteredValues.h"

// From the drive's root on, without dots and with backslashes; empty if that would be too long.
CString FullPath(const CString& strPath);

// Sets g_strInstDir and g_nInstallKind, and g_osVersion beside them, to the portable installation in the folder or,
// without a folder, to the registered one. False if none is registered.
bool FindInstallation(const CString& strFolder);

// The path of a shell folder by its CSIDL number; empty if there is none. None is made, unlike by GetSpecialFolder.
CString FindShellFolder(int nFolder);

// The path that a link leads to; empty if the file can't be read as a link.
CString ReadLinkTarget(const wchar_t* pszLink);

// The value as it stands; false if there is none.
bool ReadValue(const RegisteredValue& value, CString& strText);
