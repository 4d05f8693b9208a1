// What a verification tells.
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
    CVerification verification(package);
    bRemoved ? verification.VerifyRemoval(strFolder) : verification.VerifyInstall(strFolder);
    int nWaiting = 0;
    for (const Difference& difference : verification.m_differences)
    {
        nWaiting += difference.pKind->bWaits;
        bJson ? PrintAsJson(difference) : PrintAsText(difference);
    }
    const int nDifferences = static_cast<int>(verification.m_differences.size()) - nWaiting;
    const ExitCode nCode = nDifferences > 0 ? EXIT_FINDINGS : nWaiting > 0 ? EXIT_WAITING : EXIT_CLEAN;
    const wchar_t* pszResult = (bRemoved ? kRemovalResults : kInstallResults)[nCode];
    CString strSum;
    strSum.Format(L"%s: %s; differences: %d; waiting for the next start of the machine: %d; looked at: %d files, "
                  L"%d links, %d registry values",
                  g_strInstDir.GetString(), pszResult, nDifferences, nWaiting, verification.m_nFiles,
                  verification.m_nLinks, verification.m_nValues);
    if (bJson)
        PrintJson({ { "kind", "summary" },
                    { "path", ToUtf8(g_strInstDir) },
                    { "result", ToUtf8(pszResult) },
                    { "differences", nDifferences },
                    { "waiting", nWaiting },
                    { "files", verification.m_nFiles },
                    { "links", verification.m_nLinks },
                    { "values", verification.m_nValues } });
    else
        PrintLine(stdout, strSum);
    return nCode;
}
