// An installation against its package.
#include "tools/pkgtool/Verification.h"

#include <shlobj.h>

#include <algorithm>
#include <string>

#include "app/Product.h"
#include "foundation/DiskFiles.h"
#include "foundation/FolderPaths.h"
#include "foundation/InstallLog.h"
#include "foundation/StringTable.h"
#include "foundation/SystemFacts.h"
#include "install/EarlierInstallation.h"
#include "install/FileVersion.h"
#include "res/resource.h"
#include "tools/pkgtool/Installation.h"
#include "tools/pkgtool/Output.h"

template <typename Number>
static CString NumberText(Number nNumber)
{
    return std::to_wstring(nNumber).c_str();
}

// Leaves the version in the run state.
static CString VersionText(const wchar_t* pszFile)
{
    ReadFileVersion(pszFile);
    return NumberText(g_nVerMajor) + L"." + NumberText(g_nVerMinor) + L"." + NumberText(g_nVerFix) + L"." +
           NumberText(g_nVerBuild);
}

static bool IsFolder(const wchar_t* pszPath)
{
    return PathExists(pszPath) && (GetFileAttributesW(pszPath) & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

static unsigned long long SizeOf(const wchar_t* pszFile)
{
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    GetFileAttributesExW(pszFile, GetFileExInfoStandard, &data);
    return static_cast<unsigned long long>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
}

static HANDLE OpenToRead(const wchar_t* pszFile)
{
    return CreateFileW(pszFile, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                       OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
}

static const DifferenceKind* CompareContents(const wchar_t* pszFile, const wchar_t* pszSource)
{
    static char blocks[2][0x40000];
    const CFileOwner file(OpenToRead(pszFile));
    const CFileOwner source(OpenToRead(pszSource));
    DWORD cb;
    DWORD cbSource;
    do
    {
        if (!ReadFile(file, blocks[0], sizeof(blocks[0]), &cb, nullptr) ||
            !ReadFile(source, blocks[1], sizeof(blocks[1]), &cbSource, nullptr))
            return &kFileUnreadable;
        if (cb != cbSource || memcmp(blocks[0], blocks[1], cb) != 0)
            return &kFileContent;
    } while (cb > 0);
    return nullptr;
}

// Of another version of the product just that is told.
static Difference CompareFiles(const CString& strFile, const CString& strSource)
{
    const unsigned long long cb = SizeOf(strFile);
    const unsigned long long cbSource = SizeOf(strSource);
    const DifferenceKind* pKind = cb != cbSource ? &kFileSize : CompareContents(strFile, strSource);
    const bool bProduct = strFile.CompareNoCase(g_strInstDir + kProductExePath) == 0;
    const CString strVersion = pKind != nullptr && bProduct ? VersionText(strFile) : CString();
    if (!strVersion.IsEmpty() && strVersion != VersionText(strSource))
        return { &kFileVersion, strFile, strVersion, VersionText(strSource) };
    return { pKind, strFile, NumberText(cb), NumberText(cbSource) };
}

void CVerification::Add(const DifferenceKind& kind, const CString& strPath, const CString& strFound,
                        const CString& strExpected)
{
    m_differences.push_back({ &kind, strPath, strFound, strExpected });
}

// Without the links, which stand where the log says.
std::vector<TreeEntry> CVerification::PlanEntries() const
{
    CFindings findings; // of a check, and not told here
    Plan plan = { static_cast<InstallKind>(g_nInstallKind), {}, {}, findings };
    PlanInstall(m_package, plan);
    std::vector<TreeEntry> entries;
    for (const TreeEntry& entry : plan.tree.Entries())
    {
        if (StartsWith(entry.strPath, kTarget) || StartsWith(entry.strPath, kBeside))
            entries.push_back(entry);
    }
    return entries;
}

void CVerification::VerifyEntries()
{
    const std::vector<TreeEntry> entries = PlanEntries();
    for (const TreeEntry& entry : entries)
    {
        ShowProgress(&entry - entries.data(), entries.size());
        if (!entry.bFolder)
            VerifyFile(entry);
        else if (!IsFolder(RealPath(entry.strPath)))
            Add(kFolderMissing, RealPath(entry.strPath));
    }
    ShowProgress(entries.size(), entries.size());
}

// A replacement that waits is as good as the file, and another one no better than none. Of a library it is enough that
// the system has it, which is asked without running its code.
void CVerification::VerifyFile(const TreeEntry& entry)
{
    const CString strFile = RealPath(entry.strPath);
    const CString strNext = m_pending.ReplacementOf(strFile);
    const bool bThere = PathExists(strFile) && !IsFolder(strFile);
    ++m_nFiles;
    if (!strNext.IsEmpty() && CompareFiles(strNext, entry.strSource).pKind == nullptr)
        Add(kFileWaits, strFile);
    else if (bThere && (!strNext.IsEmpty() || m_pending.Takes(strFile)))
        Add(kFileGoes, strFile);
    else if (bThere)
        CompareFile(strFile, entry.strSource);
    else if (!entry.bIfLibraryAbsent ||
             !CLibraryOwner(LoadLibraryExW(entry.strSource.Mid(m_package.strFolder.GetLength() + 1), nullptr,
                                           LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_SEARCH_SYSTEM32))
                  .IsOpen())
        Add(kFileMissing, strFile);
}

void CVerification::CompareFile(const CString& strFile, const CString& strSource)
{
    const bool bLog = strFile.CompareNoCase(g_strInstDir + kFileListPath) == 0;
    const Difference difference = bLog ? Difference() : CompareFiles(strFile, strSource);
    if (bLog)
        VerifyLog(strFile);
    if (difference.pKind != nullptr)
        m_differences.push_back(difference);
    const DWORD dwExtra = GetFileAttributesW(strFile) & ~GetFileAttributesW(strSource);
    if ((dwExtra & FILE_ATTRIBUTE_READONLY) != 0)
        Add(kFileProtected, strFile, L"read-only");
    if ((dwExtra & FILE_ATTRIBUTE_HIDDEN) != 0)
        Add(kFileProtected, strFile, L"hidden");
}

// Takes up what an install appends. False for a line that is something else: one with two records has lost a character
// that the log can't hold, and all behind it to the line's end.
bool CVerification::NoteLogged(const CString& strLine)
{
    const wchar_t* pszGroup = FindRecordValue(strLine, kMadeDir);
    const wchar_t* pszLink = FindRecordValue(strLine, kShellLink);
    const bool bLink = pszLink != nullptr && strLine.Right(4).CompareNoCase(kLinkExtension) == 0;
    if ((pszGroup == nullptr && !bLink) || strLine.Find(kShellLink, 1) > 0)
        return false;
    if (pszGroup != nullptr)
        m_strGroup = pszGroup;
    else
        m_logged[FoldCase(pszLink)] = pszLink;
    return true;
}

void CVerification::VerifyLog(const CString& strLog)
{
    const std::string strBytes = ReadBytes(strLog);
    const std::string strList = ReadBytes(m_package.strFolder + kFileListPath);
    CInstallLogReader log(strLog);
    bool bEnd = !strBytes.empty() && strBytes.back() == '\n';
    for (size_t nLine = 0; log.ReadLine(); ++nLine)
    {
        const bool bAppended = NoteLogged(log.Line()) || *log.Line() <= L' ';
        bEnd = bEnd && (bAppended || nLine < m_package.list.lines.size());
    }

    const size_t cb = std::min(strBytes.size(), strList.size());
    const auto difference = std::mismatch(strList.begin(), strList.begin() + cb, strBytes.begin()).first;
    m_bLogWhole = false;
    if (difference != strList.begin() + cb)
        Add(kLogChanged, strLog, NumberText(std::count(strList.begin(), difference, '\n') + 1));
    else if (cb < strList.size())
        Add(kLogCut, strLog, NumberText(cb), NumberText(strList.size()));
    else if (!bEnd || m_strGroup.IsEmpty() != (g_nInstallKind == KIND_PORTABLE))
        Add(kLogEnd, strLog);
    else
        m_bLogWhole = true;
}

static CString LinkPath(const CString& strFolder, UINT nName)
{
    return strFolder + L"\\" + LoadResString(nName) + kLinkExtension;
}

static bool IsLinkOf(const CString& strPath, UINT nName)
{
    const CString strName = LinkPath(L"", nName);
    return strPath.Right(strName.GetLength()).CompareNoCase(strName) == 0;
}

void CVerification::VerifyLink(const CString& strLink)
{
    const CString strFound = ReadLinkTarget(strLink);
    const CString strExpected = g_strInstDir + (IsLinkOf(strLink, IDS_HELP_LINK) ? kManualPath : kProductExePath);
    ++m_nLinks;
    if (!PathExists(strLink))
        Add(kLinkMissing, strLink);
    else if (strFound.CompareNoCase(strExpected) != 0)
        Add(kLinkElsewhere, strLink, strFound.IsEmpty() ? L"nowhere" : strFound.GetString(), strExpected);
}

// All that the log names and, as long as it is to be trusted, those of the install's usual links that it doesn't.
void CVerification::VerifyLinks()
{
    for (const auto& [strKey, strLink] : m_logged)
        VerifyLink(strLink);
    const bool bAll = g_nInstallKind == KIND_ALL_USERS;
    const CString kUsual[] = {
        // Always made
        LinkPath(m_strGroup, IDS_PRODUCT_NAME),
        LinkPath(m_strGroup, IDS_HELP_LINK),
        // Made if they are wanted
        LinkPath(FindShellFolder(bAll ? CSIDL_COMMON_DESKTOPDIRECTORY : CSIDL_DESKTOP), IDS_PRODUCT_NAME),
        LinkPath(FindShellFolder(bAll ? CSIDL_COMMON_STARTUP : CSIDL_STARTUP), IDS_PRODUCT_NAME),
    };
    for (const CString& strLink : kUsual)
    {
        const bool bThere = PathExists(strLink);
        if (m_bLogWhole && m_logged.count(FoldCase(strLink)) == 0 && (bThere || &strLink < kUsual + 2))
            Add(bThere ? kLinkUnlogged : kLinkMissing, strLink);
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

void CVerification::VerifyValue(const RegisteredValue& value)
{
    CString strFound;
    const bool bThere = ReadValue(value, strFound);
    const CString strExpected = value.pnNumber != nullptr ? NumberText(*value.pnNumber) : value.strText;
    ++m_nValues;
    if (strFound != strExpected)
        Add(bThere ? kValueChanged : kValueMissing, ValueText(value), strFound, strExpected);
}

void CVerification::VerifyInstall(const CString& strFolder)
{
    if (!FindInstallation(strFolder))
        return Add(kNotRegistered, CString(L"HKLM\\") + kProductKey + L" : Path");
    if (!IsFolder(g_strInstDir))
        return Add(kFolderMissing, g_strInstDir);
    VerifyEntries();
    if (g_nInstallKind == KIND_PORTABLE)
        return;
    VerifyLinks();
    VersionText(m_package.strFolder + kProductExePath);
    ForEachRegisteredValue([](const RegisteredValue& value, LPARAM lParam)
                           { reinterpret_cast<CVerification*>(lParam)->VerifyValue(value); },
                           reinterpret_cast<LPARAM>(this));
}

void CVerification::AddIfLeft(const DifferenceKind& kind, const CString& strPath)
{
    if (PathExists(strPath) && m_left.insert(FoldCase(strPath)).second)
        Add(m_pending.Takes(strPath) ? kLeftWaits : kind, strPath);
}

// The log is gone, and with it the name of the group, which may be anywhere in the menu.
void CVerification::FindLeftLinks(const CString& strFolder, bool bMenu)
{
    WIN32_FIND_DATAW found;
    const CFindOwner find(FindFirstFileW(strFolder + L"\\*", &found));
    for (BOOL bMore = !strFolder.IsEmpty() && find.IsOpen(); bMore; bMore = FindNextFileW(find, &found))
    {
        const CString strPath = strFolder + L"\\" + found.cFileName;
        const DWORD dwOwnFolder = found.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT);
        if (IsLinkOf(strPath, IDS_PRODUCT_NAME) || IsLinkOf(strPath, IDS_HELP_LINK))
            AddIfLeft(kLinkLeft, strPath);
        if (!bMenu || dwOwnFolder != FILE_ATTRIBUTE_DIRECTORY || IsDotName(found.cFileName))
            continue;
        if (_wcsicmp(found.cFileName, kProductName) == 0)
            AddIfLeft(kFolderLeft, strPath);
        FindLeftLinks(strPath, true);
    }
}

// A key of the product's own stands for its values; that of the registered applications is the system's.
void CVerification::FindLeftValue(const RegisteredValue& value)
{
    CString strText;
    CKeyOwner key;
    ++m_nValues;
    if (wcscmp(value.pszKey, kRegisteredApplicationsKey) != 0)
    {
        if (RegOpenKeyExW(value.hRoot, value.pszKey, 0, KEY_READ, key.Receive()) == ERROR_SUCCESS &&
            m_left.insert(KeyText(value)).second)
            Add(kKeyLeft, KeyText(value));
    }
    else if (ReadValue(value, strText))
        Add(kValueLeft, ValueText(value), strText);
}

void CVerification::VerifyRemoval(const CString& strFolder)
{
    if (!FindInstallation(strFolder))
        g_strInstDir = GetProgramFilesFolder() + L"\\" + kProductName;
    for (const TreeEntry& entry : PlanEntries())
    {
        m_nFiles += !entry.bFolder;
        AddIfLeft(entry.bFolder ? kFolderLeft : kFileLeft, RealPath(entry.strPath));
    }
    const CString strRegistered = FindInstalledFolder();
    if (!strRegistered.IsEmpty() && strRegistered.CompareNoCase(g_strInstDir) != 0)
        return;
    for (const int nFolder : { CSIDL_COMMON_PROGRAMS, CSIDL_PROGRAMS, CSIDL_COMMON_STARTUP, CSIDL_STARTUP })
        FindLeftLinks(FindShellFolder(nFolder), true);
    for (const int nFolder : { CSIDL_COMMON_DESKTOPDIRECTORY, CSIDL_DESKTOP })
        FindLeftLinks(FindShellFolder(nFolder), false);
    ForEachRegisteredValue([](const RegisteredValue& value, LPARAM lParam)
                           { reinterpret_cast<CVerification*>(lParam)->FindLeftValue(value); },
                           reinterpret_cast<LPARAM>(this));
}
