// The abnormal end of the process.
#pragma once

// Ends the process at once, with no message and no clean-up: what a failed range test gives, and an exception that
// nothing catches.
[[noreturn]] void StopProcess();
