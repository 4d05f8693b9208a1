// Ids of the string table, the dialog templates and their controls. Control ids belong to their page: the same number
// can stand for different controls on different templates.
#pragma once

// String table
#define IDS_PRODUCT_NAME 1
#define IDS_SETUP_CAPTION 2
#define IDS_PRODUCT_WORD 3
#define IDS_CLOSE_INSTANCES 4
#define IDS_CONFIRM_UNINSTALL 6
#define IDS_ACCEPT_AGREEMENT 7
#define IDS_FINISH_BUTTON 8
#define IDS_INSTALLED 9
#define IDS_PRESS_FINISH 10
#define IDS_CONFIRM_CANCEL 11
#define IDS_SELECT_FOLDER 12
#define IDS_INVALID_FOLDER 13
#define IDS_OLD_VERSION_FOLDER 14
#define IDS_SETUP_ABORTED 15
#define IDS_OLDER_PACKAGE 16
#define IDS_SAME_PACKAGE 17
#define IDS_DAMAGED_PACKAGE 18
#define IDS_FOLDER_HAS_PRODUCT 19
#define IDS_UNINSTALLED 20
#define IDS_YES_BUTTON 21
#define IDS_NO_BUTTON 22
#define IDS_SHORT_GROUP_NAME 23
#define IDS_STARTUP_GROUP_NAME 24
#define IDS_PORTABLE_HINT 26
#define IDS_NO_PORTABLE_FOLDER 27
#define IDS_RUN_PORTABLE 28
#define IDS_RESTART_NEEDED 30
#define IDS_RESTART_BOX 31
#define IDS_CLOSE_ONE_INSTANCE 33
#define IDS_HELP_LINK 101

// Dialog templates
#define IDD_SETUP 103
#define IDD_AGREEMENT 104
#define IDD_INTRO 105
#define IDD_FOLDER 106
#define IDD_GROUP 107
#define IDD_START 108

// Frame; its other buttons are IDOK, the step forward, and IDCANCEL
#define IDC_SETUP_BACK 3
#define IDC_SETUP_SIDE 1002

// Welcome page
#define IDC_INTRO_VERSION 1003

// Agreement page
#define IDC_AGREEMENT_TEXT 1000

// Destination page; the radio buttons stand in the order of the install kinds
#define IDC_FOLDER_USER 1001
#define IDC_FOLDER_ALL 1002
#define IDC_FOLDER_PORTABLE 1003
#define IDC_FOLDER_BROWSE 1005
#define IDC_FOLDER_HINT 1006
#define IDC_FOLDER_PATH 1013

// Program group page
#define IDC_GROUP_NAME 1000
#define IDC_GROUP_AUTOSTART 1008
#define IDC_GROUP_DESKTOP 1009

// Ready page, which is also the report
#define IDC_START_PROGRESS 1009
#define IDC_START_HEADLINE 1010
#define IDC_START_TEXT 1011
#define IDC_START_RUN 1012

#ifndef IDC_STATIC
#define IDC_STATIC (-1)
#endif

// Side picture of the frame
#define IDB_SIDE 101

// Icon of the executable
#define IDI_SETUP 128
