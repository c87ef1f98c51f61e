// Screenshots of the GUI tests: a window's pixels as a PNG file (uncompressed deflate
// blocks, so no library is needed under Wine), for people to look at.
#pragma once
#include <windows.h>

#include <string>

namespace sentrel_gui {

// Captures the window's rectangle from the screen and writes it to `path` (Windows path).
bool SaveWindowPng(HWND hwnd, const std::string& path);

}  // namespace sentrel_gui
