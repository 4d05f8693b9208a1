// A plan for people: what an install would create, file by file, and what its removal would leave.
#pragma once

#include "tools/pkgtool/PlannedInstall.h"

// Prints the plan of one kind. The machine and the package are only read.
void PrintPlan(const Package& package, InstallKind nKind);
