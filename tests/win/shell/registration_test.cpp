// Registration and unregistration of the real Sentrel.dll with Wine's regsvr32, read back
// from the registry key by key and value by value.
#include <windows.h>

#include <gtest/gtest.h>

#include <set>

#include "tests/win/shell/shell_test_env.h"

using namespace sentrel_test;

namespace {

constexpr char kSentrelClsid[] = "{BB4DA58D-F96B-4E02-B281-E5589D90016B}";
constexpr char kSentrelCfgClsid[] = "{2D74E727-B8C1-43AB-921F-E42B833E012A}";
constexpr char kTve4060Clsid[] = "{F34FEB75-BC6A-47FD-9271-41976B2BD6A0}";
constexpr char kTypeLibKey[] = "TypeLib\\{8EB35C09-1FBB-4B3B-A18C-C41A66B01372}\\1.0";

int Regsvr32(const std::string& args) { return RunProgram("regsvr32.exe /s " + args); }
int Register() { return Regsvr32("\"" + SentrelDll() + "\""); }
int Unregister() { return Regsvr32("/u \"" + SentrelDll() + "\""); }

// Every key and value below HKEY_CLASSES_ROOT\<key>, one line each: "<subkey>|<name>=<value>"
// ("@" names the default value; a value that is no REG_SZ shows its type). A key that does
// not exist gives nothing.
void Dump(HKEY parent, const std::string& path, const std::string& shown, std::set<std::string>& out) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(parent, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
    out.insert(shown + "|");
    for (DWORD i = 0;; ++i) {
        char name[256] = {};
        BYTE data[1024] = {};
        DWORD nameLen = sizeof name, dataLen = sizeof data - 1, type = 0;
        if (RegEnumValueA(key, i, name, &nameLen, nullptr, &type, data, &dataLen) != ERROR_SUCCESS) break;
        std::string value = type == REG_SZ ? reinterpret_cast<char*>(data) : "<type " + std::to_string(type) + ">";
        out.insert(shown + "|" + (name[0] ? name : "@") + "=" + value);
    }
    for (DWORD i = 0;; ++i) {
        char sub[256] = {};
        DWORD subLen = sizeof sub;
        if (RegEnumKeyExA(key, i, sub, &subLen, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        Dump(key, sub, shown + "\\" + sub, out);
    }
    RegCloseKey(key);
}

std::set<std::string> ClassRegistration(const char* clsid, const std::string& progId, const std::string& indep) {
    std::set<std::string> out;
    for (const std::string& key : {progId, indep, std::string("CLSID\\") + clsid}) Dump(HKEY_CLASSES_ROOT, key, key, out);
    return out;
}

// The full path of the module as the system reports it when loaded.
std::string LoadedModulePath(const std::string& path) {
    HMODULE m = LoadLibraryA(path.c_str());
    char buffer[MAX_PATH] = {};
    GetModuleFileNameA(m, buffer, MAX_PATH);
    FreeLibrary(m);
    return buffer;
}

// What registration writes for one class: no more, no less.
std::set<std::string> Expected(const std::string& clsid, const std::string& progId, const std::string& indep) {
    const std::string cls = "CLSID\\" + clsid;
    return {
        progId + "|", progId + "|@=Sentrel", progId + "\\CLSID|", progId + "\\CLSID|@=" + clsid,
        indep + "|", indep + "|@=Sentrel", indep + "\\CLSID|", indep + "\\CLSID|@=" + clsid,
        cls + "|", cls + "|@=Sentrel",
        cls + "\\ProgID|", cls + "\\ProgID|@=" + progId,
        cls + "\\VersionIndependentProgID|", cls + "\\VersionIndependentProgID|@=" + indep,
        cls + "\\InprocServer32|", cls + "\\InprocServer32|@=" + LoadedModulePath(SentrelDll()),
        cls + "\\InprocServer32|ThreadingModel=both",
    };
}

class Registration : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllRegisterServer")); }
    void SetUp() override { ASSERT_EQ(0, Unregister()); }
    void TearDown() override { Register(); }  // later tests expect it registered

    // Both classes, every key and value, and the type library from the module itself.
    static void ExpectRegistered() {
        EXPECT_EQ(Expected(kSentrelClsid, "OrblaneLib.CSentrel.1", "OrblaneLib.CSentrel"),
                  ClassRegistration(kSentrelClsid, "OrblaneLib.CSentrel.1", "OrblaneLib.CSentrel"));
        EXPECT_EQ(Expected(kSentrelCfgClsid, "OrblaneLib.CSentrelCfg.1", "OrblaneLib.CSentrelCfg"),
                  ClassRegistration(kSentrelCfgClsid, "OrblaneLib.CSentrelCfg.1", "OrblaneLib.CSentrelCfg"));
        EXPECT_FALSE(RegKeyExists(HKEY_CLASSES_ROOT, std::string("CLSID\\") + kTve4060Clsid))
            << "TVE4060Produre is in the type library only";
        EXPECT_EQ(LoadedModulePath(SentrelDll()), GetRegString(HKEY_CLASSES_ROOT, std::string(kTypeLibKey) + "\\0\\win64", nullptr))
            << "the type library, registered from the module itself";
    }
};

TEST_F(Registration, WritesEveryKeyAndValueOfBothClassesAndTellsTheHostFirst) {
    HostLog log;
    ASSERT_EQ(0, Register());
    ExpectRegistered();
    EXPECT_EQ(std::string("RegisterPlugIn ") + kSentrelClsid + " 1\nRegisterPlugIn " + kSentrelCfgClsid + " 1\n",
              log.Text()) << "both classes, in table order";
}

TEST_F(Registration, SucceedsWithoutTheHost) {
    ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllUnregisterServer"));
    int rc = Register();
    ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllRegisterServer"));
    EXPECT_EQ(0, rc);
    ExpectRegistered();
}

TEST_F(Registration, UnregistrationRemovesEverythingEvenProgIdsOfAnotherClassAndSucceedsTwice) {
    ASSERT_EQ(0, Register());
    // ProgID keys of ours that name another class go as well.
    ASSERT_TRUE(SetRegString(HKEY_CLASSES_ROOT, "OrblaneLib.CSentrel.1\\CLSID", nullptr,
                             "{00000000-1111-2222-3333-444444444444}"));
    ASSERT_TRUE(SetRegString(HKEY_CLASSES_ROOT, "OrblaneLib.CSentrelCfg\\CLSID", nullptr, kSentrelClsid));
    ASSERT_EQ(0, Unregister());
    EXPECT_TRUE(ClassRegistration(kSentrelClsid, "OrblaneLib.CSentrel.1", "OrblaneLib.CSentrel").empty());
    EXPECT_TRUE(ClassRegistration(kSentrelCfgClsid, "OrblaneLib.CSentrelCfg.1", "OrblaneLib.CSentrelCfg").empty());
    EXPECT_FALSE(RegKeyExists(HKEY_CLASSES_ROOT, kTypeLibKey));
    EXPECT_EQ(0, Unregister()) << "everything already gone";
}

}  // namespace
