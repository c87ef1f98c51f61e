// Page 5 `CACLStep4` ("Add Rules:Select Profile"): the "Device" drop-down (the targets' IPs),
// the profiles of the current device and ACL kind, read on a worker thread by the shared
// switch reader so the window answers and can be cancelled meanwhile, and the details of a
// clicked profile as on "Add profile". Next copies the chosen profile's fields into the sheet
// and goes to the rule page of its type; it refuses while the read runs and without a
// selection.
#pragma once
#include <array>
#include <string>

#include "acl/acl_device.h"
#include "acl/wizard/page_base.h"
#include "acl/wizard/switch_reader.h"
#include "controls/xlist_ctrl.h"

namespace acl::wizard {

class CACLStep4 : public CACLPage {
public:
    CACLStep4();

    // Whether the device's profiles are still being read (tests).
    bool IsReading() const { return m_bReading; }

protected:
    acl::pages::NavInput MakeNavInput() const override;
    BOOL OnInitDialog() override;
    BOOL OnSetActive() override;
    BOOL OnKillActive() override;
    LRESULT OnWizardNext() override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    BOOL OnNotify(const NMHDR* hdr, LRESULT* pResult) override;
    BOOL OnMessage(UINT msg, WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;
    void OnDestroy() override;

private:
    void ReadDevice(int index);
    void ChooseRow(int row);
    AclOwner Owner() const { return m_nACLKind == 1 ? AclOwner::kAcl : AclOwner::kCpu; }

    long m_nACLKind = 1;
    AclTarget m_device;  // the current device
    std::string m_strProfileID;
    std::string m_strProfileTypeName;  // of the selected profile row, "" when none
    bool m_bReading = false;
    std::array<AclRecordList, 4> m_aTables{};  // the hidden tables, by AclType
    controls::CXListCtrl m_profileList;
    controls::CXListCtrl m_details;
    acl::pages::SortToggle m_sort;
    SwitchReader m_reader;
};

}  // namespace acl::wizard
