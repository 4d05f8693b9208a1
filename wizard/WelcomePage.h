// The web page that greets the user after a first install or an upgrade.
#pragma once

// Opens it, with the query that the installed "HomePage.url" gives; not in a silent run, not after a mere repetition,
// and not if ready-made settings were taken over.
void OpenWelcomePage();
