// One file of the package on its way to its place, whatever stands there. Each target that is in use is really in use.
#include "install/FileReplacement.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <tuple>
#include <utility>

#include "app/RunState.h"
#include "tests/support/Corner.h"
#include "tests/support/ImportHook.h"
#include "tests/support/PendingList.h"

const DWORD kReadOnlyHidden = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN;

// A file that is absent (-), free (f), read-only and hidden (p), a mapped image, which can be renamed (i), held with
// read sharing, so that nothing can be done with it (h), or held with write sharing too, so that it can be overwritten
// (w).
class CStanding
{
public:
    CStanding(const std::wstring& strPath, char chState, const char* pszContent)
    {
        if (chState == 'i')
            m_image.emplace(strPath);
        else if (chState != '-')
            WriteBytes(strPath, pszContent);
        if (chState == 'h' || chState == 'w')
            m_hold.emplace(strPath, FILE_SHARE_READ | (chState == 'w' ? FILE_SHARE_WRITE : 0));
        if (chState == 'p')
            SetAttributes(strPath, kReadOnlyHidden);
    }

private:
    std::optional<CFileHold> m_hold;
    std::optional<CImageHold> m_image;
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

    int Replace(const wchar_t* pszName, const wchar_t* pszTargetName = nullptr, const wchar_t* pszFrom = L"from",
                const wchar_t* pszTo = L"to") const
    {
        return ReplaceOneFile(pszName, At(pszFrom).c_str(), At(pszTo).c_str(), pszTargetName);
    }

    // "NAME=CONTENT " for each file of the folder; a program's image shows as "image".
    std::wstring Files(const wchar_t* pszFolder = L"to") const
    {
        std::wstring strFiles;
        for (const std::wstring& strName : ListTree(At(pszFolder)))
        {
            const std::string strBytes = ReadBytes(At(pszFolder) + L"\\" + strName);
            strFiles += strName + L"=" +
                        (strBytes[0] == 'M' ? L"image" : std::wstring(strBytes.begin(), strBytes.end())) + L" ";
        }
        return strFiles;
    }
};

TEST_F(FileReplacement, TheTargetsSituationDecidesWhatStandsWaitsAndIsReported)
{
    const std::tuple<const char*, const wchar_t*, const wchar_t*, int, bool> rows[] = {
        // states of x.e, x.e.old, x.e.old2, x.e.new; what stands, what waits, reboot flag if it was touched, result
        { "----", L"x.e=new ", L"", -1, true },
        { "ffff", L"x.e=new x.e.new=n x.e.old=o x.e.old2=o2 ", L"", -1, true },
        { "p---", L"x.e=new ", L"", -1, true },
        { "ifff", L"x.e=new x.e.new=n x.e.old=image x.e.old2=o2 ", L"-x.e.old", -1, true },
        { "ih--", L"x.e=new x.e.old=o x.e.old2=image ", L"-x.e.old -x.e.old2", -1, true },
        { "ipf-", L"x.e=new x.e.old=o x.e.old2=image ", L"-x.e.old -x.e.old2", -1, true },
        { "iih-", L"x.e=image x.e.new=new x.e.old=image x.e.old2=o2 ", L"-x.e.old -x.e x.e.new>x.e", 1, false },
        { "hfff", L"x.e=t x.e.new=new x.e.old2=o2 ", L"-x.e x.e.new>x.e", 1, false },
        { "h--w", L"x.e=t x.e.new=new ", L"-x.e x.e.new>x.e", 1, false },
        { "h--h", L"x.e=t x.e.new=n ", L"-x.e", -1, false },
        { "w---", L"x.e=new x.e.new=new ", L"-x.e x.e.new>x.e", 1, true },
    };
    for (const auto& [pszStates, pszFiles, pszPending, nReboot, bResult] : rows)
    {
        SCOPED_TRACE(pszStates);
        {
            const CStanding target(At(L"to\\x.e"), pszStates[0], "t");
            const CStanding old(At(L"to\\x.e.old"), pszStates[1], "o");
            const CStanding old2(At(L"to\\x.e.old2"), pszStates[2], "o2");
            const CStanding left(At(L"to\\x.e.new"), pszStates[3], "n");
            g_bRebootNeeded = -1;
            EXPECT_EQ(Replace(L"x.e") != 0, bResult);
            EXPECT_EQ(Files(), pszFiles);
            EXPECT_EQ(PendingText(At(L"to")), pszPending);
            EXPECT_EQ(g_bRebootNeeded, nReboot);
            EXPECT_EQ(AttributesOf(At(L"to\\x.e")) & kReadOnlyHidden, 0u);
        }
        RemoveTree(At(L"to"));
        MakeFolder(At(L"to"));
        ClearPending();
    }
}

TEST_F(FileReplacement, ANewFileLeftBehindIsRemovedBeforeTheNextOneIsWritten)
{
    const CStanding target(At(L"to\\x.e"), 'h', "t");
    WriteBytes(At(L"other"), "of somebody else");
    ASSERT_TRUE(CreateHardLinkW(At(L"to\\x.e.new").c_str(), At(L"other").c_str(), nullptr));
    EXPECT_EQ(Replace(L"x.e"), 0);
    EXPECT_EQ(Files(), L"x.e=t x.e.new=new ");
    EXPECT_EQ(ReadBytes(At(L"other")), "of somebody else");
}

TEST_F(FileReplacement, TheNewFileHasTheAttributesOfItsSourceAndAMissingSourceLeavesTheTargetAlone)
{
    const CStanding target(At(L"to\\x.e"), 'p', "t");
    EXPECT_EQ(Replace(L"missing", L"x.e"), 0);
    EXPECT_EQ(Files(), L"x.e=t ");
    EXPECT_EQ(AttributesOf(At(L"to\\x.e")) & kReadOnlyHidden, kReadOnlyHidden);
    SetAttributes(At(L"from\\x.e"), FILE_ATTRIBUTE_READONLY);
    EXPECT_NE(Replace(L"x.e"), 0);
    EXPECT_EQ(AttributesOf(At(L"to\\x.e")) & kReadOnlyHidden, DWORD{ FILE_ATTRIBUTE_READONLY });
}

TEST_F(FileReplacement, NamesMayHoldASubfolderWhichIsNotMade)
{
    WriteBytes(At(L"from\\sub\\y"), "below");
    EXPECT_NE(Replace(L"sub\\y", L"z"), 0);
    EXPECT_EQ(Replace(L"sub\\y", nullptr, L"from/", L"to\\"), 0);
    EXPECT_EQ(Files(), L"z=below ");
}

TEST_F(FileReplacement, WithinOneFolderAFileWithoutANewNameIsInPlaceEvenIfItIsMissing)
{
    EXPECT_NE(Replace(L"x.e", nullptr, L"from", L"FROM\\"), 0);
    EXPECT_NE(Replace(L"missing", nullptr, L"FROM\\", L"from"), 0);
    EXPECT_EQ(Files(L"from"), L"x.e=new ");

    // Only the texts are compared: told with a slash, the folder isn't known for the same, and the file is lost.
    EXPECT_EQ(Replace(L"x.e", nullptr, L"from", L"from/"), 0);
    EXPECT_EQ(Files(L"from"), L"");
}

// Here a target that can't be deleted, also one that is only read-only, is left as it is and counts as made.
TEST_F(FileReplacement, WithinOneFolderATargetThatCantBeDeletedCountsAsMade)
{
    const std::pair<char, const wchar_t*> rows[] = { { '-', L"new" }, { 'f', L"new" }, { 'p', L"t" },
                                                     { 'h', L"t" },   { 'w', L"t" },   { 'i', L"image" } };
    for (const auto& [chState, pszContent] : rows)
    {
        {
            const CStanding target(At(L"from\\y.e"), chState, "t");
            EXPECT_NE(Replace(L"x.e", L"y.e", L"from", L"From\\"), 0) << chState;
            EXPECT_EQ(Files(L"from"), L"x.e=new y.e=" + std::wstring(pszContent) + L" ");
        }
        RemoveTree(At(L"from\\y.e"));
    }
    EXPECT_EQ(PendingText(At(L"from")), L"");
}

TEST_F(FileReplacement, WithinOneFolderASourceThatGoesMeanwhileLeavesTheWordToTheTarget)
{
    for (const char chState : { '-', 'f' })
    {
        CCallHook access("msvcrt.dll", "_waccess", &_waccess);
        access.FailOnly(2, ERROR_FILE_NOT_FOUND, -1);
        const CStanding target(At(L"from\\y.e"), chState, "t");
        EXPECT_EQ(Replace(L"x.e", L"y.e", L"from", L"from") != 0, chState == 'f');
        EXPECT_EQ(Files(L"from"), chState == 'f' ? L"x.e=new y.e=t " : L"x.e=new ");
    }
}
