// Takes the product out of what the current user's shell has recorded for the product's image formats.
#pragma once

// Looks at all formats first, then repairs each that pointed at the product: from Windows Vista on by removing the
// user's choice, before it by putting back what stood there before the product. The shell is told if anything changed.
void RepairFileAssociations();
