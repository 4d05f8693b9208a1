// One install run, from the install switches to its last act.
#pragma once

// Finds the target folder, tells a first installation from a repeated one, makes sure that the package is whole, runs
// the wizard or the install driver, and starts the product or restarts the computer. Returns 0 when the run went to
// its end, 1 when the user turned it down. A damaged package ends the process with exit code 1.
int RunInstall();
