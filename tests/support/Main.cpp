// Start of the test program. The tests change the machine that they run on, so nothing runs on one that isn't said to
// be a throwaway machine.
#include <afxwin.h>

#include <gtest/gtest.h>

#include <new>
#include <stdio.h>
#include <stdlib.h>

#include "app/RunState.h"
#include "tests/support/Calls.h"
#include "tests/support/Programs.h"
#include "tests/support/World.h"

const int kWrongMachine = 3;
const int kCrash = 4;

void Fail(const std::string& strWhat)
{
    ADD_FAILURE() << strWhat;
}

// A crash ends the process at once: the system's own dialog would wait for somebody.
static LONG WINAPI ReportCrash(EXCEPTION_POINTERS* pException)
{
    printf("crash: exception %08lX at %p\n", pException->ExceptionRecord->ExceptionCode,
           pException->ExceptionRecord->ExceptionAddress);
    fflush(stdout);
    TerminateProcess(GetCurrentProcess(), kCrash);
    return EXCEPTION_EXECUTE_HANDLER;
}

int wmain(int argc, wchar_t** argv)
{
    const wchar_t* pszPromise = _wgetenv(L"LUMACAP_THROWAWAY_MACHINE");
    if (pszPromise == nullptr || wcscmp(pszPromise, L"1") != 0)
    {
        printf("These tests install and remove software: they need a machine to be thrown away, as `make test` has.\n");
        return kWrongMachine;
    }
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    SetUnhandledExceptionFilter(ReportCrash);
    DivertImports();
    int nResult = 0;
    if (CChildRole::Run(argc, argv, nResult))
        return nResult;

    // The program's objects entered this process in the product's list of instances, where every setup under test would
    // find it; and the list would outlive the programs under test, with what they leave in it. A list of its own takes
    // its place.
    g_InstanceManager.~COXInstanceManager();
    new (&g_InstanceManager) COXInstanceManager(L"Lumacap.Tests", 1024, true);
    AfxWinInit(GetModuleHandleW(nullptr), nullptr, GetCommandLineW(), SW_SHOWNORMAL);
    ResetProgramState();

    // The desktop comes up with its first user; it must not be the child of a program under test, and end with it.
    GetDesktopWindow();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
