// The wizard as the install run sees it.
#pragma once

// Opens the wizard and leads the user through it, the install included. False if the user cancelled.
bool ShowWizard();

// Opens the wizard on its report page alone, after a silent install. Returns when the user leaves it.
void ShowReportPage();
