// An entry is a piece of code with its data behind it. It must preserve all registers and the stack on the way to the
// function, so it is machine code:
//     inc [calls]; dec [failures to come]; js pass; lea rcx, [entry]; jmp [FailCall]; pass: jmp [function]
#include "tests/support/CallFaults.h"

#include <string.h>

#include <map>

#include "tests/support/ImportHook.h"

namespace
{

struct ENTRY
{
    BYTE code[40];
    void* pfnFunction; // at 40
    void* pfnFail;     // at 48
    LONG nCalls;       // at 56
    LONG nToFail;      // at 60; below zero when there is nothing to fail
    INT_PTR nResult;
    DWORD nError;
    int nFailures;
};

const BYTE kCode[] = { 0xFF, 0x05, 50,   0,    0,    0,    0xFF, 0x0D, 48,   0, 0, 0,
                       0x78, 13,   0x48, 0x8D, 0x0D, 0xEB, 0xFF, 0xFF, 0xFF, // -21
                       0xFF, 0x25, 21,   0,    0,    0,    0xFF, 0x25, 7,    0, 0, 0 };
const size_t kMostEntries = 1024;

INT_PTR FailCall(ENTRY* pEntry)
{
    pEntry->nFailures++;
    SetLastError(pEntry->nError);
    return pEntry->nResult;
}

std::map<std::string, ENTRY*>& Entries()
{
    static std::map<std::string, ENTRY*> s_entries;
    return s_entries;
}

ENTRY* FindEntry(const char* pszFunction)
{
    const auto position = Entries().find(pszFunction);
    return position != Entries().end() ? position->second : nullptr;
}

ENTRY* MakeEntry(const char* pszFunction, void* pfn)
{
    static auto* const s_pBlock = static_cast<ENTRY*>(
        VirtualAlloc(nullptr, kMostEntries * sizeof(ENTRY), MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE));
    ENTRY*& pEntry = Entries()[pszFunction];
    if (pEntry == nullptr)
    {
        if (Entries().size() > kMostEntries)
            abort();
        pEntry = s_pBlock + Entries().size() - 1;
        memcpy(pEntry->code, kCode, sizeof(kCode));
        pEntry->pfnFail = reinterpret_cast<void*>(&FailCall);
    }
    pEntry->pfnFunction = pfn;
    return pEntry;
}

// The table also holds the addresses of variables.
bool IsCode(const void* pAddress)
{
    const DWORD kExecutable = PAGE_EXECUTE | PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    MEMORY_BASIC_INFORMATION region = {};
    VirtualQuery(pAddress, &region, sizeof(region));
    return (region.Protect & kExecutable) != 0;
}

} // namespace

CCallFaults::CCallFaults()
{
    ForEachImport(GetModuleHandleW(nullptr),
                  [this](const char*, const char* pszFunction, void** ppfn)
                  {
                      if (!IsCode(*ppfn))
                          return;
                      m_slots.push_back({ ppfn, *ppfn });
                      MakeEntry(pszFunction, *ppfn);
                  });
    for (const auto& entry : Entries())
        entry.second->nToFail = -1;
    ForEachImport(GetModuleHandleW(nullptr),
                  [](const char*, const char* pszFunction, void** ppfn)
                  {
                      if (IsCode(*ppfn))
                          StoreInTable(ppfn, FindEntry(pszFunction));
                  });
    for (const auto& entry : Entries())
        entry.second->nCalls = entry.second->nFailures = 0;
}

CCallFaults::~CCallFaults()
{
    for (const SLOT& slot : m_slots)
        StoreInTable(slot.ppfn, slot.pfnOriginal);
}

void* CCallFaults::Replace(const char* pszFunction, void* pfn)
{
    ENTRY* pEntry = FindEntry(pszFunction);
    void* pfnEarlier = pEntry->pfnFunction;
    pEntry->pfnFunction = pfn;
    return pfnEarlier;
}

void* CCallFaults::Precede(const char* pszFunction, void* pfn)
{
    ForEachImport(GetModuleHandleW(nullptr),
                  [&](const char*, const char* pszImport, void** ppfn)
                  {
                      if (strcmp(pszImport, pszFunction) == 0)
                          StoreInTable(ppfn, pfn);
                  });
    return FindEntry(pszFunction);
}

void CCallFaults::Fail(const char* pszFunction, int nCalls, INT_PTR nResult, DWORD nError)
{
    ENTRY* pEntry = FindEntry(pszFunction);
    if (pEntry == nullptr)
        pEntry = MakeEntry(pszFunction, nullptr);
    pEntry->nResult = nResult;
    pEntry->nError = nError;
    pEntry->nToFail = nCalls;
}

void* CCallFaults::EntryOf(const char* pszFunction, void* pfn)
{
    return MakeEntry(pszFunction, pfn);
}

int CCallFaults::Failures(const char* pszFunction)
{
    const ENTRY* pEntry = FindEntry(pszFunction);
    return pEntry != nullptr ? pEntry->nFailures : 0;
}

std::set<std::string> CCallFaults::Called()
{
    std::set<std::string> names;
    for (const auto& entry : Entries())
        if (entry.second->nCalls > 0)
            names.insert(entry.first);
    return names;
}
