// A corner in which installs can run: nothing of the product in the registry, and the folders that an install finds by
// the system, of the machine and of the user, moved into the corner.
#pragma once

#include <string>
#include <vector>

#include "tests/support/Corner.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Machine.h"
#include "tests/support/RegistryCorner.h"

// Takes the place of CreateProcessW: records what is to be started, starts nothing, and tells of success.
class CLaunchRecorder
{
public:
    CLaunchRecorder();
    std::vector<std::wstring> launches; // each "COMMAND LINE in WORKING FOLDER"

private:
    CCallHook<decltype(&CreateProcessW)> m_hook;
};

class InstallCorner : public MachineCorner
{
protected:
    InstallCorner();
    ~InstallCorner() override;

    // Moves the folder that programs are installed below, "Program Files" in the corner at first; null takes its
    // setting away.
    static void MoveProgramFiles(const wchar_t* pszFolder);

    // Below the machine's and the user's folders, which lie side by side: "Programs", "Programs\\Startup", "Desktop".
    std::wstring OfAll(const std::wstring& strRelative) const { return At(L"all\\" + strRelative); }
    std::wstring OfUser(const std::wstring& strRelative) const { return At(L"user\\" + strRelative); }
    void EmptyFolders() const;  // these
    std::wstring Links() const; // the link files in the corner, sorted: "all\\Desktop\\Lumacap 8.lnk|user\\..."

    // The log of an install by that list, which made this group folder and these links, parted by |, in the corner.
    std::string LogOf(const std::string& strList, const std::wstring& strGroup, const std::wstring& strLinks) const;

private:
    CRegistryCorner m_registry;
    const std::wstring m_strProgramFiles; // the machine's own
    CFolderRedirection m_folders[6];
};

std::wstring Join(const std::vector<std::wstring>& texts);                         // with | between
std::vector<std::wstring> Split(const std::wstring& strText, wchar_t chSeparator); // none of an empty text

// Characters as the program's text files hold them: one byte each.
inline std::string Bytes(const std::wstring& strText)
{
    return std::string(strText.begin(), strText.end());
}
