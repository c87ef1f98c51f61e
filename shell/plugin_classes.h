// The two host command classes and the module's class table.
#pragma once
#include "shell/plugin_object.h"

namespace shell {

// "&Raduis Server..." under "&UserMgr": opens the RADIUS server page.
class CSentrel final : public PlugInObject<CSentrel, ICSentrel, &IID_ICSentrel> {
public:
    static const HostCommandTexts kTexts;
    explicit CSentrel(IUnknown* pOuter) : PlugInObject(pOuter) {}
    void RunCommand();
};

// "&ACL Manager..." under "&Plug-In/&Halvo Console Plug-In": runs the ACL wizard;
// also told by the host which submap is open.
class CSentrelCfg final : public PlugInObject<CSentrelCfg, ICSentrelCfg, &IID_ICSentrelCfg> {
public:
    static const HostCommandTexts kTexts;
    explicit CSentrelCfg(IUnknown* pOuter) : PlugInObject(pOuter) {}
    void RunCommand();

    STDMETHODIMP OpenedSubmapID(long lSubmapID) override;
};

// The class table (ATL object map), CSentrel then CSentrelCfg, ended by an empty entry.
// TVE4060Produre is in the type library only.
ClassEntry* ClassTable();

// Registration routines of the table: the ProgID, version-independent ProgID and class keys.
HRESULT UpdateRegistryCSentrel(bool bRegister);
HRESULT UpdateRegistryCSentrelCfg(bool bRegister);

}  // namespace shell
