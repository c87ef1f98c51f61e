// The real Sentrel.dll driven through its exports and COM interfaces.
#include <windows.h>
#include <oleauto.h>
#include <prsht.h>

#include <gtest/gtest.h>

#include <thread>

#include "Sentrel.h"
#include "orblane.h"
#include "tests/win/shell/shell_test_env.h"

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

    template <class Itf>
    HRESULT Create(REFCLSID clsid, REFIID iid, Itf** pp, IUnknown* outer = nullptr) {
        IClassFactory* factory = nullptr;
        HRESULT hr = getClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(&factory));
        if (FAILED(hr)) return hr;
        hr = factory->CreateInstance(outer, iid, reinterpret_cast<void**>(pp));
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

TEST_F(ComObjects, ExportsAllFour) {
    for (const char* name : {"DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer", "DllUnregisterServer"})
        EXPECT_NE(nullptr, GetProcAddress(dll.Handle(), name)) << name;
}

TEST_F(ComObjects, CanUnloadOnlyWhenNoObjectOrLockRemains) {
    EXPECT_EQ(S_OK, dll.canUnloadNow());
    for (const CLSID* clsid : {&CLSID_CSentrel, &CLSID_CSentrelCfg}) {
        IHostPlugIn* plugIn = nullptr;
        ASSERT_EQ(S_OK, dll.Create(*clsid, IID_IHostPlugIn, &plugIn));
        EXPECT_EQ(S_FALSE, dll.canUnloadNow());
        plugIn->Release();
        EXPECT_EQ(S_OK, dll.canUnloadNow());
    }
    IClassFactory* factory = nullptr;
    ASSERT_EQ(S_OK, dll.getClassObject(CLSID_CSentrel, IID_IClassFactory, reinterpret_cast<void**>(&factory)));
    ASSERT_EQ(S_OK, factory->LockServer(TRUE));
    EXPECT_EQ(S_FALSE, dll.canUnloadNow());
    ASSERT_EQ(S_OK, factory->LockServer(FALSE));
    EXPECT_EQ(S_OK, dll.canUnloadNow());
    factory->Release();
}

TEST_F(ComObjects, ClassFactoryIsCreatedOnceAndCached) {
    IClassFactory* a = nullptr;
    IClassFactory* b = nullptr;
    ASSERT_EQ(S_OK, dll.getClassObject(CLSID_CSentrelCfg, IID_IClassFactory, reinterpret_cast<void**>(&a)));
    ASSERT_EQ(S_OK, dll.getClassObject(CLSID_CSentrelCfg, IID_IClassFactory, reinterpret_cast<void**>(&b)));
    EXPECT_EQ(a, b);
    a->Release();
    b->Release();
}

TEST_F(ComObjects, Tve4060ProdureHasNoClassObject) {
    void* p = reinterpret_cast<void*>(1);
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, dll.getClassObject(CLSID_TVE4060Produre, IID_IClassFactory, &p));
    EXPECT_EQ(nullptr, p);
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
    void* other = reinterpret_cast<void*>(1);
    EXPECT_EQ(E_NOINTERFACE, cfg->QueryInterface(IID_ICSentrel, &other));
    EXPECT_EQ(nullptr, other);
    EXPECT_EQ(E_NOINTERFACE, cfg->QueryInterface(IID_IClassFactory, &other));
    for (IUnknown* p : {static_cast<IUnknown*>(dispatch), static_cast<IUnknown*>(plugIn), unknown1, unknown2})
        p->Release();
    cfg->Release();
    EXPECT_EQ(S_OK, dll.canUnloadNow());
}

struct ExpectedTexts {
    const CLSID* clsid;
    const char* menuPath;
    const char* menuItem;
    const char* prompt;
};

TEST_F(ComObjects, GettersStoreTheStringIdsAndAnswerNotImplemented) {
    const ExpectedTexts cases[] = {
        {&CLSID_CSentrel, "&UserMgr", "&Raduis Server...",
         "Configure Sentrel that can receive the trap event  from the device\nSentrel"},
        {&CLSID_CSentrelCfg, "&Plug-In/&Halvo Console Plug-In", "&ACL Manager...",
         "Customization device Sentrel function\nSentrel Customization"},
    };
    for (const ExpectedTexts& c : cases) {
        IHostPlugIn* plugIn = nullptr;
        ASSERT_EQ(S_OK, dll.Create(*c.clsid, IID_IHostPlugIn, &plugIn));
        HOST_HANDLE resource = 0;
        EXPECT_EQ(E_NOTIMPL, plugIn->GetResourceInstance(&resource));
        EXPECT_EQ(reinterpret_cast<HOST_HANDLE>(dll.Handle()), resource) << "resources live in the plug-in itself";
        HMODULE res = reinterpret_cast<HMODULE>(resource);
        long id = -1;
        EXPECT_EQ(E_NOTIMPL, plugIn->GetMenuPathID(&id));
        EXPECT_EQ(c.menuPath, LoadText(res, id));
        EXPECT_EQ(E_NOTIMPL, plugIn->GetMenuItemID(&id));
        EXPECT_EQ(c.menuItem, LoadText(res, id));
        EXPECT_EQ(E_NOTIMPL, plugIn->GetPromptID(&id));
        EXPECT_EQ(c.prompt, LoadText(res, id));
        EXPECT_EQ(E_NOTIMPL, plugIn->GetToolbarMenuID(&id));
        EXPECT_EQ("&DevManage Toolbar", LoadText(res, id));
        EXPECT_EQ(E_NOTIMPL, plugIn->GetToolbarTitleID(&id));
        EXPECT_EQ("DevManage Toolbar", LoadText(res, id));
        EXPECT_EQ(E_NOTIMPL, plugIn->Reserved1(1, 2));
        EXPECT_EQ(E_NOTIMPL, plugIn->Reserved2(1, 2, 3));

        EXPECT_EQ(E_POINTER, plugIn->GetResourceInstance(nullptr));
        EXPECT_EQ(E_POINTER, plugIn->GetMenuPathID(nullptr));
        EXPECT_EQ(E_POINTER, plugIn->GetMenuItemID(nullptr));
        EXPECT_EQ(E_POINTER, plugIn->GetPromptID(nullptr));
        EXPECT_EQ(E_POINTER, plugIn->GetToolbarMenuID(nullptr));
        EXPECT_EQ(E_POINTER, plugIn->GetToolbarTitleID(nullptr));
        plugIn->Release();
    }
}

TEST_F(ComObjects, OpenedSubmapIdAnswersNotImplementedDirectlyAndThroughIDispatch) {
    ICSentrelCfg* cfg = nullptr;
    ASSERT_EQ(S_OK, dll.Create(CLSID_CSentrelCfg, IID_ICSentrelCfg, &cfg));
    EXPECT_EQ(E_NOTIMPL, cfg->OpenedSubmapID(-1));
    EXPECT_EQ(E_NOTIMPL, cfg->OpenedSubmapID(42));

    UINT count = 0;
    EXPECT_EQ(S_OK, cfg->GetTypeInfoCount(&count));
    EXPECT_EQ(1u, count);
    EXPECT_EQ(E_POINTER, cfg->GetTypeInfo(0, 0, nullptr));
    DISPID id = 0;
    LPOLESTR name = const_cast<LPOLESTR>(L"OpenedSubmapID");
    ASSERT_EQ(S_OK, cfg->GetIDsOfNames(IID_NULL, &name, 1, 0, &id));
    EXPECT_EQ(1, id);
    VARIANT arg;
    VariantInit(&arg);
    arg.vt = VT_I4;
    arg.lVal = 7;
    DISPPARAMS params{&arg, nullptr, 1, 0};
    EXCEPINFO excep{};
    HRESULT hr = cfg->Invoke(1, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, &excep, nullptr);
    // The method's E_NOTIMPL comes back as the call's exception code.
    EXPECT_TRUE(hr == E_NOTIMPL || (hr == DISP_E_EXCEPTION && excep.scode == E_NOTIMPL)) << std::hex << hr;
    SysFreeString(excep.bstrSource);
    SysFreeString(excep.bstrDescription);
    SysFreeString(excep.bstrHelpFile);
    cfg->Release();
}

TEST_F(ComObjects, HostPlugInDispatchIsServedFromTheHostTypeLibrary) {
    IHostPlugIn* plugIn = nullptr;
    ASSERT_EQ(S_OK, dll.Create(CLSID_CSentrel, IID_IHostPlugIn, &plugIn));
    UINT count = 0;
    EXPECT_EQ(S_OK, plugIn->GetTypeInfoCount(&count));
    EXPECT_EQ(1u, count);
    EXPECT_EQ(E_POINTER, plugIn->GetTypeInfo(0, 0, nullptr));
    ITypeInfo* info = nullptr;
    ASSERT_EQ(S_OK, plugIn->GetTypeInfo(0, 0, &info));
    TYPEATTR* attr = nullptr;
    ASSERT_EQ(S_OK, info->GetTypeAttr(&attr));
    EXPECT_TRUE(IsEqualGUID(attr->guid, IID_IHostPlugIn));
    info->ReleaseTypeAttr(attr);
    info->Release();
    DISPID id = 0;
    LPOLESTR name = const_cast<LPOLESTR>(L"GetMenuItemID");
    ASSERT_EQ(S_OK, plugIn->GetIDsOfNames(IID_NULL, &name, 1, 0, &id));
    EXPECT_EQ(3, id);
    plugIn->Release();
}

TEST_F(ComObjects, HostPlugInDispatchReportsTheLoadingErrorWithoutTheHostTypeLibrary) {
    ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllUnregisterServer"));
    IHostPlugIn* plugIn = nullptr;
    HRESULT created = dll.Create(CLSID_CSentrelCfg, IID_IHostPlugIn, &plugIn);
    HRESULT nameHr = E_UNEXPECTED, infoHr = E_UNEXPECTED;
    long id = -1;
    HRESULT direct = E_UNEXPECTED;
    if (SUCCEEDED(created)) {
        DISPID dispId = 0;
        LPOLESTR name = const_cast<LPOLESTR>(L"Execute");
        nameHr = plugIn->GetIDsOfNames(IID_NULL, &name, 1, 0, &dispId);
        ITypeInfo* info = nullptr;
        infoHr = plugIn->GetTypeInfo(0, 0, &info);
        direct = plugIn->GetMenuItemID(&id);
        plugIn->Release();
    }
    ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllRegisterServer"));
    ASSERT_EQ(S_OK, created);
    EXPECT_TRUE(FAILED(nameHr));
    EXPECT_TRUE(FAILED(infoHr));
    EXPECT_EQ(E_NOTIMPL, direct) << "calls through the table of methods are unaffected";
    EXPECT_NE(-1, id);
}

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

TEST_F(ComObjects, AggregatedObjectDelegatesToItsOuterObject) {
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
}

// Watches the test thread's windows from a second thread, as a person looks at the screen:
// once the wizard's property sheet shows, records its title and the active page's caption and
// cancels it; message boxes on the way (page 0 reads the host's tree, and without a site the
// host reports an error) are closed with OK.
struct WizardWatch {
    std::string sheetCaption, pageCaption;
    bool helpVisible = true;
    bool seen = false;

    static std::string Text(HWND hwnd) {
        char text[256] = {};
        GetWindowTextA(hwnd, text, sizeof text);
        return text;
    }
    // A CALLBACK function, not a lambda: the i686 build needs the stdcall convention.
    static BOOL CALLBACK WatchWindow(HWND hwnd, LPARAM lParam) {
        auto* self = reinterpret_cast<WizardWatch*>(lParam);
        if (!IsWindowVisible(hwnd)) return TRUE;
        if (GetDlgItem(hwnd, 0xFFFF)) {  // a message box
            PostMessageA(hwnd, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
            return TRUE;
        }
        HWND page = reinterpret_cast<HWND>(SendMessageA(hwnd, PSM_GETCURRENTPAGEHWND, 0, 0));
        if (!page) return TRUE;
        self->sheetCaption = Text(hwnd);
        self->pageCaption = Text(page);
        HWND help = GetDlgItem(hwnd, IDHELP);
        self->helpVisible = help && IsWindowVisible(help);
        self->seen = true;
        PostMessageA(hwnd, PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
        return FALSE;
    }
    void Watch(DWORD uiThread) {
        for (int i = 0; i < 400 && !seen; ++i) {  // at most 20 s
            EnumThreadWindows(uiThread, &WatchWindow, reinterpret_cast<LPARAM>(this));
            Sleep(50);
        }
    }
};

TEST_F(ComObjects, ExecuteOfCSentrelCfgShowsTheAclWizardModally) {
    IHostPlugIn* plugIn = nullptr;
    ASSERT_EQ(S_OK, dll.Create(CLSID_CSentrelCfg, IID_IHostPlugIn, &plugIn));
    WizardWatch watch;
    std::thread watcher([&watch, ui = GetCurrentThreadId()] { watch.Watch(ui); });
    HRESULT hr = plugIn->Execute(0);  // returns only once the wizard has closed
    watcher.join();
    EXPECT_EQ(E_NOTIMPL, hr);
    ASSERT_TRUE(watch.seen);
    EXPECT_EQ("ACL: Device List", watch.sheetCaption) << "a wizard shows its page's caption";
    EXPECT_EQ("ACL: Device List", watch.pageCaption) << "the first page is active";
    EXPECT_FALSE(watch.helpVisible);
    plugIn->Release();
    EXPECT_EQ(S_OK, dll.canUnloadNow());
}

TEST_F(ComObjects, CreatedThroughComByProgId) {
    CLSID clsid{};
    ASSERT_EQ(S_OK, CLSIDFromProgID(L"OrblaneLib.CSentrel.1", &clsid));
    IHostPlugIn* plugIn = nullptr;
    ASSERT_EQ(S_OK, CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IHostPlugIn,
                                     reinterpret_cast<void**>(&plugIn)));
    long id = 0;
    EXPECT_EQ(E_NOTIMPL, plugIn->GetMenuPathID(&id));
    plugIn->Release();
}

}  // namespace
