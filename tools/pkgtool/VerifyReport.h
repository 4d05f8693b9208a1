// What a verification tells: a line for each difference and one that sums up, for people or as JSON.
#pragma once

#include "tools/pkgtool/PlannedInstall.h"

// Verifies the installation of the package, or its removal. The folder is empty for the registered installation. Gives
// the exit code.
int ReportVerification(const Package& package, const CString& strFolder, bool bRemoved, bool bJson);
