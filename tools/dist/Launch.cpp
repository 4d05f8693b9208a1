// A plug-in of the packer, for what its scripts can't do: starts the unpacked setup with the arguments of the one file
// that was downloaded, exactly as they were written, waits for its end and gives its exit code.
#include <windows.h>
#include <shellapi.h>

// Characters that the system starts a program with, and those of the longest path, at most.
static constexpr int kMostCharacters = 0x8000;

static bool IsBlank(wchar_t ch)
{
    return ch == L' ' || ch == L'\t';
}

static const wchar_t* SkipArgument(const wchar_t* psz)
{
    bool bQuoted = false;
    for (; *psz != L'\0' && (bQuoted || !IsBlank(*psz)); ++psz)
        bQuoted ^= *psz == L'"';
    while (IsBlank(*psz))
        ++psz;
    return psz;
}

static bool IsOneOf(const wchar_t* pszArgument, const wchar_t* psz, const wchar_t* pszOther)
{
    return lstrcmpiW(pszArgument, psz) == 0 || lstrcmpiW(pszArgument, pszOther) == 0;
}

static bool IsSlash(wchar_t ch)
{
    return ch == L'\\' || ch == L'/';
}

// That is what names neither a drive and a path from its root nor another machine.
static bool IsRelative(const wchar_t* pszPath)
{
    if (pszPath[0] == L'\0')
        return false;
    return pszPath[1] == L':' ? !IsSlash(pszPath[2]) : !IsSlash(pszPath[0]) || !IsSlash(pszPath[1]);
}

namespace
{
class CArguments
{
public:
    CArguments() : m_ppsz(CommandLineToArgvW(GetCommandLineW(), &m_nCount)) {}
    ~CArguments() { LocalFree(m_ppsz); }
    CArguments(const CArguments&) = delete;
    CArguments& operator=(const CArguments&) = delete;

    // The first argument, if it is -s or what passes for it; else null.
    const wchar_t* FirstSilent() const
    {
        return m_nCount > 1 && IsOneOf(m_ppsz[1], L"-s", L"/s") ? m_ppsz[1] : nullptr;
    }

    bool NameRelativePath() const
    {
        wchar_t szSwitch[_countof(L"-sfxname=")];
        for (int i = 1; i < m_nCount; ++i)
        {
            lstrcpynW(szSwitch, m_ppsz[i], _countof(szSwitch));
            if (lstrcmpW(szSwitch, L"-sfxname=") == 0 && IsRelative(m_ppsz[i] + lstrlenW(szSwitch)))
                return true;
            if (IsOneOf(m_ppsz[i], L"-instdir", L"-instport") && i + 1 < m_nCount && IsRelative(m_ppsz[i + 1]))
                return true;
        }
        return false;
    }

private:
    int m_nCount = 0;
    wchar_t** m_ppsz;
};
} // namespace

// The setup reads the switch for its own path up to the first -v or -sconf only, and a folder switch takes whatever
// stands behind it: so the switch comes first. But a first -s is told from a later one, which forbids the question
// about running products too: it stays the first. What only counts as first argument beside that is -install, which the
// setup's name makes up for, and what would make it an uninstaller, which the one file never is.
// The caller frees it.
static wchar_t* NewCommandLine(const wchar_t* pszSetup, const CArguments& arguments)
{
    const auto pszCommandLine =
        static_cast<wchar_t*>(LocalAlloc(LPTR, size_t{ 3 } * kMostCharacters * sizeof(wchar_t)));
    const auto append = [pszCommandLine](const wchar_t* psz) { lstrcatW(pszCommandLine, psz); };
    const wchar_t* pszRest = SkipArgument(GetCommandLineW());
    append(L"\"");
    append(pszSetup);
    append(L"\" ");
    if (const wchar_t* pszFirst = arguments.FirstSilent(); pszFirst != nullptr)
    {
        append(pszFirst);
        append(L" ");
        pszRest = SkipArgument(pszRest);
    }
    append(L"\"-sfxname=");
    GetModuleFileNameW(nullptr, pszCommandLine + lstrlenW(pszCommandLine), kMostCharacters);
    append(L"\" ");
    append(pszRest);
    return pszCommandLine;
}

// Of the setup alone: a product that it starts at its end may stay. This thread's windows answer meanwhile, since
// programs send messages to all windows.
static DWORD AwaitExitCode(HANDLE hProcess)
{
    while (MsgWaitForMultipleObjects(1, &hProcess, FALSE, INFINITE, QS_ALLINPUT) == WAIT_OBJECT_0 + 1)
    {
        MSG msg;
        while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&msg);
    }
    DWORD nCode = 0;
    GetExitCodeProcess(hProcess, &nCode);
    return nCode;
}

// The packer's variable $0, of so many characters as all, holds the path of the setup, then its exit code in decimal;
// an empty text if it can't be started. $1 holds the user's working folder, $2 the package. The setup starts in the
// package, where it finds the agreement, and where none looks for libraries but its own. A relative path among the
// arguments is the user's: with one it starts in his folder.
extern "C" __declspec(dllexport) void Run(HWND, int nCharacters, wchar_t* pszVariables)
{
    const CArguments arguments;
    const wchar_t* pszFolder = pszVariables + nCharacters;
    if (!arguments.NameRelativePath())
        pszFolder += nCharacters;
    wchar_t* const pszCommandLine = NewCommandLine(pszVariables, arguments);
    *pszVariables = L'\0';
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    const BOOL bStarted =
        CreateProcessW(nullptr, pszCommandLine, nullptr, nullptr, FALSE, 0, nullptr, pszFolder, &startup, &process);
    LocalFree(pszCommandLine);
    if (!bStarted)
        return;
    wsprintfW(pszVariables, L"%d", static_cast<int>(AwaitExitCode(process.hProcess)));
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

// The packer resets the attributes of each file that it deletes, which takes longer than the deletion. What this leaves
// because it needs that, the packer takes away. Too long a path is left to it too.
static void RemoveFiles(const wchar_t* pszFolder)
{
    wchar_t szPath[MAX_PATH];
    const int nFolder = lstrlenW(pszFolder);
    if (nFolder + 2 >= MAX_PATH)
        return;
    lstrcpyW(szPath, pszFolder);
    lstrcatW(szPath, L"\\*");
    WIN32_FIND_DATAW found;
    const HANDLE hFind = FindFirstFileW(szPath, &found);
    if (hFind == INVALID_HANDLE_VALUE)
        return;
    do
    {
        if (found.cFileName[0] == L'.' || nFolder + 1 + lstrlenW(found.cFileName) >= MAX_PATH)
            continue;
        lstrcpyW(szPath + nFolder + 1, found.cFileName);
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            DeleteFileW(szPath);
        else if ((found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
            RemoveFiles(szPath);
    } while (FindNextFileW(hFind, &found));
    FindClose(hFind);
}

// $0 holds the folder.
extern "C" __declspec(dllexport) void Remove(HWND, int, wchar_t* pszVariables)
{
    RemoveFiles(pszVariables);
}

// The library's entry: no runtime is started in it.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID)
{
    return TRUE;
}
