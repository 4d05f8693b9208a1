// A corner with the built setup as a user meets it: a process of its own, from a package of its own, its windows driven
// from outside. A step that the user takes returns when the window shows what it leads to.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/RunState.h"
#include "res/resource.h"
#include "tests/support/BoxDriver.h"
#include "tests/support/DialogDriver.h"
#include "tests/support/Environment.h"
#include "tests/support/InstallCorner.h"
#include "tests/support/ProcessRun.h"

class WizardProcess : public InstallCorner
{
protected:
    WizardProcess();

    std::wstring Command(const std::wstring& strSwitches) const
    {
        return L"\"" + m_package.Setup() + L"\" " + strSwitches;
    }

    // Starts the setup in its own folder; the product reports each of its starts.
    void Start(const std::wstring& strSwitches = L"");
    void MeetWizard() { m_wizard = std::make_unique<CDialogDriver>(m_run->Id(), L"Lumacap Setup"); }

    // Starts the wizard and steps forward until the page that has the control, at most to the ready page.
    void OpenOn(int nControl);

    void AwaitPage(int nControl) const { ASSERT_TRUE(m_wizard->AwaitVisible(nControl)) << nControl; }
    void AwaitReportPage() const;
    void Step(int nControlOfNextPage) const
    {
        m_wizard->Click(IDOK);
        AwaitPage(nControlOfNextPage);
    }
    void Install() const; // from the ready page to the report
    void Finish() const
    {
        m_wizard->Click(IDOK);
        ExpectEnd();
    }
    void ExpectEnd() const
    {
        EXPECT_TRUE(m_run->WaitForEnd());
        EXPECT_EQ(m_run->ExitCode(), 0u);
    }

    void ExpectBox(const wchar_t* pszText, const std::vector<int>& buttons, int nDefault, int nAnswer) const;
    void ExpectWarning(const wchar_t* pszText) const { ExpectBox(pszText, { IDOK }, IDOK, IDOK); }
    void ExpectCancelBox(int nAnswer) const
    {
        ExpectBox(L"Do you really want to cancel Lumacap setup?", { IDYES, IDNO }, IDNO, nAnswer);
    }

    // True once the product has reported these starts, in any order: the switches of each, with the target as its
    // working folder.
    bool AwaitStarts(std::vector<std::wstring> switches) const;

    const CPackage m_package;
    const std::wstring m_strTarget; // the default one
    std::unique_ptr<CProcessRun> m_run;
    std::unique_ptr<CDialogDriver> m_wizard;

private:
    CRegistryCorner m_registry;
};
