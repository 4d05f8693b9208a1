// Every platform call of this process, seen before it is made: to watch, fail, replace or end it. The calls go through
// entries in front of the import table's functions; functions that are bound by name or live in an object's table go
// through one when the test puts it there. Arguments are whole registers, which all functions of the platform that this
// program calls have, in the order of their declaration.
#pragma once

#include <afx.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

struct CALL
{
    const char* pszName;
    UINT_PTR* args;
    void* pfnFunction;

    const wchar_t* Text(int nArgument) const { return reinterpret_cast<const wchar_t*>(args[nArgument]); }
    // Makes the call, with up to twelve arguments; calls that come of it are seen.
    INT_PTR Pass() const;
};

// Gives the call's result.
using HANDLER = std::function<INT_PTR(CALL&)>;
// True: the call isn't made and has that result.
using WATCHER = std::function<bool(CALL&, INT_PTR&)>;

// Leads the functions that this program imports through entries, for good. Comes first in the program, since the
// compiler may keep an address from the table.
void DivertImports();

// The handlers of some calls for the object's life; those made later come first. A name that nothing imports and that
// has no entry fails the test. Calls of the thread that made the first of the objects are seen, but for those that
// handlers make themselves. A handler mustn't throw.
class CCalls
{
public:
    explicit CCalls(const std::map<std::string, HANDLER>& handlers = {});
    ~CCalls();
    CCalls(const CCalls&) = delete;
    CCalls& operator=(const CCalls&) = delete;

    void On(const std::string& strName, HANDLER handler);

    // Asked about each call ahead of all handlers. One object has one at a time.
    void OnAll(WATCHER watcher);

    // Of calls since the object was made, failing ones too.
    int Count(const std::string& strName) const;

    // An entry of that name in front of a function that isn't imported. It stays for good.
    static void* EntryOf(const std::string& strName, void* pfn);

private:
    std::map<std::string, int> m_earlierCounts;
    std::vector<std::string> m_names;
    bool m_bWatching = false;
};

// Runs the function in this process to its end or to the first exit(): gives what either gives. What lives on the stack
// of the function is lost with an exit, so no CCalls belongs there. Of another call that ends the process the place of
// the exit code is to be told: ("TerminateProcess", 1).
int RunToExit(const std::function<int()>& function, const char* pszEnd = "exit", int nCodeArgument = 0);
