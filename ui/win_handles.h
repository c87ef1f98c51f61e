// RAII for every Win32 and COM handle (DESIGN.md section 6), in the shape of wil's
// unique_any: one template, one close function per handle type.
#pragma once
#include <windows.h>
#include <oleauto.h>
#include <commctrl.h>
#include <utility>
#include <wrl/client.h>

namespace ui {

template <typename H, auto Close, H Invalid = H{}>
class UniqueHandle {
public:
    UniqueHandle() = default;
    explicit UniqueHandle(H h) : m_h(h) {}
    ~UniqueHandle() { reset(); }
    UniqueHandle(UniqueHandle&& o) noexcept : m_h(o.release()) {}
    UniqueHandle& operator=(UniqueHandle&& o) noexcept { reset(o.release()); return *this; }
    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;

    H get() const { return m_h; }
    H* put() { reset(); return &m_h; }
    H release() { return std::exchange(m_h, Invalid); }
    void reset(H h = Invalid) {
        if (m_h != Invalid) Close(m_h);
        m_h = h;
    }
    explicit operator bool() const { return m_h != Invalid; }

private:
    H m_h = Invalid;
};

inline void CloseHandleChecked(HANDLE h) { ::CloseHandle(h); }
inline void CloseRegKey(HKEY h) { ::RegCloseKey(h); }
inline void FreeBstr(BSTR s) { ::SysFreeString(s); }
inline void DeleteGdiObject(HGDIOBJ h) { ::DeleteObject(h); }
inline void FreeLibraryChecked(HMODULE h) { ::FreeLibrary(h); }
inline void DestroyImageList(HIMAGELIST h) { ::ImageList_Destroy(h); }

using UniqueHandleObj = UniqueHandle<HANDLE, CloseHandleChecked>;  // threads, processes, events
using UniqueRegKey = UniqueHandle<HKEY, CloseRegKey>;
using UniqueBstr = UniqueHandle<BSTR, FreeBstr>;
using UniqueGdiObject = UniqueHandle<HGDIOBJ, DeleteGdiObject>;
using UniqueModule = UniqueHandle<HMODULE, FreeLibraryChecked>;
using UniqueImageList = UniqueHandle<HIMAGELIST, DestroyImageList>;

template <typename T>
using ComPtr = Microsoft::WRL::ComPtr<T>;

// A VARIANT that is cleared when it goes out of scope.
class UniqueVariant {
public:
    UniqueVariant() { ::VariantInit(&m_v); }
    ~UniqueVariant() { ::VariantClear(&m_v); }
    UniqueVariant(const UniqueVariant&) = delete;
    UniqueVariant& operator=(const UniqueVariant&) = delete;
    VARIANT* operator&() { ::VariantClear(&m_v); return &m_v; }
    const VARIANT& get() const { return m_v; }

private:
    VARIANT m_v;
};

}  // namespace ui
