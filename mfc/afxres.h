// Ids that the framework reserves, as far as the program meets them.
#pragma once

#define AFX_IDS_APP_TITLE 0xE000

#define ID_HELP 0xE146
