// Parts of the test program that need a process of their own.
#include "tests/support/ChildRole.h"

#include <windows.h>

static const wchar_t kSwitch[] = L"--as";
static CChildRole* s_pFirst; // filled while the global objects come into being, in any order

CChildRole::CChildRole(const wchar_t* pszName, int (*pfnRole)())
    : m_pszName(pszName), m_pfnRole(pfnRole), m_pNext(s_pFirst)
{
    s_pFirst = this;
}

bool CChildRole::Run(int argc, wchar_t** argv, int& nResult)
{
    if (argc < 3 || wcscmp(argv[1], kSwitch) != 0)
        return false;
    for (const CChildRole* pRole = s_pFirst; pRole != nullptr; pRole = pRole->m_pNext)
    {
        if (wcscmp(argv[2], pRole->m_pszName) == 0)
        {
            nResult = pRole->m_pfnRole();
            return true;
        }
    }
    return false;
}

std::wstring CChildRole::CommandLine(const std::wstring& strName)
{
    wchar_t szProgram[MAX_PATH];
    GetModuleFileNameW(nullptr, szProgram, MAX_PATH);
    return L"\"" + std::wstring(szProgram) + L"\" " + kSwitch + L" " + strName;
}
