#include "ui/text.h"

#include "res/resource.h"

namespace ui {
namespace {
HINSTANCE g_resourceInstance = nullptr;
}

std::string ToAnsi(const wchar_t* text, int length) {
    if (!text) return {};
    if (length < 0) length = lstrlenW(text);
    if (length == 0) return {};
    int bytes = WideCharToMultiByte(CP_ACP, 0, text, length, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<size_t>(bytes > 0 ? bytes : 0), '\0');
    if (bytes > 0) WideCharToMultiByte(CP_ACP, 0, text, length, out.data(), bytes, nullptr, nullptr);
    return out;
}

std::wstring ToWide(const std::string& text) {
    if (text.empty()) return {};
    int chars = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring out(static_cast<size_t>(chars > 0 ? chars : 0), L'\0');
    if (chars > 0)
        MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), out.data(), chars);
    return out;
}

HINSTANCE ResourceInstance() {
    return g_resourceInstance ? g_resourceInstance : GetModuleHandleA(nullptr);
}

void SetResourceInstance(HINSTANCE instance) { g_resourceInstance = instance; }

std::string LoadResString(UINT id) {
    // String-table entries hold at most 4097 characters; LoadStringW with length 0 gives a
    // read-only pointer to the whole entry, so no text is ever cut.
    const wchar_t* text = nullptr;
    int length = LoadStringW(ResourceInstance(), id, reinterpret_cast<LPWSTR>(&text), 0);
    if (length <= 0 || !text) return {};
    return ToAnsi(text, length);
}

int MessageBoxOk(HWND owner, const std::string& text) {
    return MessageBoxOk(owner, text, LoadResString(IDS_PROJNAME));
}

int MessageBoxOk(HWND owner, const std::string& text, const std::string& caption) {
    return MessageBoxA(owner, text.c_str(), caption.c_str(), MB_OK);
}

}  // namespace ui
