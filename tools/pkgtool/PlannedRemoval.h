// What a removal would take of a planned installation, and what the next start of the machine would take after it.
#pragma once

#include "tools/pkgtool/PlannedInstall.h"

// Carries the removal out on the plan's tree, and notes which records it doesn't do justice to. What waits for the next
// start of the machine, from the install or the removal, is on the tree's boot list afterwards.
void PlanRemoval(const Package& package, Plan& plan);
