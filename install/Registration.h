// Tells the system about the product: where it is, how to open images with it, how to remove it.
#pragma once

// Writes the product's registry values for the folder, kind and version of the run state, and starts the registration
// of the thumbnail handler. Every kind gets the same, but for the data of "AllUsers"; all goes to the machine's keys,
// over what stands there. A write that fails is ignored, and the next one is tried.
void RegisterWithSystem();
