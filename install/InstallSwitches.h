// The switches of an install.
#pragma once

// Sets the run state by the arguments, all of them scanned. A folder among them, less the quote and the separator that
// it may end in, becomes g_strInstDir; without one that stays as it is. Other arguments are ignored.
void ScanInstallSwitches();
