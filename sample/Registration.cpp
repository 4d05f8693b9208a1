// The product's registry entries as two tables: what it writes, and the little that it takes back by itself.

#include "sample/Registration.h"

#include <windows.h>

#include <iterator>
#include <wchar.h>

namespace
{

const wchar_t kDocument[] = L"LC8.Document";
const wchar_t kDocumentIcon[] = L"LC8.Document\\DefaultIcon";
const wchar_t kBrowserHost[] = L"SOFTWARE\\Mozilla\\NativeMessagingHosts\\capff";
const wchar_t kSettings[] = L"SOFTWARE\\Tandrel\\Lumacap 8";
const wchar_t kSettingsView[] = L"SOFTWARE\\Tandrel\\Lumacap 8\\View";
#define FILE_EXTS L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts\\"

struct RegistryText
{
    HKEY hRoot;
    const wchar_t* pszKey;
    const wchar_t* pszValue; // null for the key's default value
    const wchar_t* pszData;
    bool bInProductFolder; // the data are a name to be completed to a path in the product's folder
};

const RegistryText kWritten[] = {
    { HKEY_CLASSES_ROOT, kDocument, nullptr, L"Lumacap image", false },
    { HKEY_CLASSES_ROOT, kDocumentIcon, nullptr, L"Lumacap8.exe,0", true },
    { HKEY_LOCAL_MACHINE, kBrowserHost, nullptr, L"capff.json", true },
    { HKEY_CURRENT_USER, kBrowserHost, nullptr, L"capff.json", true },
    { HKEY_CURRENT_USER, kSettings, L"Language", L"en", false },
    { HKEY_CURRENT_USER, kSettings, L"SampleFolder", L"Samples", true },
    { HKEY_CURRENT_USER, kSettingsView, L"Zoom", L"100", false },
    { HKEY_CURRENT_USER, FILE_EXTS L".bmp", L"LumacapOld", L"Applications\\mspaint.exe", false },
    { HKEY_CURRENT_USER, FILE_EXTS L".jpg", L"LumacapOld", L"jpegfile", false },
    { HKEY_CURRENT_USER, FILE_EXTS L".png", L"LumacapOld", L"pngfile", false },
    { HKEY_CURRENT_USER, FILE_EXTS L".lcp", L"LumacapOld", L"LC7.Document", false },
};

struct TakenBack
{
    HKEY hRoot;
    const wchar_t* pszKey;
    const wchar_t* pszValue; // null for the whole key
};

const TakenBack kTakenBack[] = {
    { HKEY_CLASSES_ROOT, kDocumentIcon, nullptr },
    { HKEY_CURRENT_USER, FILE_EXTS L".bmp", L"LumacapOld" },
};

} // namespace

void RegisterProduct()
{
    wchar_t szFolder[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, szFolder, MAX_PATH);
    if (wchar_t* pszName = wcsrchr(szFolder, L'\\'))
        pszName[1] = L'\0';

    for (const RegistryText& text : kWritten)
    {
        wchar_t szData[MAX_PATH + 32];
        const int cch =
            _snwprintf(szData, std::size(szData), L"%ls%ls", text.bInProductFolder ? szFolder : L"", text.pszData);
        if (cch >= 0 && cch < static_cast<int>(std::size(szData)))
            RegSetKeyValueW(text.hRoot, text.pszKey, text.pszValue, REG_SZ, szData, (cch + 1) * sizeof(wchar_t));
    }
}

void UnregisterProduct()
{
    for (const TakenBack& entry : kTakenBack)
        if (entry.pszValue != nullptr)
            RegDeleteKeyValueW(entry.hRoot, entry.pszKey, entry.pszValue);
        else
            RegDeleteTreeW(entry.hRoot, entry.pszKey);
}
