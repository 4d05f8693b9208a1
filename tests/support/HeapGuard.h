// Watches the memory that this program and its libraries allocate: bytes behind and before a block that were written
// to, and the number of blocks and bytes. It stands at the import table and stays until the process ends, since blocks
// outlive tests. For one thread.
#pragma once

#include <stddef.h>

void StartHeapGuard(); // once; blocks from before are left alone

size_t LiveBlocks();

// The most bytes that lived at a time since then, less those that lived then.
void CountBytesFromHere();
size_t MostBytes();

// Blocks that were found damaged so far, when they were freed or by this look at all that live.
size_t DamagedBlocks();
