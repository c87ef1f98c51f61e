// Page 6 `CACLStep5` ("IPV4 ACL Settings"): the IPv4 filtering masks and
// the one protocol group that "Add profile" chose (`m_nFrameOption`); the pending list, Add,
// Delete and Next ("\ACLIpv4.ini") are the definition pages' (profile_definition_page.h).
#pragma once
#include <string>

#include "acl/wizard/profile_definition_page.h"

namespace acl::wizard {

class CACLStep5 : public CProfileDefinitionPage {
public:
    CACLStep5();

protected:
    BOOL OnInitDialog() override;
    std::span<const PendingColumn> Columns() const override { return Ipv4PendingColumns(); }
    ProfileFields ReadFields() const override;
    void OnActivate() override;
    BOOL OnFieldCommand(int id, int code) override;
    void OnRowAdded(int row, const AclRecord& record) override;

private:
    bool Checked(int id) const;
    int UserFieldCount() const;
    void ShowProtocolGroup();
    void UpdateEnabling();
    void OnFlagClicked(int id);
    void OnCheckAll();
    void FilterEdit(int id);

    int m_nGroup = 0;             // the shown group: m_nFrameOption 3..7, else 0 (none)
    std::string m_strGroupName;   // its title, column 22 of new rows
    int m_nFlagValue = 0;         // URG 32, ACK 16, PSH 8, RST 4, SYN 2, FIN 1
    bool m_bFiltering = false;    // FilterEdit is rewriting an edit's text
};

}  // namespace acl::wizard
