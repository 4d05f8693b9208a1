// pkgtool: what those need who make packages and who install them on many machines. Each verb reads a package with the
// setup's own reader.
#include <afx.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "tools/pkgtool/FolderList.h"
#include "tools/pkgtool/Output.h"
#include "tools/pkgtool/PackageCheck.h"
#include "tools/pkgtool/PackageFolder.h"
#include "tools/pkgtool/PlanText.h"
#include "tools/pkgtool/VerifyReport.h"

struct Options
{
    std::string strFolder; // in UTF-8, as CLI11 wants all texts
    std::string strKind;
    bool bForce = false;
    std::string strTarget;
    bool bRemoved = false;
    bool bJson = false;
};

static int CheckFolder(const Options& options)
{
    Package package;
    if (!ReadPackage(FromUtf8(options.strFolder), package))
        return EXIT_UNUSABLE;
    CFindings findings;
    CheckPackage(package, findings);
    const int nFindings = findings.Print();
    CString strSum;
    strSum.Format(nFindings == 1 ? L"%d finding" : L"%d findings", nFindings);
    PrintLine(stdout, strSum);
    return nFindings > 0 ? EXIT_FINDINGS : EXIT_CLEAN;
}

static const std::map<std::string, InstallKind> kKinds = {
    { "user", KIND_CURRENT_USER },
    { "all", KIND_ALL_USERS },
    { "portable", KIND_PORTABLE },
};

static int TellPlan(const Options& options)
{
    Package package;
    if (!ReadPackage(FromUtf8(options.strFolder), package))
        return EXIT_UNUSABLE;
    PrintPlan(package, kKinds.at(options.strKind));
    return EXIT_CLEAN;
}

static int ListFolder(const Options& options)
{
    return WriteFolderList(FromUtf8(options.strFolder), options.bForce);
}

static int Verify(const Options& options)
{
    Package package;
    if (!ReadPackage(FromUtf8(options.strFolder), package))
        return EXIT_UNUSABLE;
    const CString strTarget = CleanFolderArgument(FromUtf8(options.strTarget));
    if (strTarget.IsEmpty() != options.strTarget.empty() || strTarget.GetLength() >= MAX_PATH)
        return Refuse(L"no install goes to " + FromUtf8(options.strTarget));
    return ReportVerification(package, strTarget, options.bRemoved, options.bJson);
}

// A verb is chosen while the command line is read, and carried out once it has been read to its end.
class CCommandLine
{
public:
    CCommandLine()
    {
        m_app.set_help_flag("-h,--help", "tell what the tool can do");
        m_app.allow_windows_style_options(false);
        m_app.require_subcommand(1);
        AddFolder(AddVerb("check", CheckFolder,
                          "Tells what an install or a removal would silently do wrong, line by line of the list."));
        CLI::App* pPlan = AddVerb("plan", TellPlan,
                                  "Tells what an install would create on a machine that never had the "
                                  "product, and what a removal would leave.");
        pPlan->add_option("KIND", m_options.strKind, "user, all or portable")
            ->required()
            ->check(CLI::IsMember(&kKinds).description(""));
        AddFolder(pPlan);
        CLI::App* pList = AddVerb("list", ListFolder, "Writes the list of a product's folder: all that lies there.");
        AddFolder(pList, "the product's folder, which becomes the package");
        pList->add_flag("--force", m_options.bForce,
                        "write it over a list that stands, and keep its records File Copy ind, File Copy prt, "
                        "File Overwrite and File Del");
        CLI::App* pVerify = AddVerb("verify", Verify,
                                    "Tells whether an install of the package stands whole. Exit code 0: it does; "
                                    "1: it differs; 2: wrong use; 3: it will after a restart.");
        AddFolder(pVerify);
        AddPath(pVerify, "TARGET", m_options.strTarget, "the folder of a portable install");
        pVerify->add_flag("--removed", m_options.bRemoved, "tell what still stands after a removal");
        pVerify->add_flag("--json", m_options.bJson, "tell each difference as an object");
    }

    // Gives the exit code.
    int Run(std::vector<std::string> arguments)
    {
        const auto isFirst = [&](const CLI::App* pVerb) { return pVerb->get_name() == arguments[0]; };
        if (!arguments.empty() && arguments[0][0] != '-' && m_app.get_subcommands(isFirst).empty())
            return Refuse(L"there is no subcommand " + FromUtf8(arguments[0]) + L" (see pkgtool --help)");
        std::reverse(arguments.begin(), arguments.end());
        try
        {
            m_app.parse(std::move(arguments));
        }
        catch (const CLI::Success& help)
        {
            return m_app.exit(help);
        }
        catch (const CLI::ParseError& error)
        {
            return Refuse(FromUtf8(error.what()) + L" (see pkgtool --help)");
        }
        return m_verb(m_options);
    }

private:
    using VERB = int (*)(const Options&);

    CLI::App* AddVerb(const char* pszName, VERB verb, const char* pszDescription)
    {
        CLI::App* pVerb = m_app.add_subcommand(pszName, pszDescription);
        pVerb->callback([this, verb] { m_verb = verb; });
        return pVerb;
    }

    void AddFolder(CLI::App* pVerb, const char* pszDescription = "the package: a folder with a LumUnInst.log")
    {
        AddPath(pVerb, "FOLDER", m_options.strFolder, pszDescription)->required();
    }

    // An empty one comes of a script's variable that isn't set, and would name the root or nothing at all.
    static CLI::Option* AddPath(CLI::App* pVerb, const char* pszName, std::string& strPath, const char* pszDescription)
    {
        return pVerb->add_option(pszName, strPath, pszDescription)
            ->check(CLI::Validator([](const std::string& str) { return str.empty() ? "it is empty" : ""; }, ""));
    }

    CLI::App m_app{ "Checks packages of the setup, plans them, writes their lists and tells whether an install stands.",
                    "pkgtool" };
    Options m_options;
    VERB m_verb = nullptr;
};

int wmain(int argc, wchar_t** argv)
{
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i)
        arguments.push_back(ToUtf8(argv[i]));
    return CCommandLine().Run(std::move(arguments));
}
