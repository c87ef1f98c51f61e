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

TEST(ExtractBrowserPath, QuotedPathWithOptionsAndPlaceholderYieldsThePathAlone) {
    EXPECT_EQ("C:\\Program Files\\Internet Explorer\\iexplore.exe",
              shell::ExtractBrowserPath("\"C:\\Program Files\\Internet Explorer\\iexplore.exe\" -nohome \"%1\""));
}

TEST(ExtractBrowserPath, UpperCaseExtensionIsAcceptedByTheSecondPass) {
    EXPECT_EQ("D:\\BROWSERS\\NETSCAPE.EXE", shell::ExtractBrowserPath("D:\\BROWSERS\\NETSCAPE.EXE -url %1"));
}

TEST(ExtractBrowserPath, BareProgramNameWithoutDriveIsRefused) {
    EXPECT_EQ("", shell::ExtractBrowserPath("iexplore.exe %1"));
    EXPECT_EQ("", shell::ExtractBrowserPath(""));
    EXPECT_EQ("", shell::ExtractBrowserPath(":\\x.exe")) << "no drive letter before \":\\\"";
    EXPECT_EQ("", shell::ExtractBrowserPath("C:\\tools\\browser.com")) << "no extension";
}

TEST(ExtractBrowserPath, ExtensionLongBeforeTheDriveIsRefused) {
    // ".exe" more than 4 characters before ":\": not a program path.
    EXPECT_EQ("", shell::ExtractBrowserPath("run.exe /open C:\\pages\\index.htm"));
    EXPECT_EQ("", shell::ExtractBrowserPath("b.exeC:\\a.exe")) << "first \".exe\" is 5 before \":\\\"";
}

TEST(ExtractBrowserPath, LowerCasePassWinsOverUpperCase) {
    EXPECT_EQ("C:\\x\\y.exe", shell::ExtractBrowserPath("C:\\x\\y.exe C:\\z.EXE"));
}

class RadiusCommand : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        CoInitialize(nullptr);
        ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllRegisterServer"));
        ASSERT_EQ(S_OK, CallDllExport(SentrelDll(), "DllRegisterServer"));
    }
    static void TearDownTestSuite() {
        DeleteRegTree(HKEY_CLASSES_ROOT, "http\\shell\\open\\command");
        CoUninitialize();
    }
    void SetUp() override {
        char temp[MAX_PATH] = {};
        GetTempPathA(MAX_PATH, temp);
        m_log = std::string(temp) + "fake_browser_" + std::to_string(GetCurrentProcessId()) + ".txt";
        DeleteFileA(m_log.c_str());
        SetEnvironmentVariableA("SENTREL_FAKE_BROWSER_LOG", m_log.c_str());
        DeleteRegTree(HKEY_CLASSES_ROOT, "http\\shell\\open\\command");
        DeleteRegTree(HKEY_CURRENT_USER, kSettingsKey);
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

TEST_F(RadiusCommand, StartsTheBrowserWithTheRadiusSiteAndDoesNotWait) {
    ASSERT_TRUE(SetRegString(HKEY_CLASSES_ROOT, "http\\shell\\open\\command", nullptr,
                             "\"" + FakeBrowser() + "\" -nohome \"%1\""));
    ASSERT_TRUE(SetRegString(HKEY_CURRENT_USER, kSettingsKey, "RadiusSite", "http://127.0.0.1:8080/radius"));
    MessageBoxCatcher boxes;
    EXPECT_EQ(E_NOTIMPL, Execute());
    EXPECT_EQ(FakeBrowser() + " http://127.0.0.1:8080/radius", BrowserCommandLine());
    EXPECT_TRUE(boxes.Caught().empty());
}

TEST_F(RadiusCommand, UpperCaseProgramPathIsStarted) {
    std::string upper = FakeBrowser();
    size_t slash = upper.find_last_of('\\');
    for (size_t i = slash; i < upper.size(); ++i) upper[i] = static_cast<char>(toupper(upper[i]));
    ASSERT_TRUE(SetRegString(HKEY_CLASSES_ROOT, "http\\shell\\open\\command", nullptr, upper + " %1"));
    ASSERT_TRUE(SetRegString(HKEY_CURRENT_USER, kSettingsKey, "RadiusSite", "radius.example"));
    EXPECT_EQ(E_NOTIMPL, Execute());
    EXPECT_EQ(upper + " radius.example", BrowserCommandLine());
}

TEST_F(RadiusCommand, MissingSiteGivesThePathAndOneBlank) {
    ASSERT_TRUE(SetRegString(HKEY_CLASSES_ROOT, "http\\shell\\open\\command", nullptr, "\"" + FakeBrowser() + "\""));
    EXPECT_EQ(E_NOTIMPL, Execute());
    EXPECT_EQ(FakeBrowser() + " ", BrowserCommandLine());
}

TEST_F(RadiusCommand, SiteOfSixtyCharactersCountsAsMissing) {
    ASSERT_TRUE(SetRegString(HKEY_CLASSES_ROOT, "http\\shell\\open\\command", nullptr, "\"" + FakeBrowser() + "\""));
    const std::string sixty = "http://radius.example/" + std::string(60 - 22, 'x');
    ASSERT_EQ(60u, sixty.size());
    ASSERT_TRUE(SetRegString(HKEY_CURRENT_USER, kSettingsKey, "RadiusSite", sixty));
    EXPECT_EQ(E_NOTIMPL, Execute());
    EXPECT_EQ(FakeBrowser() + " ", BrowserCommandLine());
}

TEST_F(RadiusCommand, SiteOfFiftyNineCharactersIsUsed) {
    ASSERT_TRUE(SetRegString(HKEY_CLASSES_ROOT, "http\\shell\\open\\command", nullptr, "\"" + FakeBrowser() + "\""));
    const std::string fiftyNine = "http://radius.example/" + std::string(59 - 22, 'y');
    ASSERT_TRUE(SetRegString(HKEY_CURRENT_USER, kSettingsKey, "RadiusSite", fiftyNine));
    EXPECT_EQ(E_NOTIMPL, Execute());
    EXPECT_EQ(FakeBrowser() + " " + fiftyNine, BrowserCommandLine());
}

struct NoBrowserCase {
    const char* name;
    bool registered;
    std::string command;
};

TEST_F(RadiusCommand, NoUsableBrowserShowsTheMessageAndStartsNothing) {
    const NoBrowserCase cases[] = {
        {"no key", false, ""},
        {"bare program name", true, "fake_browser.exe %1"},
        {"command of 200 bytes", true, "\"" + FakeBrowser() + "\" " + std::string(200, 'a')},
    };
    for (const NoBrowserCase& c : cases) {
        DeleteRegTree(HKEY_CLASSES_ROOT, "http\\shell\\open\\command");
        if (c.registered) {
            ASSERT_TRUE(SetRegString(HKEY_CLASSES_ROOT, "http\\shell\\open\\command", nullptr, c.command));
        }
        MessageBoxCatcher boxes;
        EXPECT_EQ(E_NOTIMPL, Execute()) << c.name;
        ASSERT_EQ(1u, boxes.Caught().size()) << c.name;
        EXPECT_EQ("Failed to get IE path !", boxes.Caught()[0].text) << c.name;
        EXPECT_EQ("Sentrel", boxes.Caught()[0].caption) << c.name;
        EXPECT_EQ("<browser not started>", BrowserCommandLine(1500)) << c.name;
    }
}

}  // namespace
