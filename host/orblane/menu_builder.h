// Menus and toolbar texts of the stand-in host, built from what plug-ins hand over through
// IHostPlugIn (menu paths separate levels with "/", "&" marks the access key, a
// prompt holds "status text\ntooltip"). Pure functions over HMENUs, tested directly.
#pragma once
#include <windows.h>
#include <string>
#include <vector>

namespace orblane {

// "&Plug-In/&Halvo Console Plug-In" -> {"&Plug-In", "&Halvo Console Plug-In"}; empty
// levels ("a//b", a leading or trailing "/") are dropped.
std::vector<std::wstring> SplitMenuPath(const std::wstring& path);

// "status\ntooltip" -> {status, tooltip}; without "\n" both are the whole text.
struct Prompt {
    std::wstring status;
    std::wstring tooltip;
};
Prompt SplitPrompt(const std::wstring& prompt);

// The text without access-key marks ("&&" stays one "&") and without a trailing "...":
// "&ACL Manager..." -> "ACL Manager". For toolbar button labels.
std::wstring PlainMenuText(const std::wstring& text);

// The access key of a menu text, lower case ("&Plug-In" -> L'p'); 0 when it has none.
wchar_t AccessKey(const std::wstring& text);

// Position of the item of `menu` whose text equals `text` exactly (and that opens a popup,
// when `popupOnly`); -1 when there is none.
int FindMenuItem(HMENU menu, const std::wstring& text, bool popupOnly);

// Adds the command `item` (command ID `commandId`) under `path` in `menuBar`, creating the
// popups of the path that do not exist yet; an existing popup of the same text is shared.
// New top-level popups are inserted before the top-level item at position `topInsertPos`
// (-1: appended), so plug-in menus sit before the host's Help menu. An empty path puts the
// item directly into the menu bar. Returns the popup that received the item (or menuBar),
// null on failure.
HMENU AddCommandAtPath(HMENU menuBar, const std::wstring& path, const std::wstring& item,
                       UINT commandId, int topInsertPos);

// The popup reached by following `path` from `menuBar` (texts compared exactly); null when
// a level is missing.
HMENU FindPopupAtPath(HMENU menuBar, const std::wstring& path);

// Text of the item at `pos` of `menu` (by position).
std::wstring MenuItemText(HMENU menu, int pos);

}  // namespace orblane
