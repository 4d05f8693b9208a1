// Lists and command lines that nobody would write, out of a number: the same number gives the same one everywhere.
#pragma once

#include <string>
#include <vector>

// A list of a few lines, or of none: records with odd prefixes and values, ends of all kinds, and plain garbage.
std::string HostileList(unsigned int nSeed);

// At least so many lines, a few of which are records; without the character that ends a text.
std::string LongHostileList(unsigned int nSeed, int nLines);

// Arguments behind the first: switches in any case and order, their values, and what only looks like them.
std::vector<std::wstring> HostileArguments(unsigned int nSeed);
