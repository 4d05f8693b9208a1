// A picture of the whole machine, so that two of them tell all that a program left: files below C:\ by size and
// attributes, and the registry. What Windows' own programs change by merely running is left out.
#pragma once

#include <string>
#include <vector>

// Sorted lines: `file PATH SIZE ATTRIBUTES`, `folder PATH ATTRIBUTES`, and the lines of FlattenKey for HKLM and HKU.
std::vector<std::wstring> TakeMachinePicture();

// The same of one folder and of the keys that the product owns, quick enough for a picture after each of many runs. A
// number stands for each file's content, but for links: those hold the time of their making.
std::vector<std::wstring> TakeProductPicture(const std::wstring& strFolder);

// `+ LINE` for what only the later picture has, `- LINE` for what only the earlier one has, sorted by the line.
std::vector<std::wstring> PictureDifference(const std::vector<std::wstring>& earlier,
                                            const std::vector<std::wstring>& later);

// The lines in one text, for a failure's message.
std::string JoinLines(const std::vector<std::wstring>& lines);
