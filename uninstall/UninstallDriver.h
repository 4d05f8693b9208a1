// The fixed sequence that takes the product off the machine. Every step is attempted; one that fails leaves what it
// should have taken, and the next one follows. Nothing is undone and nothing reported.
#pragma once

// Removes the product from its folder, given with a backslash at its end.
void RunUninstall(const wchar_t* pszFolder);
