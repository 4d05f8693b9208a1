// Every platform call that the flows make fails once, at its first use, and then at every use: each run goes to its end
// with the result, the acts and the boxes that it should have, and nothing that isn't the product's suffers. The runs
// follow each other in one process of their own, and in a new one behind each that breaks it.
#include <afxwin.h>
#include <shlobj.h>

#include <filesystem>
#include <regex>

#include "app/RunState.h"
#include "app/StartBindings.h"
#include "tests/support/Calls.h"
#include "tests/support/SharedList.h"
#include "tests/support/Windows.h"
#include "tests/support/World.h"

namespace
{

// Whose failure is -1. That of the registry is an error's number, and that of all others 0.
const std::wregex kMinusOne(L"^(Co[CI]|File\\d|FindFirst|GetFileAttr|Link|Rtl|SHGet|Wait|_wa|_we|fclose|fw)");

// What nobody fails: it works on texts and memory alone, tells of the process itself or ends it, serves exceptions or
// counts references. CoInitialize, which is called but once in a process, fails there. All else that any of the runs
// calls has to fail in one of them.
const std::wregex
    kExcused(L"^_?(is|mem|str|v|wcs|ws)|alloc|free|GetActiveW|GetCurrent[PT]|LastError|GetSystemInfo|exit|"
             L"CriticalSection|Exception|Rtl[^G]|Semaphore|TlsGet|^(File|Link)[12]$|CoInit");

const std::map<std::wstring, TEXTS> kFlows = {
    { L"install", { L"C:\\corner\\package\\setup.exe|-install|-s|-runafter", L"TKHRE 0" } },
    { L"relaunch", { L"C:\\corner\\target\\LumUnInst.exe|-s", L"TX 0" } },
    { L"removal", { L"C:\\corner\\temp\\uni1.tmp|-delself|C:\\corner\\target\\LumUnInst.exe|-s", L"hrS 0" } },
};

// The cases that end otherwise than usual: patterns of `FLOW once|all`, functions, outcome if it isn't the usual one.
// Behind a stroke stands a function that always fails too, since the flow comes to the other one only then.
const wchar_t* const kExceptions[][3] = {
    { L"install|removal", L"GetPrivateProfileSectionW/MoveFileExW WritePrivateProfileSectionW/MoveFileExW", L"" },
    { L"install", L"MessageBoxW/Link20", L"" },
    // No version of the package can be found out, or its list isn't seen. With one failing use it is the installed
    // product that has none.
    { L"install all",
      L"GetFileVersionInfoSizeW GetFileVersionInfoW GetModuleFileNameW GetProcAddress GetSystemDirectoryW LoadLibraryW "
      L"VerQueryValueW _waccess",
      L"T(This)W 1" },
    { L"install", L"ShellExecuteW/GetFileVersionInfoSizeW", L"T(This) 1" },
    // The busy file isn't come to, or its successor can't be left for the boot: no restart, the product starts.
    { L"install all", L"CopyFileW FindFirstFileW WritePrivateProfileSectionW/MoveFileExW _wfopen fgetws", L"TKHRP 0" },
    // The earlier folder, where the busy file lies, isn't found.
    { L"install", L"GetWindowsDirectoryW/RegQueryValueExW RegOpenKeyExW RegQueryValueExW", L"TKHRP 0" },
    // Nothing tells that the system has a thumbnail cache, or its handler isn't started.
    { L"install", L"GetModuleHandleW RtlGetVersion", L"TKRE 0" },
    { L"install once", L"CreateProcessW GetProcAddress", L"TKRE 0" },
    { L"removal", L"GetModuleHandleW GetProcAddress RtlGetVersion", L"rS 0" },
    { L"removal once", L"CreateProcessW", L"rS 0" },
    // The users' hives aren't listed, aren't opened or don't tell of their folders.
    { L"removal all", L"RegEnumKeyW RegOpenKeyExW RegQueryValueExW", L"hr 0" },
    // What is started or ended is what fails. Without the shared list the process is as if alone.
    { L"install all", L"CreateProcessW", L"TKE 0" },
    { L"install", L"ExitWindowsEx", L"TKHR 0" },
    { L"removal all", L"CreateProcessW", L"S 0" },
    { L"relaunch", L"_wexecl", L"T 0" },
    { L"install", L"CreateFileMappingW MapViewOfFile OpenProcess TerminateProcess", L"KHRE 0" },
    { L"relaunch", L"CreateFileMappingW MapViewOfFile OpenProcess TerminateProcess", L"X 0" },
    // The framework's lock throws where it can't be made, which ends the process ahead of its first act.
    { L"", L"CreateMutexW", L"exception -1" },
    // The two failures of links that are told.
    { L"install", L"Link7", L"T(SetDescription)KHRE 0" },
    { L"install", L"Link20", L"T(SetPath)KHRE 0" },
    { L"install once", L"MessageBoxW/Link20", L"T(SetPath)KHRE 0" },
};

// What isn't the product's.
const std::wstring kFiles = L"my|package\\ind.dll|target\\my|target\\Sub\\my|all\\Desktop\\my|all\\Programs\\Other\\my|"
                            L"user\\Programs\\Startup\\my|other\\Programs\\my";
const std::wstring kOtherHive = L"S-1-5-21-7-7-7-1001\\"; // of a user who is logged on as well: the last of the hives

const std::pair<HKEY, std::wstring> kKeys[] = {
    { HKEY_CLASSES_ROOT, L"Applications\\Other.exe" },
    { kUser, L"Software\\Tandrel\\Other 8" },
    { kUser, kWindows + L"\\Explorer\\FileExts\\.bmp\\UserChoice" },
    { kMachine, L"Software\\Mozilla\\NativeMessagingHosts\\other" },
    { kMachine, L"Software\\Tandrel\\Other 8" },
    { kMachine, kWindows + L"\\App Paths\\Other.exe" },
    { HKEY_USERS, kOtherHive + L"Software\\Tandrel\\Other 8" },
};

// Puts entries in front of the methods of all links, with the methods' numbers in their names.
void DivertLinks()
{
    CoInitialize(nullptr);
    CInterfaceOwner<IShellLinkW> link;
    CInterfaceOwner<IPersistFile> file;
    CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_ALL, IID_PPV_ARGS(link.Receive()));
    link->QueryInterface(IID_PPV_ARGS(file.Receive()));
    const std::tuple<void*, int, std::string> objects[] = { { link, 21, "Link" }, { file, 9, "File" } };
    for (const auto& [pObject, nMethods, strName] : objects)
        for (int i = 0; i < nMethods; i++)
        {
            void** const ppfn = *static_cast<void***>(pObject) + i;
            DWORD nProtection;
            VirtualProtect(ppfn, sizeof(*ppfn), PAGE_READWRITE, &nProtection);
            *ppfn = CCalls::EntryOf(strName + std::to_string(i), *ppfn);
        }
}

std::map<std::wstring, bool> s_calls; // by function: whether it has failed in any of the runs

class CFaultRun : public World
{
public:
    // `FLOW once|all|first FUNCTION` (first: with nothing that has to be met) to `CODE ACTS`, with the boxes in
    // parentheses, and what else is to be told. What reaches beyond the machine's files, links and registry comes about
    // only as a letter: T another instance ended, H handler registered, h unregistered, R product told to register, r
    // to unregister, X second stage started, P product started, E computer restarted, W web page opened. Two more tell
    // how far the flow got: K all values of the registration tried, S the last act of a removal.
    std::wstring Run(const std::wstring& strCase)
    {
        m_words = Split(strCase, L' ');
        SetUp();
        PutMachine();
        const CArguments arguments(Split(kFlows.at(m_words[0])[0], L'|'));
        const auto hold = HoldFile(At(L"target\\busy"));
        const CTestWindow window;
        g_InstanceManager.~COXInstanceManager();
        CSharedList list(kProductList);
        list.Set({ GetCurrentProcessId() });
        int nCode = 0;
        {
            CCalls calls(StandIns());
            calls.OnAll([this](CALL& call, INT_PTR& nResult) { return OnCall(call, nResult); });
            nCode = RunToExit(
                [&]
                {
                    try
                    {
                        new (&g_InstanceManager) COXInstanceManager(kProductList, 1024, true);
                        ReadOsVersion(&g_osVersion);
                        BindDynamicApis();
                        BindLibraryApi();
                        return AfxWinMain(GetModuleHandleW(nullptr), nullptr, nullptr, SW_SHOWNORMAL);
                    }
                    catch (...)
                    {
                        m_strActs += L"exception";
                        return -1;
                    }
                });
            if (m_strActs != L"exception")
                g_InstanceManager.~COXInstanceManager();
        }
        new (&g_InstanceManager) COXInstanceManager(L"Lumacap.Tests", 1024, true);
        _fcloseall(); // what a failed close has left open
        AddLosses();
        return m_strActs + L" " + std::to_wstring(nCode) + (m_bMet || m_words[1] == L"first" ? L"" : L" unmet");
    }

protected:
    void TestBody() override {}

private:
    void PutMachine() const
    {
        Make(L"package\\ind.dll|package\\busy|package\\Lang\\x", "mine");
        CopyOneFile(ProductOfVersion(L"8.21.0.0"), At(L"package\\Lumacap8.exe"));
        Make(L"package\\LumUnInst.log", "File Del: old\nMake Dir: Sub\nFile Copy: Lang\\*.*\n"
                                        "File Copy ind: ind.dll\nFile Copy: busy\nMade Dir: C:\\corner\\group\n"
                                        "Shell Link: C:\\corner\\group\\x\n");
        // The library takes any two folders that are there for one, since it tells them apart by what is zero here.
        std::filesystem::copy(At(L"package"), At(L"target"), std::filesystem::copy_options::recursive);
        Make(kFiles + L"|target\\old|target\\LumUnInst.exe|group\\x", "mine");
        WriteBytes(kPendingProfile, "");
        SetAttributes(At(L"target\\old"), FILE_ATTRIBUTE_READONLY);
        for (const auto& [hRoot, strKey] : kKeys)
            SetKeyText(hRoot, strKey, L"", L"mine");
        SetKeyText(HKEY_USERS, kOtherHive + kWindows + L"\\Explorer\\Shell Folders", L"Programs",
                   At(L"other\\Programs"));
        SetKeyText(kMachine, kProduct, L"Path", At(L"target"));
        MakeKey(HKEY_CLASSES_ROOT, L"Lumacap.8\\shell");
    }

    HANDLER Act(const wchar_t* pszAct, INT_PTR nResult)
    {
        return [=](CALL&) { return m_strActs += pszAct, nResult; };
    }

    std::map<std::string, HANDLER> StandIns()
    {
        return {
            { "TerminateProcess", Act(L"T", TRUE) },
            { "ShellExecuteW", Act(L"W", 42) },
            { "ExitWindowsEx", Act(L"E", TRUE) },
            { "_wexecl", Act(L"X", -1) },
            { "Sleep", Act(L"", 0) },
            { "GetCurrentProcessId", Act(L"", 1) }, // this process is the other instance
            { "CreateProcessW",
              [this](CALL& call)
              {
                  const auto has = [&](const wchar_t* psz) { return wcsstr(call.Text(1), psz) != nullptr; };
                  m_strActs += has(L"/u") ? 'h' : has(L"/s") ? 'H' : has(L"-u") ? 'r' : has(L"-r") ? 'R' : 'P';
                  return TRUE;
              } },
            { "GetProcAddress",
              [](CALL& call)
              {
                  void* const pfn = reinterpret_cast<void*>(call.Pass());
                  return reinterpret_cast<INT_PTR>(pfn ? CCalls::EntryOf(reinterpret_cast<char*>(call.args[1]), pfn)
                                                       : nullptr);
              } },
            { "MessageBoxW",
              [this](CALL& call)
              {
                  const std::wstring strBox = L"(" + Split(call.Text(1), L' ')[0] + L")";
                  // Of several links alike told once.
                  m_strActs += strBox[1] != L'S' || m_strActs.find(strBox) == std::wstring::npos ? strBox : L"";
                  return IDOK;
              } },
        };
    }

    bool OnCall(const CALL& call, INT_PTR& nResult)
    {
        const std::wstring strName = Wide(call.pszName);
        if (strName == L"RegCreateKeyW" && ++m_nValues == 32)
            m_strActs += L'K';
        if (strName == L"RemoveDirectoryW" && At(L"other\\Programs\\Lumacap 8\\") == call.Text(0))
            m_strActs += L'S';
        bool& bFailed = s_calls[strName];
        const bool bWanted = strName == m_words[2];
        if (bWanted ? m_bMet && m_words[1] == L"once" : strName != m_words.back())
            return false;
        bFailed = true;
        m_bMet = m_bMet || bWanted;
        nResult = std::regex_search(strName, kMinusOne) ? -1 : strName.find(L"Reg") == 0 ? ERROR_ACCESS_DENIED : 0;
        SetLastError(ERROR_ACCESS_DENIED);
        return true;
    }

    // What isn't the product's and has suffered, or will at the restart. The first stage touches nothing.
    void AddLosses()
    {
        const std::wstring strWaiting = Join(PendingEntries()) + Wide(ReadBytes(kPendingProfile));
        const std::wstring strStill = m_words[0] == L"relaunch" ? L"|target\\LumUnInst.exe|target\\old" : L"";
        for (const std::wstring& strFile : Split(kFiles + strStill, L'|'))
            if (ReadBytes(At(strFile)) != "mine" || strWaiting.find(At(strFile)) != std::wstring::npos)
                m_strActs += L" lost " + strFile;
        for (const auto& [hRoot, strKey] : kKeys)
            if (KeyText(hRoot, strKey) != L"mine")
                m_strActs += L" lost " + strKey;
    }

    TEXTS m_words;
    std::wstring m_strActs;
    int m_nValues = 0;
    bool m_bMet = false; // the function that is to fail
};

int RunCases()
{
    DivertLinks();
    std::map<std::wstring, std::wstring> expected;
    for (const auto& [strFlow, flow] : kFlows)
    {
        // The program calls this one but once in a process.
        s_calls.clear();
        EXPECT_EQ(CFaultRun().Run(strFlow + L" first CoInitialize"), flow[1]) << strFlow;
        for (const auto& call : s_calls)
            for (const wchar_t* pszUses : { L" once ", L" all " })
                if (!std::regex_search(call.first, kExcused))
                    expected[strFlow + pszUses + call.first] = flow[1];
    }
    for (const auto& [pszCases, pszNames, pszOutcome] : kExceptions)
        for (const auto& [strFlow, flow] : kFlows)
            for (const std::wstring strUses : { L" once ", L" all " })
                for (const std::wstring& strName : Split(pszNames, L' '))
                    if (std::regex_search(strFlow + strUses, std::wregex(pszCases)))
                        expected[strFlow + strUses + Replaced(strName, L"/", L" ")] =
                            *pszOutcome ? pszOutcome : flow[1];
    const int nFirst = _wtoi(__wargv[3]);
    int nCase = 0;
    for (const auto& [strCase, strOutcome] : expected)
    {
        if (++nCase < nFirst)
            continue;
        printf("> %d %ls\n", nCase, strCase.c_str());
        fflush(stdout);
        EXPECT_EQ(CFaultRun().Run(strCase), strOutcome) << strCase;
        // Quicker than to remove it.
        MoveFileW(L"C:\\corner", (L"C:\\" + std::to_wstring(nCase)).c_str());
    }
    for (const auto& [strName, bFailed] : s_calls)
        if (nFirst == 1 && !std::regex_search(strName, kExcused))
        {
            EXPECT_TRUE(bFailed) << Bytes(strName);
        }
    EXPECT_GT(nCase, 280);
    printf("> %d\n", INT_MAX);
    return testing::Test::HasFailure();
}

const CChildRole s_runCases(L"fault-matrix", RunCases);

} // namespace

TEST(FaultMatrix, EachFailedCallLeavesTheFlowItsEndAndOthersTheirThings)
{
    for (int nCase = 0; nCase != INT_MAX;)
    {
        CProcessRun run(CChildRole::CommandLine(L"fault-matrix ") + std::to_wstring(nCase + 1));
        run.Start();
        for (size_t cb = 1; !run.WaitForEnd() && cb != run.Output().size();)
            cb = run.Output().size();
        run.End();
        const std::string strOutput = run.Output();
        const size_t nLast = strOutput.rfind("> ");
        nCase = nLast != std::string::npos ? atoi(&strOutput[nLast + 2]) : INT_MAX;
        EXPECT_EQ(run.ExitCode(), 0u) << strOutput;
        EXPECT_EQ(nCase, run.ExitCode() == 0 ? INT_MAX : nCase) << "an end in the midst";
    }
}
