// A top-level window of the test program.
#pragma once

#include <windows.h>

#include <string>

class CTestWindow
{
public:
    explicit CTestWindow(const std::wstring& strCaption = L"Lumacap 8", DWORD nStyle = WS_OVERLAPPEDWINDOW,
                         DWORD nExStyle = 0, HWND hOwner = nullptr)
        : m_hWnd(CreateWindowExW(nExStyle, L"STATIC", strCaption.c_str(), nStyle, 0, 0, 100, 100, hOwner, nullptr,
                                 nullptr, nullptr))
    {
    }
    ~CTestWindow() { DestroyWindow(m_hWnd); }
    CTestWindow(const CTestWindow&) = delete;
    CTestWindow& operator=(const CTestWindow&) = delete;

    operator HWND() const { return m_hWnd; }

private:
    HWND m_hWnd;
};
