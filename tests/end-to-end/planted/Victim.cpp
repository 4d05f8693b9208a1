// A careless program: it loads libraries by their bare names, which it is given, and so takes those beside it, and asks
// them for a version. Without a name it is innocent, and loads just what the platform needs for any windowed program.
#include <afx.h>

#include <stdlib.h>

#include "foundation/BoundFunction.h"

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    for (int i = 1; i < __argc; ++i)
        FindFunction<decltype(&GetFileVersionInfoSizeW)>(LoadLibraryW(__wargv[i]), "GetFileVersionInfoSizeW")(L"x",
                                                                                                              nullptr);
    return GetDesktopWindow() == nullptr;
}
