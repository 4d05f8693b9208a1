// A caller leaves room for four arguments on the stack, ahead of the others. An entry puts the registers there, so that
// all arguments lie in a row, and asks Dispatch where to go: to the function, or back.
#include "tests/support/Calls.h"

#include <gtest/gtest.h>

#include <string.h>

struct CALL_ENTRY
{
    BYTE code[16]; // lea r11, [rip - 7]; jmp [pfnCommon]
    void* pfnCommon;
    void* pfnFunction;
    INT_PTR nResult; // at 32
    int nCalls;
    const char* pszName;
    std::vector<HANDLER>* pHandlers;
};

extern "C" void CommonEntry();
extern "C" INT_PTR ReturnResult();
extern "C" void* Dispatch(CALL_ENTRY* pEntry, UINT_PTR* args);
asm(R"(
.text
.globl CommonEntry
CommonEntry:
    movq %rcx, 8(%rsp)
    movq %rdx, 16(%rsp)
    movq %r8, 24(%rsp)
    movq %r9, 32(%rsp)
    pushq %r11
    subq $32, %rsp
    movq %r11, %rcx
    leaq 48(%rsp), %rdx
    call Dispatch
    addq $32, %rsp
    popq %r11
    movq 8(%rsp), %rcx
    movq 16(%rsp), %rdx
    movq 24(%rsp), %r8
    movq 32(%rsp), %r9
    jmp *%rax
.globl ReturnResult
ReturnResult:
    movq 32(%r11), %rax
    ret
)");

namespace
{

const size_t kMostEntries = 1024;

std::map<std::string, CALL_ENTRY*> s_entries;
WATCHER& s_watcher = *new WATCHER; // it may watch the end of the process
int s_nObjects = 0;
UINT_PTR s_nThread;       // of the first of them
bool s_bHandling = false; // handlers' own calls go on undisturbed

UINT_PTR CurrentThread() // without a call
{
    UINT_PTR nId;
    asm volatile("movq %%gs:0x48, %0" : "=r"(nId));
    return nId;
}

CALL_ENTRY* MakeEntry(const std::string& strName, void* pfn)
{
    static auto* const s_pBlock = static_cast<CALL_ENTRY*>(
        VirtualAlloc(nullptr, kMostEntries * sizeof(CALL_ENTRY), MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE));
    static const BYTE kCode[] = { 0x4C, 0x8D, 0x1D, 0xF9, 0xFF, 0xFF, 0xFF, 0xFF, 0x25, 3, 0, 0, 0 };
    CALL_ENTRY*& pEntry = s_entries[strName];
    if (pEntry == nullptr)
    {
        if (s_entries.size() > kMostEntries)
            abort();
        pEntry = new (s_pBlock + s_entries.size() - 1) CALL_ENTRY();
        memcpy(pEntry->code, kCode, sizeof(kCode));
        pEntry->pfnCommon = reinterpret_cast<void*>(&CommonEntry);
        pEntry->pszName = s_entries.find(strName)->first.c_str();
        pEntry->pHandlers = new std::vector<HANDLER>;
    }
    if (pfn != pEntry)
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

// Calls the function with the name and the slot of each import that has a name.
template <typename Visit>
void ForEachImport(HMODULE hModule, Visit visit)
{
    auto* pBase = reinterpret_cast<BYTE*>(hModule);
    const auto* pHeaders =
        reinterpret_cast<IMAGE_NT_HEADERS*>(pBase + reinterpret_cast<IMAGE_DOS_HEADER*>(pBase)->e_lfanew);
    const auto& imports = pHeaders->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    auto* pLibrary = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(pBase + imports.VirtualAddress);
    for (; pLibrary->Name != 0; pLibrary++)
    {
        const auto* pNames = reinterpret_cast<IMAGE_THUNK_DATA*>(pBase + pLibrary->OriginalFirstThunk);
        auto** ppfnSlots = reinterpret_cast<void**>(pBase + pLibrary->FirstThunk);
        for (int i = 0; pNames[i].u1.AddressOfData != 0; i++)
            if (!IMAGE_SNAP_BY_ORDINAL(pNames[i].u1.Ordinal))
                visit(reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(pBase + pNames[i].u1.AddressOfData)->Name, ppfnSlots + i);
    }
}

} // namespace

void* Dispatch(CALL_ENTRY* pEntry, UINT_PTR* args)
{
    if (s_bHandling || s_nObjects == 0 || CurrentThread() != s_nThread)
        return pEntry->pfnFunction;
    pEntry->nCalls++;
    s_bHandling = true;
    CALL call = { pEntry->pszName, args, pEntry->pfnFunction };
    INT_PTR nResult = 0;
    bool bHandled = s_watcher && s_watcher(call, nResult);
    if (!bHandled && !pEntry->pHandlers->empty())
    {
        nResult = pEntry->pHandlers->back()(call);
        bHandled = true;
    }
    pEntry->nResult = nResult;
    s_bHandling = false;
    return bHandled ? reinterpret_cast<void*>(&ReturnResult) : pEntry->pfnFunction;
}

INT_PTR CALL::Pass() const
{
    using FUNCTION = INT_PTR (*)(UINT_PTR, UINT_PTR, UINT_PTR, UINT_PTR, UINT_PTR, UINT_PTR, UINT_PTR, UINT_PTR,
                                 UINT_PTR, UINT_PTR, UINT_PTR, UINT_PTR);
    s_bHandling = false;
    const INT_PTR nResult = reinterpret_cast<FUNCTION>(pfnFunction)(
        args[0], args[1], args[2], args[3], args[4], args[5], args[6], args[7], args[8], args[9], args[10], args[11]);
    s_bHandling = true;
    return nResult;
}

void DivertImports()
{
    ForEachImport(GetModuleHandleW(nullptr),
                  [](const char* pszName, void** ppfn)
                  {
                      if (!IsCode(*ppfn))
                          return;
                      void* pEntry = MakeEntry(pszName, *ppfn);
                      DWORD nProtection = 0;
                      VirtualProtect(ppfn, sizeof(void*), PAGE_READWRITE, &nProtection);
                      *ppfn = pEntry;
                      VirtualProtect(ppfn, sizeof(void*), nProtection, &nProtection);
                  });
}

CCalls::CCalls(const std::map<std::string, HANDLER>& handlers)
{
    for (const auto& entry : s_entries)
        m_earlierCounts[entry.first] = entry.second->nCalls;
    for (const auto& handler : handlers)
        On(handler.first, handler.second);
    if (s_nObjects++ == 0)
        s_nThread = CurrentThread();
}

CCalls::~CCalls()
{
    s_bHandling = false; // which a handler that left by a jump couldn't
    s_nObjects--;
    if (m_bWatching)
        s_watcher = nullptr;
    for (const std::string& strName : m_names)
        s_entries[strName]->pHandlers->pop_back();
}

void CCalls::On(const std::string& strName, HANDLER handler)
{
    const auto entry = s_entries.find(strName);
    if (entry == s_entries.end())
    {
        ADD_FAILURE() << "nothing imports " << strName;
        return;
    }
    entry->second->pHandlers->push_back(std::move(handler));
    m_names.push_back(strName);
}

void CCalls::OnAll(WATCHER watcher)
{
    s_watcher = std::move(watcher);
    m_bWatching = true;
}

int CCalls::Count(const std::string& strName) const
{
    return s_entries.at(strName)->nCalls - m_earlierCounts.at(strName);
}

void* CCalls::EntryOf(const std::string& strName, void* pfn)
{
    return MakeEntry(strName, pfn);
}

int RunToExit(const std::function<int()>& function, const char* pszEnd, int nCodeArgument)
{
    // No exception can leave exit(): the compiler takes it for a function that throws none.
    static void* s_aPlace[5];
    static int s_nCode;
    const CCalls calls({ { pszEnd,
                           [=](CALL& call) -> INT_PTR
                           {
                               s_nCode = static_cast<int>(call.args[nCodeArgument]);
                               __builtin_longjmp(s_aPlace, 1);
                           } } });
    if (__builtin_setjmp(s_aPlace) != 0)
        return s_nCode;
    return function();
}
