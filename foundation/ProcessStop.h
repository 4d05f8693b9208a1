// The abnormal end of the process.
#pragma once

// Ends the process at once, with no message and no clean-up. A text too long to be copied, a full boot list and an
// uncaught exception end in it.
[[noreturn]] void StopProcess();
