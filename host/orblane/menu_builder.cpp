#include "host/orblane/menu_builder.h"

#include <cwctype>

namespace orblane {

std::vector<std::wstring> SplitMenuPath(const std::wstring& path) {
    std::vector<std::wstring> levels;
    size_t start = 0;
    while (start <= path.size()) {
        size_t slash = path.find(L'/', start);
        if (slash == std::wstring::npos) slash = path.size();
        if (slash > start) levels.push_back(path.substr(start, slash - start));
        start = slash + 1;
    }
    return levels;
}

Prompt SplitPrompt(const std::wstring& prompt) {
    size_t nl = prompt.find(L'\n');
    if (nl == std::wstring::npos) return {prompt, prompt};
    return {prompt.substr(0, nl), prompt.substr(nl + 1)};
}

std::wstring PlainMenuText(const std::wstring& text) {
    std::wstring plain;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == L'&') {
            if (i + 1 < text.size() && text[i + 1] == L'&') {
                plain += L'&';
                ++i;
            }
            continue;
        }
        if (text[i] == L'\t') break;  // accelerator text
        plain += text[i];
    }
    while (!plain.empty() && plain.back() == L'.') plain.pop_back();
    return plain;
}

wchar_t AccessKey(const std::wstring& text) {
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != L'&') continue;
        if (text[i + 1] == L'&') {
            ++i;
            continue;
        }
        return static_cast<wchar_t>(std::towlower(text[i + 1]));
    }
    return 0;
}

std::wstring MenuItemText(HMENU menu, int pos) {
    wchar_t buffer[512] = {};
    MENUITEMINFOW info{};
    info.cbSize = sizeof(info);
    info.fMask = MIIM_STRING;
    info.dwTypeData = buffer;
    info.cch = ARRAYSIZE(buffer);
    if (!GetMenuItemInfoW(menu, static_cast<UINT>(pos), TRUE, &info)) return {};
    return buffer;
}

int FindMenuItem(HMENU menu, const std::wstring& text, bool popupOnly) {
    int count = GetMenuItemCount(menu);
    for (int pos = 0; pos < count; ++pos) {
        if (popupOnly && !GetSubMenu(menu, pos)) continue;
        if (MenuItemText(menu, pos) == text) return pos;
    }
    return -1;
}

HMENU AddCommandAtPath(HMENU menuBar, const std::wstring& path, const std::wstring& item,
                       UINT commandId, int topInsertPos) {
    if (!menuBar) return nullptr;
    HMENU current = menuBar;
    bool top = true;
    for (const std::wstring& level : SplitMenuPath(path)) {
        int pos = FindMenuItem(current, level, true);
        if (pos >= 0) {
            current = GetSubMenu(current, pos);
        } else {
            HMENU popup = CreatePopupMenu();
            if (!popup) return nullptr;
            BOOL ok;
            if (top && topInsertPos >= 0) {
                ok = InsertMenuW(current, static_cast<UINT>(topInsertPos), MF_BYPOSITION | MF_POPUP | MF_STRING,
                                 reinterpret_cast<UINT_PTR>(popup), level.c_str());
            } else {
                ok = AppendMenuW(current, MF_POPUP | MF_STRING, reinterpret_cast<UINT_PTR>(popup), level.c_str());
            }
            if (!ok) {
                DestroyMenu(popup);
                return nullptr;
            }
            current = popup;
        }
        top = false;
    }
    if (top && topInsertPos >= 0) {
        if (!InsertMenuW(current, static_cast<UINT>(topInsertPos), MF_BYPOSITION | MF_STRING, commandId, item.c_str()))
            return nullptr;
    } else if (!AppendMenuW(current, MF_STRING, commandId, item.c_str())) {
        return nullptr;
    }
    return current;
}

HMENU FindPopupAtPath(HMENU menuBar, const std::wstring& path) {
    HMENU current = menuBar;
    for (const std::wstring& level : SplitMenuPath(path)) {
        if (!current) return nullptr;
        int pos = FindMenuItem(current, level, true);
        if (pos < 0) return nullptr;
        current = GetSubMenu(current, pos);
    }
    return current;
}

}  // namespace orblane
