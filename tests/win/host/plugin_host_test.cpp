// The host's side of a plug-in's life: a plug-in registered under the PlugIns key is created,
// its texts are read through IHostPlugIn although every getter returns E_NOTIMPL, and an
// opened submap reaches "OpenedSubmapID" through IDispatch. The plug-in here is a fake,
// registered as a class object of this process, with its texts in this program's resources.
#include <gtest/gtest.h>

#include <objbase.h>

#include "host/orblane/plugin_host.h"

using namespace orblane;

namespace {

constexpr wchar_t kTestKey[] = L"Software\\Kestrix\\SentrelTests\\OrblanePlugIns";
// {6F1F3C51-0C47-4C1B-9B7E-5E0B9C1A7D01}
constexpr CLSID kFakeClsid = {0x6f1f3c51, 0x0c47, 0x4c1b, {0x9b, 0x7e, 0x5e, 0x0b, 0x9c, 0x1a, 0x7d, 0x01}};
constexpr wchar_t kFakeClsidText[] = L"{6F1F3C51-0C47-4C1B-9B7E-5E0B9C1A7D01}";
constexpr wchar_t kMissingClsidText[] = L"{6F1F3C51-0C47-4C1B-9B7E-5E0B9C1A7D02}";

long g_openedSubmap = 0;
int g_openedCalls = 0;
int g_executeCalls = 0;

// Behaves as a plug-in does: store the value, return E_NOTIMPL. One static object, which is
// also its own class factory.
class FakePlugIn final : public IHostPlugIn, public IClassFactory {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override {
        if (riid == IID_IUnknown || riid == IID_IDispatch || riid == IID_IHostPlugIn)
            *ppv = static_cast<IHostPlugIn*>(this);
        else if (riid == IID_IClassFactory)
            *ppv = static_cast<IClassFactory*>(this);
        else
            return *ppv = nullptr, E_NOINTERFACE;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID riid, void** ppv) override { return QueryInterface(riid, ppv); }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override { *count = 0; return S_OK; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
        if (count != 1 || wcscmp(names[0], L"OpenedSubmapID") != 0) return DISP_E_UNKNOWNNAME;
        ids[0] = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        if (id != 1 || params->cArgs != 1 || params->rgvarg[0].vt != VT_I4) return DISP_E_MEMBERNOTFOUND;
        g_openedSubmap = params->rgvarg[0].lVal;
        ++g_openedCalls;
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetResourceInstance(HOST_HANDLE* handle) override {
        *handle = reinterpret_cast<HOST_HANDLE>(GetModuleHandleW(nullptr));
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetMenuPathID(long* id) override { *id = 501; return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMenuItemID(long* id) override { *id = 502; return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPromptID(long* id) override { *id = 503; return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved1(long, long) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved2(long, long, long) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Execute(long) override { ++g_executeCalls; return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetToolbarMenuID(long* id) override { *id = 504; return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetToolbarTitleID(long* id) override { *id = 505; return E_NOTIMPL; }
};

class PlugInHostTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
        ASSERT_EQ(CoRegisterClassObject(kFakeClsid, static_cast<IClassFactory*>(&m_plugIn), CLSCTX_INPROC_SERVER,
                                        REGCLS_MULTIPLEUSE, &m_cookie),
                  S_OK);
        RegDeleteTreeW(HKEY_CURRENT_USER, kTestKey);
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, kTestKey, 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        DWORD one = 1;
        RegSetValueExW(key, kFakeClsidText, 0, REG_DWORD, reinterpret_cast<BYTE*>(&one), sizeof(one));
        RegSetValueExW(key, kMissingClsidText, 0, REG_DWORD, reinterpret_cast<BYTE*>(&one), sizeof(one));
        RegSetValueExW(key, L"not a clsid", 0, REG_DWORD, reinterpret_cast<BYTE*>(&one), sizeof(one));
        RegCloseKey(key);
        g_openedSubmap = 0;
        g_openedCalls = g_executeCalls = 0;
    }
    void TearDown() override {
        RegDeleteTreeW(HKEY_CURRENT_USER, kTestKey);
        CoRevokeClassObject(m_cookie);
        CoUninitialize();
    }
    FakePlugIn m_plugIn;
    DWORD m_cookie = 0;
};

}  // namespace

TEST_F(PlugInHostTest, TakesTheStoredTextsWhateverTheResultAndReportsTheSubmapThroughIDispatch) {
    std::vector<PlugInProblem> problems;
    std::vector<PlugIn> plugIns = LoadPlugIns(40000, problems, kTestKey);
    ASSERT_EQ(plugIns.size(), 1u);
    const PlugIn& p = plugIns[0];
    EXPECT_EQ(p.clsidText, kFakeClsidText);
    EXPECT_EQ(p.resources, GetModuleHandleW(nullptr));
    EXPECT_EQ(p.menuPathId, 501);
    EXPECT_EQ(p.menuPath, L"&Tools/&Fake Plug-In");
    EXPECT_EQ(p.menuItem, L"&Fake Command...");
    EXPECT_EQ(p.prompt, L"Runs the fake command\nFake");
    EXPECT_EQ(p.toolbarMenu, L"&Fake Toolbar");
    EXPECT_EQ(p.toolbarTitle, L"Fake Toolbar");
    EXPECT_EQ(p.commandId, 40000u);
    EXPECT_EQ(p.object->Execute(0), E_NOTIMPL) << "the plug-in's \"done\"";
    EXPECT_EQ(g_executeCalls, 1);
    // The class nobody serves and the value that is no class identifier are reported.
    EXPECT_EQ(problems.size(), 2u);

    for (long submap : {22L, -1L}) {
        EXPECT_EQ(NotifyOpenedSubmap(plugIns, submap), 1);
        EXPECT_EQ(g_openedSubmap, submap);
    }
    EXPECT_EQ(g_openedCalls, 2);

    problems.clear();
    EXPECT_TRUE(LoadPlugIns(40000, problems, L"Software\\Kestrix\\SentrelTests\\NoSuchKey").empty());
    EXPECT_TRUE(problems.empty());
    EXPECT_EQ(LoadResourceString(GetModuleHandleW(nullptr), 999), L"") << "a missing text is empty";
    EXPECT_EQ(LoadResourceString(nullptr, 505), L"");
}
