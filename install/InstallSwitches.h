// The switches of an install.
#pragma once

// Scans all arguments and sets the run state by them. A folder among them, its closing quote and separator cut off,
// becomes g_strInstDir; without a folder that stays. Other arguments are ignored.
void ScanInstallSwitches();
