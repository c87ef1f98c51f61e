// Page 10 `CACLApply` ("Confirmation Page"): the selected switches, the
// pending profiles read back from the staging files, and "Apply to Switch" (shared with
// "Add rule", acl/wizard/apply_run.h). "Configure Next
// Device" goes to page 0, "Create Rules" to page 5. Finish and Cancel delete the four profile
// staging files.
#pragma once
#include <array>

#include "acl/acl_record.h"
#include "acl/wizard/page_base.h"
#include "controls/xlist_ctrl.h"

namespace acl::wizard {

class CACLApply : public CACLPage {
public:
    CACLApply();

protected:
    BOOL OnInitDialog() override;
    BOOL OnSetActive() override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    BOOL OnNotify(const NMHDR* hdr, LRESULT* pResult) override;
    BOOL OnWizardFinish() override;
    void OnCancel() override;
    void OnDestroy() override;

private:
    void ShowDetails(int row);

    long m_nACLKind = 1;
    std::array<AclRecordList, 4> m_lists{};  // the hidden lists, by AclType
    controls::CXListCtrl m_switchList;
    controls::CXListCtrl m_profileList;
    controls::CXListCtrl m_details;
    acl::pages::SortToggle m_sort;
};

}  // namespace acl::wizard
