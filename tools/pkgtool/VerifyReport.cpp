#include "tools/pkgtool/VerifyReport.h"

#include <nlohmann/json.hpp>

#include "tools/pkgtool/Output.h"
#include "tools/pkgtool/PackageFolder.h"
#include "tools/pkgtool/Verification.h"

// For people and for scripts, by exit code.
static const wchar_t* const kInstallResults[] = { L"whole", L"differs", L"", L"whole after a restart" };
static const wchar_t* const kRemovalResults[] = { L"gone", L"something stands", L"", L"gone after a restart" };

static void PrintJson(const nlohmann::ordered_json& json)
{
    PrintLine(stdout, FromUtf8(json.dump()));
}

static void PrintAsJson(const Difference& difference)
{
    const CString strText(difference.pKind->pszText);
    nlohmann::ordered_json json = { { "kind", difference.pKind->pszName }, { "path", ToUtf8(difference.strPath) } };
    if (strText.Find(L"%1") >= 0)
        json["found"] = ToUtf8(difference.strFound);
    if (strText.Find(L"%2") >= 0)
        json["expected"] = ToUtf8(difference.strExpected);
    PrintJson(json);
}

static void PrintAsText(const Difference& difference)
{
    CString strText(difference.pKind->pszText);
    strText.Replace(L"%1", difference.strFound);
    strText.Replace(L"%2", difference.strExpected);
    PrintLine(stdout, difference.strPath + L" " + strText);
}

int ReportVerification(const Package& package, const CString& strFolder, bool bRemoved, bool bJson)
{
    Verification result = { package };
    (bRemoved ? VerifyRemoval : VerifyInstall)(result, strFolder);
    int nWaiting = 0;
    for (const Difference& difference : result.differences)
    {
        nWaiting += difference.pKind->bWaits;
        (bJson ? PrintAsJson : PrintAsText)(difference);
    }
    const int nDifferences = static_cast<int>(result.differences.size()) - nWaiting;
    const ExitCode nCode = nDifferences > 0 ? EXIT_FINDINGS : nWaiting > 0 ? EXIT_WAITING : EXIT_CLEAN;
    const wchar_t* pszResult = (bRemoved ? kRemovalResults : kInstallResults)[nCode];
    CString strSum;
    strSum.Format(L"%s; differences: %d; waiting for the next start of the machine: %d; checked: %d; folder: %s",
                  pszResult, nDifferences, nWaiting, result.nChecked, g_strInstDir.GetString());
    if (bJson)
        PrintJson({ { "kind", "summary" },
                    { "path", ToUtf8(g_strInstDir) },
                    { "result", ToUtf8(pszResult) },
                    { "differences", nDifferences },
                    { "waiting", nWaiting },
                    { "checked", result.nChecked } });
    else
        PrintLine(stdout, strSum);
    return nCode;
}
