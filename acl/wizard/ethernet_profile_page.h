// Page 7 `CACLSTEP_ETH` ("Ethernet ACL Settings"): the Ethernet filtering
// masks; the pending list, Add, Delete and Next ("\ACLEthernet.ini") are the definition pages'
// (profile_definition_page.h). Clicking a pending row loads it back into the masks.
#pragma once
#include "acl/wizard/profile_definition_page.h"

namespace acl::wizard {

class CACLSTEP_ETH : public CProfileDefinitionPage {
public:
    CACLSTEP_ETH();

protected:
    BOOL OnInitDialog() override;
    std::span<const PendingColumn> Columns() const override { return EthernetPendingColumns(); }
    ProfileFields ReadFields() const override;
    void OnActivate() override;
    BOOL OnFieldCommand(int id, int code) override;
    void OnPendingRowClicked(int row) override;

private:
    void EnableMacEdits();
    void ClearMasks();
};

}  // namespace acl::wizard
