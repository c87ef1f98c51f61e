// What a person types on the wizard's definition and rule pages to make one profile or one
// rule of a type: the masks a user would set on the definition page, then on the rule page the
// fields those masks enable. The demo walk and the GUI matrix make their profiles and rules
// with these, so both go through the pages the same way.
#pragma once
#include "acl/acl_record.h"
#include "host/wizard_driver/wizard_driver.h"

namespace sentrel_gui {

// The controls and pages of one profile type: the "Add profile" radio, the definition page
// with its pending list and Add button, and the rule page of the type.
struct TypePages {
    int radio, profilePage, profileList, profileAdd, rulePage;
};
TypePages PagesOf(AclType type);

// On the definition page of `type`: VLAN or class, a destination mask (the TCP group's
// destination port for IPv4, which the "Add profile" page chose with "TCP"), the first packet
// range or chunk; then Add.
void FillProfileAndAdd(WizardDriver& d, AclType type, const ModelEntry& model, AclOwner owner);

// On the rule page of `type`, under a profile made by FillProfileAndAdd: Access ID 1, ports
// 1-2, priority where the model has it, and the fields the profile's masks enable; then Add.
// The destination MAC is typed as the page's example shows it, with dashes.
void FillRuleAndAdd(WizardDriver& d, AclType type, const ModelEntry& model, AclOwner owner);

// Next on "Add Rules:Select Profile" refuses while the device is still read: it is pressed
// again (the refusal's message taken) until the page is left, for at most 10 s.
void NextWhenRead(WizardDriver& d);

}  // namespace sentrel_gui
