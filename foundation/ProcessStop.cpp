#include "foundation/ProcessStop.h"

#include <afx.h>

void StopProcess()
{
    // Not abort(): that may show a box of the runtime's first.
    const DWORD dwStackBufferOverrun = 0xC0000409;
    TerminateProcess(GetCurrentProcess(), dwStackBufferOverrun);
    // The caller counts on never going on, also if the system is slow with the end or refuses it.
    for (;;)
        Sleep(INFINITE);
}
