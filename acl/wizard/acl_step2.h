// Part 5.1, page 3 `CACLStep2` ("Add profile", Part 5.2): Back and Next on activation.
// It has Part 5.2's four profile type radios (Ethernet checked at start), by which Next goes
// on; its profile list, free IDs and validation come with Part 5.2.
#pragma once
#include "acl/wizard/acl_page.h"

namespace acl::wizard {

class CACLStep2 : public CACLPage {
public:
    CACLStep2();

protected:
    acl::pages::NavInput MakeNavInput() const override;
    BOOL OnInitDialog() override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;

private:
    int m_nProfileChoice = 1;  // Part 5.2: "Ethernet ACL" (1) is checked at start
};

}  // namespace acl::wizard
