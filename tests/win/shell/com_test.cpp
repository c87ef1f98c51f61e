// The real Sentrel.dll driven through its exports and COM interfaces, as a host drives it.
#include <windows.h>
#include <commctrl.h>
#include <oleauto.h>
#include <prsht.h>

#include <gtest/gtest.h>

#include "Sentrel.h"
#include "acl/acl_record.h"
#include "orblane.h"
#include "res/resource.h"
#include "tests/win/shell/shell_test_env.h"
#include "host/wizard_driver/wizard_driver.h"

using namespace sentrel_test;

namespace {

using GetClassObjectFn = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
using CanUnloadFn = HRESULT(WINAPI*)();

// The DLL loaded for one test, and unloaded after it, so each test starts from a fresh module.
class SentrelModule {
public:
    SentrelModule() {
        m_module = LoadLibraryA(SentrelDll().c_str());
        getClassObject = reinterpret_cast<GetClassObjectFn>(reinterpret_cast<void*>(GetProcAddress(m_module, "DllGetClassObject")));
        canUnloadNow = reinterpret_cast<CanUnloadFn>(reinterpret_cast<void*>(GetProcAddress(m_module, "DllCanUnloadNow")));
    }
    ~SentrelModule() { FreeLibrary(m_module); }
    HMODULE Handle() const { return m_module; }

    IClassFactory* Factory(REFCLSID clsid) {
        IClassFactory* factory = nullptr;
        getClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(&factory));
        return factory;
    }
    template <class Itf>
    HRESULT Create(REFCLSID clsid, REFIID iid, Itf** pp, IUnknown* outer = nullptr) {
        IClassFactory* factory = Factory(clsid);
        if (!factory) return E_FAIL;
        HRESULT hr = factory->CreateInstance(outer, iid, reinterpret_cast<void**>(pp));
        factory->Release();
        return hr;
    }

    GetClassObjectFn getClassObject = nullptr;
    CanUnloadFn canUnloadNow = nullptr;

private:
    HMODULE m_module = nullptr;
};

std::string LoadText(HMODULE module, long id) {
    char buffer[512] = {};
    LoadStringA(module, static_cast<UINT>(id), buffer, sizeof buffer);
    return buffer;
}

class ComObjects : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        CoInitialize(nullptr);
        ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllRegisterServer"));
        ASSERT_EQ(S_OK, CallDllExport(SentrelDll(), "DllRegisterServer"));
    }
    static void TearDownTestSuite() { CoUninitialize(); }
    SentrelModule dll;
};

// A minimal outer object for aggregation: counts the references it is given.
class Outer : public IUnknown {
public:
    STDMETHODIMP QueryInterface(REFIID riid, void** ppv) override {
        if (IsEqualIID(riid, IID_IUnknown)) {
            *ppv = this;
            AddRef();
            return S_OK;
        }
        return inner ? inner->QueryInterface(riid, ppv) : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++refs; }
    STDMETHODIMP_(ULONG) Release() override { return --refs; }
    IUnknown* inner = nullptr;
    ULONG refs = 1;
};

TEST_F(ComObjects, CanUnloadOnlyWhenNoObjectLockOrHeldFactoryRemains) {
    EXPECT_EQ(S_OK, dll.canUnloadNow());
    for (const CLSID* clsid : {&CLSID_CSentrel, &CLSID_CSentrelCfg}) {
        IHostPlugIn* plugIn = nullptr;
        ASSERT_EQ(S_OK, dll.Create(*clsid, IID_IHostPlugIn, &plugIn));
        EXPECT_EQ(S_FALSE, dll.canUnloadNow()) << "a live object";
        plugIn->Release();
        EXPECT_EQ(S_OK, dll.canUnloadNow());
    }
    // A host may cache a class factory: while it holds one, the DLL must stay.
    IClassFactory* factory = dll.Factory(CLSID_CSentrel);
    ASSERT_NE(nullptr, factory);
    IClassFactory* again = dll.Factory(CLSID_CSentrel);
    EXPECT_EQ(factory, again) << "one factory per class, created once";
    again->Release();
    EXPECT_EQ(S_FALSE, dll.canUnloadNow()) << "a held factory";
    ASSERT_EQ(S_OK, factory->LockServer(TRUE));
    factory->Release();
    EXPECT_EQ(S_FALSE, dll.canUnloadNow()) << "a server lock outlives the factory's reference";
    factory = dll.Factory(CLSID_CSentrel);
    ASSERT_EQ(S_OK, factory->LockServer(FALSE));
    factory->Release();
    EXPECT_EQ(S_OK, dll.canUnloadNow());

    void* none = reinterpret_cast<void*>(1);
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, dll.getClassObject(CLSID_TVE4060Produre, IID_IClassFactory, &none))
        << "TVE4060Produre is in the type library only";
    EXPECT_EQ(nullptr, none);
}

TEST_F(ComObjects, AggregatedObjectDelegatesToItsOuterObjectAndAsksOnlyForIUnknown) {
    Outer outer;
    ASSERT_EQ(S_OK, dll.Create(CLSID_CSentrelCfg, IID_IUnknown, &outer.inner, &outer));
    ASSERT_NE(nullptr, outer.inner);
    IHostPlugIn* plugIn = nullptr;
    ASSERT_EQ(S_OK, outer.inner->QueryInterface(IID_IHostPlugIn, reinterpret_cast<void**>(&plugIn)));
    EXPECT_EQ(2u, outer.refs) << "the interface's AddRef reached the outer object";
    IUnknown* identity = nullptr;
    ASSERT_EQ(S_OK, plugIn->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&identity)));
    EXPECT_EQ(static_cast<IUnknown*>(&outer), identity) << "QueryInterface delegates to the outer object";
    identity->Release();
    plugIn->Release();
    EXPECT_EQ(1u, outer.refs);
    EXPECT_EQ(S_FALSE, dll.canUnloadNow());
    outer.inner->Release();  // the outer object lets go of its inner object
    EXPECT_EQ(S_OK, dll.canUnloadNow());

    // An outer object that asks for anything but IUnknown could never release the inner
    // object: nothing is created, nothing stays behind.
    for (const IID* iid : {&IID_IHostPlugIn, &IID_ICSentrelCfg, &IID_IDispatch}) {
        Outer refused;
        void* p = reinterpret_cast<void*>(1);
        EXPECT_EQ(CLASS_E_NOAGGREGATION, dll.Create(CLSID_CSentrelCfg, *iid, &p, &refused));
        EXPECT_EQ(nullptr, p);
        EXPECT_EQ(1u, refused.refs);
        EXPECT_EQ(S_OK, dll.canUnloadNow()) << "no object left alive";
    }
}

TEST_F(ComObjects, QueryInterfaceAnswersOwnDispatchHostPlugInAndUnknownOnly) {
    ICSentrelCfg* cfg = nullptr;
    ASSERT_EQ(S_OK, dll.Create(CLSID_CSentrelCfg, IID_ICSentrelCfg, &cfg));
    IDispatch* dispatch = nullptr;
    ASSERT_EQ(S_OK, cfg->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&dispatch)));
    EXPECT_EQ(static_cast<void*>(cfg), static_cast<void*>(dispatch)) << "IDispatch is the class's own interface";
    IHostPlugIn* plugIn = nullptr;
    ASSERT_EQ(S_OK, cfg->QueryInterface(IID_IHostPlugIn, reinterpret_cast<void**>(&plugIn)));
    EXPECT_NE(static_cast<void*>(cfg), static_cast<void*>(plugIn));
    IUnknown* unknown1 = nullptr;
    IUnknown* unknown2 = nullptr;
    ASSERT_EQ(S_OK, cfg->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&unknown1)));
    ASSERT_EQ(S_OK, plugIn->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&unknown2)));
    EXPECT_EQ(unknown1, unknown2) << "one identity";
    for (const IID* iid : {&IID_ICSentrel, &IID_IClassFactory}) {
        void* other = reinterpret_cast<void*>(1);
        EXPECT_EQ(E_NOINTERFACE, cfg->QueryInterface(*iid, &other));
        EXPECT_EQ(nullptr, other);
    }
    for (IUnknown* p : {static_cast<IUnknown*>(dispatch), static_cast<IUnknown*>(plugIn), unknown1, unknown2})
        p->Release();
    cfg->Release();
    EXPECT_EQ(S_OK, dll.canUnloadNow());
}

TEST_F(ComObjects, GettersStoreTheStringIdsAndAnswerNotImplemented) {
    const struct {
        const CLSID* clsid;
        const char* menuPath;
        const char* menuItem;
        const char* prompt;
    } cases[] = {
        {&CLSID_CSentrel, "&UserMgr", "&Raduis Server...",
         "Configure Sentrel that can receive the trap event  from the device\nSentrel"},
        {&CLSID_CSentrelCfg, "&Plug-In/&Halvo Console Plug-In", "&ACL Manager...",
         "Customization device Sentrel function\nSentrel Customization"},
    };
    using Getter = HRESULT (STDMETHODCALLTYPE IHostPlugIn::*)(long*);
    for (const auto& c : cases) {
        IHostPlugIn* plugIn = nullptr;
        ASSERT_EQ(S_OK, dll.Create(*c.clsid, IID_IHostPlugIn, &plugIn));
        HOST_HANDLE resource = 0;
        EXPECT_EQ(E_NOTIMPL, plugIn->GetResourceInstance(&resource));
        EXPECT_EQ(reinterpret_cast<HOST_HANDLE>(dll.Handle()), resource) << "resources live in the plug-in itself";
        EXPECT_EQ(E_POINTER, plugIn->GetResourceInstance(nullptr));
        const std::pair<Getter, const char*> getters[] = {
            {&IHostPlugIn::GetMenuPathID, c.menuPath},
            {&IHostPlugIn::GetMenuItemID, c.menuItem},
            {&IHostPlugIn::GetPromptID, c.prompt},
            {&IHostPlugIn::GetToolbarMenuID, "&DevManage Toolbar"},
            {&IHostPlugIn::GetToolbarTitleID, "DevManage Toolbar"},
        };
        for (const auto& [getter, text] : getters) {
            long id = -1;
            EXPECT_EQ(E_NOTIMPL, (plugIn->*getter)(&id));
            EXPECT_EQ(text, LoadText(dll.Handle(), id));
            EXPECT_EQ(E_POINTER, (plugIn->*getter)(nullptr));
        }
        EXPECT_EQ(E_NOTIMPL, plugIn->Reserved1(1, 2));
        EXPECT_EQ(E_NOTIMPL, plugIn->Reserved2(1, 2, 3));
        plugIn->Release();
    }
}

// The rule pages offer the module's own action words and send the code each one maps to: a
// word that drifted from the codes' table would become "Deny" without a word.
TEST_F(ComObjects, RuleActionWordsMapToTheirCodes) {
    const struct { const char* word; const char* acl; const char* cpu; } actions[] = {
        {"Permit", "2", "2"}, {"Mirror", "3", "1"}, {"Deny", "1", "1"}};
    for (int i = 0; i < 3; ++i) {
        const std::string word = LoadText(dll.Handle(), IDS_RULE_ACTION_FIRST + i);
        EXPECT_EQ(actions[i].word, word);
        EXPECT_EQ(actions[i].acl, ActionCode(word, AclOwner::kAcl)) << word;
        EXPECT_EQ(actions[i].cpu, ActionCode(word, AclOwner::kCpu)) << word;
    }
}

TEST_F(ComObjects, HostPlugInDispatchComesFromTheHostTypeLibraryAndFailsWithoutIt) {
    // Without the host's type library, IDispatch reports the loading error while calls
    // through the table of methods go on working.
    ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllUnregisterServer"));
    IHostPlugIn* plugIn = nullptr;
    HRESULT created = dll.Create(CLSID_CSentrelCfg, IID_IHostPlugIn, &plugIn);
    HRESULT nameHr = E_UNEXPECTED, direct = E_UNEXPECTED;
    DISPID id = 0;
    LPOLESTR name = const_cast<LPOLESTR>(L"GetMenuItemID");
    long menuItem = -1;
    if (SUCCEEDED(created)) {
        nameHr = plugIn->GetIDsOfNames(IID_NULL, &name, 1, 0, &id);
        direct = plugIn->GetMenuItemID(&menuItem);
        plugIn->Release();
    }
    ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllRegisterServer"));
    ASSERT_EQ(S_OK, created);
    EXPECT_TRUE(FAILED(nameHr));
    EXPECT_EQ(E_NOTIMPL, direct);
    EXPECT_EQ("&ACL Manager...", LoadText(dll.Handle(), menuItem));

    ASSERT_EQ(S_OK, dll.Create(CLSID_CSentrel, IID_IHostPlugIn, &plugIn));
    UINT count = 0;
    EXPECT_EQ(S_OK, plugIn->GetTypeInfoCount(&count));
    EXPECT_EQ(1u, count);
    EXPECT_EQ(E_POINTER, plugIn->GetTypeInfo(0, 0, nullptr));
    ASSERT_EQ(S_OK, plugIn->GetIDsOfNames(IID_NULL, &name, 1, 0, &id));
    EXPECT_EQ(3, id);
    plugIn->Release();
}

// The host reports the opened submap by name through IDispatch, then picks "&ACL Manager...":
// page 0 of the wizard, shown modally, has that submap selected and lists its devices; with
// none open (-1) it lists nothing. The root's ID is 0, the value before any report, so a
// method that stored nothing would show the root's device.
TEST_F(ComObjects, OpenedSubmapReachesTheWizardThatExecuteShowsModally) {
    ScopedCurrentFolder folder("sentrel_com_");  // the device list file is written here
    const std::string site = folder.File("site.xml");
    ASSERT_TRUE(WriteTextFile(site,
        "<OrblaneSite><DomainTree><Operation><DDS><Root ID=\"0\">"
        "<Domain ID=\"10\" Name=\"D\" Type=\"0\"><Submap ID=\"11\" Name=\"Core\" Type=\"0\"/></Domain>"
        "</Root></DDS></Operation></DomainTree>"
        "<DeviceList Node=\"0\"><DEVICELIST>" + DeviceXml("1", "root-sw", "TVR4820", "127.0.0.9") + "</DEVICELIST></DeviceList>"
        "<DeviceList Node=\"11\"><DEVICELIST>" + DeviceXml("2", "a", "TVR4820", "127.0.0.2") +
            DeviceXml("3", "b", "TVR4820", "127.0.0.3") + "</DEVICELIST></DeviceList></OrblaneSite>"));
    SetEnvironmentVariableA("ORBLANE_SITE", site.c_str());

    const struct {
        long submap;
        const char* selected;  // nullptr: the focused tree selects its first item by itself
        int rows;
    } cases[] = {{-1, nullptr, 0}, {11, "Core", 2}};
    for (const auto& c : cases) {
        ICSentrelCfg* cfg = nullptr;
        ASSERT_EQ(S_OK, dll.Create(CLSID_CSentrelCfg, IID_ICSentrelCfg, &cfg));
        DISPID id = 0;
        LPOLESTR name = const_cast<LPOLESTR>(L"OpenedSubmapID");
        ASSERT_EQ(S_OK, cfg->GetIDsOfNames(IID_NULL, &name, 1, 0, &id));
        VARIANT arg;
        VariantInit(&arg);
        arg.vt = VT_I4;
        arg.lVal = c.submap;
        DISPPARAMS params{&arg, nullptr, 1, 0};
        EXCEPINFO excep{};
        HRESULT hr = cfg->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, &excep, nullptr);
        // The method's E_NOTIMPL comes back as the call's result or as its exception code.
        EXPECT_TRUE(hr == E_NOTIMPL || (hr == DISP_E_EXCEPTION && excep.scode == E_NOTIMPL)) << std::hex << hr;
        SysFreeString(excep.bstrSource);
        SysFreeString(excep.bstrDescription);
        SysFreeString(excep.bstrHelpFile);

        IHostPlugIn* plugIn = nullptr;
        ASSERT_EQ(S_OK, cfg->QueryInterface(IID_IHostPlugIn, reinterpret_cast<void**>(&plugIn)));
        // Page 0 as a person reads it; the driver cancels the wizard after its script.
        bool seen = false;
        sentrel_gui::WizardDriver::Run("", [&] { hr = plugIn->Execute(0); }, [&](sentrel_gui::WizardDriver& d) {
            seen = true;
            HWND tree = d.Control(IDC_STEP0_TREE);
            if (c.selected) {
                EXPECT_EQ(d.FindTreeItem(tree, c.selected), d.SelectedTreeItem(tree)) << c.submap;
            }
            EXPECT_EQ(c.rows, d.RowCount(d.Control(IDC_STEP0_LIST))) << c.submap;
            EXPECT_TRUE(d.TakeMessages().empty());
        });
        EXPECT_TRUE(seen) << c.submap;
        EXPECT_EQ(E_NOTIMPL, hr) << "Execute returns once the wizard has closed";
        plugIn->Release();
        cfg->Release();
    }
    EXPECT_EQ(S_OK, dll.canUnloadNow());
    SetEnvironmentVariableA("ORBLANE_SITE", nullptr);
}

}  // namespace
