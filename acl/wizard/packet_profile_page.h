// Page 9 `CACLStep_Packet` ("Packet content ACL"): the packet-content
// filtering masks in one of two layouts, chosen on activation by the model's record shape for
// the ACL kind: the chunk layout (`Chunks4`: four chunks, an offset and a mask
// each) or the offset layout (`Block16`: five 16-byte ranges, four 8-digit masks each). The
// pending list, Add, Delete and Next ("\ACPacket.ini", `m_nProfileType` 5) are the definition
// pages' (profile_definition_page.h); the list's columns follow the layout.
#pragma once
#include "acl/wizard/profile_definition_page.h"

namespace acl::wizard {

class CACLStep_Packet : public CProfileDefinitionPage {
public:
    enum class Layout { kOffset, kChunk };

    CACLStep_Packet();
    Layout CurrentLayout() const { return m_layout; }

protected:
    BOOL OnInitDialog() override;
    std::span<const PendingColumn> Columns() const override;
    ProfileFields ReadFields() const override;
    UINT CheckFields(const ProfileFields& fields) const override;
    void OnActivate() override;
    BOOL OnFieldCommand(int id, int code) override;

private:
    void ShowLayout();
    void EnableEdits();

    Layout m_layout = Layout::kOffset;
};

}  // namespace acl::wizard
