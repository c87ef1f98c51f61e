// OrblaneHost.dll: the stand-in Orblane host objects (system, domain tree, device list).
// They answer at exactly the table-of-methods entries the plug-in calls; every other entry
// returns E_NOTIMPL.
#include <windows.h>
#include <oleauto.h>

#include <cstdio>
#include <new>
#include <string>

#include "host/host_objects/host_state.h"
#include "host/host_objects/site.h"
#include "orblane.h"

namespace {

HMODULE g_module = nullptr;
volatile LONG g_locks = 0;

std::wstring GuidText(const GUID& g) {
    wchar_t text[40] = {};
    StringFromGUID2(g, text, 40);
    return text;
}

// Selected-device IP set by orblane.exe; "unset" falls back to the site's attribute.
CRITICAL_SECTION g_stateLock;
bool g_selectionSet = false;
std::wstring g_selectedIP;

#define HOST_RESERVED(name) STDMETHODIMP name() override { return E_NOTIMPL; }

// IUnknown + an IDispatch without type information, shared by the three objects.
template <class Itf, const IID* pIid>
class HostObject : public Itf {
public:
    HostObject() { InterlockedIncrement(&g_locks); }
    virtual ~HostObject() { InterlockedDecrement(&g_locks); }
    STDMETHODIMP QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IDispatch) || IsEqualIID(riid, *pIid)) {
            *ppv = static_cast<Itf*>(this);
            AddRef();
            return S_OK;
        }
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return InterlockedIncrement(&m_ref); }
    STDMETHODIMP_(ULONG) Release() override {
        LONG n = InterlockedDecrement(&m_ref);
        if (n == 0) delete this;
        return n;
    }
    STDMETHODIMP GetTypeInfoCount(UINT* p) override {
        if (!p) return E_POINTER;
        *p = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }

private:
    volatile LONG m_ref = 0;
};

class HostSystem final : public HostObject<IHostSystem, &IID_IHostSystem> {
public:
    // Entry 8: remembered under HKCU so orblane.exe can build its menus from the plug-ins.
    STDMETHODIMP RegisterPlugIn(GUID* pclsid, long lValue) override {
        if (!pclsid) return E_POINTER;
        std::wstring name = GuidText(*pclsid);
        host::LogCall(L"RegisterPlugIn " + name + L" " + std::to_wstring(lValue));
        HKEY key = nullptr;
        if (RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Kestrix\\OrblaneNMS\\PlugIns", 0, nullptr, 0,
                            KEY_WRITE, nullptr, &key, nullptr) != ERROR_SUCCESS)
            return E_FAIL;
        DWORD data = static_cast<DWORD>(lValue);
        RegSetValueExW(key, name.c_str(), 0, REG_DWORD, reinterpret_cast<BYTE*>(&data), sizeof data);
        RegCloseKey(key);
        return S_OK;
    }
    HOST_RESERVED(Reserved09) HOST_RESERVED(Reserved10) HOST_RESERVED(Reserved11)
    HOST_RESERVED(Reserved12) HOST_RESERVED(Reserved13) HOST_RESERVED(Reserved14) HOST_RESERVED(Reserved15)
    // Entry 16: the site's "ContextID"; leaves the value alone when the site has none.
    STDMETHODIMP GetContextID(long* plContextID) override {
        if (!plContextID) return E_POINTER;
        IXMLDOMDocument* site = host::LoadSite();
        std::wstring text = host::SiteText(site, L"ContextID");
        if (site) site->Release();
        host::LogCall(L"GetContextID " + text);
        if (text.empty()) return S_FALSE;
        *plContextID = wcstol(text.c_str(), nullptr, 10);
        return S_OK;
    }
    HOST_RESERVED(Reserved17) HOST_RESERVED(Reserved18) HOST_RESERVED(Reserved19)
    HOST_RESERVED(Reserved20) HOST_RESERVED(Reserved21)
    // Entry 22: the site's <ErrorText Code="..."> for the code, else a generic text.
    STDMETHODIMP GetErrorText(long lResult, BSTR* pbstrText) override {
        if (!pbstrText) return E_POINTER;
        host::LogCall(L"GetErrorText " + std::to_wstring(lResult));
        std::wstring text = L"Orblane error " + std::to_wstring(lResult);
        if (IXMLDOMDocument* site = host::LoadSite()) {
            std::wstring query = L"/OrblaneSite/ErrorText[@Code='" + std::to_wstring(lResult) + L"']";
            BSTR bstrQuery = SysAllocString(query.c_str());
            IXMLDOMNode* node = nullptr;
            if (site->selectSingleNode(bstrQuery, &node) == S_OK && node) {
                BSTR value = nullptr;
                if (SUCCEEDED(node->get_text(&value)) && value) text = value;
                SysFreeString(value);
                node->Release();
            }
            SysFreeString(bstrQuery);
            site->Release();
        }
        *pbstrText = SysAllocString(text.c_str());
        return S_OK;
    }
    HOST_RESERVED(Reserved23) HOST_RESERVED(Reserved24) HOST_RESERVED(Reserved25) HOST_RESERVED(Reserved26)
    HOST_RESERVED(Reserved27) HOST_RESERVED(Reserved28) HOST_RESERVED(Reserved29) HOST_RESERVED(Reserved30)
    HOST_RESERVED(Reserved31) HOST_RESERVED(Reserved32)
    // Entry 33: the device selected in orblane.exe, else the site's "SelectedDeviceIP".
    STDMETHODIMP GetSelectedDeviceIP(BSTR* pbstrIP, long* plValid) override {
        if (!pbstrIP || !plValid) return E_POINTER;
        std::wstring ip;
        EnterCriticalSection(&g_stateLock);
        bool set = g_selectionSet;
        ip = g_selectedIP;
        LeaveCriticalSection(&g_stateLock);
        if (!set) {
            IXMLDOMDocument* site = host::LoadSite();
            ip = host::SiteText(site, L"SelectedDeviceIP");
            if (site) site->Release();
        }
        host::LogCall(L"GetSelectedDeviceIP " + ip);
        *pbstrIP = ip.empty() ? nullptr : SysAllocString(ip.c_str());
        *plValid = ip.empty() ? 0 : 1;
        return S_OK;
    }
};

class HostDomainTree final : public HostObject<IHostDomainTree, &IID_IHostDomainTree> {
public:
    HOST_RESERVED(Reserved08)
    // Entry 9: the <DomainTree> document of the site; the query's result is the site's
    // "TreeResult" (default 0), read back by GetLastResult.
    STDMETHODIMP GetDomainTree(IXMLDOMDocument** ppDocument, long lContextID) override {
        if (!ppDocument) return E_POINTER;
        *ppDocument = nullptr;
        host::LogCall(L"GetDomainTree " + std::to_wstring(lContextID));
        IXMLDOMDocument* site = host::LoadSite();
        if (!site) {
            m_lastResult = 2;
            return E_FAIL;
        }
        m_lastResult = host::SiteLong(site, L"TreeResult", 0);
        BSTR query = SysAllocString(L"/OrblaneSite/DomainTree");
        IXMLDOMNode* holder = nullptr;
        site->selectSingleNode(query, &holder);
        SysFreeString(query);
        HRESULT hr = host::DocumentFromHolder(holder, ppDocument);
        if (holder) holder->Release();
        site->Release();
        return hr;
    }
    HOST_RESERVED(Reserved10) HOST_RESERVED(Reserved11)
    STDMETHODIMP GetLastResult(long* plResult) override {  // entry 12
        if (!plResult) return E_POINTER;
        *plResult = m_lastResult;
        return S_OK;
    }

private:
    long m_lastResult = 0;
};

class HostDeviceList final : public HostObject<IHostDeviceList, &IID_IHostDeviceList> {
public:
    HOST_RESERVED(Reserved08) HOST_RESERVED(Reserved09) HOST_RESERVED(Reserved10) HOST_RESERVED(Reserved11)
    HOST_RESERVED(Reserved12) HOST_RESERVED(Reserved13) HOST_RESERVED(Reserved14) HOST_RESERVED(Reserved15)
    HOST_RESERVED(Reserved16) HOST_RESERVED(Reserved17) HOST_RESERVED(Reserved18) HOST_RESERVED(Reserved19)
    HOST_RESERVED(Reserved20) HOST_RESERVED(Reserved21) HOST_RESERVED(Reserved22) HOST_RESERVED(Reserved23)
    HOST_RESERVED(Reserved24) HOST_RESERVED(Reserved25) HOST_RESERVED(Reserved26) HOST_RESERVED(Reserved27)
    HOST_RESERVED(Reserved28) HOST_RESERVED(Reserved29) HOST_RESERVED(Reserved30) HOST_RESERVED(Reserved31)
    HOST_RESERVED(Reserved32) HOST_RESERVED(Reserved33) HOST_RESERVED(Reserved34)
    // Entry 35: the site's <DeviceList Node="n"> document; Fail="1" makes the call fail;
    // a node without one gets an empty device list.
    STDMETHODIMP ListDeviceFromGroup(long lNodeID, IXMLDOMDocument** ppDocument) override {
        if (!ppDocument) return E_POINTER;
        *ppDocument = nullptr;
        host::LogCall(L"ListDeviceFromGroup " + std::to_wstring(lNodeID));
        IXMLDOMDocument* site = host::LoadSite();
        if (!site) return E_FAIL;
        std::wstring q = L"/OrblaneSite/DeviceList[@Node='" + std::to_wstring(lNodeID) + L"']";
        BSTR query = SysAllocString(q.c_str());
        IXMLDOMNode* holder = nullptr;
        site->selectSingleNode(query, &holder);
        SysFreeString(query);
        site->Release();
        HRESULT hr = S_OK;
        if (holder) {
            IXMLDOMElement* element = nullptr;
            holder->QueryInterface(IID_IXMLDOMElement, reinterpret_cast<void**>(&element));
            VARIANT fail;
            VariantInit(&fail);
            BSTR name = SysAllocString(L"Fail");
            if (element && element->getAttribute(name, &fail) == S_OK && fail.vt == VT_BSTR &&
                lstrcmpW(fail.bstrVal, L"1") == 0)
                hr = E_FAIL;
            SysFreeString(name);
            VariantClear(&fail);
            if (element) element->Release();
        }
        if (SUCCEEDED(hr)) {
            hr = host::DocumentFromHolder(holder, ppDocument);
            if (SUCCEEDED(hr) && !holder) {
                VARIANT_BOOL ok;
                BSTR empty = SysAllocString(L"<DEVICELIST/>");
                (*ppDocument)->loadXML(empty, &ok);
                SysFreeString(empty);
            }
        }
        if (holder) holder->Release();
        return hr;
    }
};

template <class T>
class Factory final : public IClassFactory {
public:
    STDMETHODIMP QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory)) {
            *ppv = static_cast<IClassFactory*>(this);
            AddRef();
            return S_OK;
        }
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }  // static object
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        *ppv = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        T* object = new (std::nothrow) T();
        if (!object) return E_OUTOFMEMORY;
        object->AddRef();
        HRESULT hr = object->QueryInterface(riid, ppv);
        object->Release();
        return hr;
    }
    STDMETHODIMP LockServer(BOOL lock) override {
        if (lock) InterlockedIncrement(&g_locks); else InterlockedDecrement(&g_locks);
        return S_OK;
    }
};

Factory<HostSystem> g_systemFactory;
Factory<HostDomainTree> g_treeFactory;
Factory<HostDeviceList> g_listFactory;

struct HostClass {
    const CLSID* clsid;
    IClassFactory* factory;
    const wchar_t* name;
};
const HostClass kClasses[] = {
    {&CLSID_HostSystem, &g_systemFactory, L"Orblane host system"},
    {&CLSID_HostDomainTree, &g_treeFactory, L"Orblane domain tree"},
    {&CLSID_HostDeviceList, &g_listFactory, L"Orblane device list"},
};

LONG SetKeyValue(HKEY root, const std::wstring& path, const wchar_t* name, const std::wstring& value) {
    HKEY key = nullptr;
    LONG rc = RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr);
    if (rc != ERROR_SUCCESS) return rc;
    rc = RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                        static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(key);
    return rc;
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        g_module = instance;
        InitializeCriticalSection(&g_stateLock);
        DisableThreadLibraryCalls(instance);
    } else if (reason == DLL_PROCESS_DETACH) {
        DeleteCriticalSection(&g_stateLock);
    }
    return TRUE;
}

extern "C" HRESULT WINAPI DllGetClassObject(REFCLSID rclsid, REFIID riid, void** ppv) {
    for (const HostClass& c : kClasses)
        if (IsEqualCLSID(*c.clsid, rclsid)) return c.factory->QueryInterface(riid, ppv);
    if (ppv) *ppv = nullptr;
    return CLASS_E_CLASSNOTAVAILABLE;
}

extern "C" HRESULT WINAPI DllCanUnloadNow() { return g_locks == 0 ? S_OK : S_FALSE; }

extern "C" HRESULT WINAPI DllRegisterServer() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(g_module, path, MAX_PATH);
    for (const HostClass& c : kClasses) {
        std::wstring key = L"CLSID\\" + GuidText(*c.clsid);
        if (SetKeyValue(HKEY_CLASSES_ROOT, key, nullptr, c.name) != ERROR_SUCCESS ||
            SetKeyValue(HKEY_CLASSES_ROOT, key + L"\\InprocServer32", nullptr, path) != ERROR_SUCCESS ||
            SetKeyValue(HKEY_CLASSES_ROOT, key + L"\\InprocServer32", L"ThreadingModel", L"Both") != ERROR_SUCCESS)
            return HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED);
    }
    ITypeLib* lib = nullptr;
    HRESULT hr = LoadTypeLibEx(path, REGKIND_NONE, &lib);
    if (SUCCEEDED(hr)) {
        hr = RegisterTypeLib(lib, path, nullptr);
        lib->Release();
    }
    return hr;
}

extern "C" HRESULT WINAPI DllUnregisterServer() {
    for (const HostClass& c : kClasses) RegDeleteTreeW(HKEY_CLASSES_ROOT, (L"CLSID\\" + GuidText(*c.clsid)).c_str());
    UnRegisterTypeLib(LIBID_OrblaneHostLib, 1, 0, 0, sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32);
    return S_OK;
}

extern "C" void WINAPI OrblaneHostSetSelectedDeviceIP(const wchar_t* ip) {
    EnterCriticalSection(&g_stateLock);
    g_selectionSet = true;
    g_selectedIP = ip ? ip : L"";
    LeaveCriticalSection(&g_stateLock);
}

extern "C" void WINAPI OrblaneHostSetSitePath(const wchar_t* path) { host::SetSitePath(path); }
