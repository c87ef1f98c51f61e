// The browser lookup, and the RADIUS command run end to end through the real
// Sentrel.dll with a stand-in browser that records its command line.
#include <windows.h>

#include <gtest/gtest.h>

#include "Sentrel.h"
#include "orblane.h"
#include "shell/browser_command.h"
#include "tests/win/shell/shell_test_env.h"
#include "tests/win/support/message_box_catcher.h"

using namespace sentrel_test;

namespace {

TEST(ExtractBrowserPath, TakesTheDrivePathThroughTheExtensionOrNothing) {
    const std::pair<const char*, const char*> cases[] = {
        {"\"C:\\Program Files\\Internet Explorer\\iexplore.exe\" -nohome \"%1\"",
         "C:\\Program Files\\Internet Explorer\\iexplore.exe"},
        {"D:\\BROWSERS\\NETSCAPE.EXE -url %1", "D:\\BROWSERS\\NETSCAPE.EXE"},  // the second pass
        {"C:\\x\\y.exe C:\\z.EXE", "C:\\x\\y.exe"},                      // lower case first
        {"iexplore.exe %1", ""},                                        // no drive
        {"", ""},
        {":\\x.exe", ""},                                               // no drive letter
        {"C:\\tools\\browser.com", ""},                                 // no extension
        {"run.exe /open C:\\pages\\index.htm", ""},                     // ".exe" long before the drive
        {"b.exeC:\\a.exe", ""},                                           // the first ".exe" 5 before it
    };
    for (const auto& [command, path] : cases) EXPECT_EQ(path, shell::ExtractBrowserPath(command)) << command;
}

class RadiusCommand : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        CoInitialize(nullptr);
        ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllRegisterServer"));
        ASSERT_EQ(S_OK, CallDllExport(SentrelDll(), "DllRegisterServer"));
    }
    static void TearDownTestSuite() {
        DeleteRegTree(HKEY_CLASSES_ROOT, kBrowserCommandKey);
        CoUninitialize();
    }
    void SetUp() override {
        char temp[MAX_PATH] = {};
        GetTempPathA(MAX_PATH, temp);
        m_log = std::string(temp) + "fake_browser_" + std::to_string(GetCurrentProcessId()) + ".txt";
        SetEnvironmentVariableA("SENTREL_FAKE_BROWSER_LOG", m_log.c_str());
    }
    void TearDown() override { DeleteFileA(m_log.c_str()); }

    // Runs the command through COM as the host does; returns Execute's result.
    HRESULT Execute() {
        IHostPlugIn* plugIn = nullptr;
        HRESULT hr = CoCreateInstance(CLSID_CSentrel, nullptr, CLSCTX_INPROC_SERVER, IID_IHostPlugIn,
                                      reinterpret_cast<void**>(&plugIn));
        if (FAILED(hr)) return hr;
        hr = plugIn->Execute(0);
        plugIn->Release();
        return hr;
    }
    // The browser's recorded command line, waiting up to 15 s for it to appear.
    std::string BrowserCommandLine(DWORD waitMs = 15000) {
        for (DWORD waited = 0;; waited += 100) {
            bool found = false;
            std::string text = ReadTextFile(m_log, &found);
            if (found && !text.empty() && text.back() == '\n') return text.substr(0, text.size() - 1);
            if (waited >= waitMs) return "<browser not started>";
            Sleep(100);
        }
    }
    std::string m_log;
};

// The browser starts with the site as its argument and the command does not wait for it;
// without a usable browser path the user is told and nothing starts.
TEST_F(RadiusCommand, StartsTheBrowserWithTheRadiusSiteOrTellsThereIsNone) {
    std::string upper = FakeBrowser();
    for (size_t i = upper.find_last_of('\\'); i < upper.size(); ++i) upper[i] = static_cast<char>(toupper(upper[i]));
    const std::string quoted = "\"" + FakeBrowser() + "\"", fiftyNine = "http://radius.example/" + std::string(37, 'y');
    const struct {
        std::string command, site;  // command "": no key; site "-": no value
        std::string started;        // "": the message, no browser
    } cases[] = {
        {quoted + " -nohome \"%1\"", "http://127.0.0.1:8080/radius", FakeBrowser() + " http://127.0.0.1:8080/radius"},
        {upper + " %1", "radius.example", upper + " radius.example"},
        {quoted, "-", FakeBrowser() + " "},
        {quoted, fiftyNine, FakeBrowser() + " " + fiftyNine},
        {quoted, fiftyNine + "y", FakeBrowser() + " "},  // 60 characters count as none
        {"", "x", ""},
        {"fake_browser.exe %1", "x", ""},                 // no drive
        {quoted + " " + std::string(200, 'a'), "x", ""},  // too long for the lookup's buffer
    };
    for (const auto& c : cases) {
        DeleteFileA(m_log.c_str());
        DeleteRegTree(HKEY_CURRENT_USER, kSettingsKey);
        DeleteRegTree(HKEY_CLASSES_ROOT, kBrowserCommandKey);
        if (!c.command.empty()) {
            ASSERT_TRUE(SetRegString(HKEY_CLASSES_ROOT, kBrowserCommandKey, nullptr, c.command));
        }
        if (c.site != "-") {
            ASSERT_TRUE(SetRegString(HKEY_CURRENT_USER, kSettingsKey, "RadiusSite", c.site));
        }
        MessageBoxCatcher boxes;
        EXPECT_EQ(E_NOTIMPL, Execute());
        if (c.started.empty()) {
            ASSERT_EQ(1u, boxes.Caught().size()) << c.command;
            EXPECT_EQ("Failed to get IE path !", boxes.Caught()[0].text);
            EXPECT_EQ("Sentrel", boxes.Caught()[0].caption);
            EXPECT_EQ("<browser not started>", BrowserCommandLine(1000)) << c.command;
        } else {
            EXPECT_EQ(c.started, BrowserCommandLine());
            EXPECT_TRUE(boxes.Caught().empty());
        }
    }
}

}  // namespace
