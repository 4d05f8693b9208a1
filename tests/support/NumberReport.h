// Tells the number of the list or command line with which the process crashes, or which takes longer than a minute, and
// how many of them a run is to take.
#pragma once

#include <windows.h>

#include <stdio.h>
#include <stdlib.h>

// A number from the environment.
inline unsigned int HostileSetting(const wchar_t* pszName, unsigned int nDefault)
{
    const wchar_t* pszValue = _wgetenv(pszName);
    return pszValue != nullptr ? wcstoul(pszValue, nullptr, 10) : nDefault;
}

class CNumberReport
{
public:
    CNumberReport()
    {
        s_pfnEarlier = SetUnhandledExceptionFilter(Report);
        static const HANDLE s_hWatch = CreateThread(nullptr, 0, Watch, nullptr, 0, nullptr);
        (void)s_hWatch;
    }
    ~CNumberReport()
    {
        s_nNumber = -1;
        SetUnhandledExceptionFilter(s_pfnEarlier);
    }
    void Begin(unsigned int nNumber) { s_nNumber = static_cast<LONG>(nNumber); }

private:
    static LONG WINAPI Report(EXCEPTION_POINTERS* pException)
    {
        printf("number %ld\n", s_nNumber);
        return s_pfnEarlier(pException);
    }
    static DWORD WINAPI Watch(void*)
    {
        for (LONG nSeen = -1;; nSeen = s_nNumber)
        {
            Sleep(60000);
            if (nSeen != s_nNumber || nSeen < 0)
                continue;
            printf("number %ld hangs\n", nSeen);
            fflush(stdout);
            TerminateProcess(GetCurrentProcess(), 1);
        }
    }

    static inline volatile LONG s_nNumber = -1;
    static inline LPTOP_LEVEL_EXCEPTION_FILTER s_pfnEarlier;
};
