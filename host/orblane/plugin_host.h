// The plug-ins that orblane.exe drives: every class registered under
// HKCU\Software\Kestrix\OrblaneNMS\PlugIns, created in-process and asked through
// IHostPlugIn for its resource handle and texts.
#pragma once
#include <windows.h>
#include <wrl/client.h>
#include <string>
#include <vector>

#include "orblane.h"

namespace orblane {

inline constexpr wchar_t kPlugInsKey[] = L"Software\\Kestrix\\OrblaneNMS\\PlugIns";

struct PlugIn {
    CLSID clsid{};
    std::wstring clsidText;  // registry form, as the key's value name
    Microsoft::WRL::ComPtr<IHostPlugIn> object;
    HINSTANCE resources = nullptr;
    // String-table IDs as the getters stored them (-1: the getter stored nothing).
    long menuPathId = -1, menuItemId = -1, promptId = -1, toolbarMenuId = -1, toolbarTitleId = -1;
    // Their texts, loaded with LoadStringW from `resources`.
    std::wstring menuPath, menuItem, prompt, toolbarMenu, toolbarTitle;
    UINT commandId = 0;  // the host's menu and toolbar command for this plug-in
};

// Why a registered plug-in was left out, for the host's report.
struct PlugInProblem {
    std::wstring clsidText;
    std::wstring what;
    HRESULT hr = S_OK;
};

// Creates every registered plug-in object and reads its texts. Plug-ins that cannot be
// created or have no IHostPlugIn are reported in `problems` and left out. Command IDs are
// given from `firstCommandId` up, in registry order.
// `keyPath` under HKEY_CURRENT_USER lists the plug-ins (tests use a key of their own).
std::vector<PlugIn> LoadPlugIns(UINT firstCommandId, std::vector<PlugInProblem>& problems,
                                const wchar_t* keyPath = kPlugInsKey);

// A string of a module's string table; empty when missing.
std::wstring LoadResourceString(HINSTANCE module, long id);

// The host reports the opened submap. The host does not know the plug-in's own
// interfaces, so it calls "OpenedSubmapID" by name through IDispatch; plug-ins without the
// method are skipped, and the result (E_NOTIMPL by design) is ignored. Returns how many
// plug-ins had the method.
int NotifyOpenedSubmap(const std::vector<PlugIn>& plugIns, long submapId);

}  // namespace orblane
