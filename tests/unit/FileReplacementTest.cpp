// One file of the package on its way to its place, whatever stands there. Each target that is in use is really in use.
#include "install/FileReplacement.h"

#include <memory>
#include <tuple>

#include "app/RunState.h"
#include "tests/support/Calls.h"
#include "tests/support/World.h"

namespace
{

class FileReplacement : public World
{
protected:
    int Replace(const wchar_t* pszName, const wchar_t* pszTo, const wchar_t* pszTargetName) const
    {
        return ReplaceOneFile(pszName, At(L"from").c_str(), At(pszTo).c_str(), pszTargetName) != 0;
    }

    // "NAME=CONTENT " for each file of the folder, with "+N" for read-only and hidden bits.
    std::wstring Files(const wchar_t* pszFolder) const
    {
        std::wstring strFiles;
        for (const std::wstring& strName : ListTree(At(pszFolder)))
        {
            const std::wstring strPath = At(pszFolder) + L"\\" + strName;
            const DWORD nOdd = AttributesOf(strPath) & 3;
            strFiles += strName + L"=" + Wide(ReadBytes(strPath).substr(0, 2)) +
                        (nOdd != 0 ? L"+" + std::to_wstring(nOdd) : L"") + L" ";
        }
        return strFiles;
    }
};

} // namespace

TEST_F(FileReplacement, TheSituationDecidesWhatStandsWaitsAndIsReported)
{
    // A state is an attribute's number; or the file is absent (-), a mapped image, which can be renamed (i), held with
    // read sharing, so that nothing can be done with it (h), or with write sharing too, so that it can be overwritten
    // (w). The content is the place among the states; an image's begins with MZ.
    const wchar_t* const names[] = { L"from\\s", L"to\\x.e", L"to\\x.e.old", L"to\\x.e.old2", L"to\\x.e.new" };
    const std::tuple<const char*, const wchar_t*, int, int> rows[] = {
        // states of the source, x.e, x.e.old, x.e.old2, x.e.new; what stands and waits; reboot flag, result
        { "-3---", L"x.e=1+3 ", 7, 0 },
        { "23000", L"x.e=0+2 x.e.new=4 x.e.old=2 x.e.old2=3 ", 7, 1 },
        { "0i000", L"x.e=0 x.e.new=4 x.e.old=MZ x.e.old2=3 -x.e.old", 7, 1 },
        { "0ih--", L"x.e=0 x.e.old=2 x.e.old2=MZ -x.e.old -x.e.old2", 7, 1 },
        { "0i30-", L"x.e=0 x.e.old=2+3 x.e.old2=MZ -x.e.old -x.e.old2", 7, 1 },
        { "0iihw", L"x.e=MZ x.e.new=0 x.e.old=MZ x.e.old2=3 -x.e.old -x.e x.e.new>x.e", 1, 0 },
        { "0h002", L"x.e=1 x.e.new=0 x.e.old2=3 -x.e x.e.new>x.e", 1, 0 },
        { "0h--h", L"x.e=1 x.e.new=4 -x.e", 7, 0 },
        { "0w---", L"x.e=0 x.e.new=0 -x.e x.e.new>x.e", 1, 1 },
    };
    for (const auto& [pszStates, pszOutcome, nReboot, nResult] : rows)
    {
        SCOPED_TRACE(pszStates);
        SetUp();
        std::shared_ptr<void> holds[5];
        for (int i = 0; i < 5; i++)
        {
            const char chState = pszStates[i];
            if (chState == '-')
                continue;
            Make(names[i], std::to_string(i));
            const DWORD nSharing = chState == 'h' ? 1 : chState == 'w' ? 3 : kAsImage;
            if (isdigit(chState))
                SetAttributes(At(names[i]), chState - '0');
            else
                holds[i] = HoldFile(At(names[i]), nSharing);
        }
        g_bRebootNeeded = 7;
        EXPECT_EQ(Replace(L"s", L"to", L"x.e"), nResult);
        EXPECT_EQ(Files(L"to") + Pending(L"to"), pszOutcome);
        EXPECT_EQ(g_bRebootNeeded, nReboot);
    }
}

TEST_F(FileReplacement, WithinOneFolderATargetThatStaysCountsAsMade)
{
    Make(L"from\\a|from\\b|from\\c|from\\d", "1");
    Make(L"from\\s", "2");
    SetAttributes(At(L"from\\a"), 3);
    for (const wchar_t* pszName : { L"s", L"missing" })
        EXPECT_EQ(Replace(pszName, L"FROM\\", nullptr), 1) << pszName;
    for (const wchar_t* pszTargetName : { L"a", L"b" })
        EXPECT_EQ(Replace(L"s", L"FROM\\", pszTargetName), 1) << pszTargetName;

    // A source that has gone since the first look.
    int nLooks = 0;
    const CCalls calls({ { "_waccess", [&](CALL& call) { return ++nLooks == 2 ? -1 : call.Pass(); } } });
    EXPECT_EQ(Replace(L"s", L"from", L"c"), 1);

    // Only the texts are compared: told with a slash, the folder isn't known for the same, and the file is lost.
    EXPECT_EQ(Replace(L"d", L"from/", nullptr), 0);
    EXPECT_EQ(Files(L"from"), L"a=1+3 b=2 c=1 s=2 ");
}
