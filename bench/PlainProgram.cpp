// The plain counterpart of setup.exe and LumUnInst.exe as a process: `plain copy FROM TO FILES`, `plain remove FOLDER
// FILES`; and of a comparison: `plain read FOLDER FOLDER FILES`. A windowed program, as they are.
#include <windows.h>

#include <stdlib.h>
#include <wchar.h>

#include "bench/PlainWork.h"

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    if (__argc == 5 && wcscmp(__wargv[1], L"copy") == 0)
        PlainCopy(__wargv[2], __wargv[3], 0, _wtoi(__wargv[4]));
    else if (__argc == 4 && wcscmp(__wargv[1], L"remove") == 0)
    {
        PlainRemove(__wargv[2], 0, _wtoi(__wargv[3]));
        RemoveDirectoryW(__wargv[2]);
    }
    else if (__argc == 5 && wcscmp(__wargv[1], L"read") == 0)
        return PlainRead(__wargv[2], __wargv[3], _wtoi(__wargv[4])) ? 0 : 1;
    else
        return 1;
    return 0;
}
