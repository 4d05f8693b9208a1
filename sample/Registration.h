// What the product itself keeps in the registry: its document class, its browser host, its settings and the notes on
// associations that it took over. The rest is written by the setup program.
#pragma once

// Writes everything. A value that can't be written is left out.
void RegisterProduct();

// Takes back a part only; the uninstaller knows the other keys by name and has to remove them itself.
void UnregisterProduct();
