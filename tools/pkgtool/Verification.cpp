#include "tools/pkgtool/Verification.h"

#include <io.h>
#include <shlobj.h>

#include <algorithm>
#include <string>

#include "app/Product.h"
#include "foundation/DiskFiles.h"
#include "foundation/FolderPaths.h"
#include "foundation/InstallLog.h"
#include "foundation/StringTable.h"
#include "foundation/SystemFacts.h"
#include "foundation/TextEnds.h"
#include "install/EarlierInstallation.h"
#include "install/FileVersion.h"
#include "res/resource.h"
#include "tools/pkgtool/Installation.h"
#include "tools/pkgtool/Output.h"

static CString NumberText(unsigned long long nNumber)
{
    return CString(std::to_wstring(nNumber).c_str());
}

// Leaves the version in the run state.
static CString VersionText(const wchar_t* pszFile)
{
    ReadFileVersion(pszFile);
    CString strVersion;
    strVersion.Format(L"%u.%u.%u.%u", g_nVerMajor, g_nVerMinor, g_nVerFix, g_nVerBuild);
    return strVersion;
}

// Of files that agree in their size.
static const DifferenceKind* CompareContents(FILE* pFile, FILE* pSource)
{
    static char blocks[2][0x40000];
    for (size_t cb; (cb = fread(blocks[0], 1, sizeof(blocks[0]), pFile)) > 0;)
    {
        if (fread(blocks[1], 1, cb, pSource) != cb || memcmp(blocks[0], blocks[1], cb) != 0)
            return &kFileContent;
    }
    return ferror(pFile) ? &kFileUnreadable : nullptr;
}

// Of another version of the product just that is told.
static Difference CompareFiles(const CString& strFile, const CString& strSource)
{
    const CStreamOwner file(_wfopen(strFile, L"rb"));
    const CStreamOwner source(_wfopen(strSource, L"rb"));
    if (!file.IsOpen() || !source.IsOpen())
        return { &kFileUnreadable, strFile, CString(), CString() };
    const auto cb = _filelengthi64(_fileno(file));
    const auto cbSource = _filelengthi64(_fileno(source));
    const DifferenceKind* pKind = cb != cbSource ? &kFileSize : CompareContents(file, source);
    const bool bProduct = strFile.CompareNoCase(g_strInstDir + kProductExePath) == 0;
    const CString strVersion = pKind != nullptr && bProduct ? VersionText(strFile) : CString();
    if (!strVersion.IsEmpty() && strVersion != VersionText(strSource))
        return { &kFileVersion, strFile, strVersion, VersionText(strSource) };
    return { pKind, strFile, NumberText(cb), NumberText(cbSource) };
}

// By their paths on the machine, and without the links, which stand where the log says.
static std::vector<TreeEntry> PlanEntries(const Verification& result, CFindings& findings)
{
    Plan plan = { static_cast<InstallKind>(g_nInstallKind), {}, {}, findings };
    PlanInstall(result.package, plan);
    std::vector<TreeEntry> entries;
    for (TreeEntry entry : plan.tree.Entries())
    {
        const bool bTarget = StartsWith(entry.strPath, kTarget);
        const CString strPlace = bTarget ? g_strInstDir : CutLastPart(g_strInstDir);
        const bool bFound = bTarget || StartsWith(entry.strPath, kBeside);
        entry.strPath = strPlace + entry.strPath.Mid(entry.strPath.Find(L'>') + 1);
        if (bFound)
            entries.push_back(entry);
    }
    return entries;
}

static bool IsLog(const CString& strFile)
{
    return strFile.CompareNoCase(g_strInstDir + kFileListPath) == 0;
}

// The content of the log has another test.
static void VerifyContent(Verification& result, const CString& strFile, const CString& strSource, DWORD dwAttributes)
{
    const Difference difference = IsLog(strFile) ? Difference() : CompareFiles(strFile, strSource);
    if (difference.pKind != nullptr)
        result.differences.push_back(difference);
    for (const auto& [dwBit, pszName] :
         { std::make_pair(FILE_ATTRIBUTE_READONLY, L"read-only"), std::make_pair(FILE_ATTRIBUTE_HIDDEN, L"hidden"),
           std::make_pair(FILE_ATTRIBUTE_SYSTEM, L"a system file") })
    {
        if ((dwAttributes & dwBit) != 0 && (GetFileAttributesW(strSource) & dwBit) == 0)
            result.Add(kFileProtected, strFile, pszName);
    }
}

// A replacement that waits is as good as the file, but for the log: the install's own lines stand in the old one only.
// Another one is no better than none. Of a library it is enough that the system has it, which is asked without running
// its code.
static void VerifyFile(Verification& result, const TreeEntry& entry)
{
    const CString& strFile = entry.strPath;
    const CString strNext = result.pending.ReplacementOf(strFile);
    const DWORD dwAttributes = GetFileAttributesW(strFile); // with all bits set if there is nothing
    const bool bThere = (dwAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    ++result.nChecked;
    if (!strNext.IsEmpty() && CompareFiles(strNext, entry.strSource).pKind == nullptr)
        result.Add(IsLog(strFile) ? kLogEnd : kFileWaits, strFile);
    else if (bThere && (!strNext.IsEmpty() || result.pending.Takes(strFile)))
        result.Add(kFileGoes, strFile);
    else if (bThere)
        VerifyContent(result, strFile, entry.strSource, dwAttributes);
    else if (!entry.bIfLibraryAbsent ||
             !CLibraryOwner(LoadLibraryExW(entry.strSource.Mid(result.package.strFolder.GetLength() + 1), nullptr,
                                           LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_SEARCH_SYSTEM32))
                  .IsOpen())
        result.Add(kFileMissing, strFile);
}

// A folder is asked for by its files only: one without any may go at the next start after an install, or be gone
// already.
static void VerifyEntries(Verification& result)
{
    CFindings findings;
    const std::vector<TreeEntry> entries = PlanEntries(result, findings);
    for (const TreeEntry& entry : entries)
    {
        ShowProgress(&entry - entries.data(), entries.size());
        if (!entry.bFolder)
            VerifyFile(result, entry);
    }
    ShowProgress(entries.size(), entries.size());
    for (const int nLine : findings.LinesWith(FINDING_NO_MATCH))
        result.Add(kPackageLacks, result.package.strFolder + kFileListPath, NumberText(nLine));
}

static bool EndsWithNoCase(const CString& strText, const CString& strEnd)
{
    return strText.Right(strEnd.GetLength()).CompareNoCase(strEnd) == 0;
}

// Takes up what an install appends. False for a line that is something else: one with two records has lost a character
// that the log can't hold, and all behind it to the line's end.
static bool NoteLogged(Verification& result, const CString& strLine)
{
    const wchar_t* pszGroup = FindRecordValue(strLine, kMadeDir);
    const wchar_t* pszLink = FindRecordValue(strLine, kShellLink);
    const bool bLink = pszLink != nullptr && EndsWithNoCase(strLine, kLinkExtension);
    if ((pszGroup == nullptr && !bLink) || strLine.Find(kShellLink, 1) > 0)
        return false;
    if (pszGroup != nullptr)
        result.strGroup = pszGroup;
    else
        result.logged[FoldCase(pszLink)] = pszLink;
    return true;
}

static void VerifyLog(Verification& result)
{
    const CString strLog = g_strInstDir + kFileListPath;
    if (!PathExists(strLog))
        return;
    const std::string strBytes = ReadBytes(strLog);
    const std::string strList = ReadBytes(result.package.strFolder + kFileListPath);
    CInstallLogReader log(strLog);
    bool bEnd = !strBytes.empty() && strBytes.back() == '\n';
    for (size_t nLine = 0; log.ReadLine(); ++nLine)
    {
        const bool bAppended = NoteLogged(result, log.Line()) || *log.Line() <= L' ';
        bEnd = bEnd && (bAppended || nLine < result.package.list.lines.size());
    }

    const size_t cb = std::min(strBytes.size(), strList.size());
    const auto difference = std::mismatch(strList.begin(), strList.begin() + cb, strBytes.begin()).first;
    if (difference != strList.begin() + cb)
        result.Add(kLogChanged, strLog, NumberText(std::count(strList.begin(), difference, '\n') + 1));
    else if (cb < strList.size())
        result.Add(kLogCut, strLog, NumberText(cb), NumberText(strList.size()));
    else if (!bEnd || result.strGroup.IsEmpty() != (g_nInstallKind == KIND_PORTABLE))
        result.Add(kLogEnd, strLog);
    else
        result.bLogWhole = true;
}

static bool IsInMenu(const CString& strGroup, int nKind)
{
    const CString strMenu = FindShellFolder(nKind == KIND_ALL_USERS ? CSIDL_COMMON_PROGRAMS : CSIDL_PROGRAMS) + L"\\";
    return strGroup.Left(strMenu.GetLength()).CompareNoCase(strMenu) == 0;
}

// The registered kind can't tell of its own change: the place of the group does.
static void FindKind(const Verification& result)
{
    const int nOther = g_nInstallKind == KIND_ALL_USERS ? KIND_CURRENT_USER : KIND_ALL_USERS;
    if (!IsInMenu(result.strGroup, g_nInstallKind) && IsInMenu(result.strGroup, nOther))
        g_nInstallKind = nOther;
}

static CString LinkPath(const CString& strFolder, UINT nName)
{
    return strFolder + L"\\" + LoadResString(nName) + kLinkExtension;
}

static bool IsLinkOf(const CString& strPath, UINT nName)
{
    return EndsWithNoCase(strPath, LinkPath(L"", nName));
}

static void VerifyLink(Verification& result, const CString& strLink)
{
    const CString strFound = ReadLinkTarget(strLink);
    const CString strExpected =
        FullPath(g_strInstDir + (IsLinkOf(strLink, IDS_HELP_LINK) ? kHelpFilePath : kProductExePath));
    ++result.nChecked;
    if (!PathExists(strLink))
        result.Add(kLinkMissing, strLink);
    else if (strFound.CompareNoCase(strExpected) != 0)
        result.Add(kLinkElsewhere, strLink, strFound.IsEmpty() ? L"nowhere" : strFound.GetString(), strExpected);
}

// All that the log names and, as long as it is to be trusted, those of the install's usual links that it doesn't.
static void VerifyLinks(Verification& result)
{
    for (const auto& [strKey, strLink] : result.logged)
        VerifyLink(result, strLink);
    const bool bAll = g_nInstallKind == KIND_ALL_USERS;
    const CString usual[] = {
        // Always made
        LinkPath(result.strGroup, IDS_PRODUCT_NAME),
        LinkPath(result.strGroup, IDS_HELP_LINK),
        // Made if they are wanted
        LinkPath(FindShellFolder(bAll ? CSIDL_COMMON_DESKTOPDIRECTORY : CSIDL_DESKTOP), IDS_PRODUCT_NAME),
        LinkPath(FindShellFolder(bAll ? CSIDL_COMMON_STARTUP : CSIDL_STARTUP), IDS_PRODUCT_NAME),
    };
    for (const CString& strLink : usual)
    {
        const bool bThere = PathExists(strLink);
        if (result.bLogWhole && result.logged.count(FoldCase(strLink)) == 0 && (bThere || &strLink < usual + 2))
            result.Add(bThere ? kLinkUnlogged : kLinkMissing, strLink);
    }
}

static CString KeyText(const RegisteredValue& value)
{
    return (value.hRoot == HKEY_CLASSES_ROOT ? L"HKCR\\" : L"HKLM\\") + CString(value.pszKey);
}

static CString ValueText(const RegisteredValue& value)
{
    return KeyText(value) + L" : " + (value.pszName != nullptr ? value.pszName : L"(default)");
}

static void VerifyValue(const RegisteredValue& value, LPARAM lParam)
{
    Verification& result = *reinterpret_cast<Verification*>(lParam);
    CString strFound;
    const bool bThere = ReadValue(value, strFound);
    const unsigned int* pnNumber = std::get_if<unsigned int>(&value.data);
    const CString strExpected = pnNumber != nullptr ? NumberText(*pnNumber) : std::get<CString>(value.data);
    ++result.nChecked;
    if (strFound != strExpected)
        result.Add(bThere ? kValueChanged : kValueMissing, ValueText(value), strFound, strExpected);
}

void VerifyInstall(Verification& result, const CString& strFolder)
{
    if (!FindInstallation(strFolder))
        return result.Add(kNotRegistered, CString(L"HKLM\\") + kProductKey + L" : " + kFolderValue);
    if (!IsRealFolder(g_strInstDir))
        return result.Add(kFolderMissing, g_strInstDir);
    VerifyEntries(result);
    VerifyLog(result);
    if (g_nInstallKind == KIND_PORTABLE)
        return;
    FindKind(result);
    VerifyLinks(result);
    VersionText(result.package.strFolder + kProductExePath);
    ForEachRegisteredValue(VerifyValue, reinterpret_cast<LPARAM>(&result));
}

static void AddIfLeft(Verification& result, const DifferenceKind& kind, const CString& strPath)
{
    if (PathExists(strPath) && result.left.insert(FoldCase(strPath)).second)
        result.Add(result.pending.Takes(strPath) ? kLeftWaits : kind, strPath);
}

// The log is gone, and with it the name of the group, which may be anywhere in the menu.
static void FindLeftLinks(Verification& result, const CString& strFolder, bool bMenu)
{
    WIN32_FIND_DATAW found;
    const CFindOwner find(FindFirstFileW(strFolder + L"\\*", &found));
    for (BOOL bMore = !strFolder.IsEmpty() && find.IsOpen(); bMore; bMore = FindNextFileW(find, &found))
    {
        const CString strPath = strFolder + L"\\" + found.cFileName;
        const DWORD dwOwnFolder = found.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT);
        if (IsLinkOf(strPath, IDS_PRODUCT_NAME) || IsLinkOf(strPath, IDS_HELP_LINK))
            AddIfLeft(result, kLinkLeft, strPath);
        if (!bMenu || dwOwnFolder != FILE_ATTRIBUTE_DIRECTORY || IsDotName(found.cFileName))
            continue;
        if (_wcsicmp(found.cFileName, kProductName) == 0)
            AddIfLeft(result, kFolderLeft, strPath);
        FindLeftLinks(result, strPath, true);
    }
}

// A key of the product's own stands for its values; that of the registered applications is the system's.
static void FindLeftValue(const RegisteredValue& value, LPARAM lParam)
{
    Verification& result = *reinterpret_cast<Verification*>(lParam);
    CString strText;
    CKeyOwner key;
    ++result.nChecked;
    if (wcscmp(value.pszKey, kRegisteredApplicationsKey) != 0)
    {
        if (RegOpenKeyExW(value.hRoot, value.pszKey, 0, KEY_READ, key.Receive()) == ERROR_SUCCESS &&
            result.left.insert(KeyText(value)).second)
            result.Add(kKeyLeft, KeyText(value));
    }
    else if (ReadValue(value, strText))
        result.Add(kValueLeft, ValueText(value), strText);
}

void VerifyRemoval(Verification& result, const CString& strFolder)
{
    if (!FindInstallation(strFolder))
        g_strInstDir = GetProgramFilesFolder() + L"\\" + kProductName;
    CFindings findings; // of the package, and not of what stands
    for (const TreeEntry& entry : PlanEntries(result, findings))
    {
        result.nChecked += !entry.bFolder;
        AddIfLeft(result, entry.bFolder ? kFolderLeft : kFileLeft, entry.strPath);
    }
    const CString strRegistered = FindInstalledFolder();
    if (!strRegistered.IsEmpty() && strRegistered.CompareNoCase(g_strInstDir) != 0)
        return;
    for (const int nFolder : { CSIDL_COMMON_PROGRAMS, CSIDL_PROGRAMS, CSIDL_COMMON_STARTUP, CSIDL_STARTUP })
        FindLeftLinks(result, FindShellFolder(nFolder), true);
    for (const int nFolder : { CSIDL_COMMON_DESKTOPDIRECTORY, CSIDL_DESKTOP })
        FindLeftLinks(result, FindShellFolder(nFolder), false);
    ForEachRegisteredValue(FindLeftValue, reinterpret_cast<LPARAM>(&result));
}
