// Registration and unregistration of the real Sentrel.dll with Wine's regsvr32,
// read back from the registry.
#include <windows.h>
#include <oleauto.h>

#include <gtest/gtest.h>

#include "Sentrel.h"
#include "tests/win/shell/shell_test_env.h"

using namespace sentrel_test;

namespace {

constexpr char kSentrelClsid[] = "{BB4DA58D-F96B-4E02-B281-E5589D90016B}";
constexpr char kSentrelCfgClsid[] = "{2D74E727-B8C1-43AB-921F-E42B833E012A}";
constexpr char kTve4060Clsid[] = "{F34FEB75-BC6A-47FD-9271-41976B2BD6A0}";
constexpr char kTypeLibKey[] = "TypeLib\\{8EB35C09-1FBB-4B3B-A18C-C41A66B01372}";

int Regsvr32(const std::string& args) { return RunProgram("regsvr32.exe /s " + args); }

std::string Default(const std::string& key) { return GetRegString(HKEY_CLASSES_ROOT, key, nullptr); }

// The full path of the module as the system reports it when loaded.
std::string LoadedModulePath(const std::string& path) {
    HMODULE m = LoadLibraryA(path.c_str());
    char buffer[MAX_PATH] = {};
    GetModuleFileNameA(m, buffer, MAX_PATH);
    FreeLibrary(m);
    return buffer;
}

class Registration : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllRegisterServer")); }
    void SetUp() override { ASSERT_EQ(0, Regsvr32("/u \"" + SentrelDll() + "\"")); }
    void TearDown() override { Regsvr32("\"" + SentrelDll() + "\""); }  // later tests expect it registered

    static void ExpectClassKeys(const char* clsid, const std::string& progId, const std::string& indepId) {
        const std::string cls = std::string("CLSID\\") + clsid;
        EXPECT_EQ("Sentrel", Default(progId));
        EXPECT_EQ(clsid, Default(progId + "\\CLSID"));
        EXPECT_EQ("Sentrel", Default(indepId));
        EXPECT_EQ(clsid, Default(indepId + "\\CLSID"));
        EXPECT_FALSE(RegKeyExists(HKEY_CLASSES_ROOT, progId + "\\CurVer"));
        EXPECT_FALSE(RegKeyExists(HKEY_CLASSES_ROOT, indepId + "\\CurVer"));
        EXPECT_EQ("Sentrel", Default(cls));
        EXPECT_EQ(progId, Default(cls + "\\ProgID"));
        EXPECT_EQ(indepId, Default(cls + "\\VersionIndependentProgID"));
        EXPECT_EQ(LoadedModulePath(SentrelDll()), Default(cls + "\\InprocServer32"));
        bool found = false;
        EXPECT_EQ("both", GetRegString(HKEY_CLASSES_ROOT, cls + "\\InprocServer32", "ThreadingModel", &found));
        EXPECT_TRUE(found);
    }
};

TEST_F(Registration, WritesEveryKeyOfBothClassesAndTheTypeLibrary) {
    ASSERT_EQ(0, Regsvr32("\"" + SentrelDll() + "\""));
    ExpectClassKeys(kSentrelClsid, "OrblaneLib.CSentrel.1", "OrblaneLib.CSentrel");
    ExpectClassKeys(kSentrelCfgClsid, "OrblaneLib.CSentrelCfg.1", "OrblaneLib.CSentrelCfg");
    // TVE4060Produre is in the type library only.
    EXPECT_FALSE(RegKeyExists(HKEY_CLASSES_ROOT, std::string("CLSID\\") + kTve4060Clsid));
    EXPECT_TRUE(RegKeyExists(HKEY_CLASSES_ROOT, std::string(kTypeLibKey) + "\\1.0"));

    CLSID clsid{};
    ASSERT_EQ(S_OK, CLSIDFromProgID(L"OrblaneLib.CSentrelCfg", &clsid));
    EXPECT_TRUE(IsEqualCLSID(clsid, CLSID_CSentrelCfg));
}

TEST_F(Registration, TypeLibraryHoldsTheSixTypesWithTheirHelpStrings) {
    ASSERT_EQ(0, Regsvr32("\"" + SentrelDll() + "\""));
    ITypeLib* lib = nullptr;
    ASSERT_EQ(S_OK, LoadRegTypeLib(LIBID_SENTRELLib, 1, 0, 0, &lib));
    BSTR name = nullptr, doc = nullptr;
    ASSERT_EQ(S_OK, lib->GetDocumentation(-1, &name, &doc, nullptr, nullptr));
    EXPECT_STREQ(L"SENTRELLib", name);
    EXPECT_STREQ(L"Sentrel 1.0 Type Library", doc);
    SysFreeString(name);
    SysFreeString(doc);

    struct Expected {
        const GUID* guid;
        const wchar_t* name;
        const wchar_t* help;
        TYPEKIND kind;
    } expected[] = {
        {&CLSID_CSentrel, L"CSentrel", L"CSentrel Class", TKIND_COCLASS},
        {&IID_ICSentrel, L"ICSentrel", L"ICSentrel Interface", TKIND_DISPATCH},
        {&CLSID_CSentrelCfg, L"CSentrelCfg", L"CSentrelCfg Class", TKIND_COCLASS},
        {&IID_ICSentrelCfg, L"ICSentrelCfg", L"ICSentrelCfg Interface", TKIND_DISPATCH},
        {&CLSID_TVE4060Produre, L"TVE4060Produre", L"TVE4060Produre Class", TKIND_COCLASS},
        {&IID_ITVE4060Produre, L"ITVE4060Produre", L"ITVE4060Produre Interface", TKIND_DISPATCH},
    };
    for (const Expected& e : expected) {
        ITypeInfo* info = nullptr;
        ASSERT_EQ(S_OK, lib->GetTypeInfoOfGuid(*e.guid, &info));
        ASSERT_EQ(S_OK, info->GetDocumentation(MEMBERID_NIL, &name, &doc, nullptr, nullptr));
        EXPECT_STREQ(e.name, name);
        EXPECT_STREQ(e.help, doc);
        SysFreeString(name);
        SysFreeString(doc);
        TYPEATTR* attr = nullptr;
        ASSERT_EQ(S_OK, info->GetTypeAttr(&attr));
        EXPECT_EQ(e.kind, attr->typekind) << "dual interfaces show as dispatch types";
        if (e.kind == TKIND_COCLASS) {
            EXPECT_TRUE(attr->wTypeFlags & TYPEFLAG_FCANCREATE);
        }
        info->ReleaseTypeAttr(attr);
        info->Release();
    }
    // OpenedSubmapID, dispatch ID 1, "method OpenedSubmapID".
    ITypeInfo* cfg = nullptr;
    ASSERT_EQ(S_OK, lib->GetTypeInfoOfGuid(IID_ICSentrelCfg, &cfg));
    MEMBERID id = 0;
    LPOLESTR names[] = {const_cast<LPOLESTR>(L"OpenedSubmapID")};
    ASSERT_EQ(S_OK, cfg->GetIDsOfNames(names, 1, &id));
    EXPECT_EQ(1, id);
    ASSERT_EQ(S_OK, cfg->GetDocumentation(id, nullptr, &doc, nullptr, nullptr));
    EXPECT_STREQ(L"method OpenedSubmapID", doc);
    SysFreeString(doc);
    cfg->Release();
    lib->Release();
}

TEST_F(Registration, RegistersBothClassesWithTheHostFirstInTableOrder) {
    HostLog log;
    ASSERT_EQ(0, Regsvr32("\"" + SentrelDll() + "\""));
    EXPECT_EQ(std::string("RegisterPlugIn ") + kSentrelClsid + " 1\nRegisterPlugIn " + kSentrelCfgClsid + " 1\n",
              log.Text());
}

TEST_F(Registration, SucceedsWithoutTheHost) {
    ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllUnregisterServer"));
    int rc = Regsvr32("\"" + SentrelDll() + "\"");
    ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllRegisterServer"));
    EXPECT_EQ(0, rc);
    ExpectClassKeys(kSentrelClsid, "OrblaneLib.CSentrel.1", "OrblaneLib.CSentrel");
    ExpectClassKeys(kSentrelCfgClsid, "OrblaneLib.CSentrelCfg.1", "OrblaneLib.CSentrelCfg");
    EXPECT_TRUE(RegKeyExists(HKEY_CLASSES_ROOT, std::string(kTypeLibKey) + "\\1.0"));
}

TEST_F(Registration, UnregistrationRemovesEveryKeyAndTheTypeLibrary) {
    ASSERT_EQ(0, Regsvr32("\"" + SentrelDll() + "\""));
    ASSERT_EQ(0, Regsvr32("/u \"" + SentrelDll() + "\""));
    for (const char* key : {"OrblaneLib.CSentrel.1", "OrblaneLib.CSentrel", "OrblaneLib.CSentrelCfg.1",
                            "OrblaneLib.CSentrelCfg"})
        EXPECT_FALSE(RegKeyExists(HKEY_CLASSES_ROOT, key)) << key;
    EXPECT_FALSE(RegKeyExists(HKEY_CLASSES_ROOT, std::string("CLSID\\") + kSentrelClsid));
    EXPECT_FALSE(RegKeyExists(HKEY_CLASSES_ROOT, std::string("CLSID\\") + kSentrelCfgClsid));
    EXPECT_FALSE(RegKeyExists(HKEY_CLASSES_ROOT, std::string(kTypeLibKey) + "\\1.0"));
}

TEST_F(Registration, UnregistrationRemovesProgIdKeysThatNameAnotherClass) {
    ASSERT_TRUE(SetRegString(HKEY_CLASSES_ROOT, "OrblaneLib.CSentrel.1", nullptr, "someone else"));
    ASSERT_TRUE(SetRegString(HKEY_CLASSES_ROOT, "OrblaneLib.CSentrel.1\\CLSID", nullptr,
                             "{00000000-1111-2222-3333-444444444444}"));
    ASSERT_TRUE(SetRegString(HKEY_CLASSES_ROOT, "OrblaneLib.CSentrelCfg\\CLSID", nullptr, kSentrelClsid));
    ASSERT_EQ(0, Regsvr32("/u \"" + SentrelDll() + "\""));
    EXPECT_FALSE(RegKeyExists(HKEY_CLASSES_ROOT, "OrblaneLib.CSentrel.1"));
    EXPECT_FALSE(RegKeyExists(HKEY_CLASSES_ROOT, "OrblaneLib.CSentrelCfg"));
}

TEST_F(Registration, UnregistrationSucceedsWhenTheKeysAreAlreadyGone) {
    // SetUp unregistered already.
    EXPECT_EQ(0, Regsvr32("/u \"" + SentrelDll() + "\""));
}

}  // namespace
