// Tells the system about the product: where it is, how to open images with it, how to remove it.
#pragma once

// Writes the product's registry values for the folder, kind and version of the run state, and starts the registration
// of the thumbnail handler. The same keys and values for every kind but for the data of "AllUsers", and all for the
// machine; earlier ones are written over. A write that fails is ignored, and the next one is tried.
void RegisterWithSystem();
