// Resource IDs of orblane.exe. Host command IDs double as string IDs of their status-bar
// prompts ("status\ntooltip", the convention the plug-ins follow too).
#pragma once

#define IDR_MAINMENU        100
#define IDI_ORBLANE         101

#define IDM_FILE_REFRESH    1001
#define IDM_FILE_EXIT       1002
#define IDM_VIEW_STATUSBAR  1010
#define IDM_HELP_ABOUT      1020

#define IDS_APP_TITLE       2000
#define IDS_READY           2001
#define IDS_ABOUT           2002
