// One file of the package on its way to its place, whatever stands there. Each target that is in use is really in use.
#include "install/FileReplacement.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "app/RunState.h"
#include "tests/support/Corner.h"
#include "tests/support/ImportHook.h"
#include "tests/support/PendingList.h"
#include "tests/support/ProcessRun.h"

enum STATE
{
    kAbsent,
    kFree,       // nobody uses it
    kReadOnly,   // nobody uses it
    kHidden,     // nobody uses it
    kBoth,       // nobody uses it; read-only and hidden
    kImage,      // mapped: can be renamed
    kHeld,       // held with read sharing: nothing can be done with it
    kHeldShared, // held with read and write sharing: can be overwritten
};

// A file in one of these states; a free one holds its state's text.
class CStanding
{
public:
    CStanding(const std::wstring& strPath, STATE nState, const char* pszContent)
    {
        if (nState == kImage)
            m_image = std::make_unique<CImageHold>(strPath);
        else if (nState != kAbsent)
            WriteBytes(strPath, pszContent);
        if (nState == kHeld || nState == kHeldShared)
            m_hold = std::make_unique<CFileHold>(strPath, FILE_SHARE_READ | (nState == kHeld ? 0 : FILE_SHARE_WRITE));
        if (nState == kReadOnly || nState == kHidden || nState == kBoth)
            SetAttributes(strPath, (nState != kHidden ? FILE_ATTRIBUTE_READONLY : 0) |
                                       (nState != kReadOnly ? FILE_ATTRIBUTE_HIDDEN : 0));
    }

private:
    std::unique_ptr<CFileHold> m_hold;
    std::unique_ptr<CImageHold> m_image;
};

class FileReplacement : public MachineCorner
{
protected:
    void SetUp() override
    {
        MachineCorner::SetUp();
        WriteBytes(At(L"from\\x.e"), "new");
        MakeFolder(At(L"to"));
    }

    int Replace(const wchar_t* pszName = L"x.e", const wchar_t* pszTargetName = nullptr) const
    {
        return ReplaceOneFile(pszName, At(L"from").c_str(), At(L"to").c_str(), pszTargetName);
    }

    // "NAME=CONTENT " for each file of the folder; a program's image shows as "image".
    std::wstring Files(const wchar_t* pszFolder = L"to") const
    {
        std::wstring strFiles;
        for (const std::wstring& strName : ListTree(At(pszFolder)))
        {
            const std::string strBytes = strName.back() == L'\\' ? "" : ReadBytes(At(pszFolder) + L"\\" + strName);
            const std::string strShown = strBytes.substr(0, 2) == "MZ" ? "image" : strBytes;
            strFiles += strName + L"=" + std::wstring(strShown.begin(), strShown.end()) + L" ";
        }
        return strFiles;
    }

    std::wstring Pending() const { return PendingText(At(L"to")); }
};

TEST_F(FileReplacement, TheTargetsSituationDecidesWhatStandsWaitsAndIsReported)
{
    const wchar_t* const pszLeft = L"-x.e x.e.new>x.e";
    const struct
    {
        STATE nTarget, nOld, nOld2, nNew;
        const wchar_t* pszFiles;
        const wchar_t* pszPending;
        int nReboot; // -1: untouched
        bool bResult;
    } rows[] = {
        { kAbsent, kAbsent, kAbsent, kAbsent, L"x.e=new ", L"", -1, true },
        { kFree, kAbsent, kAbsent, kAbsent, L"x.e=new ", L"", -1, true },
        { kFree, kFree, kFree, kFree, L"x.e=new x.e.new=n x.e.old=o x.e.old2=o2 ", L"", -1, true },
        { kReadOnly, kAbsent, kAbsent, kAbsent, L"x.e=new ", L"", -1, true },
        { kHidden, kAbsent, kAbsent, kAbsent, L"x.e=new ", L"", -1, true },
        { kBoth, kAbsent, kAbsent, kAbsent, L"x.e=new ", L"", -1, true },
        { kImage, kAbsent, kAbsent, kFree, L"x.e=new x.e.new=n x.e.old=image ", L"-x.e.old", -1, true },
        { kImage, kFree, kFree, kAbsent, L"x.e=new x.e.old=image x.e.old2=o2 ", L"-x.e.old", -1, true },
        { kImage, kHeld, kAbsent, kAbsent, L"x.e=new x.e.old=o x.e.old2=image ", L"-x.e.old -x.e.old2", -1, true },
        { kImage, kReadOnly, kFree, kAbsent, L"x.e=new x.e.old=o x.e.old2=image ", L"-x.e.old -x.e.old2", -1, true },
        { kImage, kImage, kHeld, kAbsent, L"x.e=image x.e.new=new x.e.old=image x.e.old2=o2 ",
          L"-x.e.old -x.e x.e.new>x.e", 1, false },
        { kHeld, kAbsent, kAbsent, kAbsent, L"x.e=t x.e.new=new ", pszLeft, 1, false },
        { kHeld, kFree, kFree, kFree, L"x.e=t x.e.new=new x.e.old2=o2 ", pszLeft, 1, false },
        { kHeld, kAbsent, kAbsent, kHeldShared, L"x.e=t x.e.new=new ", pszLeft, 1, false },
        { kHeld, kAbsent, kAbsent, kHeld, L"x.e=t x.e.new=n ", L"-x.e", -1, false },
        { kHeldShared, kAbsent, kAbsent, kAbsent, L"x.e=new x.e.new=new ", pszLeft, 1, true },
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(&row - rows);
        {
            const CStanding target(At(L"to\\x.e"), row.nTarget, "t");
            const CStanding old(At(L"to\\x.e.old"), row.nOld, "o");
            const CStanding old2(At(L"to\\x.e.old2"), row.nOld2, "o2");
            const CStanding left(At(L"to\\x.e.new"), row.nNew, "n");
            g_bRebootNeeded = -1;
            EXPECT_EQ(Replace() != 0, row.bResult);
            EXPECT_EQ(Files(), row.pszFiles);
            EXPECT_EQ(Pending(), row.pszPending);
            EXPECT_EQ(g_bRebootNeeded, row.nReboot);
            EXPECT_EQ(AttributesOf(At(L"to\\x.e")) & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN), 0u);
        }
        RemoveTree(At(L"to"));
        MakeFolder(At(L"to"));
        ClearPending();
    }
    EXPECT_EQ(Files(L"from"), L"x.e=new ");
}

TEST_F(FileReplacement, ARunningProgramIsRenamedAndItsSuccessorTakesThePlace)
{
    CopyOneFile(L"C:\\windows\\system32\\notepad.exe", At(L"to\\x.e"));
    CProcessRun program(L"\"" + At(L"to\\x.e") + L"\"");
    ASSERT_TRUE(program.Start());
    EXPECT_NE(Replace(), 0);
    EXPECT_EQ(Files(), L"x.e=new x.e.old=image ");
    EXPECT_EQ(Pending(), L"-x.e.old");
}

TEST_F(FileReplacement, TheNewFileHasTheAttributesOfItsSourceNotOfItsPredecessor)
{
    const CStanding target(At(L"to\\x.e"), kHidden, "t");
    SetAttributes(At(L"from\\x.e"), FILE_ATTRIBUTE_READONLY);
    EXPECT_NE(Replace(), 0);
    EXPECT_EQ(AttributesOf(At(L"to\\x.e")) & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN),
              DWORD{ FILE_ATTRIBUTE_READONLY });
}

TEST_F(FileReplacement, AMissingSourceLeavesTheTargetAlone)
{
    const CStanding target(At(L"to\\y"), kBoth, "t");
    EXPECT_EQ(Replace(L"missing", L"y"), 0);
    EXPECT_EQ(Files(), L"y=t ");
    EXPECT_EQ(AttributesOf(At(L"to\\y")) & 3, 3u);
}

TEST_F(FileReplacement, NamesMayHoldASubfolderWhichIsNotMade)
{
    WriteBytes(At(L"from\\sub\\y"), "below");
    EXPECT_NE(Replace(L"sub\\y", L"z"), 0);
    EXPECT_EQ(Replace(L"sub\\y"), 0);
    EXPECT_EQ(Replace(L"x.e", L"sub\\x"), 0);
    EXPECT_EQ(Files(), L"z=below ");
    MakeFolder(At(L"to\\sub"));
    EXPECT_NE(Replace(L"sub\\y"), 0);
    EXPECT_NE(ReplaceOneFile(L"x.e", At(L"from/").c_str(), At(L"to\\").c_str(), L"sub\\x"), 0);
    EXPECT_EQ(Files(), L"sub\\= sub\\x=new sub\\y=below z=below ");
}

TEST_F(FileReplacement, WithinOneFolderAFileWithoutANewNameIsInPlaceEvenIfItIsMissing)
{
    const std::wstring strFolder = At(L"from");
    EXPECT_NE(ReplaceOneFile(L"x.e", strFolder.c_str(), At(L"FROM\\").c_str(), nullptr), 0);
    EXPECT_NE(ReplaceOneFile(L"missing", At(L"FROM\\").c_str(), strFolder.c_str(), nullptr), 0);
    EXPECT_EQ(Files(L"from"), L"x.e=new ");

    // Only the texts are compared: told with a slash, the folder isn't known for the same, and the file is lost.
    EXPECT_EQ(ReplaceOneFile(L"x.e", strFolder.c_str(), At(L"from/").c_str(), nullptr), 0);
    EXPECT_EQ(Files(L"from"), L"");
}

// Here a target that can't be deleted, also one that is only read-only, is left as it is and counts as made.
TEST_F(FileReplacement, WithinOneFolderATargetThatCantBeDeletedCountsAsMade)
{
    const std::pair<STATE, const wchar_t*> rows[] = {
        { kAbsent, L"x.e=new y.e=new " },   { kFree, L"x.e=new y.e=new " },    { kHidden, L"x.e=new y.e=new " },
        { kReadOnly, L"x.e=new y.e=t " },   { kBoth, L"x.e=new y.e=t " },      { kHeld, L"x.e=new y.e=t " },
        { kHeldShared, L"x.e=new y.e=t " }, { kImage, L"x.e=new y.e=image " },
    };
    for (const auto& [nTarget, pszFiles] : rows)
    {
        {
            const CStanding target(At(L"from\\y.e"), nTarget, "t");
            EXPECT_NE(ReplaceOneFile(L"x.e", At(L"from").c_str(), At(L"From\\").c_str(), L"y.e"), 0) << nTarget;
            EXPECT_EQ(Files(L"from"), pszFiles);
        }
        RemoveTree(At(L"from\\y.e"));
    }
    EXPECT_EQ(Pending(), L"");
    EXPECT_EQ(ReplaceOneFile(L"missing", At(L"from").c_str(), At(L"from").c_str(), L"x.e"), 0);
    EXPECT_EQ(Files(L"from"), L"x.e=new ");
}

TEST_F(FileReplacement, WithinOneFolderASourceThatGoesMeanwhileLeavesTheWordToTheTarget)
{
    for (const bool bTarget : { false, true })
    {
        CCallHook access("msvcrt.dll", "_waccess", &_waccess);
        access.FailOnly(2, ERROR_FILE_NOT_FOUND, -1);
        const CStanding target(At(L"from\\y"), bTarget ? kFree : kAbsent, "t");
        EXPECT_EQ(ReplaceOneFile(L"x.e", At(L"from").c_str(), At(L"from").c_str(), L"y") != 0, bTarget);
        EXPECT_EQ(Files(L"from"), bTarget ? L"x.e=new y=t " : L"x.e=new ");
    }
}

TEST_F(FileReplacement, AFolderInTheTargetsPlaceIsLeftToTheBootIfItCantBeRenamed)
{
    MakeFolder(At(L"to\\x.e"));
    CCallHook move("KERNEL32.dll", "MoveFileW", &MoveFileW);
    move.FailAll(ERROR_ACCESS_DENIED);
    EXPECT_EQ(Replace(), 0);
    EXPECT_EQ(Files(), L"x.e.new=new x.e\\= ");
    EXPECT_EQ(Pending(), L"-x.e x.e.new>x.e");
}

// The flag holds the outcome of the last request, not that of any.
TEST_F(FileReplacement, AReplacementThatCantBeLeftForTheBootClearsAnEarlierRequest)
{
    const CStanding first(At(L"to\\x.e"), kHeld, "t");
    const CStanding second(At(L"to\\y"), kHeld, "t");
    EXPECT_EQ(Replace(), 0);
    EXPECT_NE(g_bRebootNeeded, 0);
    BlockPending();
    MakeFolder(PendingProfilePath());
    EXPECT_EQ(Replace(L"x.e", L"y"), 0);
    EXPECT_EQ(g_bRebootNeeded, 0);
    EXPECT_EQ(Files(), L"x.e=t x.e.new=new y=t y.new=new ");
}
