#include "shell/browser_command.h"

#include <windows.h>

#include <vector>

#include "res/resource.h"
#include "shell/host_inventory.h"
#include "ui/text.h"
#include "ui/win_handles.h"

namespace shell {
namespace {

constexpr DWORD kBrowserCommandBytes = 200;  // terminating zero included

// One pass of the lookup: accepted when both texts exist, a drive letter stands before ":\"
// and the extension starts no more than 4 characters before it.
bool FindProgramSpan(const std::string& command, const char* extension, std::string& path) {
    const size_t p = command.find(":\\");
    const size_t e = command.find(extension);
    if (p == std::string::npos || e == std::string::npos) return false;
    if (p < 1) return false;
    if (e + 4 < p) return false;
    path = command.substr(p - 1, e + 4 - (p - 1));
    return true;
}

}  // namespace

std::string ExtractBrowserPath(const std::string& command) {
    std::string path;
    if (FindProgramSpan(command, ".exe", path) || FindProgramSpan(command, ".EXE", path)) return path;
    return {};
}

std::string GetBrowserPath() {
    ui::UniqueRegKey key;
    if (RegOpenKeyExA(HKEY_CLASSES_ROOT, "http\\shell\\open\\command", 0, KEY_READ, key.put()) != ERROR_SUCCESS)
        return {};
    char buffer[kBrowserCommandBytes + 1] = {};
    DWORD type = 0;
    DWORD size = kBrowserCommandBytes;
    if (RegQueryValueExA(key.get(), nullptr, nullptr, &type, reinterpret_cast<BYTE*>(buffer), &size) !=
        ERROR_SUCCESS)
        return {};
    if (type != REG_SZ && type != REG_EXPAND_SZ) return {};
    const size_t length = strnlen(buffer, size);
    if (length >= kBrowserCommandBytes) return {};
    return ExtractBrowserPath(std::string(buffer, length));
}

void RunRadiusServerCommand() {
    const std::string site = ReadRegistryString(SettingsKeyPath(), kRadiusSite);
    const std::string browser = GetBrowserPath();
    if (browser.empty()) {
        ui::MessageBoxOk(nullptr, ui::LoadResString(IDS_FAILED_IE_PATH));
        return;
    }
    // Browser path, one blank, the address, no quotes; CreateProcessA may write to the
    // buffer, so it is a writable copy sized to the whole line (path, blank and
    // address can reach 259 characters).
    const std::string line = browser + " " + site;
    std::vector<char> commandLine(line.begin(), line.end());
    commandLine.push_back('\0');

    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                       &process)) {
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
}

}  // namespace shell
