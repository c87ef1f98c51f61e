// Page 2 `CACLselect` ("Please change the title"): the action, which chooses the
// flow: 1 create profile, 2 create rule, 3 modify profile, 4 modify rule.
#pragma once
#include "acl/wizard/page_base.h"

namespace acl::wizard {

class CACLselect : public CACLPage {
public:
    CACLselect();
    int Choice() const { return m_nChoice; }

protected:
    BOOL OnInitDialog() override;
    BOOL OnSetActive() override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    acl::pages::NavInput MakeNavInput() const override;

private:
    int m_nChoice = 1;
};

}  // namespace acl::wizard
