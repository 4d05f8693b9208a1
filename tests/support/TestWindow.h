// A top-level window of the test program that notes the messages by which instances tell of each other. It gets them
// whenever the test waits by WaitUntil.
#pragma once

#include <windows.h>

#include <string>
#include <tuple>
#include <vector>

class CTestWindow
{
public:
    using MESSAGE = std::tuple<UINT, WPARAM, LPARAM>;

    explicit CTestWindow(const std::wstring& strCaption = L"Lumacap 8", DWORD nStyle = WS_OVERLAPPEDWINDOW,
                         DWORD nExStyle = 0, HWND hOwner = nullptr)
    {
        WNDCLASSW windowClass = {};
        windowClass.lpfnWndProc = Note;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpszClassName = L"LumacapTestWindow";
        RegisterClassW(&windowClass);
        m_hWnd = CreateWindowExW(nExStyle, windowClass.lpszClassName, strCaption.c_str(), nStyle, 0, 0, 100, 100,
                                 hOwner, nullptr, windowClass.hInstance, nullptr);
        SetWindowLongPtrW(m_hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    }
    ~CTestWindow() { DestroyWindow(m_hWnd); }
    CTestWindow(const CTestWindow&) = delete;
    CTestWindow& operator=(const CTestWindow&) = delete;

    operator HWND() const { return m_hWnd; }
    const std::vector<MESSAGE>& Messages() const { return m_messages; }

private:
    static LRESULT CALLBACK Note(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam)
    {
        auto* pWindow = reinterpret_cast<CTestWindow*>(GetWindowLongPtrW(hWnd, GWLP_USERDATA));
        if (pWindow == nullptr || (nMessage != 1946 && nMessage != 1947 && nMessage != WM_CLOSE))
            return DefWindowProcW(hWnd, nMessage, wParam, lParam);
        pWindow->m_messages.emplace_back(nMessage, wParam, lParam);
        return 0;
    }

    HWND m_hWnd;
    std::vector<MESSAGE> m_messages;
};
