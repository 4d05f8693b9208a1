// What a removal does to the associations of the product's image formats, on Windows before Vista and from Vista on.
#include "uninstall/AssociationRepair.h"

#include <gtest/gtest.h>
#include <shlobj.h>

#include "app/RunState.h"
#include "tests/support/Corner.h"
#include "tests/support/ImportHook.h"
#include "tests/support/RegistryCorner.h"

namespace
{

const wchar_t kFileExts[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts";
const wchar_t* const kFormats[] = { L".bmp", L".dib", L".gif", L".jpg", L".jpeg", L".tif", L".tiff",
                                    L".png", L".cmp", L".tga", L".wpg", L".jp2",  L".j2k", L".lcp" };
const wchar_t kForeignFormat[] = L".lcptest";

// One extension before and after; null: absent. On systems before Vista the association is a value of the extension's
// key, later the text "Progid" of its key "UserChoice".
struct CASE
{
    const wchar_t* pszExtension;
    const wchar_t* pszAssociation;
    const wchar_t* pszOld; // the value "LumacapOld"
    const wchar_t* pszAssociationLeft;
    const wchar_t* pszOldLeft;
};

const CASE kBeforeVista[] = {
    { L".bmp", L"Lumacap8.exe", L"bmpfile", L"bmpfile", nullptr },
    { L".dib", L"Lumacap8.exe", nullptr, nullptr, nullptr },
    { L".gif", L"Applications\\Lumacap8.exe", L"", nullptr, nullptr },
    { L".png", L"lumacap8.EXE", L"older", L"lumacap8.EXE", L"older" },
    { L".tga", nullptr, L"older", nullptr, L"older" },
    { L".wpg", L"\"C:\\Lumacap8.exe.old\"", L"Lumacap8.exe", L"Lumacap8.exe", nullptr },
    { kForeignFormat, L"Lumacap8.exe", L"older", L"Lumacap8.exe", L"older" },
};

const CASE kFromVistaOn[] = {
    { L".bmp", L"Applications\\Lumacap8.exe", L"bmpfile", nullptr, nullptr },
    { L".dib", L"Applications\\Lumacap8.exe", nullptr, nullptr, nullptr },
    { L".gif", L"Lumacap.8", L"older", L"Lumacap.8", nullptr },
    { L".png", L"Applications\\lumacap8.exe Lumacap8.exe", L"", L"Applications\\lumacap8.exe Lumacap8.exe", nullptr },
    { L".tga", nullptr, L"older", nullptr, nullptr },
    { L".wpg", L"x.Applications\\Lumacap8.exe.y", L"older", nullptr, nullptr },
    { kForeignFormat, L"Applications\\Lumacap8.exe", L"older", L"Applications\\Lumacap8.exe", L"older" },
};

struct FORM
{
    DWORD nMajor;   // version of Windows
    bool bFileExts; // the shell's own key is there; else the classes take its place
};

const FORM kForms[] = { { 5, true }, { 5, false }, { 6, true }, { 6, false } };

class AssociationRepair : public MachineCorner
{
protected:
    void SetUp() override
    {
        MachineCorner::SetUp();
        m_registry.ClearProduct();
        for (const wchar_t* pszFormat : kFormats)
            m_registry.Clear(HKEY_CLASSES_ROOT, pszFormat);
        m_registry.Clear(HKEY_CLASSES_ROOT, kForeignFormat);
    }

    void Use(const FORM& form)
    {
        m_form = form;
        g_osVersion.dwMajorVersion = form.nMajor;
        RemoveKey(HKEY_CURRENT_USER, kFileExts);
        if (form.bFileExts)
            MakeKey(HKEY_CURRENT_USER, kFileExts);
    }

    HKEY Root() const { return m_form.bFileExts ? HKEY_CURRENT_USER : HKEY_CLASSES_ROOT; }
    std::wstring Key(const std::wstring& strExtension) const
    {
        return m_form.bFileExts ? std::wstring(kFileExts) + L"\\" + strExtension : strExtension;
    }
    std::wstring AssociationKey(const std::wstring& strExtension) const
    {
        return m_form.nMajor < 6 ? Key(strExtension) : Key(strExtension) + L"\\UserChoice";
    }
    const wchar_t* AssociationValue() const
    {
        return m_form.nMajor >= 6 ? L"Progid" : m_form.bFileExts ? L"Application" : L"";
    }

    void Make(const CASE& row) const
    {
        RemoveKey(Root(), Key(row.pszExtension));
        MakeKey(Root(), Key(row.pszExtension));
        if (row.pszAssociation != nullptr)
            SetKeyText(Root(), AssociationKey(row.pszExtension), AssociationValue(), row.pszAssociation);
        if (row.pszOld != nullptr)
            SetKeyText(Root(), Key(row.pszExtension), L"LumacapOld", row.pszOld);
    }

    void ExpectLeft(const CASE& row) const
    {
        const std::wstring strAbsent = L"(absent)";
        EXPECT_EQ(KeyText(Root(), AssociationKey(row.pszExtension), AssociationValue()),
                  row.pszAssociationLeft ? row.pszAssociationLeft : strAbsent);
        EXPECT_EQ(KeyText(Root(), Key(row.pszExtension), L"LumacapOld"), row.pszOldLeft ? row.pszOldLeft : strAbsent);
        EXPECT_EQ(KeyExists(Root(), AssociationKey(row.pszExtension)),
                  m_form.nMajor < 6 || row.pszAssociationLeft != nullptr);
    }

    // Puts all rows in place together, and looks at each after the repair.
    template <size_t nRows>
    void Try(const CASE (&rows)[nRows]) const
    {
        for (const CASE& row : rows)
            Make(row);
        RepairFileAssociations();
        for (const CASE& row : rows)
        {
            SCOPED_TRACE(testing::PrintToString(m_form.nMajor) + testing::PrintToString(Key(row.pszExtension)));
            ExpectLeft(row);
        }
        EXPECT_FALSE(KeyExists(Root(), Key(L".jp2"))) << "a key was made";
    }

    CRegistryCorner m_registry;
    FORM m_form = kForms[0];
};

TEST_F(AssociationRepair, EachExtensionIsJudgedForItself)
{
    for (const FORM& form : kForms)
    {
        Use(form);
        form.nMajor < 6 ? Try(kBeforeVista) : Try(kFromVistaOn);
    }
}

// The last repair finds nothing to do. The user's choice stays in the first one, which counts as a change all the same.
TEST_F(AssociationRepair, EveryFormatIsRepairedAndTheShellHearsOfChangesAlone)
{
    for (const FORM& form : kForms)
    {
        Use(form);
        for (const wchar_t* pszFormat : kFormats)
            Make({ pszFormat, L"Applications\\Lumacap8.exe", L"older", nullptr, nullptr });
        CCallHook hook("SHELL32.dll", "SHChangeNotify", &SHChangeNotify);
        hook.Replace([](LONG nEvent, UINT nFlags, const void* pFirst, const void* pSecond)
                     { EXPECT_TRUE(nEvent == SHCNE_ASSOCCHANGED && nFlags == 0 && !pFirst && !pSecond); });
        {
            CCallHook deletion("ADVAPI32.dll", "RegDeleteKeyW", &RegDeleteKeyW);
            deletion.FailAll(ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED);
            RepairFileAssociations();
        }
        EXPECT_EQ(hook.Calls(), 1);
        RepairFileAssociations();
        RepairFileAssociations();
        EXPECT_EQ(hook.Calls(), form.nMajor < 6 ? 1 : 2);
        for (const wchar_t* pszFormat : kFormats) // what was saved becomes the association
            ExpectLeft({ pszFormat, nullptr, nullptr, form.nMajor < 6 ? L"older" : nullptr, nullptr });
    }
}

TEST_F(AssociationRepair, AllFormatsAreLookedAtBeforeTheFirstIsChanged)
{
    Use(kForms[0]);
    Make({ L".bmp", L"Lumacap8.exe", nullptr, nullptr, nullptr });
    Make({ L".lcp", L"viewer.exe", L"older", nullptr, nullptr });
    CCallHook hook("ADVAPI32.dll", "RegDeleteValueW", &RegDeleteValueW);
    hook.Replace(
        [&](HKEY hKey, const wchar_t* pszName)
        {
            if (hook.Calls() == 1)
                SetKeyText(Root(), Key(L".lcp"), L"Application", L"Lumacap8.exe");
            return hook.Original()(hKey, pszName);
        });
    RepairFileAssociations();
    ExpectLeft({ L".lcp", nullptr, nullptr, L"viewer.exe", nullptr });
}

} // namespace
