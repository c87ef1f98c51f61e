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

// Calls an export of a DLL by name (DllRegisterServer, DllUnregisterServer).
HRESULT CallDllExport(const std::string& dllPath, const char* exportName);

}  // namespace sentrel_test
