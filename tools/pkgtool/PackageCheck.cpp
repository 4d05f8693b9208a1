#include "tools/pkgtool/PackageCheck.h"

#include "app/Product.h"
#include "foundation/FolderPaths.h"
#include "foundation/InstallLog.h"
#include "foundation/Owners.h"
#include "foundation/TextEnds.h"
#include "install/FileVersion.h"
#include "tools/pkgtool/PlannedRemoval.h"

static constexpr wchar_t kTail[] = L" | ";

namespace
{
struct RecordForm
{
    const wchar_t* pszPrefix;
    bool bCopied;
    bool bHasTail;
    bool bOfInstall;
};

struct CountedOn
{
    const wchar_t* pszName;
    FindingKind nKind;
};
} // namespace

static constexpr RecordForm kRecordForms[] = {
    { kFileCopy, true, false, false },         { kFileCopyX64, true, false, false },
    { kFileCopyPortable, true, false, false }, { kFileCopyIfAbsent, true, false, false },
    { kFileOverwrite, false, true, false },    { kFileDel, false, true, false },
    { kMakeDir, false, false, false },         { kMadeDir, false, false, true },
    { kShellLink, false, false, true },
};

static const RecordForm* FindForm(const wchar_t* pszLine)
{
    for (const RecordForm& form : kRecordForms)
    {
        if (StartsWith(pszLine, form.pszPrefix))
            return &form;
    }
    return nullptr;
}

static CString WithoutBlanks(const wchar_t* pszText)
{
    CString strText = FoldCase(pszText);
    strText.Replace(L" ", L"");
    strText.Replace(L"\t", L"");
    return strText;
}

// A prefix that was meant, but for its case or its blanks. Behind one that nothing follows, the blank is trimmed.
static void CheckRemark(CFindings& findings, const ListLine& line)
{
    const CString strLine = WithoutBlanks(line.strText);
    for (const RecordForm& form : kRecordForms)
    {
        const wchar_t* pszValue = FindRecordValue(strLine, WithoutBlanks(form.pszPrefix));
        if (pszValue == nullptr)
            continue;
        const FindingKind nKind = form.bOfInstall  ? FINDING_NEAR_INSTALL_MADE
                                  : *pszValue == 0 ? FINDING_NAME_MISSING
                                                   : FINDING_NEAR_MISS;
        findings.Add(nKind, line.nNumber, line.strText, form.pszPrefix);
        return;
    }
}

static bool IsAbsolute(const CString& strPath)
{
    return StartsWith(strPath, L"\\") || StartsWith(strPath, L"/") || (strPath.GetLength() > 1 && strPath[1] == L':');
}

static bool IsClimbing(const CString& strPath)
{
    CString strRest = strPath + L"\\";
    strRest.Replace(L'/', L'\\');
    int nDepth = 0;
    for (int nEnd; (nEnd = strRest.Find(L'\\')) >= 0 && nDepth >= 0; strRest = strRest.Mid(nEnd + 1))
    {
        const CString strPart = strRest.Left(nEnd);
        if (strPart == L"..")
            --nDepth;
        else if (!strPart.IsEmpty() && strPart != L".")
            ++nDepth;
    }
    return nDepth < 0;
}

// What is wrong with a drive or a tail is told as such.
static void CheckName(CFindings& findings, const ListLine& line, const CString& strName, bool bHasTail)
{
    const CString strForbidden = FindForbidden(strName, bHasTail);
    if (!strForbidden.IsEmpty() && !IsAbsolute(strName) && (bHasTail || line.strText.Find(kTail) < 0))
        findings.Add(FINDING_IMPOSSIBLE_NAME, line.nNumber, line.strText, strForbidden);
}

static void CheckTarget(CFindings& findings, const ListLine& line, const CString& strSource, const CString& strTarget)
{
    CheckName(findings, line, strTarget, false);
    if (IsMask(strSource))
        findings.Add(FINDING_MASK_RENAMED, line.nNumber, line.strText);
    if (strTarget.IsEmpty() || EndsWith(strTarget, L"\\") || EndsWith(strTarget, L"/"))
        findings.Add(FINDING_EMPTY_TARGET, line.nNumber, line.strText);
    if (strTarget.Find(L'/') >= 0)
        findings.Add(FINDING_FORWARD_SLASH, line.nNumber, line.strText);
}

static void CheckCopied(CFindings& findings, const ListLine& line, const wchar_t* pszValue)
{
    CString strSource;
    CString strTarget;
    if (SplitFileValue(pszValue, strSource, strTarget))
        CheckTarget(findings, line, strSource, strTarget);
    else if (strSource.Find(L'/') >= 0)
        findings.Add(FINDING_FORWARD_SLASH, line.nNumber, line.strText);
    if (StartsWith(line.strText, kFileCopyIfAbsent) && strSource.FindOneOf(L"*?\\/") >= 0)
        findings.Add(FINDING_LIBRARY_TEST, line.nNumber, line.strText);
}

// A removal cuts the tail off, and so does this where the record may have one.
static void CheckPaths(CFindings& findings, const ListLine& line, const RecordForm& form)
{
    const CString strTaken = GetNameToRemove(line.strText, form.pszPrefix);
    CString strSource;
    CString strTarget;
    SplitFileValue(FindRecordValue(line.strText, form.pszPrefix), strSource, strTarget);
    const CString strOther = form.bCopied ? strSource : CString();
    if (IsAbsolute(strTaken) || IsAbsolute(strOther))
        findings.Add(FINDING_ABSOLUTE, line.nNumber, line.strText);
    if (IsClimbing(strTaken) || IsClimbing(strOther))
        findings.Add(FINDING_CLIMBING, line.nNumber, line.strText);
    if (!form.bHasTail && line.strText.Find(kTail) >= 0)
        findings.Add(FINDING_TAIL, line.nNumber, line.strText);
    if (form.bHasTail && strTaken.IsEmpty())
        findings.Add(FINDING_NAME_MISSING, line.nNumber, line.strText, form.pszPrefix);
    if (form.bHasTail && strTaken.Find(L'/') >= 0)
        findings.Add(FINDING_FORWARD_SLASH, line.nNumber, line.strText);
    const CString strMeant = DecodeUtf8(DecodeUtf8(strTaken).IsEmpty() ? strOther : strTaken);
    if (!strMeant.IsEmpty())
        findings.Add(FINDING_UTF8_NAME, line.nNumber, line.strText, strMeant);
}

static void CheckRecord(CFindings& findings, const ListLine& line, const RecordForm& form)
{
    if (form.bOfInstall)
    {
        findings.Add(FINDING_INSTALL_MADE, line.nNumber, line.strText);
        return;
    }
    const wchar_t* pszValue = FindRecordValue(line.strText, form.pszPrefix);
    CheckPaths(findings, line, form);
    if (form.bCopied)
        CheckCopied(findings, line, pszValue);
    else
        CheckName(findings, line, form.bHasTail ? GetNameToRemove(line.strText, form.pszPrefix) : CString(pszValue),
                  form.bHasTail);
}

// A remark may be as long as it likes, unless what is cut off makes a record.
static bool IsTooLong(const ListLine& line, const ListLine& rest)
{
    CString strRest = rest.strText;
    return rest.bRest && !strRest.Trim().IsEmpty() &&
           (FindForm(line.strText) != nullptr || FindForm(rest.strText) != nullptr);
}

static void CheckLines(const std::vector<ListLine>& lines, CFindings& findings)
{
    bool bRecords = false;
    for (size_t i = 0; i < lines.size(); ++i)
    {
        const ListLine& line = lines[i];
        const RecordForm* pForm = FindForm(line.strText);
        if (pForm != nullptr)
            CheckRecord(findings, line, *pForm);
        else if (!line.bRest)
            CheckRemark(findings, line);
        if (i > 0 && IsTooLong(lines[i - 1], line))
            findings.Add(FINDING_LONG_LINE, line.nNumber, lines[i - 1].strText);
        bRecords = bRecords || pForm != nullptr;
    }
    if (!bRecords)
        findings.Add(FINDING_NO_RECORD, 0, CString());
}

static void CheckList(const CheckedList& list, CFindings& findings)
{
    CheckLines(list.lines, findings);
    if (list.bByteOrderMark)
        findings.Add(FINDING_BYTE_ORDER_MARK, 1, CString());
    if (list.nEndMarkLine > 0)
        findings.Add(FINDING_END_MARK, list.nEndMarkLine, CString());
}

// The setup, under any name with its own in it, and what it needs beside it: no record has to name these.
static bool IsOfSetup(const CString& strName)
{
    if (strName.Find(L'\\') < 0 && FoldCase(strName).Find(L"SETUP.EXE") >= 0)
        return true;
    for (const wchar_t* pszName : { kFileListName, kAgreementFile })
    {
        if (strName.CompareNoCase(pszName) == 0)
            return true;
    }
    return false;
}

// A list holds one byte a character.
static bool CanStandInList(const CString& strName)
{
    for (int i = 0; i < strName.GetLength(); ++i)
    {
        if (strName[i] > 0xFF)
            return false;
    }
    return true;
}

// strBelow is the relative folder, empty or with a backslash at its end.
static void CheckFolder(const Package& package, const CString& strBelow, const std::set<CString>& named,
                        CFindings& findings)
{
    WIN32_FIND_DATAW match;
    const CString strFolder = package.strFolder + L"\\" + strBelow;
    const CFindOwner find(FindFirstFileW(strFolder + L"*", &match));
    if (!find.IsOpen())
        return;
    do
    {
        const CString strName = strBelow + match.cFileName;
        if (IsDotName(match.cFileName))
            continue;
        if ((match.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
            CheckFolder(package, strName + L"\\", named, findings);
        else if (!IsOfSetup(strName) && named.count(FoldPath(strFolder + match.cFileName)) == 0)
            findings.Add(CanStandInList(strName) ? FINDING_FILE_UNNAMED : FINDING_FILE_UNNAMEABLE, 0, strName, strName);
    } while (FindNextFileW(find, &match));
}

static constexpr CountedOn kCountedOn[] = {
    { kUninstallerName, FINDING_UNINSTALLER_MISSING },
    { kProductExe, FINDING_COUNTED_ON },
    { kHelpFile, FINDING_COUNTED_ON },
    { kThumbnailDll, FINDING_COUNTED_ON },
};

static void CheckInstalled(const CFileTree& tree, CFindings& findings)
{
    for (const CountedOn& row : kCountedOn)
    {
        if (!tree.Exists(CString(kTarget) + L"\\" + row.pszName))
            findings.Add(row.nKind, 0, row.pszName, row.pszName);
    }
}

void CheckPackage(const Package& package, CFindings& findings)
{
    if (package.list.bZeroBytes || package.list.bLoneReturns)
    {
        findings.Add(package.list.bZeroBytes ? FINDING_ZERO_BYTES : FINDING_LONE_RETURNS, 1, CString());
        return;
    }
    CheckList(package.list, findings);
    std::set<CString> named;
    for (const InstallKind nKind : { KIND_CURRENT_USER, KIND_ALL_USERS, KIND_PORTABLE })
    {
        Plan plan = { nKind, {}, {}, findings };
        PlanInstall(package, plan);
        if (nKind != KIND_PORTABLE)
            CheckInstalled(plan.tree, findings);
        PlanRemoval(package, plan);
        named.insert(plan.named.begin(), plan.named.end());
    }
    CheckFolder(package, CString(), named, findings);
    ReadFileVersion(package.strFolder + kProductExePath);
    if (g_nVerMajor == 0)
        findings.Add(FINDING_NO_VERSION, 0, kProductExe);
}
