#include "tests/win/support/win_test_util.h"

#include <cstdio>

namespace sentrel_test {

std::string WinPath(const std::string& unixPath) {
    std::string out = "Z:" + unixPath;
    for (char& c : out)
        if (c == '/') c = '\\';
    return out;
}

bool SetRegString(HKEY root, const std::string& key, const char* name, const std::string& value) {
    HKEY h = nullptr;
    if (RegCreateKeyExA(root, key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &h, nullptr) != ERROR_SUCCESS)
        return false;
    LONG rc = RegSetValueExA(h, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                             static_cast<DWORD>(value.size() + 1));
    RegCloseKey(h);
    return rc == ERROR_SUCCESS;
}

bool DeleteRegTree(HKEY root, const std::string& key) {
    LONG rc = RegDeleteTreeA(root, key.c_str());
    return rc == ERROR_SUCCESS || rc == ERROR_FILE_NOT_FOUND;
}

bool RegKeyExists(HKEY root, const std::string& key) {
    HKEY h = nullptr;
    if (RegOpenKeyExA(root, key.c_str(), 0, KEY_READ, &h) != ERROR_SUCCESS) return false;
    RegCloseKey(h);
    return true;
}

std::string GetRegString(HKEY root, const std::string& key, const char* name, bool* found) {
    if (found) *found = false;
    HKEY h = nullptr;
    if (RegOpenKeyExA(root, key.c_str(), 0, KEY_READ, &h) != ERROR_SUCCESS) return {};
    char buffer[4096] = {};
    DWORD size = sizeof buffer - 1, type = 0;
    LONG rc = RegQueryValueExA(h, name, nullptr, &type, reinterpret_cast<BYTE*>(buffer), &size);
    RegCloseKey(h);
    if (rc != ERROR_SUCCESS || type != REG_SZ) return {};
    if (found) *found = true;
    return buffer;
}

bool WriteTextFile(const std::string& path, const std::string& text) {
    FILE* f = fopen(path.c_str(), "wb");
    if (!f) return false;
    bool ok = fwrite(text.data(), 1, text.size(), f) == text.size();
    return fclose(f) == 0 && ok;
}

std::string ReadTextFile(const std::string& path, bool* found) {
    if (found) *found = false;
    FILE* f = fopen(path.c_str(), "rb");
    if (!f) return {};
    std::string out;
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, f)) > 0) out.append(buffer, n);
    fclose(f);
    if (found) *found = true;
    return out;
}

std::string MakeTempFolder(const std::string& prefix) {
    char temp[MAX_PATH] = {};
    GetTempPathA(MAX_PATH, temp);
    for (unsigned n = GetTickCount();; ++n) {
        std::string path = std::string(temp) + prefix + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(n);
        if (CreateDirectoryA(path.c_str(), nullptr)) return path;
        if (GetLastError() != ERROR_ALREADY_EXISTS) return {};
    }
}

ScopedCurrentFolder::ScopedCurrentFolder(const std::string& prefix) : m_path(MakeTempFolder(prefix)) {
    GetCurrentDirectoryA(MAX_PATH, m_old);
    SetCurrentDirectoryA(m_path.c_str());
}

ScopedCurrentFolder::~ScopedCurrentFolder() { SetCurrentDirectoryA(m_old); }

bool ScopedCurrentFolder::Exists(const std::string& name) const {
    return GetFileAttributesA(File(name).c_str()) != INVALID_FILE_ATTRIBUTES;
}

HRESULT CallDllExport(const std::string& dllPath, const char* exportName) {
    HMODULE module = LoadLibraryA(dllPath.c_str());
    if (!module) return HRESULT_FROM_WIN32(GetLastError());
    auto fn = reinterpret_cast<HRESULT(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(module, exportName)));
    HRESULT hr = fn ? fn() : E_NOTIMPL;
    FreeLibrary(module);
    return hr;
}

}  // namespace sentrel_test
