#include "uninstall/AssociationRepair.h"

#include <afx.h>
#include <shlobj.h>

#include "app/Product.h"
#include "foundation/AssocExtensions.h"
#include "foundation/BoundedText.h"
#include "foundation/Owners.h"
#include "foundation/RegistryValues.h"
#include "foundation/SystemFacts.h"

static constexpr wchar_t kUserChoice[] = L"UserChoice";

// Before Windows Vista: what to put back, by the index of g_aAssocExts; empty for nothing.
static wchar_t g_aSavedAssoc[kAssocExtCount][kRegistryTextCapacity];

namespace
{
// The key below which each extension has its own, and the value there that holds its association.
struct AssociationBase
{
    CKeyOwner key;
    const wchar_t* pszValueName = nullptr;
};
} // namespace

static void OpenAssociationBase(AssociationBase& base)
{
    if (RegOpenKeyExW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts", 0,
                      KEY_ALL_ACCESS, base.key.Receive()) == ERROR_SUCCESS)
        base.pszValueName = L"Application";
    else
        RegOpenKeyExW(HKEY_CLASSES_ROOT, nullptr, 0, KEY_ALL_ACCESS, base.key.Receive());
}

static bool OpenExtension(const AssociationBase& base, int nIndex, CKeyOwner& extension)
{
    return base.key.IsOpen() && RegOpenKeyExW(base.key, g_aAssocExts[nIndex].pszExtension, 0, KEY_ALL_ACCESS,
                                              extension.Receive()) == ERROR_SUCCESS;
}

static bool PointsAtProduct(const CString& strAssociation)
{
    return strAssociation.Find(kProductExe) >= 0;
}

static void Survey(const AssociationBase& base, int nIndex)
{
    g_aSavedAssoc[nIndex][0] = 0;
    g_aAssocExts[nIndex].nFlag = 0;
    CKeyOwner extension;
    if (!OpenExtension(base, nIndex, extension))
        return;

    if (IsNT6OrLater())
    {
        // A choice of the class "Lumacap.8" is left alone, although newer systems are offered that class.
        const CString strChoice = ReadRegString(extension, kUserChoice, L"Progid");
        g_aAssocExts[nIndex].nFlag = strChoice.Find(kProductApplication) >= 0;
        return;
    }

    // One buffer for both texts, which is not to be tidied away: what was saved without a terminator, or of no bytes at
    // all, is taken with what it leaves of the association.
    wchar_t szText[kRegistryTextCapacity] = L"";
    if (!QueryRegText(extension, base.pszValueName, szText))
        return;
    const bool bOurs = PointsAtProduct(szText);
    g_aAssocExts[nIndex].nFlag = bOurs;
    if (!bOurs || QueryRegText(extension, kSavedAssociation, szText))
        CopyBounded(g_aSavedAssoc[nIndex], szText);
}

// True if the association was the product's: that counts as a change, even if the platform refused it.
static bool RemoveUserChoice(HKEY hExtension, int nIndex)
{
    const bool bOurs = g_aAssocExts[nIndex].nFlag != 0;
    if (bOurs)
        RegDeleteKeyW(hExtension, kUserChoice);
    RegDeleteValueW(hExtension, kSavedAssociation);
    return bOurs;
}

// True if the association was the product's, as above. One without a trace of the product keeps what the product saved.
static bool RestoreAssociation(HKEY hExtension, const wchar_t* pszValueName, const CString& strSaved)
{
    if (!PointsAtProduct(QueryRegText(hExtension, pszValueName)))
        return false;
    if (strSaved.IsEmpty())
        RegDeleteValueW(hExtension, pszValueName);
    else
        RegSetValueExW(hExtension, pszValueName, 0, REG_SZ,
                       reinterpret_cast<const BYTE*>(static_cast<const wchar_t*>(strSaved)),
                       static_cast<DWORD>((strSaved.GetLength() + 1) * sizeof(wchar_t)));
    RegDeleteValueW(hExtension, kSavedAssociation);
    return true;
}

static bool Repair(const AssociationBase& base, int nIndex)
{
    CKeyOwner extension;
    if (!OpenExtension(base, nIndex, extension))
        return false;
    return IsNT6OrLater() ? RemoveUserChoice(extension, nIndex)
                          : RestoreAssociation(extension, base.pszValueName, g_aSavedAssoc[nIndex]);
}

void RepairFileAssociations()
{
    AssociationBase base;
    OpenAssociationBase(base);
    // All formats are looked at before the first one is changed.
    if (base.key.IsOpen())
    {
        for (int i = 0; i < kAssocExtCount; ++i)
            Survey(base, i);
    }

    bool bChanged = false;
    for (int i = 0; i < kAssocExtCount; ++i)
        bChanged = Repair(base, i) || bChanged;
    if (bChanged)
        SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_IDLIST, nullptr, nullptr);
}
