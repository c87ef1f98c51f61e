// Page 1 `CACLStep1` ("Access Control List"): the ACL kind, ordinary (1) or CPU (2).
#pragma once
#include "acl/wizard/page_base.h"

namespace acl::wizard {

class CACLStep1 : public CACLPage {
public:
    CACLStep1();
    int Choice() const { return m_nChoice; }

protected:
    BOOL OnInitDialog() override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    LRESULT OnWizardNext() override;

private:
    int m_nChoice = 1;
};

}  // namespace acl::wizard
