// A whole installation and its removal on each Windows that the program knows apart: the built setup and uninstaller,
// and two pictures of the machine. What they tell the system differs by the version; all else must not.
#include <gtest/gtest.h>

#include <algorithm>

#include "app/Product.h"
#include "tests/support/Corner.h"
#include "tests/support/Environment.h"
#include "tests/support/Machine.h"
#include "tests/support/MachineState.h"
#include "tests/support/ProcessRun.h"

namespace
{

const wchar_t kHandlerClass[] = L"CLSID\\{6B0F4C52-9D3E-4A71-8C25-1E7A90D4B3F6}";
const std::wstring kFormats = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts\\";

// What may differ, and is looked at value by value.
const wchar_t* const kByVersion[] = { L"\\Capabilities\\FileAssociations", L"\\FileExts\\", kHandlerClass,
                                      L"Classes\\.lcp" };

// The first one is the one that the pictures of the others are held against.
const struct
{
    const wchar_t* pszWindows;
    const wchar_t* pszTarget;
    bool bVista; // or later
} kCases[] = {
    { L"win7", L"Applications\\Lumacap8.exe", true },
    { L"winxp64", L"Applications\\Lumacap8.exe", false },
    { L"vista", L"Applications\\Lumacap8.exe", true },
    { L"win8", L"Lumacap.8", true },
    { L"win81", L"Lumacap.8", true },
    { L"win10", L"Lumacap.8", true },
};

class WindowsVersion : public ProductCorner
{
protected:
    static std::vector<std::wstring> TakePicture()
    {
        std::vector<std::wstring> lines = TakeMachinePicture();
        const auto differs = [](const std::wstring& strLine)
        {
            return std::any_of(std::begin(kByVersion), std::end(kByVersion),
                               [&](const wchar_t* psz) { return strLine.find(psz) != std::wstring::npos; });
        };
        lines.erase(std::remove_if(lines.begin(), lines.end(), differs), lines.end());
        return lines;
    }

    // The first picture is kept, each later one must be the same.
    static void ExpectSame(std::vector<std::wstring>& first, const std::vector<std::wstring>& picture)
    {
        if (first.empty())
            first = picture;
        EXPECT_EQ(JoinLines(PictureDifference(first, picture)), "");
    }

    // The associations as the shell of either age notes them; the product itself has noted earlier ones beside them.
    static void Associate(const wchar_t* pszFormat, const wchar_t* pszApplication, const wchar_t* pszChoice)
    {
        SetKeyText(HKEY_CURRENT_USER, kFormats + pszFormat, L"Application", pszApplication);
        SetKeyText(HKEY_CURRENT_USER, kFormats + pszFormat + L"\\UserChoice", L"Progid", pszChoice);
    }
    static std::wstring Association(const wchar_t* pszFormat)
    {
        const std::wstring strKey = kFormats + pszFormat;
        return KeyText(HKEY_CURRENT_USER, strKey, L"Application") + L" " +
               KeyText(HKEY_CURRENT_USER, strKey + L"\\UserChoice", L"Progid") + L" " +
               KeyText(HKEY_CURRENT_USER, strKey, L"LumacapOld");
    }

    void RemoveWhatStays() const
    {
        RemoveKey(HKEY_CURRENT_USER, kFormats.substr(0, kFormats.size() - 1));
        RemoveKey(HKEY_CLASSES_ROOT, kHandlerClass);
        RemoveKey(HKEY_CLASSES_ROOT, L".lcp");
    }

    std::vector<std::wstring> m_installed;
    std::vector<std::wstring> m_removed;
};

TEST_F(WindowsVersion, DecidesTheAssociationTargetTheHandlerAndTheRepairAndNothingElse)
{
    const CPackage package(At(L"package"));
    for (const auto& row : kCases)
    {
        SCOPED_TRACE(testing::PrintToString(row.pszWindows));
        RemoveWhatStays();
        {
            const CWindowsVersion windows(row.pszWindows);
            EXPECT_EQ(RunToEnd(package.Setup() + L" -s"), 0u);
        }
        ExpectSame(m_installed, TakePicture());
        const std::vector<std::wstring> formats = ValueNames(HKEY_LOCAL_MACHINE, kFileAssociationsKey);
        EXPECT_EQ(formats.size(), 14u);
        for (const std::wstring& strFormat : formats)
            EXPECT_EQ(KeyText(HKEY_LOCAL_MACHINE, kFileAssociationsKey, strFormat), row.pszTarget);
        EXPECT_EQ(KeyExists(HKEY_CLASSES_ROOT, kHandlerClass), row.bVista);

        // A handler that somebody has entered by hand tells whether the removal cares for it.
        EXPECT_EQ(RunToEnd(L"regsvr32.exe /s \"" + m_strProduct + L"\\ThumbLcp64.dll\""), 0u);
        Associate(L".jpg", L"Lumacap8.exe", L"Applications\\Lumacap8.exe");
        Associate(L".png", L"viewer.exe", L"Lumacap.8");
        {
            const CWindowsVersion windows(row.pszWindows);
            EXPECT_EQ(RunToEnd(L"\"" + m_strProduct + L"\\LumUnInst.exe\""), 0u);
        }
        EXPECT_FALSE(IsThere(m_strProduct));
        EXPECT_EQ(KeyExists(HKEY_CLASSES_ROOT, kHandlerClass), !row.bVista);
        EXPECT_EQ(Association(L".jpg"),
                  row.bVista ? L"Lumacap8.exe (absent) (absent)" : L"jpegfile Applications\\Lumacap8.exe (absent)");
        EXPECT_EQ(Association(L".png"),
                  row.bVista ? L"viewer.exe Lumacap.8 (absent)" : L"viewer.exe Lumacap.8 pngfile");
        RestartMachine();
        ExpectSame(m_removed, TakePicture());
    }
}

} // namespace
