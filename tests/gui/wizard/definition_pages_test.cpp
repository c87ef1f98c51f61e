// The four profile definition pages used like a person uses them: which controls each box
// enables, what the edits take, the rows Add builds from the page (the cells themselves are
// the ACL core's and are checked there), the messages, the packet layouts by model and ACL
// kind, what survives Back and Next, and the staging file on Next.
#include <algorithm>
#include <sstream>

#include "tests/gui/wizard/profile_flow.h"

using namespace profile_flow;

namespace {

constexpr int kFlags[] = {IDC_IPV4_TCP_URG, IDC_IPV4_TCP_ACK, IDC_IPV4_TCP_PSH,
                          IDC_IPV4_TCP_RST, IDC_IPV4_TCP_SYN, IDC_IPV4_TCP_FIN};
constexpr int kUserFields[] = {IDC_IPV4_USER_MASK1, IDC_IPV4_USER_MASK2, IDC_IPV4_USER_MASK3, IDC_IPV4_USER_MASK4,
                               IDC_IPV4_USER_MASK5};
constexpr int kGroupBoxes[] = {IDC_IPV4_ICMP_GROUP, IDC_IPV4_IGMP_GROUP, IDC_IPV4_TCP_GROUP, IDC_IPV4_UDP_GROUP,
                               IDC_IPV4_PROTO_GROUP};

class DefinitionPagesGui : public ProfileFlowGui {
protected:
    // Back to "Add profile" and on again with another profile ID (and protocol).
    static void Again(WizardDriver& d, AclType type, const std::string& id, const std::string& protocol = "") {
        d.Back();
        ToDefinitionPage(d, type, id, protocol);
    }
    // Add, and the new row's cells (the message boxes Add showed go to `messages`).
    static Strings Add(WizardDriver& d, AclType type, Strings* messages = nullptr) {
        HWND list = d.Control(PagesOf(type).profileList);
        const int before = d.RowCount(list);
        d.ClickButton(PagesOf(type).profileAdd);
        const Strings texts = d.TakeTexts();
        if (messages) *messages = texts;
        Strings row;
        if (d.RowCount(list) > before)
            for (int c = 0; c < 23; ++c) row.push_back(d.CellText(list, before, c));
        return row;
    }
    static Strings ShownGroups(WizardDriver& d) {
        Strings out;
        for (int box : kGroupBoxes)
            if (d.IsVisible(box)) out.push_back(d.Text(box));
        return out;
    }
    // Types a dotted address into an IP-address control, field by field as a person does.
    static void TypeAddress(WizardDriver& d, int id, const std::string& dotted) {
        std::vector<HWND> fields;
        for (HWND e = FindWindowExA(d.Control(id), nullptr, "Edit", nullptr); e; e = FindWindowExA(d.Control(id), e, "Edit", nullptr))
            fields.push_back(e);
        std::sort(fields.begin(), fields.end(), [](HWND a, HWND b) {
            RECT ra, rb;
            GetWindowRect(a, &ra);
            GetWindowRect(b, &rb);
            return ra.left < rb.left;
        });
        std::stringstream parts(dotted);
        std::string part;
        for (size_t i = 0; i < fields.size() && std::getline(parts, part, '.'); ++i)
            for (char c : part) PostMessageA(fields[i], WM_CHAR, static_cast<unsigned char>(c), 1);
        d.Settle();
    }
};

TEST_F(DefinitionPagesGui, EthernetPageMacRuleRowsAndStagingFile) {
    Wizard({{"127.0.0.1:47098", "TVR4820"}}, 1, [&](WizardDriver& d) {
        ASSERT_TRUE(d.PickCombo(IDC_STEP2_FRAME, "UnTagged"));
        ToDefinitionPage(d, AclType::kEthernet, "3");
        HWND list = d.Control(IDC_ETH_LIST);
        EXPECT_FALSE(d.IsEnabled(IDC_ETH_VLAN)) << "untagged";
        EXPECT_FALSE(d.IsEnabled(IDC_ETH_8021P));
        EXPECT_FALSE(d.IsEnabled(IDC_ETH_SRC_MAC));
        d.ClickButton(IDC_ETH_SRC_MAC_CHECK);
        EXPECT_TRUE(d.IsEnabled(IDC_ETH_SRC_MAC));
        d.TypeText(IDC_ETH_SRC_MAC, "00112233445566");
        EXPECT_EQ("001122334455", d.Text(IDC_ETH_SRC_MAC)) << "12 characters";
        // Dashes between the byte pairs are refused and the input stays; twelve lower-case
        // digits with blanks around them are taken as typed.
        SetWindowTextA(d.Control(IDC_ETH_SRC_MAC), "00-11-22-33-44-55");
        Strings messages;
        EXPECT_TRUE(Add(d, AclType::kEthernet, &messages).empty());
        EXPECT_EQ((Strings{"Invalid MAC Address !"}), messages);
        EXPECT_EQ("00-11-22-33-44-55", d.Text(IDC_ETH_SRC_MAC));
        SetWindowTextA(d.Control(IDC_ETH_SRC_MAC), " 0011aabbccdd ");
        EXPECT_EQ(" 0011aabbccdd ", Add(d, AclType::kEthernet)[3]);
        EXPECT_TRUE(Add(d, AclType::kEthernet, &messages).empty()) << "the same profile ID again";
        EXPECT_TRUE(messages.empty()) << "is skipped without a word";
        // Tagged: VLAN and 802.1P enabled; this page starts its masks afresh on each showing.
        d.Back();
        ASSERT_TRUE(d.PickCombo(IDC_STEP2_FRAME, "Tagged"));
        ToDefinitionPage(d, AclType::kEthernet, "9");
        EXPECT_EQ(1, d.RowCount(list)) << "pending rows survive Back and Next";
        EXPECT_TRUE(d.IsEnabled(IDC_ETH_VLAN));
        EXPECT_FALSE(d.IsChecked(IDC_ETH_SRC_MAC_CHECK));
        d.ClickButton(IDC_ETH_DST_MAC_CHECK);
        d.TypeText(IDC_ETH_DST_MAC, "FFFFFF000000");
        EXPECT_EQ("2", Add(d, AclType::kEthernet)[2]) << "destination only";
        // A click on a row loads it back; Delete removes the selected row.
        d.ClickCell(list, 0, 0);
        EXPECT_TRUE(d.IsChecked(IDC_ETH_SRC_MAC_CHECK));
        EXPECT_FALSE(d.IsChecked(IDC_ETH_DST_MAC_CHECK));
        EXPECT_EQ(" 0011aabbccdd ", d.Text(IDC_ETH_SRC_MAC));
        d.ClickButton(IDC_ETH_DELETE);
        EXPECT_EQ((Strings{"9"}), Column(d, list, 0));
        d.Next();
        EXPECT_EQ(1, m_wizard->m_nProfileType);
        const AclRecordList staged = ReadStagingFile(kStagingEthernet, 10, 80);
        ASSERT_EQ(1u, staged.size());
        EXPECT_EQ("FFFFFF000000", staged[0][4]);
        // Deleted and left backwards: the Confirmation Page will not find it staged.
        d.Back();
        d.ClickCell(list, 0, 0);
        d.ClickButton(IDC_ETH_DELETE);
        d.Back();
        ASSERT_EQ(acl::pages::kPageAddProfile, d.ActiveIndex());
        EXPECT_TRUE(ReadStagingFile(kStagingEthernet, 10, 80).empty());
    });
}

TEST_F(DefinitionPagesGui, Ipv4PageGroupsEnablingEditsAndWhatSurvivesBackAndNext) {
    Wizard({{"127.0.0.1:47098", "TVR4820"}}, 1, [&](WizardDriver& d) {
        // One group per protocol, shown by the frame option; none without a protocol.
        const struct {
            const char* protocol;
            long frameOption;
            Strings shown;
        } groups[] = {{"", 2, {}}, {"ICMP", 3, {"ICMP"}}, {"IGMP", 4, {"IGMP"}}, {"UDP", 6, {"UDP"}},
                      {"ProtocolID", 7, {"Protocol ID"}}, {"TCP", 5, {"TCP"}}};
        ToDefinitionPage(d, AclType::kIPv4, "1");
        for (const auto& g : groups) {
            Again(d, AclType::kIPv4, "1", g.protocol);
            EXPECT_EQ(g.frameOption, m_wizard->m_nFrameOption) << g.protocol;
            EXPECT_EQ(g.shown, ShownGroups(d)) << g.protocol;
        }
        // TCP: its boxes enable their fields; the port masks take 4 hexadecimal digits.
        EXPECT_FALSE(d.IsEnabled(IDC_IPV4_TCP_SRC_PORT));
        EXPECT_FALSE(d.IsEnabled(IDC_IPV4_TCP_CHECK_ALL));
        d.ClickButton(IDC_IPV4_TCP);
        d.ClickButton(IDC_IPV4_TCP_SRC_PORT_CHECK);
        d.ClickButton(IDC_IPV4_TCP_FLAG_BITS);
        EXPECT_TRUE(d.IsEnabled(IDC_IPV4_TCP_SRC_PORT));
        EXPECT_FALSE(d.IsEnabled(IDC_IPV4_TCP_DST_PORT));
        for (int id : kFlags) EXPECT_TRUE(d.IsEnabled(id));
        d.TypeText(IDC_IPV4_TCP_SRC_PORT, "1g2h34");
        EXPECT_EQ("1234", d.Text(IDC_IPV4_TCP_SRC_PORT)) << "hex digits only, 4 of them";
        // The flag value: each flag its weight, Check All 63 or 0.
        const struct {
            std::vector<int> clicks;
            const char* value;
        } flags[] = {{{IDC_IPV4_TCP_URG, IDC_IPV4_TCP_SYN}, "34"}, {{IDC_IPV4_TCP_URG}, "2"},
                     {{IDC_IPV4_TCP_CHECK_ALL}, "63"}, {{IDC_IPV4_TCP_FIN}, "62"},
                     {{IDC_IPV4_TCP_CHECK_ALL, IDC_IPV4_TCP_CHECK_ALL}, "0"}};
        for (const auto& f : flags) {
            for (int id : f.clicks) d.ClickButton(id);
            const Strings row = Add(d, AclType::kIPv4);
            ASSERT_FALSE(row.empty());
            EXPECT_EQ(f.value, row[14]);
            d.ClickCell(d.Control(IDC_IPV4_LIST), 0, 0);
            d.ClickButton(IDC_IPV4_DELETE);
        }
        // What is typed but not added stays through Back and Next.
        d.ClickButton(IDC_IPV4_VLAN);
        d.ClickButton(IDC_IPV4_SRC_IP_CHECK);
        TypeAddress(d, IDC_IPV4_SRC_IP, "10.1.2.3");
        Again(d, AclType::kIPv4, "2");
        EXPECT_TRUE(d.IsChecked(IDC_IPV4_VLAN));
        EXPECT_TRUE(d.IsChecked(IDC_IPV4_TCP_SRC_PORT_CHECK));
        EXPECT_EQ("1234", d.Text(IDC_IPV4_TCP_SRC_PORT));
        EXPECT_TRUE(d.IsEnabled(IDC_IPV4_SRC_IP));
        const Strings row = Add(d, AclType::kIPv4);
        ASSERT_FALSE(row.empty());
        EXPECT_EQ("10.1.2.3", row[3]);
        EXPECT_EQ("TCP", row[22]) << "the group's name";
        // ICMP enables type and code; the protocol ID takes 0 to 255; TVR4820 has five
        // user-defined fields of 8 digits, joined into one mask.
        Again(d, AclType::kIPv4, "3", "ICMP");
        d.ClickButton(IDC_IPV4_ICMP);
        EXPECT_TRUE(d.IsEnabled(IDC_IPV4_ICMP_TYPE) && d.IsEnabled(IDC_IPV4_ICMP_CODE));
        Again(d, AclType::kIPv4, "3", "ProtocolID");
        d.ClickButton(IDC_IPV4_PROTO_ID_CHECK);
        d.TypeText(IDC_IPV4_PROTO_ID, "256");
        EXPECT_EQ("25", d.Text(IDC_IPV4_PROTO_ID));
        d.ClickButton(IDC_IPV4_USER_DEFINE);
        for (int id : kUserFields) EXPECT_TRUE(d.IsVisible(id) && d.IsEnabled(id));
        d.TypeText(IDC_IPV4_USER_MASK1, "123456789");
        EXPECT_EQ("12345678", d.Text(IDC_IPV4_USER_MASK1));
        d.TypeText(IDC_IPV4_USER_MASK5, "ff");
        EXPECT_EQ("12345678000000000000000000000000000000FF", Add(d, AclType::kIPv4)[17]);
        d.Screenshot("page-06-ipv4-protocol-id");
        d.Next();
        EXPECT_EQ(2, m_wizard->m_nProfileType);
        EXPECT_EQ(2u, ReadStagingFile(kStagingIpv4, 22, 120).size());
    });
    // Models other than TVR4510 and TVR4820 have one user-defined field.
    Wizard({{"127.0.0.1:47098", "TVG5690"}}, 1, [&](WizardDriver& d) {
        ToDefinitionPage(d, AclType::kIPv4, "1", "ProtocolID");
        EXPECT_TRUE(d.IsVisible(IDC_IPV4_USER_MASK1));
        EXPECT_FALSE(d.IsVisible(IDC_IPV4_USER_MASK2));
    });
}

// The IPv6 page's masks and the packet page's two layouts: the layout by model and ACL kind,
// and each one's checks on Add (the staging files of every layout: the profile matrix).
TEST_F(DefinitionPagesGui, Ipv6MasksAndPacketLayoutsByModelAndAclKind) {
    Wizard({{"127.0.0.1:47098", "TVR4820"}}, 1, [&](WizardDriver& d) {
        ToDefinitionPage(d, AclType::kIPv6, "1");
        EXPECT_FALSE(d.IsEnabled(IDC_IPV6_SRC));
        d.ClickButton(IDC_IPV6_SRC_CHECK);
        d.TypeText(IDC_IPV6_SRC, std::string(40, 'f'));
        EXPECT_EQ(std::string(32, 'F'), d.Text(IDC_IPV6_SRC)) << "32 characters, upper case";
        d.ClickButton(IDC_IPV6_DST_CHECK);
        d.TypeText(IDC_IPV6_DST, "FFFF");
        Strings messages;
        EXPECT_TRUE(Add(d, AclType::kIPv6, &messages).empty());
        EXPECT_EQ((Strings{"Invalid IPv6 Mask! Enter 32 hexadecimal digits (0-9, A-F)."}), messages);
        d.ClickButton(IDC_IPV6_DST_CHECK);
        EXPECT_EQ("3", Add(d, AclType::kIPv6)[3]) << "source only";
    });
    const struct {
        const char* model;
        long kind;
        bool chunks;
    } layouts[] = {{"TVG5690", 1, true}, {"TVG5690", 2, false}, {"TVR4820", 1, false}};
    for (const auto& l : layouts) {
        Wizard({{"127.0.0.1:47098", l.model}}, l.kind, [&](WizardDriver& d) {
            ToDefinitionPage(d, AclType::kPacketContent, "1");
            EXPECT_EQ(l.chunks, d.IsVisible(IDC_PACKET_CHUNK1)) << l.model << " " << l.kind;
            EXPECT_EQ(!l.chunks, d.IsVisible(IDC_PACKET_OFFSET0));
            EXPECT_EQ(l.chunks ? "ID" : "Profile ID", d.HeaderText(d.Control(IDC_PACKET_LIST), 0));
            Strings messages;
            if (l.chunks) {
                d.ClickButton(IDC_PACKET_CHUNK1);
                d.TypeText(IDC_PACKET_CHUNK1_OFFSET, "32");
                d.TypeText(IDC_PACKET_CHUNK1_MASK, "FFFF");
                Add(d, AclType::kPacketContent, &messages);
                EXPECT_EQ((Strings{"Invalid chunk offset! Enter a number from 0 to 31."}), messages);
                SetWindowTextA(d.Control(IDC_PACKET_CHUNK1_OFFSET), "3");
                Add(d, AclType::kPacketContent, &messages);
                EXPECT_EQ((Strings{"Invalid chunk mask! Enter 8 hexadecimal digits (0-9, A-F)."}), messages);
                d.TypeText(IDC_PACKET_CHUNK1_MASK, "0000");
            } else {
                d.ClickButton(IDC_PACKET_OFFSET0);
                for (int k = 0; k < 4; ++k) d.TypeText(IDC_PACKET_RANGE_MASK_FIRST + k, k ? "0000FFFF" : "FFFF");
                Add(d, AclType::kPacketContent, &messages);
                EXPECT_EQ((Strings{"Invalid offset mask! Each of the four fields takes 8 hexadecimal digits (0-9, A-F)."}),
                          messages);
                d.TypeText(IDC_PACKET_RANGE_MASK_FIRST, "FFFF");
            }
            EXPECT_FALSE(Add(d, AclType::kPacketContent, &messages).empty());
            EXPECT_TRUE(messages.empty());
            d.Screenshot(std::string("page-09-packet-") + l.model + (l.kind == 1 ? "" : "-cpu"));
        });
    }
}

// A profile name with "?" cannot be kept in the staging file: Add says so and adds nothing,
// the page keeps its input, and the same profile is added once the name is changed.
TEST_F(DefinitionPagesGui, AProfileTheStagingFileCannotHoldIsRefusedAtAdd) {
    Wizard({{"127.0.0.1:47098", "TVR4512"}}, 1, [&](WizardDriver& d) {
        d.TypeText(IDC_STEP2_PROFILE_NAME, "web?1");
        ToDefinitionPage(d, AclType::kEthernet, "2");
        d.ClickButton(IDC_ETH_VLAN);
        Strings messages;
        EXPECT_TRUE(Add(d, AclType::kEthernet, &messages).empty());
        EXPECT_EQ((Strings{ui::LoadResString(IDS_MSG_CANNOT_STAGE)}), messages);
        EXPECT_TRUE(d.IsChecked(IDC_ETH_VLAN));
        d.Back();
        SetWindowTextA(d.Control(IDC_STEP2_PROFILE_NAME), "web1");
        ToDefinitionPage(d, AclType::kEthernet, "2");
        d.ClickButton(IDC_ETH_VLAN);
        EXPECT_EQ("web1", Add(d, AclType::kEthernet)[8]);
        d.Next();
        ASSERT_EQ(acl::pages::kPageApply, d.ActiveIndex());
        EXPECT_EQ((Strings{"2"}), Column(d, d.Control(IDC_APPLY_PROFILE_LIST), 0));
    });
}

}  // namespace
