// Takes the product out of what the current user's shell has recorded for the product's image formats.
#pragma once

// Looks at all formats first. From Windows Vista on, the user's choice is then removed where it is the product, and
// what the product saved beside the formats is removed everywhere. On earlier systems both is done only where the
// association is the product's, and what stood there before it is put back. The shell is told if an association
// changed.
void RepairFileAssociations();
