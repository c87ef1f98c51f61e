#include "acl/wizard/apply_run.h"

#include <vector>

#include "acl/acl_device.h"
#include "res/resource.h"
#include "ui/text.h"

namespace acl::wizard {

void SetUpSwitchList(controls::CXListCtrl& list, HWND hwndList) {
    list.Attach(hwndList);
    list.SetExtendedStyle(LVS_EX_FULLROWSELECT);
    list.InsertColumn(0, ui::LoadResString(IDS_APPLY_COL_DEVICE_IP), 130);
    list.InsertColumn(1, ui::LoadResString(IDS_APPLY_COL_DEVICE_NAME), 130);
    list.InsertColumn(2, ui::LoadResString(IDS_APPLY_COL_STATUS), 270);
}

void FillSwitchList(controls::CXListCtrl& list, const WizardState& wizard) {
    list.DeleteAllItems();
    for (long i = 0; i < wizard.m_nTargetCount; ++i) {
        const ACLTarget& t = wizard.m_aTargets[static_cast<size_t>(i)];
        const int row = list.InsertItem(static_cast<int>(i), t.strIP);
        list.SetItemText(row, 1, t.strDeviceType);
    }
}

void ApplyToTargets(WizardState& wizard, AclKind kind, HWND progress, controls::CXListCtrl& switchList,
                    std::array<AclRecordList, 4>& lists, const std::function<void()>& deleteStaged) {
    const HCURSOR previous = SetCursor(LoadCursorA(nullptr, MAKEINTRESOURCEA(32514)));  // IDC_WAIT
    ShowWindow(progress, SW_SHOW);
    SendMessageA(progress, PBM_SETRANGE, 0, MAKELPARAM(0, 100));
    SendMessageA(progress, PBM_SETPOS, 0, 0);
    SendMessageA(progress, PBM_SETSTEP, 1, 0);

    // The words of an earlier apply go, so every word on screen is this apply's.
    for (int row = 0; row < switchList.GetItemCount(); ++row) switchList.SetItemText(row, 2, "");
    // Every target is of the first one's model (the device list allows one type).
    std::vector<AclTarget> targets;
    for (long i = 0; i < wizard.m_nTargetCount; ++i) {
        const ACLTarget& t = wizard.m_aTargets[static_cast<size_t>(i)];
        targets.push_back(AclTarget{t.strIP, t.strReadCommunity, t.strWriteCommunity, wizard.m_aTargets[0].strDeviceType});
    }
    AclApplyCallbacks callbacks;
    callbacks.progress = [progress](int position) {
        SendMessageA(progress, PBM_SETPOS, static_cast<WPARAM>(position), 0);
        UpdateWindow(progress);
    };
    callbacks.result = [&switchList](size_t target, const char* word) {
        switchList.SetItemText(static_cast<int>(target), 2, word);
        UpdateWindow(switchList.GetSafeHwnd());
    };
    callbacks.deleteStaged = deleteStaged;
    const AclOwner owner = wizard.m_nACLKind == 1 ? AclOwner::kAcl : AclOwner::kCpu;
    if (kind == AclKind::kProfiles)
        ApplyProfiles(targets, owner, lists, callbacks);
    else
        ApplyRules(targets, owner, lists, callbacks);
    for (AclRecordList& list : lists) list.clear();

    (kind == AclKind::kProfiles ? wizard.m_bProfilesApplied : wizard.m_bRulesApplied) = 1;
    SetCursor(previous ? previous : LoadCursorA(nullptr, MAKEINTRESOURCEA(32512)));  // IDC_ARROW
    ShowWindow(progress, SW_HIDE);
}

}  // namespace acl::wizard
