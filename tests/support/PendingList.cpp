// The list is one value of pairs, in which an empty text is a target, not the end.
#include "tests/support/PendingList.h"

#include <windows.h>

#include "tests/support/Files.h"
#include "tests/support/RegistryCorner.h"

static const wchar_t kSessionKey[] = L"System\\CurrentControlSet\\Control\\Session Manager";
static const wchar_t kPendingValue[] = L"PendingFileRenameOperations";

static std::wstring WithoutNativePrefix(std::wstring strPath)
{
    const size_t nPrefix = strPath.find(L"\\??\\");
    return nPrefix > 1 ? strPath : strPath.erase(nPrefix, 4);
}

std::vector<PENDING> PendingEntries()
{
    std::vector<PENDING> entries;
    DWORD cb = 0;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, kSessionKey, kPendingValue, RRF_RT_REG_MULTI_SZ, nullptr, nullptr, &cb) != 0)
        return entries;
    std::wstring strList(cb / sizeof(wchar_t), L'\0');
    RegGetValueW(HKEY_LOCAL_MACHINE, kSessionKey, kPendingValue, RRF_RT_REG_MULTI_SZ, nullptr, &strList[0], &cb);
    for (size_t nStart = 0; nStart < strList.size() && strList[nStart] != L'\0';)
    {
        const std::wstring strSource = strList.c_str() + nStart;
        const std::wstring strTarget = strList.c_str() + nStart + strSource.size() + 1;
        entries.push_back({ WithoutNativePrefix(strSource), WithoutNativePrefix(strTarget) });
        nStart += strSource.size() + strTarget.size() + 2;
    }
    return entries;
}

static std::wstring RelativePath(const std::wstring& strPath, const std::wstring& strFolder)
{
    if (strPath == strFolder)
        return L".";
    return strPath.find(strFolder + L"\\") == 0 ? strPath.substr(strFolder.size() + 1) : strPath;
}

std::wstring PendingText(const std::wstring& strFolder)
{
    std::wstring strText;
    for (const PENDING& entry : PendingEntries())
    {
        const std::wstring strSource = RelativePath(entry.strSource, strFolder);
        strText += strText.empty() ? L"" : L" ";
        strText +=
            entry.strTarget.empty() ? L"-" + strSource : strSource + L">" + RelativePath(entry.strTarget, strFolder);
    }
    return strText;
}

void ClearPending()
{
    RemoveValue(HKEY_LOCAL_MACHINE, kSessionKey, kPendingValue);
    RemoveTree(PendingProfilePath());
    RemoveTree(L"C:\\windows\\wininit.bak"); // what a restart makes of it
}

void BlockPending()
{
    SetKeyText(HKEY_LOCAL_MACHINE, kSessionKey, kPendingValue, L"");
}

std::wstring PendingProfilePath()
{
    return L"C:\\windows\\WININIT.INI";
}

std::string PendingProfile()
{
    return IsThere(PendingProfilePath()) ? ReadBytes(PendingProfilePath()) : std::string();
}
