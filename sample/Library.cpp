// A library that loads and does nothing else. The package holds it under the name of every library whose content
// doesn't matter to the setup program.

extern "C" __declspec(dllexport) int LumacapLibraryLevel()
{
    return 8;
}
