// A stand-in for the imaging application: what the setup program meets of it, and no imaging. It stands in the list of
// instances, shows a main window, registers on "-regonly" and takes back a part of that on "-unregonly".
// Further switches, for demonstrations and tests:
//   -nowindow       runs with no window until it is terminated
//   -ignoreclose    doesn't end when told to close
// The environment: LUMACAP_REPORT names a file that it appends its command line, a tab and its current folder to, in
// UTF-8, once it is set up.

#include "foundation/Owners.h"
#include "sample/InstanceEntry.h"
#include "sample/Registration.h"

#include <iterator>
#include <stdlib.h>
#include <wchar.h>

namespace
{

const int kReportAttempts = 500;
const DWORD kReportPause = 10; // milliseconds

struct Options
{
    bool bRegister;
    bool bUnregister;
    bool bNoWindow;
    bool bIgnoreClose;
    const wchar_t* pszReport;
};

// Arguments that aren't known are passed over: the shell hands over pictures to open, and a path with blanks that was
// started without quotes arrives in pieces.
Options ReadOptions()
{
    const struct
    {
        const wchar_t* pszName;
        bool Options::*pbFlag;
    } aFlags[] = {
        { L"-regonly", &Options::bRegister },
        { L"-unregonly", &Options::bUnregister },
        { L"-nowindow", &Options::bNoWindow },
        { L"-ignoreclose", &Options::bIgnoreClose },
    };
    Options options = {};
    options.pszReport = _wgetenv(L"LUMACAP_REPORT");
    for (int i = 1; i < __argc; ++i)
        for (const auto& flag : aFlags)
            if (wcscmp(__wargv[i], flag.pszName) == 0)
                options.*flag.pbFlag = true;
    return options;
}

// One writer at a time: two that append at once can overwrite each other's line.
HANDLE OpenReport(const wchar_t* pszFile)
{
    for (int i = 0; i < kReportAttempts; ++i)
    {
        const HANDLE hFile = CreateFileW(pszFile, FILE_APPEND_DATA, FILE_SHARE_READ, nullptr, OPEN_ALWAYS,
                                         FILE_ATTRIBUTE_NORMAL, nullptr);
        if (hFile != INVALID_HANDLE_VALUE || GetLastError() != ERROR_SHARING_VIOLATION)
            return hFile;
        Sleep(kReportPause);
    }
    return INVALID_HANDLE_VALUE;
}

void Report(const wchar_t* pszFile)
{
    if (pszFile == nullptr)
        return;
    wchar_t szFolder[MAX_PATH] = L"";
    wchar_t szLine[2048];
    char szBytes[3 * std::size(szLine)];
    GetCurrentDirectoryW(MAX_PATH, szFolder);
    const int cch = _snwprintf(szLine, std::size(szLine), L"%ls\t%ls\r\n", GetCommandLineW(), szFolder);
    const int cb = WideCharToMultiByte(CP_UTF8, 0, szLine, cch, szBytes, sizeof(szBytes), nullptr, nullptr);

    const CFileOwner file(OpenReport(pszFile));
    DWORD cbWritten = 0;
    WriteFile(file, szBytes, static_cast<DWORD>(cb), &cbWritten, nullptr);
}

LRESULT CALLBACK MainWindowProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
{
    if (nMessage == WM_CLOSE && GetWindowLongPtrW(hWnd, GWLP_USERDATA) != 0)
        return 0;
    if (nMessage == WM_DESTROY)
        PostQuitMessage(0);
    return DefWindowProcW(hWnd, nMessage, wParam, lParam);
}

void OpenMainWindow(HINSTANCE hInstance, bool bIgnoreClose)
{
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = MainWindowProc;
    windowClass.hInstance = hInstance;
    windowClass.hIcon = LoadIconW(hInstance, MAKEINTRESOURCEW(1));
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_APPWORKSPACE + 1);
    windowClass.lpszClassName = L"Lumacap8MainWindow";
    RegisterClassW(&windowClass);
    const HWND hWnd = CreateWindowExW(0, windowClass.lpszClassName, L"Lumacap 8", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                                      CW_USEDEFAULT, 640, 480, nullptr, nullptr, hInstance, nullptr);
    SetWindowLongPtrW(hWnd, GWLP_USERDATA, bIgnoreClose);
    ShowWindow(hWnd, SW_SHOWNORMAL);
}

void RunUntilClosed(HINSTANCE hInstance, const Options& options)
{
    if (!options.bNoWindow)
        OpenMainWindow(hInstance, options.bIgnoreClose);
    Report(options.pszReport);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
}

} // namespace

int WINAPI wWinMain(HINSTANCE hInstance, HINSTANCE, LPWSTR, int)
{
    CInstanceEntry entry;
    const Options options = ReadOptions();

    if (options.bRegister)
    {
        RegisterProduct();
        Report(options.pszReport);
    }
    else if (options.bUnregister)
    {
        UnregisterProduct();
        Report(options.pszReport);
    }
    else
        RunUntilClosed(hInstance, options);
    return 0;
}
