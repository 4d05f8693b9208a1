// What can be wrong with a package, and the findings of one check.
#pragma once

#include <afx.h>

#include <map>
#include <utility>
#include <vector>

// The first group is about the list as a whole, the second about how a line is written. A finding of the second group
// silences those of the third on its line, since these may be mere consequences. Kinds of one name differ in what is
// to be done.
enum FindingKind
{
    FINDING_BYTE_ORDER_MARK,
    FINDING_END_MARK,
    FINDING_ZERO_BYTES,
    FINDING_LONE_RETURNS,

    FINDING_LONG_LINE,
    FINDING_UTF8_NAME,
    FINDING_NEAR_MISS,
    FINDING_NAME_MISSING,
    FINDING_NEAR_INSTALL_MADE,
    FINDING_INSTALL_MADE,
    FINDING_ABSOLUTE,
    FINDING_CLIMBING,
    FINDING_TAIL,
    FINDING_FORWARD_SLASH,
    FINDING_MASK_RENAMED,
    FINDING_EMPTY_TARGET,
    FINDING_IMPOSSIBLE_NAME,
    FINDING_NAME_TAKEN,

    FINDING_NO_MATCH,
    FINDING_FOLDER_CAUGHT,
    FINDING_FOLDER_DELETED,
    FINDING_TARGET_IS_FOLDER,
    FINDING_RENAMED_TOO_EARLY,
    FINDING_RENAMED_FIRST,
    FINDING_MADE_TOO_EARLY,
    FINDING_WRITTEN_TWICE,
    FINDING_LIBRARY_TEST,
    FINDING_FOLDER_UNNAMED,
    FINDING_PARENT_FIRST,
    FINDING_LIST_NAMED,
    FINDING_FILE_UNNAMED,
    FINDING_FILE_UNNAMEABLE,
    FINDING_UNINSTALLER_MISSING,
    FINDING_COUNTED_ON,
    FINDING_NO_VERSION,
    FINDING_NO_RECORD,

    FINDING_COUNT
};

class CFindings
{
public:
    // A finding of a line, or with line 0 of the package as a whole; strSubject is the record, or the file. strDetail
    // is the name that the finding's texts have a place for. One line has each kind once.
    void Add(FindingKind nKind, int nLine, const CString& strSubject, const CString& strDetail = CString());

    // The lines, in their order, that have findings of the kind.
    std::vector<int> LinesWith(FindingKind nKind) const;

    // Prints what isn't silenced, in the order of the lines, the package as a whole last. Returns the number printed.
    int Print() const;

private:
    struct Subject
    {
        CString strSubject;
        CString strDetail;
    };
    struct Place
    {
        int nLine;
        FindingKind nKind;
        CString strFile; // of findings without a line, of which there can be many
        bool operator<(const Place& other) const;
    };

    bool IsSilenced(const Place& place) const;

    std::map<Place, Subject> m_findings;
};
