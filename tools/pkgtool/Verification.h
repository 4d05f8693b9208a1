// An installation against its package: what an install of it should have left, or a removal have taken away.
#pragma once

#include <map>

#include "install/RegisteredValues.h"
#include "tools/pkgtool/Difference.h"
#include "tools/pkgtool/PendingList.h"
#include "tools/pkgtool/PlannedInstall.h"

class CVerification
{
public:
    explicit CVerification(const Package& package) : m_package(package) {}

    // Of the installation in the folder, which is a portable one, or without a folder of the registered one.
    void VerifyInstall(const CString& strFolder);
    // Of one that stood in the folder or, without one, where the registry says or where installs go. Registry and links
    // are passed over if they belong to another folder.
    void VerifyRemoval(const CString& strFolder);

    std::vector<Difference> m_differences;
    int m_nFiles = 0; // that were looked at
    int m_nLinks = 0;
    int m_nValues = 0;

private:
    std::vector<TreeEntry> PlanEntries() const;
    void Add(const DifferenceKind& kind, const CString& strPath, const CString& strFound = CString(),
             const CString& strExpected = CString());
    void VerifyEntries();
    void VerifyFile(const TreeEntry& entry);
    void CompareFile(const CString& strFile, const CString& strSource);
    void VerifyLog(const CString& strLog);
    bool NoteLogged(const CString& strLine);
    void VerifyLinks();
    void VerifyLink(const CString& strLink);
    void VerifyValue(const RegisteredValue& value);
    void AddIfLeft(const DifferenceKind& kind, const CString& strPath);
    void FindLeftLinks(const CString& strFolder, bool bMenu);
    void FindLeftValue(const RegisteredValue& value);

    const Package& m_package;
    const CPendingList m_pending;
    CString m_strGroup;                  // as the log has it
    std::map<CString, CString> m_logged; // links, by their folded paths
    bool m_bLogWhole = false;
    std::set<CString> m_left; // what was told of already
};
