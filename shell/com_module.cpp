#include "shell/com_module.h"

#include <new>

#include "acl/wizard/switch_reader.h"
#include "shell/class_factory.h"

namespace shell {

ComModule& Module() {
    static ComModule module;
    return module;
}

void ComModule::Init(ClassEntry* pClassTable, HINSTANCE hInstance, const GUID* pLibid) {
    m_pClassTable = pClassTable;
    m_hInstance = m_hInstResource = m_hInstTypeLib = hInstance;
    m_libid = *pLibid;
    m_nLockCount = 0;
    if (!m_bInitialized) {
        InitializeCriticalSection(&m_csTypeInfo);
        InitializeCriticalSection(&m_csObjMap);
        m_bInitialized = true;
    }
}

void ComModule::Term() {
    if (!m_bInitialized) return;
    for (ClassEntry* e = m_pClassTable; e && e->pclsid; ++e) {
        if (e->pCachedFactory) {
            e->pCachedFactory->Release();
            e->pCachedFactory = nullptr;
        }
    }
    for (auto& slot : m_typeInfo) {
        if (slot.pInfo) slot.pInfo->Release();
        slot = {};
    }
    DeleteCriticalSection(&m_csTypeInfo);
    DeleteCriticalSection(&m_csObjMap);
    m_bInitialized = false;
}

HRESULT ComModule::GetClassObject(REFCLSID rclsid, REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    *ppv = nullptr;
    for (ClassEntry* e = m_pClassTable; e && e->pclsid; ++e) {
        if (!IsEqualCLSID(*e->pclsid, rclsid)) continue;
        EnterCriticalSection(&m_csObjMap);
        if (!e->pCachedFactory) {
            auto* factory = new (std::nothrow) ClassFactory(e->createInstance);
            if (factory) {
                factory->AddRef();  // the table's reference, released at Term
                e->pCachedFactory = factory;
            }
        }
        IClassFactory* factory = e->pCachedFactory;
        LeaveCriticalSection(&m_csObjMap);
        if (!factory) return E_OUTOFMEMORY;
        return factory->QueryInterface(riid, ppv);
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT ComModule::RegisterClasses() {
    for (ClassEntry* e = m_pClassTable; e && e->pclsid; ++e) {
        HRESULT hr = e->updateRegistry(true);
        if (FAILED(hr)) return hr;
    }
    return S_OK;
}

HRESULT ComModule::UnregisterClasses() {
    for (ClassEntry* e = m_pClassTable; e && e->pclsid; ++e) e->updateRegistry(false);
    return S_OK;
}

HRESULT ComModule::GetTypeInfo(REFGUID libid, REFIID iid, ITypeInfo** ppInfo) {
    if (!ppInfo) return E_POINTER;
    *ppInfo = nullptr;
    if (!m_bInitialized) return E_UNEXPECTED;
    HRESULT hr = S_OK;
    EnterCriticalSection(&m_csTypeInfo);
    TypeInfoSlot* free = nullptr;
    TypeInfoSlot* found = nullptr;
    for (auto& slot : m_typeInfo) {
        if (slot.pInfo && IsEqualGUID(slot.libid, libid) && IsEqualIID(slot.iid, iid)) {
            found = &slot;
            break;
        }
        if (!slot.pInfo && !free) free = &slot;
    }
    if (!found) {
        ITypeLib* pLib = nullptr;
        hr = LoadRegTypeLib(libid, 1, 0, LOCALE_NEUTRAL, &pLib);
        if (SUCCEEDED(hr)) {
            ITypeInfo* pInfo = nullptr;
            hr = pLib->GetTypeInfoOfGuid(iid, &pInfo);
            pLib->Release();
            if (SUCCEEDED(hr)) {
                if (free) {
                    *free = {libid, iid, pInfo};
                    found = free;
                } else {
                    *ppInfo = pInfo;  // cache full: hand out uncached (cannot happen with 3 dual interfaces)
                }
            }
        }
    }
    if (found) {
        found->pInfo->AddRef();
        *ppInfo = found->pInfo;
    }
    LeaveCriticalSection(&m_csTypeInfo);
    return hr;
}

bool CanUnloadNow() { return Module().LockCount() == 0 && acl::wizard::SwitchReader::LiveWorkers() == 0; }

}  // namespace shell
