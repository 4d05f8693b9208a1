// Registry keys as the tests make and see them, with plain platform calls, and a corner that puts keys back.
#pragma once

#include <windows.h>

#include <string>
#include <utility>
#include <vector>

bool KeyExists(HKEY hRoot, const std::wstring& strKey);
bool ValueExists(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName);

// The text of a REG_SZ value; "(absent)" if there is none and "(type N)" if it is of another type, so that a comparison
// shows what is wrong.
std::wstring KeyText(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName);

// The number of a REG_DWORD value; fails the test if there is none.
DWORD KeyNumber(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName);

void SetKeyText(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName, const std::wstring& strText);
void MakeKey(HKEY hRoot, const std::wstring& strKey);
void RemoveKey(HKEY hRoot, const std::wstring& strKey); // with all below it
void RemoveValue(HKEY hRoot, const std::wstring& strKey, const std::wstring& strName);

std::vector<std::wstring> SubkeyNames(HKEY hRoot, const std::wstring& strKey); // sorted
std::vector<std::wstring> ValueNames(HKEY hRoot, const std::wstring& strKey);  // sorted; the unnamed one is ""

// A key with all below it, flattened to lines in order: a line for each key, `PATH`, and for each value,
// `PATH : NAME = TYPE:DATA`, where PATH begins with strLabel. The data are text for texts and hexadecimal for the rest.
// Paths that begin with one of the ignored texts are left out with all below them.
std::vector<std::wstring> FlattenKey(HKEY hRoot, const std::wstring& strKey, const std::wstring& strLabel,
                                     const std::vector<std::wstring>& ignored = {});

// The same of all keys that the product owns or has values in, one behind the other.
std::vector<std::wstring> FlattenProduct();

// Keeps a copy of named keys and puts each back at the end as it was: content, or absence.
class CRegistryCorner
{
public:
    CRegistryCorner() = default;
    ~CRegistryCorner();
    CRegistryCorner(const CRegistryCorner&) = delete;
    CRegistryCorner& operator=(const CRegistryCorner&) = delete;

    void Keep(HKEY hRoot, const std::wstring& strKey);

    // Keep, and remove: the test starts without the key.
    void Clear(HKEY hRoot, const std::wstring& strKey);

    // Clear for each key that the product owns: product, capabilities, application path, uninstall entry, classes.
    void ClearProduct();

private:
    struct VALUE
    {
        std::wstring strName;
        DWORD nType;
        std::vector<BYTE> data;
    };
    struct KEY
    {
        std::wstring strKey;
        std::vector<VALUE> values;
    };
    struct TREE
    {
        HKEY hRoot;
        std::wstring strKey;
        std::vector<KEY> keys; // a key stands before those below it; none if the tree was absent
    };

    static void Read(TREE& tree, const std::wstring& strKey);
    static void Restore(const TREE& tree);

    std::vector<TREE> m_trees;
};
