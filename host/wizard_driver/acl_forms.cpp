#include "host/wizard_driver/acl_forms.h"

#include "acl/page_logic.h"
#include "res/resource.h"

namespace sentrel_gui {

namespace pages = acl::pages;

TypePages PagesOf(AclType type) {
    switch (type) {
    case AclType::kEthernet:
        return {IDC_STEP2_ETHERNET, pages::kPageEthProfile, IDC_ETH_LIST, IDC_ETH_ADD, pages::kPageEthRule};
    case AclType::kIPv4:
        return {IDC_STEP2_IPV4, pages::kPageIPv4Profile, IDC_IPV4_LIST, IDC_IPV4_ADD, pages::kPageIPv4Rule};
    case AclType::kIPv6:
        return {IDC_STEP2_IPV6, pages::kPageIPv6Profile, IDC_IPV6_LIST, IDC_IPV6_ADD, pages::kPageIPv6Rule};
    case AclType::kPacketContent:
        return {IDC_STEP2_PACKET, pages::kPagePacketProfile, IDC_PACKET_LIST, IDC_PACKET_ADD, pages::kPagePacketRule};
    }
    return {};
}

void FillProfileAndAdd(WizardDriver& d, AclType type, const ModelEntry& model, AclOwner owner) {
    switch (type) {
    case AclType::kEthernet:
        d.ClickButton(IDC_ETH_VLAN);
        d.ClickButton(IDC_ETH_DST_MAC_CHECK);
        d.TypeText(IDC_ETH_DST_MAC, "FFFFFF000000");
        break;
    case AclType::kIPv4:
        d.ClickButton(IDC_IPV4_VLAN);
        d.ClickButton(IDC_IPV4_TCP);
        d.ClickButton(IDC_IPV4_TCP_DST_PORT_CHECK);
        d.TypeText(IDC_IPV4_TCP_DST_PORT, "00FF");
        break;
    case AclType::kIPv6:
        d.ClickButton(IDC_IPV6_CLASS);
        d.ClickButton(IDC_IPV6_DST_CHECK);
        d.TypeText(IDC_IPV6_DST, "FFFFFFFFFFFFFFFF0000000000000000");
        break;
    case AclType::kPacketContent:
        if (RecordKindFor(model, owner, AclKind::kProfiles, type).shape == PacketShape::kChunks4) {
            d.ClickButton(IDC_PACKET_CHUNK1);
            d.TypeText(IDC_PACKET_CHUNK1_OFFSET, "3");
            d.TypeText(IDC_PACKET_CHUNK1_MASK, "FFFF0000");
        } else {
            d.ClickButton(IDC_PACKET_OFFSET0);
            for (int k = 0; k < 4; ++k) d.TypeText(IDC_PACKET_RANGE_MASK_FIRST + k, k == 0 ? "FFFFFFFF" : "0000FFFF");
        }
        break;
    }
    d.ClickButton(PagesOf(type).profileAdd);
}

void FillRuleAndAdd(WizardDriver& d, AclType type, const ModelEntry& model, AclOwner owner) {
    d.TypeText(IDC_RULE_ACCESS_ID, "1");
    if (d.IsEnabled(IDC_RULE_PORTS)) d.TypeText(IDC_RULE_PORTS, "1-2");
    if (d.IsVisible(IDC_RULE_PRIORITY_CHECK)) {
        d.ClickButton(IDC_RULE_PRIORITY_CHECK);
        d.TypeText(IDC_RULE_PRIORITY, "3");
    }
    switch (type) {
    case AclType::kEthernet:
        d.TypeText(IDC_RULE_VLAN, "v1");
        d.TypeText(IDC_RULE_DST_MAC, "00-11-22-33-44-55");
        break;
    case AclType::kIPv4:  // the TCP profile's destination port
        d.TypeText(IDC_RULE_VLAN, "v1");
        d.TypeText(IDC_RULE_SECOND, "80");
        break;
    case AclType::kIPv6:
        d.TypeText(IDC_RULE_CLASS, "5");
        d.TypeText(IDC_RULE_DST_IPV6, "FE800000000000000000000000000001");
        break;
    case AclType::kPacketContent: {
        const PacketShape shape = model.packetShape(owner, AclKind::kRules);
        d.ClickButton(IDC_RULE_ITEM_FIRST);
        if (shape != PacketShape::kBlock16) d.TypeText(IDC_RULE_ITEM_OFFSET_FIRST, "3");
        d.TypeText(IDC_RULE_ITEM_DATA_FIRST, shape == PacketShape::kBlock16  ? "00112233445566778899AABBCCDDEEFF"
                                             : shape == PacketShape::kChunks4 ? "0800FFFF"
                                                                              : "0800");
        break;
    }
    }
    d.ClickButton(IDC_RULE_ADD);
}

void NextWhenRead(WizardDriver& d) {
    for (int i = 0; i < 50 && d.ActiveIndex() == pages::kPageSelectProfile; ++i) {
        d.Next();
        if (d.ActiveIndex() == pages::kPageSelectProfile) {
            d.TakeMessages();
            Sleep(200);
        }
    }
}

}  // namespace sentrel_gui
