// Text helpers of the framework layer: the plug-in's strings are 8-bit in the ANSI code page;
// the host's COM strings are 16-bit and are converted on entry.
#pragma once
#include <windows.h>
#include <string>

namespace ui {

// 16-bit text (BSTR or wide string) to 8-bit text in the ANSI code page. Null gives "".
std::string ToAnsi(const wchar_t* text, int length = -1);
std::wstring ToWide(const std::string& text);

// A string-table text of the plug-in's resource module; "" when the entry is missing.
std::string LoadResString(UINT id);

// The module whose resources the framework loads (the plug-in's own file).
HINSTANCE ResourceInstance();
void SetResourceInstance(HINSTANCE instance);

// The framework's standard message box: the text with an OK button, captioned with the
// application's name ("Sentrel"), like the framework's AfxMessageBox.
int MessageBoxOk(HWND owner, const std::string& text);
// A message box with an OK button and a caption of the caller's.
int MessageBoxOk(HWND owner, const std::string& text, const std::string& caption);

}  // namespace ui
