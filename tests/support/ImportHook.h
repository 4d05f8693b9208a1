// Puts a function of the test in the place of a platform call, in this program's own import table: the way to cause
// a failure that the platform won't produce, and to see a call without having it. Functions that the program
// binds by name at run time don't pass through the table. A function that makes a hook mustn't call the hooked function
// itself: the compiler takes the table for constant and may keep an address from before or after.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

// Calls the function with library, function and slot of each import of the module that has a name.
void ForEachImport(HMODULE hModule, const std::function<void(const char*, const char*, void**)>& visit);

void StoreInTable(void** ppfnSlot, void* pfn); // also where the table is write-protected

// A function's slots of the import table, diverted for the life of the object. Fails the test if nothing imports it.
// Hooks of one function end in the reverse order of their making.
class CImportHook
{
public:
    template <typename Function>
    CImportHook(const char* pszDll, const char* pszFunction, Function* pfnReplacement)
        : CImportHook(pszDll, pszFunction, reinterpret_cast<void*>(pfnReplacement))
    {
    }
    CImportHook(const char* pszDll, const char* pszFunction, void* pfnReplacement);
    ~CImportHook();
    CImportHook(const CImportHook&) = delete;
    CImportHook& operator=(const CImportHook&) = delete;

    void* Original() const { return m_pfnOriginal; }

private:
    std::vector<void**> m_slots;
    void* m_pfnOriginal = nullptr;
};

// Plain functions that lead into whatever object listens: the import table has room for a function only. So many
// listeners of one signature can exist at a time.
const int kListenersOfOneSignature = 6;

template <typename Function>
class CListeners;

template <typename Result, typename... Arguments>
class CListeners<Result (*)(Arguments...)>
{
public:
    using Listener = std::function<Result(Arguments...)>;
    using Function = Result (*)(Arguments...);

    static int Enter(Listener listener)
    {
        for (int i = 0; i < kListenersOfOneSignature; i++)
        {
            if (!s_listeners[i])
            {
                s_listeners[i] = std::move(listener);
                return i;
            }
        }
        abort();
    }
    static void Leave(int nListener) { s_listeners[nListener] = nullptr; }
    static Function EntryOf(int nListener)
    {
        static const Function entries[kListenersOfOneSignature] = {
            Call<0>, Call<1>, Call<2>, Call<3>, Call<4>, Call<5>
        };
        return entries[nListener];
    }

private:
    template <int nListener>
    static Result Call(Arguments... arguments)
    {
        return s_listeners[nListener](arguments...);
    }
    static inline Listener s_listeners[kListenersOfOneSignature];
};

// Watches the calls of one platform function, and fails or replaces them:
//     CCallHook hook("KERNEL32.dll", "MoveFileExW", &MoveFileExW);
//     hook.FailFrom(2, ERROR_ACCESS_DENIED);
template <typename Function>
class CCallHook
{
public:
    // The third argument only gives the signature, where the type doesn't; the call that is diverted is the named one.
    CCallHook(const char* pszDll, const char* pszFunction, Function = nullptr)
        : m_nListener(Listeners::Enter(MakeListener(static_cast<Function>(nullptr)))),
          m_hook(pszDll, pszFunction, Listeners::EntryOf(m_nListener))
    {
    }
    ~CCallHook() { Listeners::Leave(m_nListener); }
    CCallHook(const CCallHook&) = delete;
    CCallHook& operator=(const CCallHook&) = delete;

    Function Original() const { return reinterpret_cast<Function>(m_hook.Original()); }
    int Calls() const { return m_nCalls; }

    // What the calls were given as constant wide texts, in order: for DeleteFileW the path, for CopyFileW two a call.
    const std::vector<std::wstring>& Texts() const { return m_texts; }
    void ForgetTexts() { std::vector<std::wstring>().swap(m_texts); }

    // From here on the call of that number, counted from 1 and from the making of the hook, or that one and all after
    // it, sets the error and returns the failure value: 0, unless another is given.
    template <typename Failure = int>
    void FailOnly(int nCall, DWORD nError, Failure failure = {})
    {
        Fail(nCall, nCall, nError, failure);
    }
    template <typename Failure = int>
    void FailFrom(int nCall, DWORD nError, Failure failure = {})
    {
        Fail(nCall, INT_MAX, nError, failure);
    }
    template <typename Failure = int>
    void FailAll(DWORD nError, Failure failure = {})
    {
        Fail(1, INT_MAX, nError, failure);
    }

    // From here on the calls go to this function, which can pass them on by Original().
    void Replace(typename CListeners<Function>::Listener replacement) { m_replacement = std::move(replacement); }

private:
    using Listeners = CListeners<Function>;

    template <typename Failure>
    void Fail(int nFirst, int nLast, DWORD nError, Failure failure)
    {
        m_replacement = MakeFailure(static_cast<Function>(nullptr), nFirst, nLast, nError, failure);
    }

    template <typename Failure, typename Result, typename... Arguments>
    typename Listeners::Listener MakeFailure(Result (*)(Arguments...), int nFirst, int nLast, DWORD nError,
                                             Failure failure)
    {
        return [=](Arguments... arguments) -> Result
        {
            if (m_nCalls < nFirst || m_nCalls > nLast)
                return Original()(arguments...);
            SetLastError(nError);
            if constexpr (std::is_pointer_v<Result> && std::is_integral_v<Failure>)
                return reinterpret_cast<Result>(static_cast<INT_PTR>(failure));
            else
                return static_cast<Result>(failure);
        };
    }

    template <typename Result, typename... Arguments>
    typename Listeners::Listener MakeListener(Result (*)(Arguments...))
    {
        return [this](Arguments... arguments) -> Result
        {
            m_nCalls++;
            (Note(arguments), ...);
            return m_replacement ? m_replacement(arguments...) : Original()(arguments...);
        };
    }

    template <typename Argument>
    void Note(Argument argument)
    {
        if constexpr (std::is_same_v<Argument, const wchar_t*>)
            m_texts.push_back(IS_INTRESOURCE(argument) ? L"" : argument);
    }

    int m_nCalls = 0;
    std::vector<std::wstring> m_texts;
    typename Listeners::Listener m_replacement;
    int m_nListener;
    CImportHook m_hook;
};

template <typename Function>
CCallHook(const char*, const char*, Function) -> CCallHook<Function>;
