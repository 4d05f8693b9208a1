// The abnormal end of the process.
#pragma once

// Ends the process at once, with no message and no clean-up. Over-long texts and uncaught exceptions end in it.
[[noreturn]] void StopProcess();
