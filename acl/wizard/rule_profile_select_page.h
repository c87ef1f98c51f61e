// Page 5 `CACLStep4` ("Add Rules:Select Profile"): Back and Next on activation.
// Its profile list (read from the device) comes with the rule pages; with no profile selected
// Next refuses with a message and the page stays.
#pragma once
#include <string>

#include "acl/wizard/page_base.h"

namespace acl::wizard {

class CACLStep4 : public CACLPage {
public:
    CACLStep4();

protected:
    acl::pages::NavInput MakeNavInput() const override;
    LRESULT OnWizardNext() override;

private:
    std::string m_strProfileTypeName;  // type name of the selected profile row, "" when none
};

}  // namespace acl::wizard
