// All the work of an install, in its order: the cleaning of an earlier installation, the package's files, the program
// group, the links, the registry, ready-made settings, the product's own first run.
#pragma once

// Installs by the choices of the run state. Always 0: no step stops the driver, nothing is rolled back, and nothing is
// reported but what CreateShellLink tells.
int PerformInstall();
