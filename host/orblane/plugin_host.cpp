#include "host/orblane/plugin_host.h"

#include <oleauto.h>

using Microsoft::WRL::ComPtr;

namespace orblane {

namespace {

// The getters of IHostPlugIn store their value and return E_NOTIMPL by design:
// the host takes whatever was stored, whatever the HRESULT. A sentinel tells "nothing stored".
constexpr long kNotStored = -1;

std::vector<std::wstring> RegisteredClsids(const wchar_t* keyPath) {
    std::vector<std::wstring> names;
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, keyPath, 0, KEY_READ, &key) != ERROR_SUCCESS) return names;
    for (DWORD index = 0;; ++index) {
        wchar_t name[128];
        DWORD length = ARRAYSIZE(name);
        LONG rc = RegEnumValueW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (rc == ERROR_NO_MORE_ITEMS) break;
        if (rc == ERROR_SUCCESS) names.emplace_back(name, length);
    }
    RegCloseKey(key);
    return names;
}

}  // namespace

std::wstring LoadResourceString(HINSTANCE module, long id) {
    if (!module || id < 0 || id > 0xFFFF) return {};
    const wchar_t* text = nullptr;
    // With a buffer length of 0, LoadStringW hands out a pointer into the resource.
    int length = LoadStringW(module, static_cast<UINT>(id), reinterpret_cast<LPWSTR>(&text), 0);
    if (length <= 0 || !text) return {};
    return std::wstring(text, static_cast<size_t>(length));
}

std::vector<PlugIn> LoadPlugIns(UINT firstCommandId, std::vector<PlugInProblem>& problems,
                                const wchar_t* keyPath) {
    std::vector<PlugIn> plugIns;
    UINT nextCommand = firstCommandId;
    for (const std::wstring& name : RegisteredClsids(keyPath)) {
        PlugIn p;
        p.clsidText = name;
        HRESULT hr = CLSIDFromString(name.c_str(), &p.clsid);
        if (FAILED(hr)) {
            problems.push_back({name, L"not a class identifier", hr});
            continue;
        }
        hr = CoCreateInstance(p.clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IHostPlugIn,
                              reinterpret_cast<void**>(p.object.GetAddressOf()));
        if (FAILED(hr) || !p.object) {
            problems.push_back({name, L"cannot be created with IHostPlugIn", hr});
            continue;
        }
        HOST_HANDLE handle = 0;
        p.object->GetResourceInstance(&handle);
        p.resources = reinterpret_cast<HINSTANCE>(handle);
        long id = kNotStored;
        p.object->GetMenuPathID(&id);
        p.menuPathId = id;
        id = kNotStored;
        p.object->GetMenuItemID(&id);
        p.menuItemId = id;
        id = kNotStored;
        p.object->GetPromptID(&id);
        p.promptId = id;
        id = kNotStored;
        p.object->GetToolbarMenuID(&id);
        p.toolbarMenuId = id;
        id = kNotStored;
        p.object->GetToolbarTitleID(&id);
        p.toolbarTitleId = id;

        p.menuPath = LoadResourceString(p.resources, p.menuPathId);
        p.menuItem = LoadResourceString(p.resources, p.menuItemId);
        p.prompt = LoadResourceString(p.resources, p.promptId);
        p.toolbarMenu = LoadResourceString(p.resources, p.toolbarMenuId);
        p.toolbarTitle = LoadResourceString(p.resources, p.toolbarTitleId);
        if (p.menuItem.empty()) {
            problems.push_back({name, L"has no menu item text", S_OK});
            continue;
        }
        p.commandId = nextCommand++;
        plugIns.push_back(std::move(p));
    }
    return plugIns;
}

int NotifyOpenedSubmap(const std::vector<PlugIn>& plugIns, long submapId) {
    int reached = 0;
    for (const PlugIn& p : plugIns) {
        // QueryInterface(IDispatch) gives the plug-in's own dual interface, which carries OpenedSubmapID.
        ComPtr<IDispatch> dispatch;
        if (FAILED(p.object.As(&dispatch)) || !dispatch) continue;
        LPOLESTR name = const_cast<LPOLESTR>(L"OpenedSubmapID");
        DISPID dispid = DISPID_UNKNOWN;
        if (FAILED(dispatch->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &dispid))) continue;
        VARIANTARG arg;
        VariantInit(&arg);
        arg.vt = VT_I4;
        arg.lVal = submapId;
        DISPPARAMS params{&arg, nullptr, 1, 0};
        VARIANT result;
        VariantInit(&result);
        EXCEPINFO excep{};
        UINT argErr = 0;
        dispatch->Invoke(dispid, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, &result, &excep, &argErr);
        VariantClear(&result);
        SysFreeString(excep.bstrSource);
        SysFreeString(excep.bstrDescription);
        SysFreeString(excep.bstrHelpFile);
        ++reached;
    }
    return reached;
}

}  // namespace orblane
