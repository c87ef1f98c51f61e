// Page 16 `CACLRuleApply` ("Add rule"): the selected switches, the pending rules read back from
// the rule staging files of the ACL kind (the types the model offers, packet content in its
// layout) with the details of a clicked rule, and "Apply to Switch" (shared with the
// Confirmation Page). "Configure Next Device" goes to page 0. Finish and Cancel delete the
// rule staging files.
#pragma once
#include <array>

#include "acl/acl_record.h"
#include "acl/wizard/page_base.h"
#include "controls/xlist_ctrl.h"

namespace acl::wizard {

class CACLRuleApply : public CACLPage {
public:
    CACLRuleApply();

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

    std::array<AclRecordList, 4> m_lists{};  // the hidden lists, by AclType
    controls::CXListCtrl m_switchList;
    controls::CXListCtrl m_ruleList;
    controls::CXListCtrl m_details;
};

}  // namespace acl::wizard
