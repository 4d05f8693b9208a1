// The version of the product's executable, read from its version resource.
#pragma once

// Sets g_nVerMajor, g_nVerMinor, g_nVerFix and g_nVerBuild to the file version of an executable; all four to 0 for a
// file that is missing or carries no version.
void ReadFileVersion(const wchar_t* pszPath);

struct Version
{
    unsigned int nMajor;
    unsigned int nMinor;
    unsigned int nFix;
    unsigned int nBuild;
};

// Folds a file version into one number, two decimal digits a part, wrapping around at 32 bits. A part of 100 or more
// spills into the one before it.
unsigned int FoldVersion(const Version& version);
