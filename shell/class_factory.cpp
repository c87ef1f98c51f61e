#include "shell/class_factory.h"

#include "shell/com_module.h"

namespace shell {

STDMETHODIMP ClassFactory::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory)) {
        *ppv = static_cast<IClassFactory*>(this);
        AddRef();
        return S_OK;
    }
    *ppv = nullptr;
    return E_NOINTERFACE;
}

STDMETHODIMP_(ULONG) ClassFactory::AddRef() {
    LONG n = InterlockedIncrement(&m_cRef);
    if (n > 1) Module().Lock();
    return n;
}

STDMETHODIMP_(ULONG) ClassFactory::Release() {
    LONG n = InterlockedDecrement(&m_cRef);
    if (n > 0)
        Module().Unlock();
    else
        delete this;
    return n;
}

STDMETHODIMP ClassFactory::CreateInstance(IUnknown* pOuter, REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    *ppv = nullptr;
    return m_creator(pOuter, riid, ppv);
}

STDMETHODIMP ClassFactory::LockServer(BOOL fLock) {
    if (fLock)
        Module().Lock();
    else
        Module().Unlock();
    return S_OK;
}

}  // namespace shell
