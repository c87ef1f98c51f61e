// Page 8 `CACLStep_IPV6` ("IPv6 ACL Settings"): the IPv6 filtering masks;
// the pending list, Add, Delete and Next ("\ACLIpv6.ini", `m_nProfileType` 3) are the
// definition pages' (profile_definition_page.h).
#pragma once
#include "acl/wizard/profile_definition_page.h"

namespace acl::wizard {

class CACLStep_IPV6 : public CProfileDefinitionPage {
public:
    CACLStep_IPV6();

protected:
    BOOL OnInitDialog() override;
    std::span<const PendingColumn> Columns() const override { return Ipv6PendingColumns(); }
    ProfileFields ReadFields() const override;
    UINT CheckFields(const ProfileFields& fields) const override;
    void OnActivate() override;
    BOOL OnFieldCommand(int id, int code) override;

private:
    void EnableAddressEdits();
};

}  // namespace acl::wizard
