// What the shell tests share: the built DLLs, their registration, the host's call log.
#pragma once
#include <windows.h>

#include <string>

#include "tests/win/support/win_test_util.h"

namespace sentrel_test {

inline std::string SentrelDll() { return WinPath(SENTREL_DLL_PATH); }
inline std::string OrblaneHostDll() { return WinPath(ORBLANE_HOST_DLL_PATH); }
inline std::string FakeBrowser() { return WinPath(FAKE_BROWSER_PATH); }

inline constexpr char kSettingsKey[] = "Software\\Kestrix\\OrblaneNMS\\Settings";
inline constexpr char kBrowserCommandKey[] = "http\\shell\\open\\command";

// One "DEVICEINFO" element of a host device list document.
inline std::string DeviceXml(const std::string& id, const std::string& name, const std::string& type,
                             const std::string& ip, const std::string& get = "public",
                             const std::string& set = "private") {
    return "<DEVICEINFO><ID>" + id + "</ID><NAME>" + name + "</NAME><TYPE>" + type + "</TYPE><IP>" + ip +
           "</IP><GETCOMM>" + get + "</GETCOMM><SETCOMM>" + set + "</SETCOMM></DEVICEINFO>";
}

// Runs a program to its end; returns its exit code (or -1 when it cannot start).
inline int RunProgram(const std::string& commandLine, DWORD timeoutMs = 60000) {
    std::string line = commandLine;
    STARTUPINFOA si{};
    si.cb = sizeof si;
    PROCESS_INFORMATION pi{};
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &si, &pi)) return -1;
    WaitForSingleObject(pi.hProcess, timeoutMs);
    DWORD code = 0;
    GetExitCodeProcess(pi.hProcess, &code);
    CloseHandle(pi.hThread);
    CloseHandle(pi.hProcess);
    return static_cast<int>(code);
}

// The host's call log (ORBLANE_HOST_LOG): a fresh file for each test that reads it.
class HostLog {
public:
    HostLog() {
        char temp[MAX_PATH] = {};
        GetTempPathA(MAX_PATH, temp);
        m_path = std::string(temp) + "orblane_host_log_" + std::to_string(GetCurrentProcessId()) + ".txt";
        DeleteFileA(m_path.c_str());
        SetEnvironmentVariableA("ORBLANE_HOST_LOG", m_path.c_str());
    }
    ~HostLog() {
        SetEnvironmentVariableA("ORBLANE_HOST_LOG", nullptr);
        DeleteFileA(m_path.c_str());
    }
    std::string Text() const { return ReadTextFile(m_path); }

private:
    std::string m_path;
};

}  // namespace sentrel_test
