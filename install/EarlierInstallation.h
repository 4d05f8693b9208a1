// What an earlier installation left on the machine: its folder, its kind, its program group, its auto-start choice.
#pragma once

#include <afx.h>

// The folder of the earlier installation by the registry, without a trailing backslash; empty if there is none.
CString FindInstalledFolder();

// Sets g_nInstallKind to the earlier one's, unless this one is portable. An earlier one without a trace counts as the
// current user's.
void TakeOverKind();

// Sets g_strGroup to the group of the last link in the Programs folder that the log in g_strInstDir names, outside
// the Startup folder. Without such a link the group stays as it is.
void TakeOverGroup();

// Sets g_bAutoStart to whether the product's link stands in a Startup folder, of the machine or of the user.
void TakeOverAutoStart();
