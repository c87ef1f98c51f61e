// Page 17 `CACLAddPacketRule` ("Add Rule: Rule Detail" (Packet Content)): Back and Next on activation.
// Its rule fields and pending list come with the rule dialogs, and with them the writing of the
// rule staging file on Next; the frame sets `m_nRuleType` and goes on to page 16.
#pragma once
#include "acl/wizard/page_base.h"

namespace acl::wizard {

class CACLAddPacketRule : public CACLPage {
public:
    CACLAddPacketRule();

protected:
    LRESULT OnWizardNext() override;
};

}  // namespace acl::wizard
