// An installation against its package: what an install of it should have left, or a removal have taken away.
#pragma once

#include "tools/pkgtool/Difference.h"
#include "tools/pkgtool/PendingList.h"
#include "tools/pkgtool/PlannedInstall.h"

struct Verification
{
    const Package& package;
    std::vector<Difference> differences = {};
    int nChecked = 0; // files, links and registered values

    // On the way
    const CPendingList pending = {};
    bool bLogWhole = false;
    CString strGroup = {};                  // as the log has it
    std::map<CString, CString> logged = {}; // links, by their folded paths
    std::set<CString> left = {};            // what was told of already

    void Add(const DifferenceKind& kind, const CString& strPath, const CString& strFound = CString(),
             const CString& strExpected = CString())
    {
        differences.push_back({ &kind, strPath, strFound, strExpected });
    }
};

// Of the installation in the folder, which is a portable one, or without a folder of the registered one.
void VerifyInstall(Verification& result, const CString& strFolder);

// Of one that stood in the folder or, without one, where the registry says or where installs go. Registry and links are
// passed over if they belong to another folder.
void VerifyRemoval(Verification& result, const CString& strFolder);
