// Each block has a chained header in front and a fixed pattern behind it. The platform's own checks, where they can be
// switched on, round sizes up and miss an overrun by one byte.
#include "tests/support/HeapGuard.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "foundation/BoundFunction.h"
#include "tests/support/ImportHook.h"

namespace
{

const uint64_t kMagic = 0x9E3779B97F4A7C15;
const size_t kTail = 16;
const int kTailByte = 0xA5;
const int kFreedByte = 0xDD;

struct alignas(16) HEADER
{
    HEADER* pNext;
    HEADER* pPrevious;
    size_t cb;
    uint64_t nMagic; // last, so that it lies right before the block
};

HEADER s_all = { &s_all, &s_all, 0, 0 };
size_t s_nLive;
size_t s_cbLive;
size_t s_cbMost;
size_t s_cbAtStart;
size_t s_nDamaged;
decltype(&malloc) s_pfnMalloc;
decltype(&realloc) s_pfnRealloc;
decltype(&free) s_pfnFree;

HEADER* HeaderOf(void* pBlock)
{
    return static_cast<HEADER*>(pBlock) - 1;
}

bool IsOurs(void* pBlock)
{
    return HeaderOf(pBlock)->nMagic == kMagic;
}

bool IsWhole(HEADER* pHeader)
{
    const auto* pTail = reinterpret_cast<unsigned char*>(pHeader + 1) + pHeader->cb;
    for (size_t i = 0; i < kTail; i++)
        if (pTail[i] != kTailByte)
            return false;
    return pHeader->nMagic == kMagic;
}

void* GuardedMalloc(size_t cb)
{
    auto* pHeader = static_cast<HEADER*>(s_pfnMalloc(sizeof(HEADER) + cb + kTail));
    if (pHeader == nullptr)
        return nullptr;
    *pHeader = { s_all.pNext, &s_all, cb, kMagic };
    s_all.pNext->pPrevious = pHeader;
    s_all.pNext = pHeader;
    s_nLive++;
    s_cbLive += cb;
    s_cbMost = s_cbLive > s_cbMost ? s_cbLive : s_cbMost;
    memset(reinterpret_cast<char*>(pHeader + 1) + cb, kTailByte, kTail);
    return pHeader + 1;
}

void* GuardedCalloc(size_t nCount, size_t cb)
{
    void* pBlock = GuardedMalloc(nCount * cb);
    return pBlock != nullptr ? memset(pBlock, 0, nCount * cb) : nullptr;
}

void GuardedFree(void* pBlock)
{
    if (pBlock == nullptr || !IsOurs(pBlock))
        return s_pfnFree(pBlock);
    HEADER* pHeader = HeaderOf(pBlock);
    s_nDamaged += !IsWhole(pHeader);
    pHeader->pPrevious->pNext = pHeader->pNext;
    pHeader->pNext->pPrevious = pHeader->pPrevious;
    s_nLive--;
    s_cbLive -= pHeader->cb;
    memset(pHeader, kFreedByte, sizeof(HEADER) + pHeader->cb);
    s_pfnFree(pHeader);
}

void* GuardedRealloc(void* pBlock, size_t cb)
{
    if (pBlock == nullptr)
        return GuardedMalloc(cb);
    if (!IsOurs(pBlock))
        return s_pfnRealloc(pBlock, cb);
    void* pNew = GuardedMalloc(cb);
    const size_t cbOld = HeaderOf(pBlock)->cb;
    if (pNew != nullptr)
        memcpy(pNew, pBlock, cb < cbOld ? cb : cbOld);
    GuardedFree(pBlock);
    return pNew;
}

} // namespace

// Not the address that this program knows, which leads through its import table.
template <typename Function>
static void Bind(Function& pfn, const char* pszName)
{
    pfn = FindFunction<Function>(GetModuleHandleW(L"msvcrt.dll"), pszName);
}

void StartHeapGuard()
{
    Bind(s_pfnMalloc, "malloc");
    Bind(s_pfnRealloc, "realloc");
    Bind(s_pfnFree, "free");
    // The one that frees comes first, and takes also what isn't guarded.
    static CImportHook s_free("msvcrt.dll", "free", &GuardedFree);
    static CImportHook s_realloc("msvcrt.dll", "realloc", &GuardedRealloc);
    static CImportHook s_calloc("msvcrt.dll", "calloc", &GuardedCalloc);
    static CImportHook s_malloc("msvcrt.dll", "malloc", &GuardedMalloc);
}

size_t LiveBlocks()
{
    return s_nLive;
}

void CountBytesFromHere()
{
    s_cbMost = s_cbAtStart = s_cbLive;
}

size_t MostBytes()
{
    return s_cbMost - s_cbAtStart;
}

size_t DamagedBlocks()
{
    size_t nDamaged = s_nDamaged;
    for (HEADER* pHeader = s_all.pNext; pHeader != &s_all; pHeader = pHeader->pNext)
        nDamaged += !IsWhole(pHeader);
    return nDamaged;
}
