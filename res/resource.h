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

// Icon of the executable
#define IDI_SETUP 128
