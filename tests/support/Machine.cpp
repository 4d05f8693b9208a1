// The registry is read by saving it, which Wine does in its own text format: of the whole of it that takes a fiftieth
// of the time that its enumeration does.
#include "tests/support/Machine.h"

#include <shlobj.h>

#include <algorithm>
#include <functional>
#include <iomanip>
#include <iterator>
#include <sstream>
#include <stdlib.h>

#include "foundation/Owners.h"
#include "tests/support/Programs.h"

static const wchar_t kSessionKey[] = L"System\\CurrentControlSet\\Control\\Session Manager";
static const wchar_t kPendingValue[] = L"PendingFileRenameOperations";

static void Demand(bool bDone, const char* pszAct, const std::wstring& strWhat)
{
    if (!bDone)
        Fail(std::string(pszAct) + " " + Bytes(strWhat) + ": error " + std::to_string(GetLastError()));
}

std::wstring BuildFolder()
{
    return Replaced(std::wstring(L"Z:") + _wgetenv(L"LUMACAP_BUILD"), L"/", L"\\");
}

std::wstring ProductOfVersion(const std::wstring& strVersion)
{
    return BuildFolder() + L"\\variants\\Lumacap8-" + strVersion + L".exe";
}

TEXTS Split(const std::wstring& strText, wchar_t chSeparator)
{
    TEXTS parts;
    for (size_t nStart = 0, nEnd = 0; !strText.empty() && nEnd != std::wstring::npos; nStart = nEnd + 1)
    {
        nEnd = strText.find(chSeparator, nStart);
        parts.push_back(strText.substr(nStart, nEnd == std::wstring::npos ? nEnd : nEnd - nStart));
    }
    return parts;
}

std::wstring Join(const TEXTS& texts, const wchar_t* pszBetween)
{
    std::wstring strJoined;
    for (const std::wstring& strText : texts)
        strJoined += (&strText == texts.data() ? L"" : pszBetween) + strText;
    return strJoined;
}

std::wstring Replaced(std::wstring strText, const std::wstring& strFrom, const std::wstring& strTo)
{
    for (size_t n = 0; (n = strText.find(strFrom, n)) != std::wstring::npos; n += strTo.size())
        strText.replace(n, strFrom.size(), strTo);
    return strText;
}

std::string Bytes(const std::wstring& strText)
{
    std::string strBytes;
    for (const wchar_t ch : strText)
        strBytes += ch < 0x100 ? static_cast<char>(ch) : '?';
    return strBytes;
}

std::wstring Wide(const std::string& strBytes)
{
    const auto* pBytes = reinterpret_cast<const unsigned char*>(strBytes.data());
    return std::wstring(pBytes, pBytes + strBytes.size());
}

// --- Files

// Calls the function with the path and the data of each file and folder below the folder; folders' paths end in a
// backslash.
template <typename Visit>
static void ForEachBelow(const std::wstring& strFolder, Visit visit)
{
    WIN32_FIND_DATAW found;
    const CFindOwner hFind(FindFirstFileW((strFolder + L"\\*").c_str(), &found));
    for (BOOL bMore = hFind.IsOpen(); bMore; bMore = FindNextFileW(hFind, &found))
    {
        const std::wstring strPath = strFolder + L"\\" + found.cFileName;
        const bool bFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if (wcscmp(found.cFileName, L".") == 0 || wcscmp(found.cFileName, L"..") == 0)
            continue;
        visit(bFolder ? strPath + L"\\" : strPath, found);
        if (bFolder)
            ForEachBelow(strPath, visit);
    }
}

bool IsThere(const std::wstring& strPath)
{
    return AttributesOf(strPath) != INVALID_FILE_ATTRIBUTES;
}

DWORD AttributesOf(const std::wstring& strPath)
{
    return GetFileAttributesW(strPath.c_str());
}

void SetAttributes(const std::wstring& strPath, DWORD nAttributes)
{
    Demand(SetFileAttributesW(strPath.c_str(), nAttributes), "attributes of", strPath);
}

void MakeFolder(const std::wstring& strPath)
{
    const int nResult = SHCreateDirectoryExW(nullptr, strPath.c_str(), nullptr);
    Demand(nResult == ERROR_SUCCESS || IsThere(strPath), "make", strPath);
}

void WriteBytes(const std::wstring& strPath, const std::string& strBytes)
{
    MakeFolder(strPath.substr(0, strPath.rfind(L'\\')));
    const CStreamOwner file(_wfopen(strPath.c_str(), L"wb"));
    Demand(file.IsOpen() && fwrite(strBytes.data(), 1, strBytes.size(), file) == strBytes.size(), "write", strPath);
}

std::string ReadBytes(const std::wstring& strPath)
{
    const DWORD nSharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const CFileOwner file(CreateFileW(strPath.c_str(), GENERIC_READ, nSharing, nullptr, OPEN_EXISTING, 0, nullptr));
    std::string strBytes(file.IsOpen() ? GetFileSize(file, nullptr) : 0, '\0');
    DWORD cbRead = 0;
    Demand(file.IsOpen() && ReadFile(file, &strBytes[0], static_cast<DWORD>(strBytes.size()), &cbRead, nullptr), "read",
           strPath);
    return strBytes.substr(0, cbRead);
}

void CopyOneFile(const std::wstring& strFrom, const std::wstring& strTo)
{
    MakeFolder(strTo.substr(0, strTo.rfind(L'\\')));
    Demand(CopyFileW(strFrom.c_str(), strTo.c_str(), FALSE), "copy to", strTo);
}

static bool TryRemoveTree(const std::wstring& strPath)
{
    if (!IsThere(strPath))
        return true;
    TEXTS paths = ListTree(strPath);
    paths.insert(paths.begin(), L"");
    for (size_t n = paths.size(); n-- > 0;)
    {
        const std::wstring strOne = n == 0 ? strPath : strPath + L"\\" + paths[n];
        SetFileAttributesW(strOne.c_str(), FILE_ATTRIBUTE_NORMAL);
        if (!DeleteFileW(strOne.c_str()))
            RemoveDirectoryW(strOne.c_str());
    }
    return !IsThere(strPath);
}

void RemoveTree(const std::wstring& strPath)
{
    // An ended program's image stays busy for a moment.
    Demand(WaitUntil([&] { return TryRemoveTree(strPath); }), "remove", strPath);
}

TEXTS ListTree(const std::wstring& strFolder)
{
    TEXTS paths;
    ForEachBelow(strFolder, [&](const std::wstring& strPath, const WIN32_FIND_DATAW&)
                 { paths.push_back(strPath.substr(strFolder.size() + 1)); });
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::shared_ptr<void> HoldFile(const std::wstring& strPath, DWORD nSharing)
{
    if (nSharing != kAsImage)
    {
        const HANDLE hFile = CreateFileW(strPath.c_str(), GENERIC_READ, nSharing, nullptr, OPEN_EXISTING, 0, nullptr);
        Demand(hFile != INVALID_HANDLE_VALUE, "hold", strPath);
        return { hFile, CloseHandle };
    }
    CopyOneFile(L"C:\\windows\\system32\\regsvr32.exe", strPath);
    const HMODULE hImage = LoadLibraryExW(strPath.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
    Demand(hImage != nullptr, "hold", strPath);
    return { hImage, FreeLibrary };
}

// --- Registry

static bool Open(HKEY hRoot, const std::wstring& strKey, CKeyOwner& key)
{
    return RegOpenKeyExW(hRoot, strKey.c_str(), 0, KEY_READ, key.Receive()) == ERROR_SUCCESS;
}

std::wstring KeyText(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName)
{
    DWORD nType = 0;
    std::vector<BYTE> data(4096);
    DWORD cb = static_cast<DWORD>(data.size());
    const DWORD nFlags = RRF_RT_ANY | RRF_NOEXPAND;
    if (RegGetValueW(hRoot, strKey.c_str(), strName.c_str(), nFlags, &nType, data.data(), &cb) != ERROR_SUCCESS)
        return L"(absent)";
    if (nType == REG_DWORD)
        return L"dword " + std::to_wstring(*reinterpret_cast<const DWORD*>(data.data()));
    return nType == REG_SZ ? reinterpret_cast<const wchar_t*>(data.data()) : L"type " + std::to_wstring(nType);
}

bool KeyExists(HKEY hRoot, const std::wstring& strKey)
{
    CKeyOwner key;
    return Open(hRoot, strKey, key);
}

void SetKeyText(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName, const std::wstring& strText)
{
    const DWORD cb = static_cast<DWORD>((strText.size() + 1) * sizeof(wchar_t));
    Demand(RegSetKeyValueW(hRoot, strKey.c_str(), strName.c_str(), REG_SZ, strText.c_str(), cb) == 0, "set", strKey);
}

void MakeKey(HKEY hRoot, const std::wstring& strKey)
{
    CKeyOwner key;
    Demand(RegCreateKeyW(hRoot, strKey.c_str(), key.Receive()) == ERROR_SUCCESS, "make", strKey);
}

void RemoveKey(HKEY hRoot, const std::wstring& strKey)
{
    RegDeleteTreeW(hRoot, strKey.c_str());
    Demand(!KeyExists(hRoot, strKey), "remove", strKey);
}

void RemoveValue(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName)
{
    RegDeleteKeyValueW(hRoot, strKey.c_str(), strName.c_str());
}

extern "C" LONG NTAPI RtlAdjustPrivilege(ULONG nPrivilege, BOOLEAN bEnable, BOOLEAN bThread, BOOLEAN* pbEarlier);

static std::string SavedKey(HKEY hKey)
{
    const ULONG nBackup = 17;
    BOOLEAN bEarlier;
    RtlAdjustPrivilege(nBackup, TRUE, FALSE, &bEarlier);
    const std::wstring strFile = L"C:\\saved." + std::to_wstring(GetCurrentProcessId());
    Demand(RegSaveKeyW(hKey, strFile.c_str(), nullptr) == ERROR_SUCCESS, "save", strFile);
    const std::string strSaved = ReadBytes(strFile);
    RemoveTree(strFile);
    return strSaved;
}

// Up to the mark: `"A \"text\""` as `A "text"`, `dword:0000000a` as `dword 10`, all else as it stands.
static std::wstring NextPart(std::wistream& saved, wchar_t chEnd)
{
    std::wstring strQuoted;
    std::wstring strRest;
    if (saved.peek() == L'"')
        saved >> std::quoted(strQuoted);
    std::getline(saved, strRest, chEnd);
    const bool bNumber = strRest.compare(0, 6, L"dword:") == 0;
    return strQuoted + (bNumber ? L"dword " + std::to_wstring(std::stoul(strRest.substr(6), nullptr, 16)) : strRest);
}

// A saved key is a line `[PATH] TIME`, with lines `"NAME"=DATA` or `@=DATA` behind it.
void FlattenKey(HKEY hRoot, const std::wstring& strKey, const std::wstring& strLabel, TEXTS& lines)
{
    CKeyOwner key;
    if (!Open(hRoot, strKey, key))
        return;
    std::wstring strPath;
    bool bEmpty = false;
    const auto endKey = [&]
    {
        if (bEmpty)
            lines.push_back(strPath + L"\\");
        bEmpty = false;
    };
    std::wistringstream saved(Replaced(Wide(SavedKey(key)), L"\\\n  ", L""));
    while (saved)
    {
        const wint_t chFirst = saved.peek();
        const bool bValue = chFirst == L'"' || chFirst == L'@';
        const std::wstring strPart = NextPart(saved, bValue ? L'=' : L'\n');
        if (chFirst == L'[')
        {
            endKey();
            const std::wstring strRelative = strPart.substr(1, strPart.rfind(L']') - 1);
            strPath = strLabel + (strRelative.empty() ? L"" : L"\\") + Replaced(strRelative, L"\\\\", L"\\");
            bEmpty = true;
        }
        else if (bValue)
        {
            lines.push_back(strPath + L" : " + strPart + L" = " + NextPart(saved, L'\n'));
            bEmpty = false;
        }
    }
    endKey();
}

// --- Boot list, links, pictures

static std::wstring Plain(std::wstring strPath)
{
    const size_t nPrefix = strPath.find(L"\\??\\");
    return nPrefix > 1 ? strPath : strPath.erase(nPrefix, 4);
}

TEXTS PendingEntries()
{
    TEXTS entries;
    DWORD cb = 0;
    if (RegGetValueW(kMachine, kSessionKey, kPendingValue, RRF_RT_REG_MULTI_SZ, nullptr, nullptr, &cb) != 0)
        return entries;
    std::wstring strList(cb / sizeof(wchar_t), L'\0');
    RegGetValueW(kMachine, kSessionKey, kPendingValue, RRF_RT_REG_MULTI_SZ, nullptr, &strList[0], &cb);
    const TEXTS texts = Split(strList, L'\0'); // sources, each with a target behind it, which may be empty
    for (size_t n = 0; n + 1 < texts.size() && !texts[n].empty(); n += 2)
        entries.push_back(texts[n + 1].empty() ? L"-" + Plain(texts[n]) : Plain(texts[n]) + L">" + Plain(texts[n + 1]));
    return entries;
}

void BlockPending()
{
    SetKeyText(kMachine, kSessionKey, kPendingValue, L""); // a type that MoveFileExW refuses
}

void ClearPending()
{
    RemoveValue(kMachine, kSessionKey, kPendingValue);
    RemoveTree(kPendingProfile);
    RemoveTree(L"C:\\windows\\wininit.bak"); // what a restart makes of it
}

// "TARGET in FOLDER", with what else it holds; "(no link)" for another file.
static std::wstring LinkText(const std::wstring& strPath)
{
    wchar_t szTarget[1024] = L"";
    wchar_t szFolder[1024] = L"";
    wchar_t szArguments[1024] = L"";
    wchar_t szText[1024] = L"";
    int nShow = 0;
    CoInitialize(nullptr);
    CInterfaceOwner<IShellLinkW> pLink;
    CInterfaceOwner<IPersistFile> pFile;
    CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_ALL, IID_PPV_ARGS(pLink.Receive()));
    pLink->QueryInterface(IID_PPV_ARGS(pFile.Receive()));
    if (FAILED(pFile->Load(strPath.c_str(), STGM_READ)))
        return L"(no link)";
    pLink->GetPath(szTarget, 1024, nullptr, SLGP_RAWPATH);
    pLink->GetWorkingDirectory(szFolder, 1024);
    pLink->GetArguments(szArguments, 1024);
    pLink->GetDescription(szText, 1024);
    pLink->GetShowCmd(&nShow);
    return szTarget + (szFolder[0] != 0 ? std::wstring(L" in ") + szFolder : L"") + szArguments + szText +
           (nShow != SW_SHOWNORMAL ? std::to_wstring(nShow) : L"");
}

// Windows' own files are some hundred megabytes: size and time tell of a change too. A link's content tells the time of
// its making.
static std::wstring FileText(const std::wstring& strPath, const WIN32_FIND_DATAW& data)
{
    const FILETIME& written = data.ftLastWriteTime;
    if (_wcsnicmp(strPath.c_str(), L"C:\\windows\\", 11) == 0)
        return L" = " + std::to_wstring(data.nFileSizeLow) + L" bytes of " + std::to_wstring(written.dwHighDateTime) +
               L"." + std::to_wstring(written.dwLowDateTime);
    if (strPath.size() > 4 && strPath.compare(strPath.size() - 4, 4, L".lnk") == 0)
        return L" -> " + LinkText(strPath);
    return L" = " + std::to_wstring(std::hash<std::string>()(ReadBytes(strPath)));
}

TEXTS TakePicture()
{
    TEXTS lines;
    ForEachBelow(L"C:",
                 [&](const std::wstring& strPath, const WIN32_FIND_DATAW& data)
                 {
                     const DWORD nOdd = data.dwFileAttributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
                     lines.push_back(strPath + (strPath.back() == L'\\' ? L"" : FileText(strPath, data)) +
                                     (nOdd != 0 ? L" (attributes " + std::to_wstring(nOdd) + L")" : L""));
                 });
    FlattenKey(kMachine, L"", L"HKLM", lines);
    FlattenKey(HKEY_USERS, L"", L"HKU", lines);
    std::sort(lines.begin(), lines.end());
    return lines;
}

TEXTS Difference(const TEXTS& earlier, const TEXTS& later)
{
    TEXTS lines;
    const auto add = [&](const TEXTS& first, const TEXTS& second, const wchar_t* pszSign)
    {
        TEXTS only;
        std::set_difference(first.begin(), first.end(), second.begin(), second.end(), std::back_inserter(only));
        for (const std::wstring& strLine : only)
            lines.push_back(pszSign + strLine);
    };
    add(later, earlier, L"+ ");
    add(earlier, later, L"- ");
    std::sort(lines.begin(), lines.end(),
              [](const auto& a, const auto& b) { return a.compare(2, a.npos, b, 2, b.npos) < 0; });
    return lines;
}

// --- Settings of the machine

void SetWindowsVersion(const std::wstring& strVersion)
{
    SetKeyText(kUser, L"Software\\Wine", L"Version", strVersion);
}

void MoveFolder(HKEY hRoot, const std::wstring& strName, const std::wstring& strFolder)
{
    SetKeyText(hRoot, kWindows + L"\\Explorer\\User Shell Folders", strName, strFolder);
}

void RestartMachine()
{
    RunToEnd(L"C:\\windows\\system32\\wineboot.exe -r"); // with -r neither start-up links nor Run keys are followed
    if (!PendingEntries().empty())
        Fail("the boot list wasn't worked through");
}
