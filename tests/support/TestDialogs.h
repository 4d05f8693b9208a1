// Ids of the dialogs that only the tests show.
#pragma once

#define IDD_TEST_FRAME 201
#define IDD_TEST_PAGE 202

// Page; the radio buttons are this one and the two behind it
#define IDC_TEST_EDIT 1000
#define IDC_TEST_BOX 1001
#define IDC_TEST_RADIO 1002
#define IDC_TEST_OTHER 1006
