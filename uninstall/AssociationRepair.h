// Takes the product out of what the current user's shell has recorded for the product's image formats.
#pragma once

// Looks at all formats first. From Windows Vista on, the user's choice is then removed where it is the product, and
// what the product saved beside the formats is removed everywhere. On earlier systems an association that is the
// product's gives way to what was saved, or goes if nothing was; the saved text goes too. Any other stays, with what is
// saved beside it. The shell is told if an association changed.
void RepairFileAssociations();
