// Page 14 `CACLAddIPv4Rule` ("Add Rule: Rule Detail" (IPv4)): Back and Next on activation.
// Its rule fields and pending list come with the rule dialogs, and with them the writing of the
// rule staging file on Next; the frame sets `m_nRuleType` and goes on to page 16.
#pragma once
#include "acl/wizard/page_base.h"

namespace acl::wizard {

class CACLAddIPv4Rule : public CACLPage {
public:
    CACLAddIPv4Rule();

protected:
    LRESULT OnWizardNext() override;
};

}  // namespace acl::wizard
