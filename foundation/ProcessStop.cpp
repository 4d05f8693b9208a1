#include "foundation/ProcessStop.h"

#include <afx.h>

void StopProcess()
{
    // Not abort(): that may show a box of the runtime's first.
    const DWORD dwStackBufferOverrun = 0xC0000409;
    TerminateProcess(GetCurrentProcess(), dwStackBufferOverrun);
    for (;;)
        Sleep(INFINITE);
}
