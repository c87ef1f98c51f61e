// One class factory for every class of the table. Its count and LockServer use
// interlocked operations; LockServer holds the module lock count. The class table keeps the
// first reference; every further one is a client's and holds one lock of the module, so a
// client that caches the factory keeps the DLL loaded until it lets go.
#pragma once
#include <windows.h>
#include <unknwn.h>

namespace shell {

class ClassFactory final : public IClassFactory {
public:
    using Creator = HRESULT (*)(IUnknown* pOuter, REFIID riid, void** ppv);
    explicit ClassFactory(Creator creator) : m_creator(creator) {}
    virtual ~ClassFactory() = default;

    STDMETHODIMP QueryInterface(REFIID riid, void** ppv) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP CreateInstance(IUnknown* pOuter, REFIID riid, void** ppv) override;
    STDMETHODIMP LockServer(BOOL fLock) override;

private:
    Creator m_creator;
    volatile LONG m_cRef = 0;
};

}  // namespace shell
