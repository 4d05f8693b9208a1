// Owners of platform handles: each closes what it holds when it goes out of scope, so that no path leaks.
// An owner neither copies nor moves; a handle lives in the one operation that opened it.
#pragma once

#include <afx.h>
#include <stdio.h>

template <typename Traits>
class COwner
{
public:
    using Handle = typename Traits::Handle;

    explicit COwner(Handle handle = Traits::None()) : m_handle(handle) {}
    ~COwner() { Close(); }
    COwner(const COwner&) = delete;
    COwner& operator=(const COwner&) = delete;

    operator Handle() const { return m_handle; }
    Handle operator->() const { return m_handle; }
    bool IsOpen() const { return m_handle != Traits::None(); }

    // The address for a call that stores a new handle there; an earlier one is closed first.
    Handle* Receive()
    {
        Close();
        return &m_handle;
    }

    void Close()
    {
        if (IsOpen())
            Traits::Close(m_handle);
        m_handle = Traits::None();
    }

private:
    Handle m_handle;
};

struct KeyTraits
{
    using Handle = HKEY;
    static HKEY None() { return nullptr; }
    static void Close(HKEY hKey) { RegCloseKey(hKey); }
};

struct StreamTraits
{
    using Handle = FILE*;
    static FILE* None() { return nullptr; }
    static void Close(FILE* pFile) { fclose(pFile); }
};

// For handles whose failure is null: processes, threads, events, mappings, tokens.
struct HandleTraits
{
    using Handle = HANDLE;
    static HANDLE None() { return nullptr; }
    static void Close(HANDLE handle) { CloseHandle(handle); }
};

// For handles whose failure is INVALID_HANDLE_VALUE: files.
struct FileTraits
{
    using Handle = HANDLE;
    static HANDLE None() { return INVALID_HANDLE_VALUE; }
    static void Close(HANDLE handle) { CloseHandle(handle); }
};

struct FindTraits
{
    using Handle = HANDLE;
    static HANDLE None() { return INVALID_HANDLE_VALUE; }
    static void Close(HANDLE hFind) { FindClose(hFind); }
};

struct LibraryTraits
{
    using Handle = HMODULE;
    static HMODULE None() { return nullptr; }
    static void Close(HMODULE hModule) { FreeLibrary(hModule); }
};

template <typename Interface>
struct InterfaceTraits
{
    using Handle = Interface*;
    static Interface* None() { return nullptr; }
    static void Close(Interface* pInterface) { pInterface->Release(); }
};

using CKeyOwner = COwner<KeyTraits>;
using CStreamOwner = COwner<StreamTraits>;
using CHandleOwner = COwner<HandleTraits>;
using CFileOwner = COwner<FileTraits>;
using CFindOwner = COwner<FindTraits>;
using CLibraryOwner = COwner<LibraryTraits>;
template <typename Interface>
using CInterfaceOwner = COwner<InterfaceTraits<Interface>>;
