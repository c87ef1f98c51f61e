#include "shell/plugin_classes.h"

#include "res/resource.h"
#include "shell/acl_command.h"
#include "shell/browser_command.h"
#include "shell/host_inventory.h"
#include "shell/registration.h"

namespace shell {

const HostCommandTexts CSentrel::kTexts = {IDS_RADIUS_MENU_PATH, IDS_RADIUS_MENU_ITEM,
                                           IDS_RADIUS_PROMPT, IDS_TOOLBAR_MENU, IDS_TOOLBAR_TITLE};
const HostCommandTexts CSentrelCfg::kTexts = {IDS_CFG_MENU_PATH, IDS_CFG_MENU_ITEM, IDS_CFG_PROMPT,
                                              IDS_TOOLBAR_MENU, IDS_TOOLBAR_TITLE};

// Neither command selects the framework module state; both run modally here.
void CSentrel::RunCommand() { RunRadiusServerCommand(); }
void CSentrelCfg::RunCommand() { RunAclManagerCommand(); }

STDMETHODIMP CSentrelCfg::OpenedSubmapID(long lSubmapID) {
    g_lOpenedSubmapID = lSubmapID;  // any value, -1 (none) included
    return E_NOTIMPL;
}

namespace {
const ClassRegistration kSentrelReg = {&CLSID_CSentrel, "OrblaneLib.CSentrel.1", "OrblaneLib.CSentrel"};
const ClassRegistration kSentrelCfgReg = {&CLSID_CSentrelCfg, "OrblaneLib.CSentrelCfg.1",
                                          "OrblaneLib.CSentrelCfg"};
}  // namespace

HRESULT UpdateRegistryCSentrel(bool bRegister) {
    return bRegister ? RegisterClassKeys(kSentrelReg) : UnregisterClassKeys(kSentrelReg);
}

HRESULT UpdateRegistryCSentrelCfg(bool bRegister) {
    return bRegister ? RegisterClassKeys(kSentrelCfgReg) : UnregisterClassKeys(kSentrelCfgReg);
}

ClassEntry* ClassTable() {
    static ClassEntry table[] = {
        {&CLSID_CSentrel, &UpdateRegistryCSentrel, &CSentrel::CreateInstance, nullptr},
        {&CLSID_CSentrelCfg, &UpdateRegistryCSentrelCfg, &CSentrelCfg::CreateInstance, nullptr},
        {nullptr, nullptr, nullptr, nullptr},
    };
    return table;
}

}  // namespace shell
