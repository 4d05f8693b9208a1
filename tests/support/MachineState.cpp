// The whole registry is some 25,000 lines, read in less than a second.
#include "tests/support/MachineState.h"

#include <windows.h>

#include <algorithm>
#include <functional>
#include <iterator>

#include "tests/support/Files.h"
#include "tests/support/RegistryCorner.h"

static const std::vector<std::wstring> kIgnored = { L"HKLM\\HARDWARE" };

static std::wstring FileLine(const std::wstring& strPath)
{
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    GetFileAttributesExW(strPath.c_str(), GetFileExInfoStandard, &data);
    const std::wstring strAttributes = L" " + std::to_wstring(data.dwFileAttributes);
    if (strPath.back() == L'\\')
        return L"folder " + strPath.substr(0, strPath.size() - 1) + strAttributes;
    return L"file " + strPath + L" " + std::to_wstring(data.nFileSizeLow) + strAttributes;
}

std::vector<std::wstring> TakeMachinePicture()
{
    std::vector<std::wstring> lines;
    for (const std::wstring& strPath : ListTree(L"C:"))
        lines.push_back(FileLine(L"C:\\" + strPath));
    for (const std::vector<std::wstring>& hive :
         { FlattenKey(HKEY_LOCAL_MACHINE, L"", L"HKLM", kIgnored), FlattenKey(HKEY_USERS, L"", L"HKU", kIgnored) })
        lines.insert(lines.end(), hive.begin(), hive.end());
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::vector<std::wstring> TakeProductPicture(const std::wstring& strFolder)
{
    std::vector<std::wstring> lines = FlattenProduct();
    for (const std::wstring& strPath : ListTree(strFolder))
    {
        lines.push_back(FileLine(strFolder + L"\\" + strPath));
        if (strPath.back() != L'\\' && strPath.find(L".lnk") == std::wstring::npos)
            lines.back() += L" " + std::to_wstring(std::hash<std::string>()(ReadBytes(strFolder + L"\\" + strPath)));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::vector<std::wstring> PictureDifference(const std::vector<std::wstring>& earlier,
                                            const std::vector<std::wstring>& later)
{
    std::vector<std::wstring> gone;
    std::vector<std::wstring> added;
    std::set_difference(earlier.begin(), earlier.end(), later.begin(), later.end(), std::back_inserter(gone));
    std::set_difference(later.begin(), later.end(), earlier.begin(), earlier.end(), std::back_inserter(added));
    std::vector<std::wstring> lines;
    lines.reserve(gone.size() + added.size());
    for (const std::wstring& strLine : gone)
        lines.push_back(L"- " + strLine);
    for (const std::wstring& strLine : added)
        lines.push_back(L"+ " + strLine);
    std::sort(lines.begin(), lines.end(),
              [](const std::wstring& first, const std::wstring& second)
              {
                  const int nOrder = first.compare(2, std::wstring::npos, second, 2, std::wstring::npos);
                  return nOrder != 0 ? nOrder < 0 : first < second;
              });
    return lines;
}

std::string JoinLines(const std::vector<std::wstring>& lines)
{
    std::string strText;
    for (const std::wstring& strLine : lines)
    {
        for (const wchar_t ch : strLine)
            strText += ch < 0x80 ? static_cast<char>(ch) : '?';
        strText += '\n';
    }
    return strText;
}
