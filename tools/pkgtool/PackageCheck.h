// All that the engine would silently do wrong with a package.
#pragma once

#include "tools/pkgtool/PlannedInstall.h"

// Adds the findings of the list's lines, of planned installs and removals of each kind, and of the package's files. Of
// a list that isn't 8-bit text by lines it adds just that.
void CheckPackage(const Package& package, CFindings& findings);
