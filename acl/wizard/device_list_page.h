// Page 0 `CACLStep0` ("ACL: Device List"): the device panel, the hidden
// list of device types that have the ACL function, column sorting, and the target validation
// that fills the sheet's `m_aTargets` on Next.
#pragma once
#include "acl/page_logic.h"
#include "acl/wizard/page_base.h"
#include "controls/xlist_ctrl.h"
#include "shell/device_panel.h"

namespace acl::wizard {

class CACLStep0 : public CACLPage {
public:
    CACLStep0();

protected:
    BOOL OnInitDialog() override;
    LRESULT OnWizardNext() override;
    BOOL OnNotify(const NMHDR* hdr, LRESULT* pResult) override;

private:
    void FillSupportedTypes();
    void SortByColumn(int column);
    void ToggleRowCheck(int row);

    controls::CXListCtrl m_list;
    shell::DevicePanel m_panel;
    acl::pages::SortToggle m_sort;
};

}  // namespace acl::wizard
