// Other running processes of the product: asks the user about them, and closes them by force.
#pragma once

// The number of other processes in the shared list; -1 without a list.
int CountOtherInstances();

// Asks whether nOthers instances may be closed, unless the arguments from the second on say not to ask. False if the
// user declines; the user has been told how to go on then.
bool ConfirmClosingInstances(int nOthers);

// Asks the other instances to close, gives each 10 milliseconds, and terminates it. nOthers is what was counted before
// the user was asked; if the list has become shorter than that since, the framework's invalid-argument exception is
// raised.
void CloseOtherInstances(int nOthers);
