// What a shell link says, read by the shell's own object.
#pragma once

#include <string>

struct LINK
{
    std::wstring strTarget;
    std::wstring strArguments;
    std::wstring strFolder;
    std::wstring strDescription;
    std::wstring strIcon;
    int nIcon = 0;
    int nShow = 0;
};

// False if the file isn't a link or isn't there.
bool ReadLink(const std::wstring& strPath, LINK& link);
