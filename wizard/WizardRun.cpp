// The wizard as the install run sees it.
#include "wizard/WizardRun.h"

// The interactive mode isn't available yet: such a run ends as if it had been cancelled, with nothing written.
bool ShowWizard()
{
    return false;
}

void ShowReportPage() {}
