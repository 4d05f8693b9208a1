// Ids that the framework reserves, as far as the program meets them. Read by the resource compiler, too.
#pragma once

#define IDC_STATIC (-1)

#define AFX_IDS_APP_TITLE 0xE000

#define ID_HELP 0xE146
