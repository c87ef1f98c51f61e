// Page 10 `CACLApply` ("Confirmation Page"): the selected switches, the pending profiles read
// back from the four profile staging files, sortable, with the details of a clicked profile,
// and "Apply to Switch" (acl/wizard/apply_page_base.h). "Create Rules" goes to page 5.
#pragma once
#include "acl/wizard/apply_page_base.h"

namespace acl::wizard {

class CACLApply : public CApplyPage {
public:
    CACLApply();

protected:
    void SetUpLists() override;
    void ReadStaged(const WizardState& wizard, AclOwner owner) override;
    std::span<const PendingColumn> DetailColumns(AclType type, const AclRecord& record) const override;
    void DeleteStaged() const override;
    BOOL OnPageCommand(int id) override;
    BOOL OnPendingListNotify(const NMHDR* hdr, LRESULT* pResult) override;

private:
    acl::pages::SortToggle m_sort;
};

}  // namespace acl::wizard
