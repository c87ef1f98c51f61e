// Part 5.2's IPv4 definition page `CACLStep5` ("IPV4 ACL Settings", page 6) used like a person
// uses it: the real wizard from "Add profile" (IPv4 and a protocol chosen in the drop-down),
// the masks, the protocol group of m_nFrameOption, Add, Delete, Next with "\ACLIpv4.ini", and
// the Confirmation Page's apply to simulated switches, which are read back (Parts 4.2, 4.3).
#include <algorithm>
#include <map>
#include <sstream>

#include "tests/gui/wizard/profile_flow.h"

using namespace profile_flow;

namespace {

constexpr int kColumns = 23;  // Part 5.2: 22 record cells and the protocol group name

// The boxes of the five protocol groups, in m_nFrameOption order 3..7.
constexpr int kGroupBoxes[] = {IDC_IPV4_ICMP_GROUP, IDC_IPV4_IGMP_GROUP, IDC_IPV4_TCP_GROUP, IDC_IPV4_UDP_GROUP,
                               IDC_IPV4_PROTO_GROUP};
constexpr int kUserFields[] = {IDC_IPV4_USER_MASK1, IDC_IPV4_USER_MASK2, IDC_IPV4_USER_MASK3, IDC_IPV4_USER_MASK4,
                               IDC_IPV4_USER_MASK5};
constexpr int kFlags[] = {IDC_IPV4_TCP_URG, IDC_IPV4_TCP_ACK, IDC_IPV4_TCP_PSH,
                          IDC_IPV4_TCP_RST, IDC_IPV4_TCP_SYN, IDC_IPV4_TCP_FIN};

class Ipv4PageGui : public ProfileFlowGui {
protected:
    // On "Add profile": "IPv4 ACL", the protocol (none: the list left as it is), the ID, Next.
    void ToIpv4Page(WizardDriver& d, const std::string& protocol, const std::string& id) {
        ASSERT_EQ(3, d.ActiveIndex());
        d.ClickButton(IDC_STEP2_IPV4);
        if (!protocol.empty()) PickCombo(d, IDC_STEP2_PROTOCOL, protocol);
        PickCombo(d, IDC_STEP2_PROFILE_ID, id);
        d.Next();
        ASSERT_EQ(6, d.ActiveIndex());
        EXPECT_EQ("IPV4 ACL Settings", d.ActiveCaption());
    }
    // Back to "Add profile" and again to the page with another protocol and ID.
    void Again(WizardDriver& d, const std::string& protocol, const std::string& id) {
        d.Back();
        ToIpv4Page(d, protocol, id);
    }
};

HWND List(WizardDriver& d) { return d.Control(IDC_IPV4_LIST); }

std::vector<std::string> Row(WizardDriver& d, int row) {
    std::vector<std::string> cells;
    for (int c = 0; c < kColumns; ++c) cells.push_back(d.CellText(List(d), row, c));
    return cells;
}

int RowOf(WizardDriver& d, const std::string& id) {
    for (int r = 0; r < d.RowCount(List(d)); ++r)
        if (d.CellText(List(d), r, 0) == id) return r;
    return -1;
}

bool Visible(WizardDriver& d, int id) { return IsWindowVisible(d.Control(id)) != FALSE; }
bool Enabled(WizardDriver& d, int id) { return IsWindowEnabled(d.Control(id)) != FALSE; }

// The group boxes shown, as their titles.
std::vector<std::string> ShownGroups(WizardDriver& d) {
    std::vector<std::string> out;
    for (int box : kGroupBoxes)
        if (Visible(d, box)) out.push_back(d.Text(box));
    return out;
}

int VisibleUserFields(WizardDriver& d) {
    return static_cast<int>(std::count_if(std::begin(kUserFields), std::end(kUserFields),
                                          [&](int id) { return Visible(d, id); }));
}

// Types a dotted address into an IP-address control, field by field as a person does.
void TypeAddress(WizardDriver& d, int id, const std::string& dotted) {
    HWND ip = d.Control(id);
    std::vector<HWND> fields;
    for (HWND e = FindWindowExA(ip, nullptr, "Edit", nullptr); e != nullptr; e = FindWindowExA(ip, e, "Edit", nullptr))
        fields.push_back(e);
    ASSERT_EQ(4u, fields.size());
    std::sort(fields.begin(), fields.end(), [](HWND a, HWND b) {
        RECT ra, rb;
        GetWindowRect(a, &ra);
        GetWindowRect(b, &rb);
        return ra.left < rb.left;
    });
    std::stringstream parts(dotted);
    std::string part;
    for (size_t i = 0; i < 4 && std::getline(parts, part, '.'); ++i)
        for (char c : part) PostMessageA(fields[i], WM_CHAR, static_cast<unsigned char>(c), 1);
    d.Settle();
}

void SelectAndDelete(WizardDriver& d, int row) {
    d.ClickCell(List(d), row, 0);
    d.ClickButton(IDC_IPV4_DELETE);
}

// Adds the row, returns it, and (when asked) deletes it again so the same ID can be added anew.
std::vector<std::string> AddAndTake(WizardDriver& d, bool remove) {
    const int before = d.RowCount(List(d));
    d.ClickButton(IDC_IPV4_ADD);
    EXPECT_TRUE(d.TakeMessages().empty());
    EXPECT_EQ(before + 1, d.RowCount(List(d)));
    std::vector<std::string> row = Row(d, before);
    if (remove) SelectAndDelete(d, before);
    return row;
}

// Presses "Apply to Switch" on the Confirmation Page and returns the first switch's word.
std::string Apply(WizardDriver& d) {
    EXPECT_EQ(10, d.ActiveIndex());
    HWND switches = d.Control(IDC_APPLY_SWITCH_LIST);
    d.ClickButton(IDC_APPLY_APPLY);
    EXPECT_TRUE(d.WaitFor([&] { return !d.CellText(switches, 0, 2).empty(); }, 20000));
    return d.CellText(switches, 0, 2);
}

// The IPv4 profiles on a simulated switch, by profile ID.
std::map<std::string, AclRecord> ReadIpv4(SimAgent& agent, const std::string& model, AclOwner owner) {
    const AclReadResult read = ReadProfiles(AclTarget{agent.address(), "public", "private", model}, owner);
    std::map<std::string, AclRecord> out;
    for (const AclRecord& r : read.records[static_cast<size_t>(AclType::kIPv4)])
        if (!r.empty()) out[r[0]] = r;
    return out;
}

// The record cells (Part 4.1) that a profile sends and reads back: VLAN, mask state, addresses,
// DSCP, protocol and the options of the chosen protocol, port masks, flag bits, protocol ID.
void ExpectSameOnSwitch(const AclRecord& staged, const AclRecord& read) {
    ASSERT_GE(read.size(), 18u);
    for (size_t c : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 13u, 14u, 15u, 16u}) {
        if (staged[c].empty()) continue;  // not sent (another protocol's option)
        EXPECT_EQ(staged[c], read[c]) << "profile " << staged[0] << ", cell " << c;
    }
    // Port masks always go out (an empty one as 0000); Part 4.3 reads them as 4 hex digits.
    EXPECT_EQ(staged[11].empty() ? "0000" : staged[11], read[11]) << "profile " << staged[0];
    EXPECT_EQ(staged[12].empty() ? "0000" : staged[12], read[12]) << "profile " << staged[0];
}

// Every staged profile is on the switch with the same cells.
void ExpectEveryStagedOnSwitch(const AclRecordList& staged, const std::map<std::string, AclRecord>& onSwitch) {
    for (const AclRecord& r : staged) {
        ASSERT_TRUE(onSwitch.count(r[0])) << r[0];
        ExpectSameOnSwitch(r, onSwitch.at(r[0]));
    }
}

// --- ICMP: the Part 5.2 edge case, masks and addresses, Delete, staging file, apply ---------

TEST_F(Ipv4PageGui, IcmpOptionsAddressesDeleteStagingFileAndApplyOnTvr4820) {
    SimAgent a(1, "TVR4820");
    ASSERT_TRUE(a.ok()) << a.error();
    AclRecordList staged;
    Wizard({{a.address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
        ToIpv4Page(d, "ICMP", "1");
        EXPECT_EQ(3, m_wizard->m_nFrameOption);
        EXPECT_EQ(std::vector<std::string>{"ICMP"}, ShownGroups(d)) << "only the group of m_nFrameOption";
        EXPECT_FALSE(Visible(d, IDC_IPV4_TCP_FLAG_BITS));
        EXPECT_FALSE(Visible(d, IDC_IPV4_IGMP_TYPE));
        // The pending list: 23 columns, Part 5.2's headers.
        HWND header = reinterpret_cast<HWND>(SendMessageA(List(d), LVM_GETHEADER, 0, 0));
        EXPECT_EQ(kColumns, SendMessageA(header, HDM_GETITEMCOUNT, 0, 0));
        EXPECT_EQ("ProfileID", d.HeaderText(List(d), 0));
        EXPECT_EQ("AddrMaskState", d.HeaderText(List(d), 2));
        EXPECT_EQ("IcmpOption", d.HeaderText(List(d), 7));
        EXPECT_EQ("ProtolIDMask", d.HeaderText(List(d), 17));
        EXPECT_EQ("", d.HeaderText(List(d), 22));
        // Each mask check box enables its IP-address control; "ICMP" enables type and code.
        EXPECT_FALSE(Enabled(d, IDC_IPV4_SRC_IP));
        EXPECT_FALSE(Enabled(d, IDC_IPV4_DST_IP));
        EXPECT_FALSE(Enabled(d, IDC_IPV4_ICMP_TYPE));
        EXPECT_FALSE(Enabled(d, IDC_IPV4_ICMP_CODE));
        d.ClickButton(IDC_IPV4_SRC_IP_CHECK);
        EXPECT_TRUE(Enabled(d, IDC_IPV4_SRC_IP));
        EXPECT_FALSE(Enabled(d, IDC_IPV4_DST_IP));
        d.ClickButton(IDC_IPV4_ICMP);
        EXPECT_TRUE(Enabled(d, IDC_IPV4_ICMP_TYPE));
        EXPECT_TRUE(Enabled(d, IDC_IPV4_ICMP_CODE));
        d.ClickButton(IDC_IPV4_ICMP);
        EXPECT_FALSE(Enabled(d, IDC_IPV4_ICMP_TYPE)) << "unchecking disables them again";
        // ICMP unchecked: UseProtoType "1", IcmpOption "1"; source only: state "3".
        TypeAddress(d, IDC_IPV4_SRC_IP, "10.1.2.3");
        d.ClickButton(IDC_IPV4_VLAN);
        std::vector<std::string> row = AddAndTake(d, false);
        EXPECT_EQ((std::vector<std::string>{"1", "1", "3", "10.1.2.3", "0.0.0.0", "2", "1", "1", "", "", "", "", "", "",
                                            "", "", "", "", "4", "1", "", "", "ICMP"}),
                  row);
        // A second Add with the same profile ID is ignored without a word.
        d.ClickButton(IDC_IPV4_ICMP);
        d.ClickButton(IDC_IPV4_ADD);
        EXPECT_TRUE(d.TakeMessages().empty());
        EXPECT_EQ(1, d.RowCount(List(d)));

        // Part 5.2 edge case: only "ICMP Type" checked gives "2"; destination only: state "2".
        Again(d, "", "2");
        EXPECT_EQ(1, d.RowCount(List(d))) << "the pending list survives Back and Next";
        EXPECT_FALSE(d.IsChecked(IDC_IPV4_ICMP)) << "the fields are cleared on activation";
        EXPECT_FALSE(d.IsChecked(IDC_IPV4_SRC_IP_CHECK));
        EXPECT_FALSE(Enabled(d, IDC_IPV4_SRC_IP));
        EXPECT_NE(0, SendMessageA(d.Control(IDC_IPV4_SRC_IP), IPM_ISBLANK, 0, 0));
        d.ClickButton(IDC_IPV4_ICMP);
        d.ClickButton(IDC_IPV4_ICMP_TYPE);
        d.ClickButton(IDC_IPV4_DST_IP_CHECK);
        TypeAddress(d, IDC_IPV4_DST_IP, "255.255.0.0");
        d.ClickButton(IDC_IPV4_DSCP);
        row = AddAndTake(d, false);
        EXPECT_EQ("2", row[0]);
        EXPECT_EQ("2", row[1]) << "VLAN not checked";
        EXPECT_EQ("2", row[2]) << "destination only";
        EXPECT_EQ("0.0.0.0", row[3]);
        EXPECT_EQ("255.255.0.0", row[4]);
        EXPECT_EQ("1", row[5]) << "IPV4 DSCP";
        EXPECT_EQ("2", row[6]) << "ICMP";
        EXPECT_EQ("2", row[7]) << "type only";
        // Both: "4"; both addresses: state "4".
        Again(d, "", "3");
        d.ClickButton(IDC_IPV4_ICMP);
        d.ClickButton(IDC_IPV4_ICMP_TYPE);
        d.ClickButton(IDC_IPV4_ICMP_CODE);
        d.ClickButton(IDC_IPV4_SRC_IP_CHECK);
        d.ClickButton(IDC_IPV4_DST_IP_CHECK);
        TypeAddress(d, IDC_IPV4_SRC_IP, "192.168.1.0");
        TypeAddress(d, IDC_IPV4_DST_IP, "10.0.0.255");
        row = AddAndTake(d, false);
        EXPECT_EQ("4", row[2]);
        EXPECT_EQ("192.168.1.0", row[3]);
        EXPECT_EQ("10.0.0.255", row[4]);
        EXPECT_EQ("4", row[7]) << "type and code";
        // Code only "3"; none "1".
        Again(d, "", "4");
        d.ClickButton(IDC_IPV4_ICMP);
        d.ClickButton(IDC_IPV4_ICMP_CODE);
        EXPECT_EQ("3", AddAndTake(d, false)[7]);
        Again(d, "", "5");
        d.ClickButton(IDC_IPV4_ICMP);
        row = AddAndTake(d, false);
        EXPECT_EQ("2", row[6]);
        EXPECT_EQ("1", row[7]) << "ICMP with neither type nor code";
        EXPECT_EQ("1", row[2]) << "no address mask";
        d.Screenshot("page-06-ipv4-icmp");
        // Delete removes the selected row.
        ASSERT_EQ(5, d.RowCount(List(d)));
        SelectAndDelete(d, RowOf(d, "4"));
        ASSERT_EQ(4, d.RowCount(List(d)));
        EXPECT_EQ(-1, RowOf(d, "4"));
        // Next: "\ACLIpv4.ini" with the rows, m_nProfileType 2, the Confirmation Page.
        d.Next();
        ASSERT_EQ(10, d.ActiveIndex());
        EXPECT_EQ(2, m_wizard->m_nProfileType);
        staged = ReadStagingFile(kStagingIpv4, 22, 120);
        ASSERT_EQ(4u, staged.size());
        EXPECT_EQ((std::vector<std::string>{"1", "2", "3", "5"}),
                  (std::vector<std::string>{staged[0][0], staged[1][0], staged[2][0], staged[3][0]}));
        EXPECT_EQ("10.1.2.3", staged[0][3]);
        EXPECT_EQ("4", staged[2][7]);
        EXPECT_EQ(4, d.RowCount(d.Control(IDC_APPLY_PROFILE_LIST)));
        EXPECT_EQ("IPv4", d.CellText(d.Control(IDC_APPLY_PROFILE_LIST), 0, 1));
        EXPECT_EQ("Succeed", Apply(d));
    });
    const auto onSwitch = ReadIpv4(a, "TVR4820", AclOwner::kAcl);
    ASSERT_EQ(4u, onSwitch.size());
    ExpectEveryStagedOnSwitch(staged, onSwitch);
    EXPECT_EQ("10.0.0.255", onSwitch.at("3")[4]);
}

// --- TCP, UDP, IGMP and protocol ID on one model with five user-defined fields --------------

TEST_F(Ipv4PageGui, TcpFlagsUdpIgmpAndProtocolIdWithFiveUserFieldsOnTvr4820) {
    SimAgent a(2, "TVR4820");
    ASSERT_TRUE(a.ok()) << a.error();
    AclRecordList staged;
    Wizard({{a.address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
        ToIpv4Page(d, "TCP", "10");
        EXPECT_EQ(5, m_wizard->m_nFrameOption);
        EXPECT_EQ(std::vector<std::string>{"TCP"}, ShownGroups(d));
        EXPECT_FALSE(Visible(d, IDC_IPV4_ICMP));
        EXPECT_FALSE(Visible(d, IDC_IPV4_UDP));
        // Each mask check box enables its edit; "TCP Flag Bits" enables "Check All" and the six
        // flags (Part 5.2); the check boxes themselves are always enabled.
        EXPECT_TRUE(Enabled(d, IDC_IPV4_TCP_SRC_PORT_CHECK));
        EXPECT_TRUE(Enabled(d, IDC_IPV4_TCP_FLAG_BITS));
        d.ClickButton(IDC_IPV4_TCP);
        EXPECT_TRUE(Enabled(d, IDC_IPV4_TCP_SRC_PORT_CHECK));
        EXPECT_TRUE(Enabled(d, IDC_IPV4_TCP_DST_PORT_CHECK));
        EXPECT_FALSE(Enabled(d, IDC_IPV4_TCP_SRC_PORT));
        EXPECT_TRUE(Enabled(d, IDC_IPV4_TCP_FLAG_BITS));
        EXPECT_FALSE(Enabled(d, IDC_IPV4_TCP_CHECK_ALL));
        for (int id : kFlags) EXPECT_FALSE(Enabled(d, id));
        d.ClickButton(IDC_IPV4_TCP_SRC_PORT_CHECK);
        EXPECT_TRUE(Enabled(d, IDC_IPV4_TCP_SRC_PORT));
        EXPECT_FALSE(Enabled(d, IDC_IPV4_TCP_DST_PORT));
        d.ClickButton(IDC_IPV4_TCP_DST_PORT_CHECK);
        d.ClickButton(IDC_IPV4_TCP_FLAG_BITS);
        EXPECT_TRUE(Enabled(d, IDC_IPV4_TCP_CHECK_ALL));
        for (int id : kFlags) EXPECT_TRUE(Enabled(d, id));
        // Port masks: 4 characters, hexadecimal digits only, upper-cased.
        d.TypeText(IDC_IPV4_TCP_SRC_PORT, "1g2h34");
        EXPECT_EQ("1234", d.Text(IDC_IPV4_TCP_SRC_PORT)) << "non-hex characters are not taken";
        d.TypeText(IDC_IPV4_TCP_DST_PORT, "abcde");
        EXPECT_EQ("ABCD", d.Text(IDC_IPV4_TCP_DST_PORT)) << "limited to 4 characters";
        // Flag arithmetic: URG 32 + SYN 2.
        d.ClickButton(IDC_IPV4_TCP_URG);
        d.ClickButton(IDC_IPV4_TCP_SYN);
        std::vector<std::string> row = AddAndTake(d, true);
        EXPECT_EQ("4", row[6]) << "TCP";
        EXPECT_EQ("4", row[9]) << "both port masks";
        EXPECT_EQ("1234", row[11]);
        EXPECT_EQ("ABCD", row[12]);
        EXPECT_EQ("1", row[13]) << "TCP Flag Bits";
        EXPECT_EQ("34", row[14]);
        EXPECT_EQ("", row[7]) << "other protocols' options stay empty";
        EXPECT_EQ("TCP", row[22]);
        EXPECT_EQ(0, d.RowCount(List(d))) << "deleted again";
        d.ClickButton(IDC_IPV4_TCP_URG);
        EXPECT_EQ("2", AddAndTake(d, true)[14]) << "unchecking subtracts";
        d.ClickButton(IDC_IPV4_TCP_CHECK_ALL);
        for (int id : kFlags) EXPECT_TRUE(d.IsChecked(id));
        EXPECT_EQ("63", AddAndTake(d, true)[14]) << "Check All";
        d.ClickButton(IDC_IPV4_TCP_FIN);
        EXPECT_FALSE(d.IsChecked(IDC_IPV4_TCP_CHECK_ALL));
        EXPECT_EQ("62", AddAndTake(d, true)[14]);
        d.ClickButton(IDC_IPV4_TCP_CHECK_ALL);  // all six again
        d.ClickButton(IDC_IPV4_TCP_CHECK_ALL);  // and none
        for (int id : kFlags) EXPECT_FALSE(d.IsChecked(id));
        row = AddAndTake(d, true);
        EXPECT_EQ("1", row[13]);
        EXPECT_EQ("0", row[14]) << "Check All unchecked sets 0";
        d.ClickButton(IDC_IPV4_TCP_URG);
        d.ClickButton(IDC_IPV4_TCP_ACK);
        d.Screenshot("page-06-ipv4-tcp");
        // Without "TCP Flag Bits" and the destination mask: "2", "0" and source only ("3").
        d.ClickButton(IDC_IPV4_TCP_FLAG_BITS);
        d.ClickButton(IDC_IPV4_TCP_DST_PORT_CHECK);
        row = AddAndTake(d, false);
        EXPECT_EQ("3", row[9]);
        EXPECT_EQ("1234", row[11]);
        EXPECT_EQ("", row[12]);
        EXPECT_EQ("2", row[13]);
        EXPECT_EQ("0", row[14]);

        // UDP: its own group; a short mask is a number, padded to four digits.
        Again(d, "UDP", "11");
        EXPECT_EQ(6, m_wizard->m_nFrameOption);
        EXPECT_EQ(std::vector<std::string>{"UDP"}, ShownGroups(d));
        EXPECT_FALSE(Visible(d, IDC_IPV4_TCP_FLAG_BITS));
        EXPECT_TRUE(Enabled(d, IDC_IPV4_UDP_DST_PORT_CHECK));
        EXPECT_FALSE(Enabled(d, IDC_IPV4_UDP_DST_PORT));
        d.ClickButton(IDC_IPV4_UDP);
        d.ClickButton(IDC_IPV4_UDP_DST_PORT_CHECK);
        EXPECT_TRUE(Enabled(d, IDC_IPV4_UDP_DST_PORT));
        d.TypeText(IDC_IPV4_UDP_DST_PORT, "ff");
        EXPECT_EQ("FF", d.Text(IDC_IPV4_UDP_DST_PORT));
        d.Screenshot("page-06-ipv4-udp");
        row = AddAndTake(d, false);
        EXPECT_EQ("5", row[6]) << "UDP";
        EXPECT_EQ("2", row[10]) << "destination port mask";
        EXPECT_EQ("", row[9]);
        EXPECT_EQ("", row[11]);
        EXPECT_EQ("00FF", row[12]);
        EXPECT_EQ("UDP", row[22]);

        // IGMP: "IGMP" enables "IGMP Type"; checked gives IgmpOption "1".
        Again(d, "IGMP", "12");
        EXPECT_EQ(std::vector<std::string>{"IGMP"}, ShownGroups(d));
        EXPECT_FALSE(Enabled(d, IDC_IPV4_IGMP_TYPE));
        d.ClickButton(IDC_IPV4_IGMP);
        EXPECT_TRUE(Enabled(d, IDC_IPV4_IGMP_TYPE));
        d.ClickButton(IDC_IPV4_IGMP_TYPE);
        d.Screenshot("page-06-ipv4-igmp");
        row = AddAndTake(d, false);
        EXPECT_EQ("3", row[6]);
        EXPECT_EQ("1", row[8]);
        EXPECT_EQ("IGMP", row[22]);

        // Protocol ID: five user-defined fields on TVR4820, 8 characters each, joined.
        Again(d, "ProtocolID", "13");
        EXPECT_EQ(7, m_wizard->m_nFrameOption);
        EXPECT_EQ(std::vector<std::string>{"Protocol ID"}, ShownGroups(d));
        EXPECT_EQ(5, VisibleUserFields(d));
        EXPECT_FALSE(Enabled(d, IDC_IPV4_PROTO_ID));
        EXPECT_TRUE(Enabled(d, IDC_IPV4_USER_DEFINE));
        d.ClickButton(IDC_IPV4_PROTO_ID_CHECK);
        EXPECT_TRUE(Enabled(d, IDC_IPV4_PROTO_ID));
        EXPECT_TRUE(Enabled(d, IDC_IPV4_USER_DEFINE));
        EXPECT_FALSE(Enabled(d, IDC_IPV4_USER_MASK1));
        d.TypeText(IDC_IPV4_PROTO_ID, "256");
        EXPECT_EQ("25", d.Text(IDC_IPV4_PROTO_ID)) << "0-255";
        d.TypeText(IDC_IPV4_PROTO_ID, "5");
        EXPECT_EQ("255", d.Text(IDC_IPV4_PROTO_ID));
        d.ClickButton(IDC_IPV4_USER_DEFINE);
        for (int id : kUserFields) EXPECT_TRUE(Enabled(d, id));
        d.TypeText(IDC_IPV4_USER_MASK1, "123456789");
        EXPECT_EQ("12345678", d.Text(IDC_IPV4_USER_MASK1)) << "limited to 8 characters";
        d.TypeText(IDC_IPV4_USER_MASK2, "abcdef01");
        d.TypeText(IDC_IPV4_USER_MASK3, "ff");
        d.TypeText(IDC_IPV4_USER_MASK5, "0000FFFF");
        d.Screenshot("page-06-ipv4-protocol-id");
        row = AddAndTake(d, false);
        EXPECT_EQ("6", row[6]);
        EXPECT_EQ("1", row[15]);
        EXPECT_EQ("255", row[16]);
        EXPECT_EQ("12345678ABCDEF01000000FF000000000000FFFF", row[17]) << "five fields, 40 hex digits";
        EXPECT_EQ("Protocol ID", row[22]);

        d.Next();
        ASSERT_EQ(10, d.ActiveIndex());
        staged = ReadStagingFile(kStagingIpv4, 22, 120);
        ASSERT_EQ(4u, staged.size());
        EXPECT_EQ("Succeed", Apply(d));
    });
    const auto onSwitch = ReadIpv4(a, "TVR4820", AclOwner::kAcl);
    ASSERT_EQ(4u, onSwitch.size());
    ExpectEveryStagedOnSwitch(staged, onSwitch);
    // Part 4.3: the protocol ID mask reads back as hex with a trailing blank.
    EXPECT_EQ("12345678ABCDEF01000000FF000000000000FFFF ", onSwitch.at("13")[17]);
}

// --- CPU ACL on TVG5690: no protocol chosen, then protocol ID (one field) and TCP -----------

TEST_F(Ipv4PageGui, NoProtocolOneUserFieldAndTcpCpuAclOnTvg5690) {
    SimAgent a(3, "TVG5690");
    ASSERT_TRUE(a.ok()) << a.error();
    AclRecordList staged;
    Wizard({{a.address(), "TVG5690"}}, 2, [&](WizardDriver& d) {
        // IPv4 with nothing picked in the protocol list: m_nFrameOption 2, no group shown, and
        // the row matches no protocol.
        ToIpv4Page(d, "", "1");
        EXPECT_EQ(2, m_wizard->m_nFrameOption);
        EXPECT_TRUE(ShownGroups(d).empty());
        EXPECT_FALSE(Visible(d, IDC_IPV4_ICMP));
        EXPECT_FALSE(Visible(d, IDC_IPV4_USER_MASK1));
        d.Screenshot("page-06-ipv4-no-protocol");
        d.ClickButton(IDC_IPV4_VLAN);
        d.ClickButton(IDC_IPV4_SRC_IP_CHECK);
        TypeAddress(d, IDC_IPV4_SRC_IP, "1.2.3.4");
        std::vector<std::string> row = AddAndTake(d, false);
        EXPECT_EQ((std::vector<std::string>{"1", "1", "3", "1.2.3.4", "0.0.0.0", "2", "1", "", "", "", "", "", "", "",
                                            "", "", "", "", "4", "2", "", "", ""}),
                  row);
        // Protocol ID: one user-defined field on this model; a short mask is padded to 8.
        Again(d, "ProtocolID", "2");
        EXPECT_EQ(1, VisibleUserFields(d));
        EXPECT_TRUE(Visible(d, IDC_IPV4_USER_MASK1));
        d.ClickButton(IDC_IPV4_PROTO_ID_CHECK);
        d.TypeText(IDC_IPV4_PROTO_ID, "6");
        d.ClickButton(IDC_IPV4_USER_DEFINE);
        d.TypeText(IDC_IPV4_USER_MASK1, "ffff");
        d.ClickButton(IDC_IPV4_DST_IP_CHECK);
        TypeAddress(d, IDC_IPV4_DST_IP, "255.255.255.0");
        row = AddAndTake(d, false);
        EXPECT_EQ("6", row[6]);
        EXPECT_EQ("6", row[16]);
        EXPECT_EQ("0000FFFF", row[17]);
        EXPECT_EQ("2", row[2]);
        // Unchecking "User Define(0-FFFFFFFF)" leaves the mask empty; "Protocol ID" unchecked
        // gives ProtolIDOption "2" and UseProtoType "1".
        Again(d, "ProtocolID", "3");
        d.ClickButton(IDC_IPV4_USER_DEFINE);
        d.TypeText(IDC_IPV4_USER_MASK1, "ff");
        d.ClickButton(IDC_IPV4_USER_DEFINE);
        EXPECT_FALSE(IsWindowEnabled(d.Control(IDC_IPV4_USER_MASK1))) << "unchecked: its field is disabled";
        row = AddAndTake(d, false);
        EXPECT_EQ("1", row[6]);
        EXPECT_EQ("2", row[15]);
        EXPECT_EQ("", row[17]);
        // "User Define(0-FFFFFFFF)" checked on its own still gives "ProtolIDMask" (Part 5.2).
        Again(d, "ProtocolID", "5");
        d.ClickButton(IDC_IPV4_USER_DEFINE);
        d.TypeText(IDC_IPV4_USER_MASK1, "ff");
        row = AddAndTake(d, false);
        EXPECT_EQ("1", row[6]);
        EXPECT_EQ("2", row[15]);
        EXPECT_EQ("000000FF", row[17]);
        // TCP with a short source mask and all flags.
        Again(d, "TCP", "4");
        d.ClickButton(IDC_IPV4_TCP);
        d.ClickButton(IDC_IPV4_TCP_SRC_PORT_CHECK);
        d.TypeText(IDC_IPV4_TCP_SRC_PORT, "abc");
        d.ClickButton(IDC_IPV4_TCP_FLAG_BITS);
        d.ClickButton(IDC_IPV4_TCP_CHECK_ALL);
        row = AddAndTake(d, false);
        EXPECT_EQ("3", row[9]);
        EXPECT_EQ("0ABC", row[11]);
        EXPECT_EQ("63", row[14]);
        d.Next();
        ASSERT_EQ(10, d.ActiveIndex());
        EXPECT_EQ(2, m_wizard->m_nProfileType);
        staged = ReadStagingFile(kStagingIpv4, 22, 120);
        ASSERT_EQ(5u, staged.size());
        EXPECT_EQ("CPU ACL", d.CellText(d.Control(IDC_APPLY_PROFILE_LIST), 0, 2));
        EXPECT_EQ("Success", Apply(d)) << "CPU-ACL profiles";
    });
    const auto onSwitch = ReadIpv4(a, "TVG5690", AclOwner::kCpu);
    ASSERT_EQ(5u, onSwitch.size());
    ExpectEveryStagedOnSwitch(staged, onSwitch);
    EXPECT_EQ("0000FFFF ", onSwitch.at("2")[17]);
}

// --- TVR4510: five user-defined fields too ---------------------------------------------------

TEST_F(Ipv4PageGui, FiveUserFieldsOnTvr4510) {
    SimAgent a(4, "TVR4510");
    ASSERT_TRUE(a.ok()) << a.error();
    Wizard({{a.address(), "TVR4510"}}, 1, [&](WizardDriver& d) {
        ToIpv4Page(d, "ProtocolID", "7");
        EXPECT_EQ(5, VisibleUserFields(d));
        d.ClickButton(IDC_IPV4_PROTO_ID_CHECK);
        d.TypeText(IDC_IPV4_PROTO_ID, "17");
        d.ClickButton(IDC_IPV4_USER_DEFINE);
        const char* texts[] = {"1", "22", "333", "4444", "FFFFFFFF"};
        for (int i = 0; i < 5; ++i) d.TypeText(kUserFields[i], texts[i]);
        const std::vector<std::string> row = AddAndTake(d, false);
        EXPECT_EQ("00000001000000220000033300004444FFFFFFFF", row[17]);
        d.Next();
        EXPECT_EQ("Succeed", Apply(d));
    });
    const auto onSwitch = ReadIpv4(a, "TVR4510", AclOwner::kAcl);
    ASSERT_EQ(1u, onSwitch.count("7"));
    EXPECT_EQ("17", onSwitch.at("7")[16]);
    EXPECT_EQ("00000001000000220000033300004444FFFFFFFF ", onSwitch.at("7")[17]);
}

}  // namespace
