#include "tools/pkgtool/Findings.h"

#include <limits.h>
#include <tuple>

#include "app/Product.h"
#include "tools/pkgtool/Output.h"

namespace
{
struct FindingText
{
    FindingKind nKind;
    const wchar_t* pszName;
    const wchar_t* pszHappens; // in both texts %1 stands for the finding's detail
    const wchar_t* pszInstead;
};
} // namespace

static constexpr FindingText kTexts[] = {
    { FINDING_BYTE_ORDER_MARK, L"byte-order-mark",
      L"The mark counts as part of the first line: a record there is taken for a remark.",
      L"Save the list as plain 8-bit text without a mark." },
    { FINDING_END_MARK, L"end-mark",
      L"Reading ends at the character Ctrl-Z: what stands behind it, and what an install appends, is never read.",
      L"Take the character out." },
    { FINDING_ZERO_BYTES, L"text-format",
      L"The list has zero bytes, as UTF-16 has: hardly a line is read as it stands there, and nothing else is checked.",
      L"Save the list with one byte a character, as Latin-1 or ANSI." },
    { FINDING_LONE_RETURNS, L"text-format",
      L"The list has carriage returns alone for line ends: all is read as one line, and nothing else is checked.",
      L"End each line with a line feed, or with both." },
    { FINDING_LONG_LINE, L"long-line",
      L"The line is cut behind 511 characters, and the rest is read as a line of its own.",
      L"Use shorter names, or a mask." },
    { FINDING_UTF8_NAME, L"text-format",
      L"The name %1 is written in UTF-8, but read one byte a character, as above: no file or folder of the name is "
      L"met.",
      L"Save the list with one byte a character, as Latin-1 or ANSI; a name beyond that needs a mask." },
    { FINDING_NEAR_MISS, L"near-miss", L"The line is taken for a remark: it copies, makes and removes nothing.",
      L"Begin the line with \"%1\", to the letter and with the blank behind it." },
    { FINDING_NAME_MISSING, L"near-miss", L"No name stands behind \"%1\": the line does nothing.",
      L"Write the name, or leave the line out." },
    { FINDING_NEAR_INSTALL_MADE, L"near-miss",
      L"The line is taken for a remark. As a record it would be one that an install appends itself.",
      L"Leave the line out." },
    { FINDING_INSTALL_MADE, L"install-made",
      L"An install appends such records itself; this one makes a removal take away that path of the user's machine, "
      L"whoever made it.",
      L"Leave the record out." },
    { FINDING_ABSOLUTE, L"absolute",
      L"The folder is put before the value all the same: with a drive nothing is copied, made or removed, and a "
      L"leading backslash leads no higher.",
      L"Write the path relative to the package's folder." },
    { FINDING_CLIMBING, L"climbing",
      L"The path leads out of the folder: files land, and a removal deletes, where the product has no business.",
      L"Stay below the folder; what a portable install puts beside it has \"File Copy prt: \" records." },
    { FINDING_TAIL, L"tail", L"The text from \" | \" on is taken for a part of the name: nothing is copied or made.",
      L"Put the remark on a line of its own; \"File Overwrite: \" and \"File Del: \" alone may have a tail." },
    { FINDING_FORWARD_SLASH, L"forward-slash",
      L"The files are found, but then looked for without the folder before the slash: they aren't copied, or aren't "
      L"removed.",
      L"Write a backslash." },
    { FINDING_MASK_RENAMED, L"mask-renamed", L"A record with \">\" takes one file and no mask: nothing is copied.",
      L"Write one record for each file, or leave the \">\" out." },
    { FINDING_EMPTY_TARGET, L"empty-target",
      L"A file's name is missing behind \">\": if the folder stands, the file lands in or beside it as \".new\", and a "
      L"restart is asked for; otherwise nothing is copied.",
      L"Write the name, or leave the \">\" out." },
    { FINDING_IMPOSSIBLE_NAME, L"impossible-name",
      L"No file or folder can have %1 in its name: nothing is copied, made or removed.",
      L"Write another name; a remark begins with \" | \", on \"File Overwrite: \" and \"File Del: \" records alone." },
    { FINDING_NAME_TAKEN, L"impossible-name",
      L"The file %1 landed under this name before, which no folder can have then: none is made.",
      L"Write another name, or leave the record out." },
    { FINDING_NO_MATCH, L"no-match",
      L"The package holds no such file: nothing is copied. A folder before \">\" does harm: what stands under the "
      L"target's name is lost, or renamed to .old.",
      L"Correct the name, add the file, or leave the record out." },
    { FINDING_FOLDER_CAUGHT, L"folder-caught",
      L"The mask meets the folder %1 and ends there: what comes behind it isn't copied. If the target has such a "
      L"folder, that one is renamed to %1.old.",
      L"Use a mask that meets files alone, or one record for each file." },
    { FINDING_FOLDER_DELETED, L"folder-caught",
      L"A removal deletes files by this record: the folder %1 is left to the next start of the machine, if it is empty "
      L"then.",
      L"Write a mask for the folder's files, and \"Make Dir: %1\"." },
    { FINDING_TARGET_IS_FOLDER, L"target-is-folder",
      L"The folder %1 stands under that name: it is renamed to %1.old, and the file takes its place.",
      L"Write a file's name behind \">\"." },
    { FINDING_RENAMED_TOO_EARLY, L"renamed-too-early",
      L"A record with \">\" makes no folder, and %1 isn't there yet: nothing is copied.",
      L"Make the folder before, by a copy without \">\", or in the target folder by \"Make Dir: \"." },
    { FINDING_RENAMED_FIRST, L"renamed-too-early",
      L"A record with \">\" makes no folder, and the target folder isn't there yet: nothing is copied.",
      L"Put a \"File Copy: \" record without \">\" before this one: the first file makes the target folder." },
    { FINDING_MADE_TOO_EARLY, L"made-too-early",
      L"The record makes one level and no parents, and %1 isn't there yet: no folder is made.",
      L"Put it behind what makes %1; the target folder comes with the first file." },
    { FINDING_WRITTEN_TWICE, L"written-twice", L"The file %1 landed under this name before, and is lost.",
      L"Give one of the two another name." },
    { FINDING_LIBRARY_TEST, L"library-test",
      L"The machine is asked for a library of just this name, which it never has: the files are always copied.",
      L"Name one library in the package's own folder, or use \"File Copy: \"." },
    { FINDING_FOLDER_UNNAMED, L"folder-unnamed",
      L"The copy makes the folder %1, and no removal takes it away: it stays, and the target folder with it.",
      L"Add \"Make Dir: %1\" behind this record." },
    { FINDING_PARENT_FIRST, L"parent-first",
      L"A removal takes the folders in this order: %1 still stands in this one then, which is left to the next start "
      L"of the machine, and the target folder stays for good.",
      L"Name this folder once more, behind %1." },
    { FINDING_LIST_NAMED, L"list-named",
      L"The list is open while it is worked through at a removal and goes on the boot list: if the product is "
      L"installed again before the next start, that start deletes the new list. A folder of its name is renamed "
      L"to " FILE_LIST_NAME L".old, and the target folder stays.",
      L"Leave it out, and out of masks: an install copies the list by itself." },
    { FINDING_FILE_UNNAMED, L"file-unnamed", L"No record copies the file: it isn't installed.",
      L"Add \"File Copy: %1\", or take the file out of the package." },
    { FINDING_FILE_UNNAMEABLE, L"file-unnamed",
      L"No record copies the file: it isn't installed. Its name goes beyond Latin-1, and can't stand in a list.",
      L"Use a mask that meets it, give it another name, or take the file out of the package." },
    { FINDING_UNINSTALLER_MISSING, L"uninstaller-missing",
      L"The system's list of programs leads to %1, which no record installs: the product can't be removed.",
      L"Add \"File Copy: %1\"." },
    { FINDING_COUNTED_ON, L"counted-on",
      L"An install makes links or entries that lead to %1, which no record installs.", L"Add \"File Copy: %1\"." },
    { FINDING_NO_VERSION, L"no-version",
      L"The setup takes a package for damaged, and stops, if this file is missing, has no version, or one that begins "
      L"with 0.",
      L"Give it a version resource." },
    { FINDING_NO_RECORD, L"no-record",
      L"No line is a record: an install copies nothing, and makes its links and entries all the same.",
      L"Write the records." },
};

static_assert(sizeof(kTexts) / sizeof(*kTexts) == FINDING_COUNT, "each kind has its row, in the order of the kinds");

static CString WithDetail(const wchar_t* pszText, const CString& strDetail)
{
    CString strText(pszText);
    strText.Replace(L"%1", strDetail);
    return strText;
}

static void PrintFinding(int nLine, FindingKind nKind, const CString& strSubject, const CString& strDetail)
{
    CString strPlace(kFileListName);
    if (nLine > 0)
        strPlace.Format(L"%s(%d)", kFileListName, nLine);
    const FindingText& text = kTexts[nKind];
    PrintLine(stdout, strPlace + L": " + text.pszName + (strSubject.IsEmpty() ? L"" : L": ") + strSubject);
    PrintLine(stdout, L"    " + WithDetail(text.pszHappens, strDetail));
    PrintLine(stdout, L"    Instead: " + WithDetail(text.pszInstead, strDetail));
}

bool CFindings::Place::operator<(const Place& other) const
{
    // The package as a whole comes behind all lines.
    const int nOrder = nLine > 0 ? nLine : INT_MAX;
    const int nOtherOrder = other.nLine > 0 ? other.nLine : INT_MAX;
    return std::tie(nOrder, nKind, strFile) < std::tie(nOtherOrder, other.nKind, other.strFile);
}

void CFindings::Add(FindingKind nKind, int nLine, const CString& strSubject, const CString& strDetail)
{
    m_findings.insert({ { nLine, nKind, nLine > 0 ? CString() : strSubject }, { strSubject, strDetail } });
}

bool CFindings::IsSilenced(const Place& place) const
{
    if (place.nLine == 0 || place.nKind < FINDING_NO_MATCH)
        return false;
    const auto first = m_findings.lower_bound({ place.nLine, FINDING_LONG_LINE, CString() });
    return first->first.nLine == place.nLine && first->first.nKind < FINDING_NO_MATCH;
}

std::vector<int> CFindings::LinesWith(FindingKind nKind) const
{
    std::vector<int> lines;
    for (const auto& [place, subject] : m_findings)
        if (place.nKind == nKind)
            lines.push_back(place.nLine);
    return lines;
}

int CFindings::Print() const
{
    int nPrinted = 0;
    for (const auto& [place, finding] : m_findings)
    {
        if (IsSilenced(place))
            continue;
        PrintFinding(place.nLine, place.nKind, finding.strSubject, finding.strDetail);
        ++nPrinted;
    }
    return nPrinted;
}
