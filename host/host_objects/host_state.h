// What orblane.exe tells its host objects (they live in the same process).
#pragma once
#include <windows.h>

extern "C" {
// The device selected in the host's device list; null or "" when none.
void WINAPI OrblaneHostSetSelectedDeviceIP(const wchar_t* ip);
// The site file the host objects read; overrides the ORBLANE_SITE environment variable.
void WINAPI OrblaneHostSetSitePath(const wchar_t* path);
}
