// Command lines that nobody would write, by what holds for all of them. The scans' own rules are tested elsewhere.
// Numbered from LUMACAP_HOSTILE_FIRST on, as many as LUMACAP_HOSTILE_SWITCHES says.
#include <gtest/gtest.h>
#include <shlobj.h>

#include <algorithm>
#include <stdlib.h>

#include "app/RunState.h"
#include "tests/support/Corner.h"
#include "tests/support/HeapGuard.h"
#include "tests/support/HostileLists.h"
#include "tests/support/ImportHook.h"
#include "tests/support/NumberReport.h"

namespace
{

using ARGUMENTS = std::vector<std::wstring>;

bool Equals(const std::wstring& strArgument, const wchar_t* psz)
{
    return _wcsicmp(strArgument.c_str(), psz) == 0;
}

bool TakesTheNext(const std::wstring& strArgument)
{
    return strArgument == L"-instdir" || strArgument == L"-instport";
}

// Both scans of an install, which ends for want of a package ahead of all work.
class HostileSwitches : public MachineCorner
{
protected:
    HostileSwitches()
    {
        StartHeapGuard();
        m_exit.Replace([](int nCode) { throw nCode; });
        m_browser.FailAll(0);
        m_boxes.FailAll(0, IDOK);
        m_library.FailAll(ERROR_MOD_NOT_FOUND);
        m_folders.FailAll(0, E_FAIL);
    }

    std::wstring Scan(const ARGUMENTS& arguments) const
    {
        ResetProgramState();
        ARGUMENTS all = { L"setup.exe", L"-install" };
        all.insert(all.end(), arguments.begin(), arguments.end());
        const CArguments commandLine(all);
        int nCode = 0;
        try
        {
            nCode = theApp.InitInstance();
        }
        catch (int nExit)
        {
            nCode = -nExit;
        }
        std::wstring strState = std::to_wstring(nCode);
        for (const int n :
             { g_nSilent, g_nInstallKind, g_bFreshInstall, g_bUpgrade, g_bRunAfter, g_bAutoStart, g_bDeskIcon })
            strState += L" " + std::to_wstring(n);
        return strState + L" " + g_strInstDir.GetString() + L"|" + g_strSfxName.GetString();
    }

    CCallHook<decltype(&exit)> m_exit{ "msvcrt.dll", "exit" };
    CCallHook<decltype(&ShellExecuteW)> m_browser{ "SHELL32.dll", "ShellExecuteW" };
    CCallHook<decltype(&LoadLibraryW)> m_library{ "KERNEL32.dll", "LoadLibraryW" };
    CCallHook<decltype(&SHGetFolderPathW)> m_folders{ "SHELL32.dll", "SHGetFolderPathW" };
    CNumberReport m_report;
    CCallHook<decltype(&MessageBoxW)> m_boxes{ "USER32.dll", "MessageBoxW" };
};

ARGUMENTS Joined(ARGUMENTS first, const ARGUMENTS& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST_F(HostileSwitches, StopsOrdersAndRepetitionsCountAsTheyShould)
{
    const unsigned int nFirst = HostileSetting(L"LUMACAP_HOSTILE_FIRST", 1);
    const unsigned int nCommandLines = HostileSetting(L"LUMACAP_HOSTILE_SWITCHES", 5000);
    const size_t nEarlier = DamagedBlocks();
    unsigned int nBehindStops = 0;
    unsigned int nExchanged = 0;
    for (unsigned int nNumber = nFirst; nNumber < nFirst + nCommandLines; nNumber++)
    {
        m_report.Begin(nNumber);
        ARGUMENTS arguments = HostileArguments(nNumber);
        const std::wstring strState = Scan(arguments);

        // Behind the stop the switches of the mode change nothing.
        const bool bStops = std::any_of(arguments.begin(), arguments.end(),
                                        [](const auto& str) { return Equals(str, L"-v") || Equals(str, L"-sconf"); });
        if (bStops && !TakesTheNext(arguments.back()))
        {
            nBehindStops++;
            EXPECT_EQ(Scan(Joined(arguments, { L"-sconf", L"-s", L"-v", L"-sfxname=C:\\other\\x.exe" })), strState)
                << nNumber;
        }

        // Of two values the last one wins, folders and packages alike.
        if (nNumber % 2 == 0)
        {
            EXPECT_EQ(Scan(Joined(arguments, { L"-instdir", L"C:\\first", L"-instdir", L"C:\\last" })),
                      Scan(Joined(arguments, { L"-instdir", L"C:\\last" })))
                << nNumber;
            EXPECT_STREQ(g_strInstDir, L"C:\\last") << nNumber;
        }
        else
        {
            EXPECT_EQ(Scan(Joined({ L"-sfxname=C:\\first\\x", L"-sfxname=C:\\last\\x" }, arguments)),
                      Scan(Joined({ L"-sfxname=C:\\last\\x" }, arguments)))
                << nNumber;
        }

        // Switches of the install that take no value and aren't one may change places.
        std::vector<size_t> free;
        for (size_t i = 0; i < arguments.size(); i++)
            for (const wchar_t* psz : { L"-runafter", L"-autostart", L"-nodeskico", L"-allusers", L"--s", L"-" })
                if (Equals(arguments[i], psz) && (i == 0 || !TakesTheNext(arguments[i - 1])))
                    free.push_back(i);
        for (size_t i = 1; i < free.size(); i++, nExchanged++)
            std::swap(arguments[free[0]], arguments[free[i]]);
        if (free.size() > 1)
        {
            EXPECT_EQ(Scan(arguments), strState) << nNumber;
        }
    }
    EXPECT_EQ(DamagedBlocks(), nEarlier);
    EXPECT_GT(nBehindStops, nCommandLines / 10);
    EXPECT_GT(nExchanged, nCommandLines / 10);
    printf("%u command lines: %u with a stop, %u exchanges\n", nCommandLines, nBehindStops, nExchanged);
}

} // namespace
