// The COM module record, table-driven (one class table behind one class factory type):
// instance handles, lock count, class table, type-information cache.
#pragma once
#include <windows.h>
#include <oaidl.h>

namespace shell {

// One entry of the class table (ATL object map). The table ends with an entry whose
// class identifier is null.
struct ClassEntry {
    const CLSID* pclsid;
    HRESULT (*updateRegistry)(bool bRegister);                    // registration routine
    HRESULT (*createInstance)(IUnknown* pOuter, REFIID riid, void** ppv);
    IClassFactory* pCachedFactory;                                // empty until first request
};

class ComModule {
public:
    void Init(ClassEntry* pClassTable, HINSTANCE hInstance, const GUID* pLibid);
    void Term();

    HINSTANCE ModuleInstance() const { return m_hInstance; }
    HINSTANCE ResourceInstance() const { return m_hInstResource; }
    HINSTANCE TypeLibInstance() const { return m_hInstTypeLib; }
    const GUID& TypeLibId() const { return m_libid; }

    LONG Lock() { return InterlockedIncrement(&m_nLockCount); }
    LONG Unlock() { return InterlockedDecrement(&m_nLockCount); }
    LONG LockCount() const { return m_nLockCount; }

    // DllGetClassObject: the cached class factory of a class of the table.
    HRESULT GetClassObject(REFCLSID rclsid, REFIID riid, void** ppv);
    // COM registration of every class, in table order; stops at the first failure.
    HRESULT RegisterClasses();
    HRESULT UnregisterClasses();
    // The class table, for DllRegisterServer's host registration.
    const ClassEntry* ClassTable() const { return m_pClassTable; }

    // Type information of a dual interface from a registered type library (version 1.0),
    // loaded on first use and cached until Term. Returns the loading error on failure.
    HRESULT GetTypeInfo(REFGUID libid, REFIID iid, ITypeInfo** ppInfo);

private:
    struct TypeInfoSlot {
        GUID libid;
        IID iid;
        ITypeInfo* pInfo;
    };
    static constexpr int kTypeInfoSlots = 8;

    HINSTANCE m_hInstance = nullptr;
    HINSTANCE m_hInstResource = nullptr;
    HINSTANCE m_hInstTypeLib = nullptr;
    GUID m_libid{};
    ClassEntry* m_pClassTable = nullptr;
    volatile LONG m_nLockCount = 0;
    bool m_bInitialized = false;
    CRITICAL_SECTION m_csTypeInfo{};
    CRITICAL_SECTION m_csObjMap{};
    TypeInfoSlot m_typeInfo[kTypeInfoSlots]{};
};

// The one module record of the process.
ComModule& Module();

// Whether the module may be unloaded: no object and no lock remain, and no switch reader
// started by a wizard still runs (it may outlive the command that started it).
bool CanUnloadNow();

}  // namespace shell
