// The web browser of the machine is a command that writes the address into the corner.
#include "tests/support/WizardProcess.h"

#include <algorithm>

static const wchar_t kWebCommand[] = L"http\\shell\\open\\command";

WizardProcess::WizardProcess() : m_package(At(L"package")), m_strTarget(At(L"Program Files\\Lumacap 8"))
{
    m_registry.Keep(HKEY_CLASSES_ROOT, kWebCommand);
    SetKeyText(HKEY_CLASSES_ROOT, kWebCommand, L"", L"cmd.exe /c echo \"%1\">" + At(L"web.txt"));
}

void WizardProcess::Start(const std::wstring& strSwitches)
{
    m_wizard.reset();
    m_run = std::make_unique<CProcessRun>(Command(strSwitches));
    m_run->SetFolder(m_package.Folder());
    m_run->AddEnvironment(L"LUMACAP_REPORT", At(L"report.txt"));
    ASSERT_TRUE(m_run->Start());
}

void WizardProcess::OpenOn(int nControl)
{
    Start();
    MeetWizard();
    static const int kPages[] = { IDC_INTRO_VERSION, IDC_AGREEMENT_TEXT, IDC_FOLDER_BROWSE, IDC_GROUP_AUTOSTART,
                                  IDC_START_TEXT };
    for (const int nPage : kPages)
    {
        AwaitPage(nPage);
        if (nPage == nControl)
            return;
        m_wizard->Click(IDOK);
    }
}

void WizardProcess::AwaitReportPage() const
{
    ASSERT_TRUE(m_wizard->AwaitText(IDOK, L"&Finish >"));
    ASSERT_TRUE(m_wizard->AwaitText(IDC_START_HEADLINE, L"Lumacap 8.20.01 has been successfully installed."));
}

void WizardProcess::Install() const
{
    m_wizard->Click(IDOK);
    AwaitReportPage();
}

void WizardProcess::ExpectBox(const wchar_t* pszText, const std::vector<int>& buttons, int nDefault, int nAnswer) const
{
    const BOX box = ::ExpectBox(m_run->Id(), nAnswer);
    EXPECT_EQ(box.strText, pszText);
    EXPECT_EQ(box.strCaption, L"Lumacap 8");
    EXPECT_EQ(box.buttons, buttons);
    EXPECT_EQ(box.nDefault, nDefault);
}

bool WizardProcess::AwaitStarts(std::vector<std::wstring> switches) const
{
    std::vector<std::string> starts;
    for (const std::wstring& strSwitches : switches)
        starts.push_back(Bytes(L"\"" + m_strTarget + L"\\Lumacap8.exe\"" + strSwitches + L"\t" + m_strTarget));
    std::sort(starts.begin(), starts.end());
    return WaitUntil(
        [&]
        {
            std::vector<std::string> lines;
            if (IsThere(At(L"report.txt")))
                lines = ReadLines(At(L"report.txt"));
            std::sort(lines.begin(), lines.end());
            return lines == starts;
        });
}
