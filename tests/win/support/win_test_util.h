// Small helpers for Windows tests: build-tree paths in Wine's form, registry set-up.
#pragma once
#include <windows.h>

#include <string>

namespace sentrel_test {

// A Unix path of the build or source tree as Wine sees it ("Z:\work\...").
std::string WinPath(const std::string& unixPath);

// Registry helpers under any root; all return true on success.
bool SetRegString(HKEY root, const std::string& key, const char* name, const std::string& value);
bool DeleteRegTree(HKEY root, const std::string& key);
bool RegKeyExists(HKEY root, const std::string& key);
// The string value, or nullopt-like: `found` false when missing.
std::string GetRegString(HKEY root, const std::string& key, const char* name, bool* found = nullptr);

// Writes `text` to `path`, replacing it.
bool WriteTextFile(const std::string& path, const std::string& text);
std::string ReadTextFile(const std::string& path, bool* found = nullptr);

// A fresh empty folder under the system's temp folder; returns its path.
std::string MakeTempFolder(const std::string& prefix);

// A fresh temp folder as the current folder for a test's life (the plug-in writes its staging
// and device-list files there); the folder before comes back at the end.
class ScopedCurrentFolder {
public:
    explicit ScopedCurrentFolder(const std::string& prefix);
    ~ScopedCurrentFolder();
    ScopedCurrentFolder(const ScopedCurrentFolder&) = delete;
    ScopedCurrentFolder& operator=(const ScopedCurrentFolder&) = delete;
    const std::string& Path() const { return m_path; }
    std::string File(const std::string& name) const { return m_path + "\\" + name; }
    bool Exists(const std::string& name) const;

private:
    std::string m_path;
    char m_old[MAX_PATH] = {};
};

// Calls an export of a DLL by name (DllRegisterServer, DllUnregisterServer).
HRESULT CallDllExport(const std::string& dllPath, const char* exportName);

}  // namespace sentrel_test
