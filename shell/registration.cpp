#include "shell/registration.h"

#include <cstdio>
#include <string>

#include "orblane.h"
#include "res/resource.h"
#include "shell/com_module.h"
#include "ui/text.h"
#include "ui/win_handles.h"

namespace shell {
namespace {

// Creates (or opens) a key and sets its default value and, when given, one named value.
LONG WriteKey(HKEY parent, const std::string& subkey, const std::string& defaultValue,
              const char* valueName = nullptr, const char* value = nullptr, HKEY* pKeep = nullptr) {
    ui::UniqueRegKey key;
    LONG rc = RegCreateKeyExA(parent, subkey.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                              KEY_READ | KEY_WRITE, nullptr, key.put(), nullptr);
    if (rc != ERROR_SUCCESS) return rc;
    rc = RegSetValueExA(key.get(), nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(defaultValue.c_str()),
                        static_cast<DWORD>(defaultValue.size() + 1));
    if (rc != ERROR_SUCCESS) return rc;
    if (valueName) {
        rc = RegSetValueExA(key.get(), valueName, 0, REG_SZ, reinterpret_cast<const BYTE*>(value),
                            static_cast<DWORD>(strlen(value) + 1));
        if (rc != ERROR_SUCCESS) return rc;
    }
    if (pKeep) *pKeep = key.release();
    return ERROR_SUCCESS;
}

// ProgID key: default value the description, subkey "CLSID" naming the class.
LONG WriteProgIdKey(const char* progId, const std::string& description, const char* classKey) {
    HKEY raw = nullptr;
    LONG rc = WriteKey(HKEY_CLASSES_ROOT, progId, description, nullptr, nullptr, &raw);
    if (rc != ERROR_SUCCESS) return rc;
    ui::UniqueRegKey key(raw);
    return WriteKey(key.get(), "CLSID", classKey);
}

}  // namespace

void ClassKeyName(REFGUID clsid, char (&out)[40]) {
    snprintf(out, sizeof out, "{%08lX-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
             static_cast<unsigned long>(clsid.Data1), clsid.Data2, clsid.Data3, clsid.Data4[0],
             clsid.Data4[1], clsid.Data4[2], clsid.Data4[3], clsid.Data4[4], clsid.Data4[5],
             clsid.Data4[6], clsid.Data4[7]);
}

HRESULT RegisterClassKeys(const ClassRegistration& reg) {
    const std::string description = ui::LoadResString(IDS_PROJNAME);  // "Sentrel"
    char classKey[40];
    ClassKeyName(*reg.pclsid, classKey);

    char modulePath[MAX_PATH + 1] = {};
    GetModuleFileNameA(Module().ModuleInstance(), modulePath, MAX_PATH);

    LONG rc = WriteProgIdKey(reg.szProgID, description, classKey);
    if (rc == ERROR_SUCCESS) rc = WriteProgIdKey(reg.szVersionIndependentID, description, classKey);
    if (rc != ERROR_SUCCESS) return HRESULT_FROM_WIN32(rc);

    // No "CurVer" subkey is written: the host looks classes up by their versioned ProgID.
    HKEY raw = nullptr;
    rc = WriteKey(HKEY_CLASSES_ROOT, std::string("CLSID\\") + classKey, description, nullptr, nullptr, &raw);
    if (rc != ERROR_SUCCESS) return HRESULT_FROM_WIN32(rc);
    ui::UniqueRegKey clsKey(raw);
    rc = WriteKey(clsKey.get(), "ProgID", reg.szProgID);
    if (rc == ERROR_SUCCESS) rc = WriteKey(clsKey.get(), "VersionIndependentProgID", reg.szVersionIndependentID);
    if (rc == ERROR_SUCCESS) rc = WriteKey(clsKey.get(), "InprocServer32", modulePath, "ThreadingModel", "both");
    return rc == ERROR_SUCCESS ? S_OK : HRESULT_FROM_WIN32(rc);
}

HRESULT UnregisterClassKeys(const ClassRegistration& reg) {
    char classKey[40];
    ClassKeyName(*reg.pclsid, classKey);
    // Whatever class their "CLSID" subkeys name, both ProgID keys go, so
    // no stale ProgID of ours survives.
    RegDeleteTreeA(HKEY_CLASSES_ROOT, reg.szProgID);
    RegDeleteTreeA(HKEY_CLASSES_ROOT, reg.szVersionIndependentID);
    RegDeleteTreeA(HKEY_CLASSES_ROOT, (std::string("CLSID\\") + classKey).c_str());
    return S_OK;
}

HRESULT RegisterServer() {
    ComModule& module = Module();

    // 1. Register every class of the table with the host; a missing host is no error.
    ui::ComPtr<IHostSystem> host;
    if (SUCCEEDED(CoCreateInstance(CLSID_HostSystem, nullptr, CLSCTX_ALL, IID_IHostSystem,
                                   reinterpret_cast<void**>(host.GetAddressOf())))) {
        for (const ClassEntry* e = module.ClassTable(); e && e->pclsid; ++e) {
            GUID clsid = *e->pclsid;
            host->RegisterPlugIn(&clsid, 1);  // result ignored
        }
        host.Reset();
    }

    // 2. COM registration, stopping at the first failure.
    HRESULT hr = module.RegisterClasses();
    if (FAILED(hr)) return hr;

    // 3. The type library from the module's own TYPELIB resource 1.
    wchar_t path[MAX_PATH + 1] = {};
    GetModuleFileNameW(module.TypeLibInstance(), path, MAX_PATH);
    ui::ComPtr<ITypeLib> typeLib;
    hr = LoadTypeLibEx(path, REGKIND_NONE, &typeLib);
    if (SUCCEEDED(hr)) hr = RegisterTypeLib(typeLib.Get(), path, nullptr);
    return hr;
}

HRESULT UnregisterServer() {
    ComModule& module = Module();
    module.UnregisterClasses();
    // The host is not told: it keeps its own list of plug-ins. A type library that is registered no more is no
    // failure: unregistration succeeds when everything is already gone.
    char libKey[40];
    ClassKeyName(module.TypeLibId(), libKey);
    ui::UniqueRegKey key;
    if (RegOpenKeyExA(HKEY_CLASSES_ROOT, (std::string("TypeLib\\") + libKey + "\\1.0").c_str(), 0, KEY_READ,
                      key.put()) != ERROR_SUCCESS)
        return S_OK;
    key.reset();
    return UnRegisterTypeLib(module.TypeLibId(), 1, 0, LOCALE_NEUTRAL, sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32);
}

}  // namespace shell
