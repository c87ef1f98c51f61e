// The common body of the two host command classes: their own dual interface,
// the host's IHostPlugIn, the QueryInterface order, aggregation and the module lock.
#pragma once
#include <windows.h>
#include <new>

#include "orblane.h"
#include "Sentrel.h"
#include "shell/com_module.h"
#include "shell/dispatch_impl.h"

namespace shell {

// The texts a command hands to the host, as string-table IDs.
struct HostCommandTexts {
    long nMenuPathID;
    long nMenuItemID;
    long nPromptID;
    long nToolbarMenuID;
    long nToolbarTitleID;
};

// Derived supplies: static const HostCommandTexts kTexts; void RunCommand();
template <class Derived, class OwnItf, const IID* pOwnIid>
class PlugInObject : public DispatchImpl<OwnItf, &LIBID_SENTRELLib, pOwnIid>,
                     public DispatchImpl<IHostPlugIn, &LIBID_OrblaneHostLib, &IID_IHostPlugIn> {
public:
    // Creation for the class table: plain, or aggregated when pOuter is given. An outer
    // object must ask for the inner IUnknown, the only pointer through which it can ever
    // release us: any other interface is refused before anything is created. A failed
    // QueryInterface destroys the new object.
    static HRESULT CreateInstance(IUnknown* pOuter, REFIID riid, void** ppv) {
        if (!ppv) return E_POINTER;
        *ppv = nullptr;
        if (pOuter && !IsEqualIID(riid, IID_IUnknown)) return CLASS_E_NOAGGREGATION;
        auto* p = new (std::nothrow) Derived(pOuter);
        if (!p) return E_OUTOFMEMORY;
        p->m_inner.AddRef();
        HRESULT hr = p->m_inner.QueryInterface(riid, ppv);
        p->m_inner.Release();  // destroys the object when the QueryInterface failed
        return hr;
    }

    // IUnknown of every interface: the controlling unknown (the outer object when aggregated).
    STDMETHODIMP QueryInterface(REFIID riid, void** ppv) override { return m_pControl->QueryInterface(riid, ppv); }
    STDMETHODIMP_(ULONG) AddRef() override { return m_pControl->AddRef(); }
    STDMETHODIMP_(ULONG) Release() override { return m_pControl->Release(); }

    // IHostPlugIn: the host expects getters to store, then answer E_NOTIMPL; null pointers E_POINTER.
    STDMETHODIMP GetResourceInstance(HOST_HANDLE* phInstance) override {
        return Store(phInstance, reinterpret_cast<HOST_HANDLE>(Module().ResourceInstance()));
    }
    STDMETHODIMP GetMenuPathID(long* pnID) override { return Store(pnID, Derived::kTexts.nMenuPathID); }
    STDMETHODIMP GetMenuItemID(long* pnID) override { return Store(pnID, Derived::kTexts.nMenuItemID); }
    STDMETHODIMP GetPromptID(long* pnID) override { return Store(pnID, Derived::kTexts.nPromptID); }
    STDMETHODIMP Reserved1(long, long) override { return E_NOTIMPL; }
    STDMETHODIMP Reserved2(long, long, long) override { return E_NOTIMPL; }
    STDMETHODIMP Execute(long) override {
        static_cast<Derived*>(this)->RunCommand();
        return E_NOTIMPL;
    }
    STDMETHODIMP GetToolbarMenuID(long* pnID) override { return Store(pnID, Derived::kTexts.nToolbarMenuID); }
    STDMETHODIMP GetToolbarTitleID(long* pnID) override { return Store(pnID, Derived::kTexts.nToolbarTitleID); }

protected:
    explicit PlugInObject(IUnknown* pOuter) : m_inner(this), m_pControl(pOuter ? pOuter : &m_inner) {
        Module().Lock();
    }
    virtual ~PlugInObject() { Module().Unlock(); }

private:
    template <typename T>
    static HRESULT Store(T* p, T value) {
        if (!p) return E_POINTER;
        *p = value;
        return E_NOTIMPL;
    }

    // The non-delegating IUnknown: own interface, IDispatch (the own one), IHostPlugIn, IUnknown.
    class Inner final : public IUnknown {
    public:
        explicit Inner(PlugInObject* self) : m_self(self) {}
        STDMETHODIMP QueryInterface(REFIID riid, void** ppv) override {
            if (!ppv) return E_POINTER;
            *ppv = nullptr;
            if (IsEqualIID(riid, *pOwnIid) || IsEqualIID(riid, IID_IDispatch))
                *ppv = static_cast<OwnItf*>(m_self);
            else if (IsEqualIID(riid, IID_IHostPlugIn))
                *ppv = static_cast<IHostPlugIn*>(m_self);
            else if (IsEqualIID(riid, IID_IUnknown))
                *ppv = static_cast<IUnknown*>(this);
            else
                return E_NOINTERFACE;
            static_cast<IUnknown*>(*ppv)->AddRef();
            return S_OK;
        }
        STDMETHODIMP_(ULONG) AddRef() override { return ++m_cRef; }  // plain: calls come on the UI thread
        STDMETHODIMP_(ULONG) Release() override {
            ULONG n = --m_cRef;
            if (n == 0) delete m_self;
            return n;
        }

    private:
        PlugInObject* m_self;
        ULONG m_cRef = 0;
    };

    Inner m_inner;
    IUnknown* m_pControl;
};

}  // namespace shell
