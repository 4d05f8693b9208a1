// A careless program: it loads libraries by their bare names, which it is given, and so takes those beside it.
#include <windows.h>

#include <stdlib.h>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    for (int i = 1; i < __argc; ++i)
        LoadLibraryW(__wargv[i]);
    return 0;
}
