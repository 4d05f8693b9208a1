// Every platform call that the flows make fails once, at its first use, and then at every use: each run goes to its end
// with the result, the acts and the boxes that it should have, and nothing that isn't the product's suffers. What the
// program imports and the table doesn't hold is left out for a reason that stands here too.
#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "foundation/Owners.h"
#include "tests/support/CallFaults.h"
#include "tests/support/ChildRole.h"
#include "tests/support/Environment.h"
#include "tests/support/FaultFlow.h"
#include "tests/support/ImportHook.h"
#include "tests/support/InstallCorner.h"
#include "tests/support/ProcessRun.h"
#include "tests/support/TestWindow.h"

namespace
{

const FAULT kFaults[] = {
    // Files
    { "CopyFileW", FALSE, ERROR_DISK_FULL, nullptr },
    { "DeleteFileW", FALSE, ERROR_ACCESS_DENIED, nullptr },
    { "FindClose", FALSE, ERROR_INVALID_HANDLE, nullptr },
    { "FindFirstFileW", -1, ERROR_ACCESS_DENIED, nullptr },
    { "FindNextFileW", FALSE, ERROR_READ_FAULT, nullptr },
    { "GetFileAttributesW", -1, ERROR_ACCESS_DENIED, nullptr },
    { "MoveFileExW", FALSE, ERROR_ACCESS_DENIED, nullptr },
    { "MoveFileW", FALSE, ERROR_SHARING_VIOLATION, nullptr },
    { "SetFileAttributesW", FALSE, ERROR_ACCESS_DENIED, nullptr },
    { "_waccess", -1, ERROR_ACCESS_DENIED, nullptr },
    { "_wfopen", 0, ERROR_TOO_MANY_OPEN_FILES, nullptr },
    { "fclose", -1, ERROR_WRITE_FAULT, nullptr },
    { "fgetws", 0, ERROR_READ_FAULT, nullptr },
    { "fwprintf_s", -1, ERROR_DISK_FULL, nullptr },
    { "rewind", 0, ERROR_READ_FAULT, nullptr },
    // Folders
    { "CreateDirectoryW", FALSE, ERROR_ACCESS_DENIED, nullptr },
    { "GetSystemDirectoryW", 0, ERROR_NOT_ENOUGH_MEMORY, nullptr },
    { "GetTempFileNameW", 0, ERROR_ACCESS_DENIED, nullptr },
    { "GetTempPathW", 0, ERROR_NOT_ENOUGH_MEMORY, nullptr },
    { "GetWindowsDirectoryW", 0, ERROR_NOT_ENOUGH_MEMORY, "RegQueryValueExW" },
    { "RemoveDirectoryW", FALSE, ERROR_ACCESS_DENIED, nullptr },
    { "SHGetFolderPathW", E_FAIL, ERROR_PATH_NOT_FOUND, nullptr },
    { "SetCurrentDirectoryW", FALSE, ERROR_PATH_NOT_FOUND, nullptr },
    // Profile
    { "GetPrivateProfileSectionW", 0, ERROR_ACCESS_DENIED, "MoveFileExW" },
    { "WritePrivateProfileSectionW", FALSE, ERROR_ACCESS_DENIED, "MoveFileExW" },
    // Registry
    { "RegCloseKey", ERROR_INVALID_HANDLE, 0, nullptr },
    { "RegCreateKeyW", ERROR_ACCESS_DENIED, 0, nullptr },
    { "RegDeleteKeyW", ERROR_ACCESS_DENIED, 0, nullptr },
    { "RegDeleteValueW", ERROR_ACCESS_DENIED, 0, nullptr },
    { "RegEnumKeyW", ERROR_ACCESS_DENIED, 0, nullptr },
    { "RegOpenKeyExW", ERROR_ACCESS_DENIED, 0, nullptr },
    { "RegQueryValueExW", ERROR_MORE_DATA, 0, nullptr },
    { "RegSetValueExW", ERROR_ACCESS_DENIED, 0, nullptr },
    // Processes and modules
    { "CloseHandle", FALSE, ERROR_INVALID_HANDLE, nullptr },
    { "CreateProcessW", FALSE, ERROR_BAD_EXE_FORMAT, nullptr },
    { "FreeLibrary", FALSE, ERROR_INVALID_HANDLE, nullptr },
    { "GetModuleFileNameW", 0, ERROR_NOT_ENOUGH_MEMORY, nullptr },
    { "GetModuleHandleA", 0, ERROR_MOD_NOT_FOUND, nullptr },
    { "GetModuleHandleW", 0, ERROR_MOD_NOT_FOUND, nullptr },
    { "GetProcAddress", 0, ERROR_PROC_NOT_FOUND, nullptr },
    { "LoadLibraryW", 0, ERROR_NOT_ENOUGH_MEMORY, nullptr },
    { "OpenProcess", 0, ERROR_ACCESS_DENIED, nullptr },
    { "TerminateProcess", FALSE, ERROR_ACCESS_DENIED, nullptr },
    { "WaitForSingleObject", -1, ERROR_INVALID_HANDLE, nullptr },
    { "_wexecl", -1, ERROR_FILE_NOT_FOUND, nullptr },
    // The restart and its privilege
    { "AdjustTokenPrivileges", FALSE, ERROR_ACCESS_DENIED, nullptr },
    { "ExitWindowsEx", FALSE, ERROR_PRIVILEGE_NOT_HELD, nullptr },
    { "LookupPrivilegeValueW", FALSE, ERROR_NO_SUCH_PRIVILEGE, nullptr },
    { "OpenProcessToken", FALSE, ERROR_ACCESS_DENIED, nullptr },
    // Versions
    { "GetFileVersionInfoSizeW", 0, ERROR_RESOURCE_DATA_NOT_FOUND, nullptr },
    { "GetFileVersionInfoW", FALSE, ERROR_READ_FAULT, nullptr },
    { "IsWow64Process", FALSE, ERROR_ACCESS_DENIED, nullptr },
    { "RtlGetVersion", -1, ERROR_NOT_SUPPORTED, nullptr },
    { "VerQueryValueW", FALSE, ERROR_RESOURCE_TYPE_NOT_FOUND, nullptr },
    // Links
    { "CoCreateInstance", REGDB_E_CLASSNOTREG, 0, nullptr },
    { "CoInitialize", E_OUTOFMEMORY, 0, nullptr },
    { "IPersistFile::Save", STG_E_ACCESSDENIED, 0, nullptr },
    { "IShellLinkW::QueryInterface", E_NOINTERFACE, 0, nullptr },
    { "IShellLinkW::SetDescription", E_OUTOFMEMORY, 0, nullptr },
    { "IShellLinkW::SetPath", E_INVALIDARG, 0, nullptr },
    { "IShellLinkW::SetWorkingDirectory", E_OUTOFMEMORY, 0, nullptr },
    // The shell and windows
    { "EnumWindows", FALSE, ERROR_ACCESS_DENIED, nullptr },
    { "GetWindow", 0, ERROR_INVALID_WINDOW_HANDLE, nullptr },
    { "GetWindowLongW", 0, ERROR_INVALID_WINDOW_HANDLE, nullptr },
    { "GetWindowTextW", 0, ERROR_INVALID_WINDOW_HANDLE, nullptr },
    { "GetWindowThreadProcessId", 0, ERROR_INVALID_WINDOW_HANDLE, nullptr },
    { "LoadStringW", 0, ERROR_RESOURCE_NAME_NOT_FOUND, nullptr },
    { "MessageBoxW", 0, ERROR_NOT_ENOUGH_MEMORY, "IShellLinkW::SetPath" },
    { "PostMessageW", FALSE, ERROR_NOT_ENOUGH_QUOTA, nullptr },
    { "SHChangeNotify", 0, 0, nullptr },
    { "ShellExecuteW", SE_ERR_NOASSOC, ERROR_NO_ASSOCIATION, "GetFileVersionInfoSizeW" },
    // The shared list of instances
    { "CreateFileMappingW", 0, ERROR_ACCESS_DENIED, nullptr },
    { "CreateMutexW", 0, ERROR_ACCESS_DENIED, nullptr },
    { "MapViewOfFile", 0, ERROR_NOT_ENOUGH_MEMORY, nullptr },
    { "ReleaseMutex", FALSE, ERROR_NOT_OWNER, nullptr },
    { "UnmapViewOfFile", FALSE, ERROR_INVALID_ADDRESS, nullptr },
};

const struct
{
    const char* pszReason;
    bool bCalled; // by the flows
    const char* pszFunctions;
} kLeftOut[] = {
    { "no failure: they tell of the process itself, pause or end it", true,
      "GetCurrentProcess GetCurrentProcessId GetCurrentThreadId GetLastError GetSystemInfo SetErrorMode SetLastError "
      "Sleep exit _errno" },
    { "memory: what stands in here for the platform lives on the same heap. The one block whose lack the program goes "
      "on without has a test with the versions",
      true, "_wcsdup calloc free malloc memcpy memmove memset realloc" },
    { "work on texts in memory", true,
      "_stricmp _strdup _strlwr _strupr _ultoa _vscprintf _vscwprintf _vsnprintf _vsnwprintf _wcsicmp _wcslwr _wcsupr "
      "_wsplitpath isspace iswdigit iswspace strchr strcmp strcspn strlen strncmp strrchr strstr toupper vprintf_s "
      "vswprintf_s wcschr wcscmp wcscspn wcslen wcsncmp wcsrchr wcsstr wsprintfW" },
    { "start, threads and exceptions of the language's own library", true,
      "AddVectoredExceptionHandler CreateEventA CreateSemaphoreA DeleteCriticalSection DuplicateHandle "
      "EnterCriticalSection GetCurrentThread GetHandleInformation GetProcessAffinityMask GetStartupInfoW "
      "GetSystemTimeAsFileTime GetThreadContext GetThreadPriority GetTickCount64 InitializeCriticalSection "
      "IsDebuggerPresent LeaveCriticalSection OutputDebugStringA RaiseException ReleaseSemaphore "
      "RemoveVectoredExceptionHandler ResetEvent ResumeThread RtlCaptureContext RtlLookupFunctionEntry RtlUnwindEx "
      "RtlVirtualUnwind SetEvent SetProcessAffinityMask SetThreadContext SetThreadPriority "
      "SetUnhandledExceptionFilter SuspendThread TlsAlloc TlsGetValue TlsSetValue TryEnterCriticalSection "
      "VirtualProtect VirtualQuery WaitForMultipleObjects __C_specific_handler __iob_func __set_app_type "
      "__setusermatherr __wgetmainargs _amsg_exit _beginthreadex _cexit _endthreadex _initterm _localtime64 _onexit "
      "_setjmp abort fprintf fwrite longjmp printf signal vfprintf" },
    { "variables", false, "__argc __wargv __winitenv _commode _fmode _wcmdln" },
    { "the wizard and the questions of the start, which a silent run doesn't open", false,
      "CallWindowProcW CheckDlgButton CreateDialogIndirectParamW DefWindowProcW DestroyWindow "
      "DialogBoxIndirectParamW DispatchMessageW EnableWindow EndDialog FindResourceW GetAncestor GetDlgItem "
      "GetLastActivePopup GetMessageW GetParent GetWindowRect GetWindowTextLengthW IsDlgButtonChecked IsWindow "
      "IsWindowEnabled LoadCursorW LoadResource LockResource MapWindowPoints PostQuitMessage SHBrowseForFolderW "
      "SHGetMalloc SHGetPathFromIDListW SendDlgItemMessageW SendMessageW SetCursor SetDlgItemTextW SetFocus "
      "SetForegroundWindow SetWindowLongPtrW SetWindowPos SetWindowTextW ShowWindow TranslateMessage UpdateWindow "
      "WinHelpW fread fseek ftell" },
    { "the owner of a box: no window is active in a silent run, so that a failure gives what the call gives anyway",
      true, "GetActiveWindow" },
    { "utilities that no flow calls", false,
      "CloseClipboard CreateToolhelp32Snapshot EmptyClipboard FormatMessageW GetACP GlobalAlloc GlobalLock "
      "GlobalUnlock LoadLibraryExW LocalFree MultiByteToWideChar OpenClipboard Process32FirstW Process32NextW "
      "SetClipboardData WideCharToMultiByte _time64" },
};

const char kNotMet[] = " not met";
const char* const kFlowNames[FLOW_COUNT] = { "install", "relaunch", "removal" };
const char* const kUsual[FLOW_COUNT] = { "0 TKHRE", "0 TX", "0 hrS" };

const char kDamaged[] = "1 TW: This setup files are damaged, installation aborted.";

// `either` stands for both kinds of use.
const std::map<std::string, std::string> kExceptions = {
    // No version of the package can be found out, or its list isn't seen. With one failing use it is the installed
    // product that has none.
    { "install all GetFileVersionInfoSizeW", kDamaged },
    { "install all GetFileVersionInfoW", kDamaged },
    { "install all GetProcAddress", kDamaged },
    { "install all GetSystemDirectoryW", kDamaged },
    { "install all LoadLibraryW", kDamaged },
    { "install all VerQueryValueW", kDamaged },
    { "install all _waccess", kDamaged },
    { "install either ShellExecuteW", "1 T: This setup files are damaged, installation aborted." },
    // The package's folder isn't known. The framework's start is the first to ask.
    { "install all GetModuleFileNameW", kDamaged },
    // The busy file isn't come to, or its successor can't be left for the boot: no restart, the product starts.
    { "install all CopyFileW", "0 TKHRP" },
    { "install all FindFirstFileW", "0 TKHRP" },
    { "install all WritePrivateProfileSectionW", "0 TKHRP" },
    { "install all _wfopen", "0 TKHRP" },
    { "install all fgetws", "0 TKHRP" },
    // The earlier folder, where the busy file lies, isn't found.
    { "install either GetWindowsDirectoryW", "0 TKHRP" },
    { "install either RegOpenKeyExW", "0 TKHRP" },
    { "install either RegQueryValueExW", "0 TKHRP" },
    // Nothing tells that the system has a thumbnail cache.
    { "install either GetModuleHandleW", "0 TKRE" },
    { "install once GetProcAddress", "0 TKRE" },
    { "install either RtlGetVersion", "0 TKRE" },
    { "removal either GetModuleHandleW", "0 rS" },
    { "removal either GetProcAddress", "0 rS" },
    { "removal either RtlGetVersion", "0 rS" },
    // The users' hives aren't listed, aren't opened or don't tell of their folders.
    { "removal all RegEnumKeyW", "0 hr" },
    { "removal all RegOpenKeyExW", "0 hr" },
    { "removal all RegQueryValueExW", "0 hr" },
    { "removal either GetWindowsDirectoryW", "0 hr" },
    // What is started or ended is what fails.
    { "install once CreateProcessW", "0 TKRE" },
    { "install all CreateProcessW", "0 TKE" },
    { "install either ExitWindowsEx", "0 TKHR" },
    { "removal once CreateProcessW", "0 rS" },
    { "removal all CreateProcessW", "0 S" },
    { "relaunch either _wexecl", "0 T" },
    { "install either OpenProcess", "0 KHRE" },
    { "install either TerminateProcess", "0 KHRE" },
    { "relaunch either OpenProcess", "0 X" },
    { "relaunch either TerminateProcess", "0 X" },
    // Without the shared list the process is as if alone.
    { "install either CreateFileMappingW", "0 KHRE" },
    { "install either MapViewOfFile", "0 KHRE" },
    { "relaunch either CreateFileMappingW", "0 X" },
    { "relaunch either MapViewOfFile", "0 X" },
    // The framework's lock throws where it can't be made, which ends the process ahead of its first act.
    { "install either CreateMutexW", "exception " },
    { "relaunch either CreateMutexW", "exception " },
    { "removal either CreateMutexW", "exception " },
    // The two failures of links that are told, of three links here.
    { "install once IShellLinkW::SetDescription", "0 TKHRE: SetDescription failed!" },
    { "install all IShellLinkW::SetDescription",
      "0 TKHRE: SetDescription failed!: SetDescription failed!: SetDescription failed!" },
    { "install once IShellLinkW::SetPath", "0 TKHRE: SetPath failed!" },
    { "install all IShellLinkW::SetPath", "0 TKHRE: SetPath failed!: SetPath failed!: SetPath failed!" },
    { "install once MessageBoxW", "0 TKHRE: SetPath failed!: SetPath failed!" },
};

const FAULT* FindFault(const std::string& strFunction)
{
    const FAULT* const pFault = std::find_if(std::begin(kFaults), std::end(kFaults),
                                             [&](const FAULT& fault) { return strFunction == fault.pszFunction; });
    return pFault != std::end(kFaults) ? pFault : nullptr;
}

std::vector<std::string> Words(const std::string& strText)
{
    std::istringstream stream(strText);
    std::vector<std::string> words;
    for (std::string strWord; stream >> strWord;)
        words.push_back(strWord);
    return words;
}

std::wstring Wide(const std::string& strText)
{
    return std::wstring(strText.begin(), strText.end());
}

// A case is `FLOW once|all FUNCTION`, or `FLOW none` for a run without a fault. The cases stand in the file that the
// environment names, in the corner; each is told ahead of its run, and then its outcome, on a line of its own; at
// the end the functions that the last one called.
int RunCases()
{
    const std::wstring strFile = _wgetenv(L"LUMACAP_CASES");
    const std::wstring strFolder = strFile.substr(0, strFile.rfind(L'\\'));
    const DWORD nListed = wcstoul(_wgetenv(L"LUMACAP_LISTED"), nullptr, 10);
    for (const std::string& strCase : ReadLines(strFile))
    {
        printf("> %s\n", strCase.c_str());
        fflush(stdout);
        const std::vector<std::string> words = Words(strCase);
        const auto nFlow = std::find(kFlowNames, kFlowNames + FLOW_COUNT, words[0]) - kFlowNames;
        const FAULT* pFault = words.size() > 2 ? FindFault(words[2]) : nullptr;
        const FAULT* pWith = pFault != nullptr && pFault->pszWith != nullptr ? FindFault(pFault->pszWith) : nullptr;
        const std::string strOutcome =
            RunFlow(static_cast<Flow>(nFlow), pFault, pWith, words[1] == "once" ? 1 : kEveryUse,
                    strFolder + L"\\" + Wide(strCase), nListed);
        const bool bMet = pFault == nullptr || CCallFaults::Failures(pFault->pszFunction) > 0;
        printf("> %s%s\n", strOutcome.c_str(), bMet ? "" : kNotMet);
        fflush(stdout);
    }
    printf(">");
    for (const std::string& strName : CCallFaults::Called())
        printf(" %s", strName.c_str());
    return 0;
}

const CChildRole s_runCases(L"fault-matrix", RunCases);

class FaultMatrix : public InstallCorner
{
protected:
    void SetUp() override
    {
        InstallCorner::SetUp();
        for (const BYSTANDER_KEY& key : kBystanderKeys)
            m_bystanders.Clear(key.hRoot, key.pszKey);
        m_bystanders.Clear(HKEY_USERS, OTHER_HIVE);
        CopyOneFile(CPackage::ProductOfVersion(L"8.21.0.0"), At(L"Lumacap8.exe"));
    }
    void TearDown() override
    {
        RemoveTree(L"C:\\Program Files\\Lumacap 8"); // where the earlier folder can't be read
        InstallCorner::TearDown();
    }

    // The output's lines. A case that ends the process or hangs has its line and no outcome behind it.
    std::vector<std::string> RunChild(const std::vector<std::string>& cases) const
    {
        std::string strCases;
        for (const std::string& strCase : cases)
            strCases += strCase + "\n";
        WriteBytes(At(L"cases"), strCases);
        CProcessRun run(CChildRole::CommandLine(L"fault-matrix"));
        run.AddEnvironment(L"LUMACAP_CASES", At(L"cases"));
        run.AddEnvironment(L"LUMACAP_LISTED", std::to_wstring(GetCurrentProcessId()));
        run.Start();
        for (size_t cbEarlier = 0; !run.WaitForEnd(kPatience) && run.Output().size() != cbEarlier;)
            cbEarlier = run.Output().size();
        run.End();
        std::vector<std::string> lines;
        std::istringstream stream(run.Output());
        for (std::string strLine; std::getline(stream, strLine);)
            if (strLine.compare(0, 1, ">") == 0) // the program tells of some faults there too
                lines.push_back(strLine.substr(std::min<size_t>(2, strLine.size()), strLine.find('\r') - 2));
        return lines;
    }

    // The outcomes of all the cases by their names, with a new process behind each one that breaks it.
    std::map<std::string, std::string> RunAll(std::vector<std::string> cases) const
    {
        std::map<std::string, std::string> outcomes;
        while (!cases.empty())
        {
            const std::vector<std::string> lines = RunChild(cases);
            size_t nDone = 0;
            for (; nDone < cases.size() && 2 * nDone + 1 < lines.size(); nDone++)
                outcomes[cases[nDone]] = lines[2 * nDone + 1];
            if (nDone < cases.size())
                outcomes[cases[nDone++]] += " broken";
            cases.erase(cases.begin(), cases.begin() + static_cast<INT_PTR>(nDone));
        }
        return outcomes;
    }

    CTestWindow m_window; // of the listed instance
    CRegistryCorner m_bystanders;
};

std::string ExpectedOutcome(const std::string& strCase, std::set<std::string>& unusedExceptions)
{
    const std::vector<std::string> words = Words(strCase);
    for (const std::string& strUses : { words[1], std::string("either") })
    {
        const auto exception = kExceptions.find(words[0] + " " + strUses + " " + words.back());
        if (exception == kExceptions.end())
            continue;
        unusedExceptions.erase(exception->first);
        return exception->second;
    }
    return kUsual[std::find(kFlowNames, kFlowNames + FLOW_COUNT, words[0]) - kFlowNames];
}

// Each function that the shipped program imports stands in one of the tables.
void ExpectTablesToBeComplete()
{
    std::set<std::string> leftOut;
    for (const auto& row : kLeftOut)
        for (const std::string& strFunction : Words(row.pszFunctions))
            leftOut.insert(strFunction);
    const std::wstring strProgram = BuildFolder() + L"\\setup.exe";
    const CLibraryOwner program(LoadLibraryExW(strProgram.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES));
    ASSERT_TRUE(program.IsOpen());
    ForEachImport(program,
                  [&](const char*, const char* pszFunction, void**)
                  {
                      EXPECT_NE(FindFault(pszFunction) != nullptr, leftOut.count(pszFunction) != 0)
                          << pszFunction << " has to stand in one of the tables";
                  });
}

// The cases of a flow that called these functions.
std::vector<std::string> CasesOf(const std::string& strFlow, const std::vector<std::string>& called)
{
    const auto isCalled = [&](const std::string& strFunction)
    { return std::find(called.begin(), called.end(), strFunction) != called.end(); };
    for (const auto& row : kLeftOut)
        for (const std::string& strFunction : Words(row.pszFunctions))
            EXPECT_TRUE(row.bCalled || !isCalled(strFunction)) << strFunction << " is called: " << row.pszReason;
    std::vector<std::string> cases;
    for (const FAULT& fault : kFaults)
        for (const char* pszUses : { " once ", " all " })
            if (isCalled(fault.pszWith != nullptr ? fault.pszWith : fault.pszFunction))
                cases.push_back(strFlow + pszUses + fault.pszFunction);
    return cases;
}

void ExpectOutcomes(const std::map<std::string, std::string>& outcomes)
{
    std::set<std::string> unusedExceptions;
    std::set<std::string> unmet;
    for (const auto& exception : kExceptions)
        unusedExceptions.insert(exception.first);
    for (const FAULT& fault : kFaults)
        unmet.insert(fault.pszFunction);
    for (const auto& outcome : outcomes)
    {
        std::string strOutcome = outcome.second;
        const size_t nUnmet = strOutcome.find(kNotMet);
        if (nUnmet == std::string::npos)
            unmet.erase(Words(outcome.first)[2]);
        else
            strOutcome.erase(nUnmet);
        EXPECT_EQ(strOutcome, ExpectedOutcome(outcome.first, unusedExceptions)) << outcome.first;
    }
    EXPECT_EQ(testing::PrintToString(unmet), "{}") << "has never failed";
    EXPECT_EQ(testing::PrintToString(unusedExceptions), "{}") << "isn't a case";
}

TEST_F(FaultMatrix, EachFailedCallLeavesTheFlowItsEndAndEverybodyElseTheirThings)
{
    ExpectTablesToBeComplete();
    std::map<std::string, std::string> outcomes;
    std::vector<std::string> cases;
    for (int i = 0; i < FLOW_COUNT; i++)
    {
        const std::string strFlow = kFlowNames[i];
        std::vector<std::string> lines = RunChild({ strFlow + " none" });
        lines.resize(3);
        EXPECT_EQ(lines[1], kUsual[i]);
        for (const std::string& strCase : CasesOf(strFlow, Words(lines[2])))
        {
            if (Words(strCase)[2] == "CoInitialize") // called but once in a process
                outcomes.merge(RunAll({ strCase }));
            else
                cases.push_back(strCase);
        }
    }
    outcomes.merge(RunAll(cases));
    ExpectOutcomes(outcomes);
    printf("%u cases\n", static_cast<unsigned>(outcomes.size()));
}

} // namespace
