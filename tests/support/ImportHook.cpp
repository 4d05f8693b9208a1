// The table may name a library more than once, and a function in each of them: all its slots are diverted together.
#include "tests/support/ImportHook.h"

#include <gtest/gtest.h>

#include <string.h>

void ForEachImport(HMODULE hModule, const std::function<void(const char*, const char*, void**)>& visit)
{
    BYTE* pBase = reinterpret_cast<BYTE*>(hModule);
    const auto* pDos = reinterpret_cast<IMAGE_DOS_HEADER*>(pBase);
    const auto* pHeaders = reinterpret_cast<IMAGE_NT_HEADERS*>(pBase + pDos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports = pHeaders->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    auto* pLibrary = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(pBase + imports.VirtualAddress);
    for (; pLibrary->Name != 0; pLibrary++)
    {
        const auto* pNames = reinterpret_cast<IMAGE_THUNK_DATA*>(pBase + pLibrary->OriginalFirstThunk);
        auto** ppfnSlots = reinterpret_cast<void**>(pBase + pLibrary->FirstThunk);
        for (int i = 0; pNames[i].u1.AddressOfData != 0; i++)
        {
            const auto* pName = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(pBase + pNames[i].u1.AddressOfData);
            if (!IMAGE_SNAP_BY_ORDINAL(pNames[i].u1.Ordinal))
                visit(reinterpret_cast<char*>(pBase + pLibrary->Name), pName->Name, ppfnSlots + i);
        }
    }
}

static std::vector<void**> FindSlots(const char* pszDll, const char* pszFunction)
{
    std::vector<void**> slots;
    ForEachImport(GetModuleHandleW(nullptr),
                  [&](const char* pszLibrary, const char* pszName, void** ppfnSlot)
                  {
                      if (_stricmp(pszLibrary, pszDll) == 0 && strcmp(pszName, pszFunction) == 0)
                          slots.push_back(ppfnSlot);
                  });
    return slots;
}

void StoreInTable(void** ppfnSlot, void* pfn)
{
    DWORD nProtection = 0;
    VirtualProtect(ppfnSlot, sizeof(void*), PAGE_READWRITE, &nProtection);
    *ppfnSlot = pfn;
    VirtualProtect(ppfnSlot, sizeof(void*), nProtection, &nProtection);
}

CImportHook::CImportHook(const char* pszDll, const char* pszFunction, void* pfnReplacement)
    : m_slots(FindSlots(pszDll, pszFunction))
{
    if (m_slots.empty())
    {
        ADD_FAILURE() << "the program doesn't import " << pszFunction << " of " << pszDll;
        return;
    }
    m_pfnOriginal = *m_slots[0];
    for (void** ppfnSlot : m_slots)
        StoreInTable(ppfnSlot, pfnReplacement);
}

CImportHook::~CImportHook()
{
    for (void** ppfnSlot : m_slots)
        StoreInTable(ppfnSlot, m_pfnOriginal);
}
