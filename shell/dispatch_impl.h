// IDispatch of a dual interface, served from a registered type library
// (version 1.0) that is loaded on first use and cached by the module.
#pragma once
#include <windows.h>
#include <oaidl.h>

#include "shell/com_module.h"
#include "ui/win_handles.h"

namespace shell {

template <class Itf, const GUID* pLibid, const IID* pIid>
class DispatchImpl : public Itf {
public:
    STDMETHODIMP GetTypeInfoCount(UINT* pctinfo) override {
        if (!pctinfo) return E_POINTER;
        *pctinfo = 1;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT iTInfo, LCID, ITypeInfo** ppTInfo) override {
        if (!ppTInfo) return E_POINTER;
        *ppTInfo = nullptr;
        if (iTInfo != 0) return DISP_E_BADINDEX;
        return Module().GetTypeInfo(*pLibid, *pIid, ppTInfo);
    }
    STDMETHODIMP GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT cNames, LCID,
                               DISPID* pDispIds) override {
        if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
        ui::ComPtr<ITypeInfo> info;
        HRESULT hr = Module().GetTypeInfo(*pLibid, *pIid, &info);
        if (FAILED(hr)) return hr;
        return info->GetIDsOfNames(names, cNames, pDispIds);
    }
    STDMETHODIMP Invoke(DISPID dispId, REFIID riid, LCID, WORD flags, DISPPARAMS* params,
                        VARIANT* result, EXCEPINFO* excep, UINT* argErr) override {
        if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
        ui::ComPtr<ITypeInfo> info;
        HRESULT hr = Module().GetTypeInfo(*pLibid, *pIid, &info);
        if (FAILED(hr)) return hr;
        return info->Invoke(static_cast<Itf*>(this), dispId, flags, params, result, excep, argErr);
    }
};

}  // namespace shell
