// Part 5.2's IPv6 page (`CACLStep_IPV6`, page 8) and packet-content page (`CACLStep_Packet`,
// page 9, chunk and offset layouts) tested like a person uses them: the real wizard opened on
// "Add profile" against simulated switches (profile_flow.h), the fields typed into the
// controls, rows checked in the pending list, the staging file of Part 4.5 read back, and the
// profiles applied on the Confirmation Page (Part 5.4) and read back from the switch.
#include <algorithm>
#include <array>

#include "tests/gui/wizard/profile_flow.h"

using namespace profile_flow;

namespace {

// Left to the implementer (our choice, string table 400-403): the messages for inputs that the
// spec does not check.
constexpr char kInvalidIpv6[] = "Invalid IPv6 Mask! Enter 32 hexadecimal digits (0-9, A-F).";
constexpr char kInvalidChunkOffset[] = "Invalid chunk offset! Enter a number from 0 to 31.";
constexpr char kInvalidChunkMask[] = "Invalid chunk mask! Enter 8 hexadecimal digits (0-9, A-F).";
constexpr char kInvalidOffsetMask[] =
    "Invalid offset mask! Each of the four fields takes 8 hexadecimal digits (0-9, A-F).";

const std::vector<std::string> kIpv6Headers = {"ProfileID",   "MaskClass",   "MaskFlowlabel", "AddrMaskState", "SrcIPv6Mask",
                                               "DstIPv6Mask", "",            "",              ""};
const std::vector<std::string> kChunkHeaders = {"ID",    "Chunk1", "value", "mask",  "Chunk2", "value",     "mask",       "chunk3",
                                                "value", "mask",   "Chunk4", "value", "mask",  "rowstatus", "profilename"};
const std::vector<std::string> kOffsetHeaders = {"Profile ID",   "offset0to15",  "offset16to31", "offset32to47",
                                                 "offset48to63", "offset64to79", ""};

constexpr int kChunkChecks[] = {IDC_PACKET_CHUNK1, IDC_PACKET_CHUNK2, IDC_PACKET_CHUNK3, IDC_PACKET_CHUNK4};
constexpr int kRangeChecks[] = {IDC_PACKET_OFFSET0, IDC_PACKET_OFFSET16, IDC_PACKET_OFFSET32, IDC_PACKET_OFFSET48,
                                IDC_PACKET_OFFSET64};
constexpr int RangeField(int range, int field) { return IDC_PACKET_RANGE_MASK_FIRST + range * 4 + field; }
const std::string k32F(32, 'F');

class Ipv6PacketPageGui : public ProfileFlowGui {
protected:
    // On "Add profile": the type radio, the profile ID, Next to the definition page.
    static void ChooseType(WizardDriver& d, int radio, const std::string& id, int page) {
        ASSERT_EQ(3, d.ActiveIndex());
        d.ClickButton(radio);
        PickComboOf(d, IDC_STEP2_PROFILE_ID, id);
        d.Next();
        ASSERT_TRUE(d.TakeMessages().empty());
        ASSERT_EQ(page, d.ActiveIndex());
    }
    // Back from a definition page to "Add profile", another ID, Next again.
    static void NextProfileId(WizardDriver& d, const std::string& id, int page) {
        d.Back();
        ASSERT_EQ(3, d.ActiveIndex());
        PickComboOf(d, IDC_STEP2_PROFILE_ID, id);
        d.Next();
        ASSERT_EQ(page, d.ActiveIndex());
    }
    // Empties an edit and types into it like a person.
    static void Retype(WizardDriver& d, int id, const std::string& text) {
        SetWindowTextA(d.Control(id), "");
        d.TypeText(id, text);
    }
    static std::vector<std::string> Headers(WizardDriver& d, HWND list) {
        std::vector<std::string> out;
        HWND header = reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0));
        const int n = static_cast<int>(SendMessageA(header, HDM_GETITEMCOUNT, 0, 0));
        for (int c = 0; c < n; ++c) out.push_back(d.HeaderText(list, c));
        return out;
    }
    static AclRecord Row(WizardDriver& d, HWND list, int row, size_t cells) {
        AclRecord r;
        for (size_t c = 0; c < cells; ++c) r.push_back(d.CellText(list, row, static_cast<int>(c)));
        return r;
    }
    static bool Visible(WizardDriver& d, int id) { return IsWindowVisible(d.Control(id)) != FALSE; }
    static bool Enabled(WizardDriver& d, int id) { return IsWindowEnabled(d.Control(id)) != FALSE; }
    // Which packet layout the page shows (every control of one, none of the other).
    static bool ShowsChunks(WizardDriver& d) {
        bool chunks = Visible(d, IDC_PACKET_OFFSET_LABEL) && Visible(d, IDC_PACKET_MASK_LABEL);
        for (int i = 0; i < 4; ++i)
            chunks = chunks && Visible(d, kChunkChecks[i]) && Visible(d, IDC_PACKET_CHUNK1_OFFSET + i) &&
                     Visible(d, IDC_PACKET_CHUNK1_MASK + i);
        bool offsets = false;
        for (int r = 0; r < 5; ++r) {
            offsets = offsets || Visible(d, kRangeChecks[r]);
            for (int k = 0; k < 4; ++k) offsets = offsets || Visible(d, RangeField(r, k));
        }
        return chunks && !offsets;
    }
    static bool ShowsOffsets(WizardDriver& d) {
        bool offsets = true;
        for (int r = 0; r < 5; ++r) {
            offsets = offsets && Visible(d, kRangeChecks[r]);
            for (int k = 0; k < 4; ++k) offsets = offsets && Visible(d, RangeField(r, k));
        }
        bool chunks = Visible(d, IDC_PACKET_OFFSET_LABEL) || Visible(d, IDC_PACKET_MASK_LABEL);
        for (int i = 0; i < 4; ++i)
            chunks = chunks || Visible(d, kChunkChecks[i]) || Visible(d, IDC_PACKET_CHUNK1_OFFSET + i) ||
                     Visible(d, IDC_PACKET_CHUNK1_MASK + i);
        return offsets && !chunks;
    }
    // The staging file of the type as the model and the ACL kind say (Part 4.5).
    static AclRecordList Staged(const std::string& model, AclOwner owner, AclType type) {
        const auto file = StagingFileFor(*LookupModel(model), owner, AclKind::kProfiles, type);
        if (!file) return {};
        return ReadStagingFile(file->name, file->cellCount, file->bufferSize);
    }
    static size_t StagedCells(const std::string& model, AclOwner owner, AclType type) {
        const auto file = StagingFileFor(*LookupModel(model), owner, AclKind::kProfiles, type);
        return file ? file->cellCount : 0;
    }
    // "Apply to Switch" on the Confirmation Page; the result word of the first switch.
    static std::string Apply(WizardDriver& d) {
        HWND switches = d.Control(IDC_APPLY_SWITCH_LIST);
        d.ClickButton(IDC_APPLY_APPLY);
        d.WaitFor([&] { return !d.CellText(switches, 0, 2).empty(); }, 15000);
        return d.CellText(switches, 0, 2);
    }
    static AclRecordList SwitchProfiles(SimAgent& agent, const std::string& model, AclOwner owner, AclType type) {
        AclRecordList list =
            ReadProfiles(AclTarget{agent.address(), "public", "private", model}, owner).records[static_cast<size_t>(type)];
        std::sort(list.begin(), list.end(), [](const AclRecord& a, const AclRecord& b) {
            return std::stol(a[0]) < std::stol(b[0]);
        });
        return list;
    }
};

// --- IPv6 page ---------------------------------------------------------------------------------

// TVR4820 with the ordinary ACL offers IPv6 profiles: the check boxes enable their edits, the
// edits take 32 characters (upper case), the four mask states, yes/no "1"/"2", a duplicate ID
// ignored, Delete, the list surviving Back and Next (also from the Confirmation Page, Part
// 5.1), "\ACLIpv6.ini" on Next, m_nProfileType 3, and the profiles on the switch after the apply.
TEST_F(Ipv6PacketPageGui, Ipv6PageRowsStagingFileAndApply) {
    SimAgent a(1, "TVR4820");
    ASSERT_TRUE(a.ok()) << a.error();
    const std::string srcMask = "FE800000000000000000000000000000";
    const std::string dstMask = "0123456789ABCDEF0123456789ABCDEF";
    Wizard({{a.address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
        ChooseType(d, IDC_STEP2_IPV6, "3", 8);
        EXPECT_EQ("IPv6 ACL Settings", d.ActiveCaption());
        HWND list = d.Control(IDC_IPV6_LIST);
        EXPECT_EQ(kIpv6Headers, Headers(d, list));
        EXPECT_FALSE(Enabled(d, IDC_IPV6_SRC)) << "enabled by its check box";
        EXPECT_FALSE(Enabled(d, IDC_IPV6_DST));
        d.ClickButton(IDC_IPV6_SRC_CHECK);
        EXPECT_TRUE(Enabled(d, IDC_IPV6_SRC));
        EXPECT_FALSE(Enabled(d, IDC_IPV6_DST));
        // Limited to 32 characters; typed letters come out in upper case.
        Retype(d, IDC_IPV6_SRC, "fe80000000000000000000000000000000ff");
        EXPECT_EQ(srcMask, d.Text(IDC_IPV6_SRC));
        d.ClickButton(IDC_IPV6_DST_CHECK);
        EXPECT_TRUE(Enabled(d, IDC_IPV6_DST));
        d.ClickButton(IDC_IPV6_DST_CHECK);
        EXPECT_FALSE(Enabled(d, IDC_IPV6_DST)) << "unchecking disables it again";
        // Our choice: a checked mask must be 32 hexadecimal digits; the input stays.
        SetWindowTextA(d.Control(IDC_IPV6_SRC), "FE80");
        d.ClickButton(IDC_IPV6_ADD);
        EXPECT_EQ(std::vector<std::string>{kInvalidIpv6}, Texts(d.TakeMessages()));
        EXPECT_EQ(0, d.RowCount(list));
        EXPECT_EQ("FE80", d.Text(IDC_IPV6_SRC));
        SetWindowTextA(d.Control(IDC_IPV6_SRC), std::string(32, 'G').c_str());
        d.ClickButton(IDC_IPV6_ADD);
        EXPECT_EQ(std::vector<std::string>{kInvalidIpv6}, Texts(d.TakeMessages()));
        EXPECT_EQ(0, d.RowCount(list));
        // Source only, with "IPv6 Class": state "3".
        Retype(d, IDC_IPV6_SRC, srcMask);
        d.ClickButton(IDC_IPV6_CLASS);
        d.ClickButton(IDC_IPV6_ADD);
        EXPECT_TRUE(d.TakeMessages().empty());
        ASSERT_EQ(1, d.RowCount(list));
        EXPECT_EQ((AclRecord{"3", "1", "2", "3", srcMask, "", "4", "1", ""}), Row(d, list, 0, 9));
        // Part 5.2: a second row with the same profile ID is ignored, silently.
        d.ClickButton(IDC_IPV6_ADD);
        EXPECT_TRUE(d.TakeMessages().empty());
        EXPECT_EQ(1, d.RowCount(list));
        // Destination only, with "IPv6 Flow Label": state "2"; the list survives Back and Next.
        NextProfileId(d, "7", 8);
        ASSERT_EQ(1, d.RowCount(list)) << "pending rows survive Back and Next";
        d.ClickButton(IDC_IPV6_SRC_CHECK);
        d.ClickButton(IDC_IPV6_DST_CHECK);
        Retype(d, IDC_IPV6_DST, dstMask);
        d.ClickButton(IDC_IPV6_FLOW_LABEL);
        d.ClickButton(IDC_IPV6_ADD);
        ASSERT_EQ(2, d.RowCount(list));
        EXPECT_EQ((AclRecord{"7", "1", "1", "2", "", dstMask, "4", "1", ""}), Row(d, list, 1, 9));
        // Both: state "4"; "IPv6 Class" unchecked: "2".
        NextProfileId(d, "9", 8);
        d.ClickButton(IDC_IPV6_SRC_CHECK);
        d.ClickButton(IDC_IPV6_CLASS);
        d.ClickButton(IDC_IPV6_ADD);
        ASSERT_EQ(3, d.RowCount(list));
        EXPECT_EQ((AclRecord{"9", "2", "1", "4", srcMask, dstMask, "4", "1", ""}), Row(d, list, 2, 9));
        // Neither: state "1".
        NextProfileId(d, "12", 8);
        d.ClickButton(IDC_IPV6_SRC_CHECK);
        d.ClickButton(IDC_IPV6_DST_CHECK);
        d.ClickButton(IDC_IPV6_FLOW_LABEL);
        d.ClickButton(IDC_IPV6_ADD);
        ASSERT_EQ(4, d.RowCount(list));
        EXPECT_EQ((AclRecord{"12", "2", "2", "1", "", "", "4", "1", ""}), Row(d, list, 3, 9));
        d.Screenshot("page-08-ipv6-pending");
        // Delete removes the selected row.
        d.ClickCell(list, 2, 0);
        d.ClickButton(IDC_IPV6_DELETE);
        ASSERT_EQ(3, d.RowCount(list));
        EXPECT_EQ("12", d.CellText(list, 2, 0));
        const AclRecordList pending = {Row(d, list, 0, 9), Row(d, list, 1, 9), Row(d, list, 2, 9)};
        // Next: "\ACLIpv6.ini" with the model's cell count, m_nProfileType 3, Confirmation Page.
        d.Next();
        ASSERT_EQ(10, d.ActiveIndex());
        EXPECT_EQ(3, m_wizard->m_nProfileType);
        EXPECT_EQ(9u, StagedCells("TVR4820", AclOwner::kAcl, AclType::kIPv6));
        const AclRecordList staged = Staged("TVR4820", AclOwner::kAcl, AclType::kIPv6);
        ASSERT_EQ(3u, staged.size());
        EXPECT_EQ(pending, staged);
        EXPECT_EQ("7", staged[1][0]);
        EXPECT_EQ(dstMask, staged[1][5]);
        // Part 5.1 edge case: Back from the Confirmation Page returns to the IPv6 page, list unchanged.
        d.Back();
        ASSERT_EQ(8, d.ActiveIndex());
        EXPECT_EQ(3, d.RowCount(list));
        d.Next();
        ASSERT_EQ(10, d.ActiveIndex());
        HWND profiles = d.Control(IDC_APPLY_PROFILE_LIST);
        ASSERT_EQ(3, d.RowCount(profiles));
        EXPECT_EQ("IPv6", d.CellText(profiles, 0, 1));
        EXPECT_EQ("Succeed", Apply(d));
    });
    const AclRecordList onSwitch = SwitchProfiles(a, "TVR4820", AclOwner::kAcl, AclType::kIPv6);
    ASSERT_EQ(3u, onSwitch.size());
    const std::vector<std::array<std::string, 4>> expected = {
        {"3", "1", "2", "3"}, {"7", "1", "1", "2"}, {"12", "2", "2", "1"}};
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(expected[i][0], onSwitch[i][0]);
        EXPECT_EQ(expected[i][1], onSwitch[i][1]) << "MaskClass of " << expected[i][0];
        EXPECT_EQ(expected[i][2], onSwitch[i][2]) << "MaskFlowlabel of " << expected[i][0];
        EXPECT_EQ(expected[i][3], onSwitch[i][3]) << "AddrMaskState of " << expected[i][0];
    }
    EXPECT_EQ(srcMask, onSwitch[0][4]);
    EXPECT_EQ(dstMask, onSwitch[1][5]);
}

// --- packet-content page, offset layout --------------------------------------------------------

// TVR4820 with the ordinary ACL has Block16 profiles: the offset layout, its checks and rows,
// "\ACPacket.ini" with 7 cells, m_nProfileType 5, and the profile on the switch.
TEST_F(Ipv6PacketPageGui, OffsetLayoutRowsStagingFileAndApply) {
    SimAgent a(2, "TVR4820");
    ASSERT_TRUE(a.ok()) << a.error();
    const std::string range16 = "ABCDEF0100000000FFFFFFFF12345678";
    const std::string range64 = "000000000000FFFF0000000000000000";
    Wizard({{a.address(), "TVR4820"}}, 1, [&](WizardDriver& d) {
        ChooseType(d, IDC_STEP2_PACKET, "5", 9);
        EXPECT_EQ("Packet content ACL", d.ActiveCaption());
        EXPECT_TRUE(ShowsOffsets(d));
        EXPECT_EQ("offset 0-15", d.Text(IDC_PACKET_OFFSET0));
        EXPECT_EQ("offset 64-79", d.Text(IDC_PACKET_OFFSET64));
        HWND list = d.Control(IDC_PACKET_LIST);
        EXPECT_EQ(kOffsetHeaders, Headers(d, list));
        for (int k = 0; k < 4; ++k) EXPECT_FALSE(Enabled(d, RangeField(1, k)));
        d.ClickButton(IDC_PACKET_OFFSET16);
        for (int k = 0; k < 4; ++k) EXPECT_TRUE(Enabled(d, RangeField(1, k))) << "enabled by its check box";
        for (int k = 0; k < 4; ++k) EXPECT_FALSE(Enabled(d, RangeField(0, k)));
        // Each field takes 8 hexadecimal digits, typed letters in upper case.
        Retype(d, RangeField(1, 0), "abcdef0123");
        EXPECT_EQ("ABCDEF01", d.Text(RangeField(1, 0)));
        Retype(d, RangeField(1, 1), "00000000");
        Retype(d, RangeField(1, 2), "ffffffff");
        // Our choice: every field of a checked range must hold 8 hexadecimal digits.
        d.ClickButton(IDC_PACKET_ADD);
        EXPECT_EQ(std::vector<std::string>{kInvalidOffsetMask}, Texts(d.TakeMessages())) << "the fourth field is empty";
        EXPECT_EQ(0, d.RowCount(list));
        SetWindowTextA(d.Control(RangeField(1, 3)), "1234567G");
        d.ClickButton(IDC_PACKET_ADD);
        EXPECT_EQ(std::vector<std::string>{kInvalidOffsetMask}, Texts(d.TakeMessages())) << "not hexadecimal";
        EXPECT_EQ("1234567G", d.Text(RangeField(1, 3))) << "the input stays";
        Retype(d, RangeField(1, 3), "12345678");
        d.ClickButton(IDC_PACKET_OFFSET64);
        Retype(d, RangeField(4, 0), "00000000");
        Retype(d, RangeField(4, 1), "0000FFFF");
        Retype(d, RangeField(4, 2), "00000000");
        Retype(d, RangeField(4, 3), "00000000");
        d.ClickButton(IDC_PACKET_ADD);
        EXPECT_TRUE(d.TakeMessages().empty());
        ASSERT_EQ(1, d.RowCount(list));
        // Part 5.2: profile ID; each checked range's four fields joined; "4".
        EXPECT_EQ((AclRecord{"5", "", range16, "", "", range64, "4"}), Row(d, list, 0, 7));
        d.ClickButton(IDC_PACKET_ADD);
        EXPECT_EQ(1, d.RowCount(list)) << "the same profile ID again is ignored";
        EXPECT_TRUE(d.TakeMessages().empty());
        d.Screenshot("page-09-packet-offset");
        d.Next();
        ASSERT_EQ(10, d.ActiveIndex());
        EXPECT_EQ(5, m_wizard->m_nProfileType);
        EXPECT_EQ(7u, StagedCells("TVR4820", AclOwner::kAcl, AclType::kPacketContent));
        const AclRecordList staged = Staged("TVR4820", AclOwner::kAcl, AclType::kPacketContent);
        ASSERT_EQ(1u, staged.size());
        EXPECT_EQ((AclRecord{"5", "", range16, "", "", range64, "4"}), staged[0]);
        EXPECT_EQ("Packet Content", d.CellText(d.Control(IDC_APPLY_PROFILE_LIST), 0, 1));
        EXPECT_EQ("Succeed", Apply(d));
    });
    const AclRecordList onSwitch = SwitchProfiles(a, "TVR4820", AclOwner::kAcl, AclType::kPacketContent);
    ASSERT_EQ(1u, onSwitch.size());
    EXPECT_EQ("5", onSwitch[0][0]);
    EXPECT_EQ(range16, onSwitch[0][2]);
    EXPECT_EQ(range64, onSwitch[0][5]);
}

// --- packet-content page, chunk layout, and switching layouts ----------------------------------

// TVG5690: the ordinary ACL shows the chunk layout (Chunks4), the CPU ACL the offset layout
// (Block16, our choice: what is typed is what is sent), and the page switches between them
// when the ACL kind changes between activations. Both forms applied and read back.
TEST_F(Ipv6PacketPageGui, ChunkLayoutThenCpuOffsetLayoutThenChunkAgainOnTvg5690) {
    SimAgent a(3, "TVG5690");
    ASSERT_TRUE(a.ok()) << a.error();
    const AclRecord chunkRow = {"2", "1", "5", "FF00FF00", "", "", "", "1", "31", "0000FFFF", "", "", "", "4", ""};
    Wizard({{a.address(), "TVG5690"}}, 1, [&](WizardDriver& d) {
        ChooseType(d, IDC_STEP2_PACKET, "2", 9);
        ASSERT_TRUE(ShowsChunks(d));
        EXPECT_EQ("Chunk 1(0-31)", d.Text(IDC_PACKET_CHUNK1));
        EXPECT_EQ("Chunk 4(0-31)", d.Text(IDC_PACKET_CHUNK4));
        HWND list = d.Control(IDC_PACKET_LIST);
        EXPECT_EQ(kChunkHeaders, Headers(d, list));
        EXPECT_FALSE(Enabled(d, IDC_PACKET_CHUNK1_OFFSET));
        EXPECT_FALSE(Enabled(d, IDC_PACKET_CHUNK1_MASK));
        d.ClickButton(IDC_PACKET_CHUNK1);
        EXPECT_TRUE(Enabled(d, IDC_PACKET_CHUNK1_OFFSET)) << "enabled by its check box";
        EXPECT_TRUE(Enabled(d, IDC_PACKET_CHUNK1_MASK));
        EXPECT_FALSE(Enabled(d, IDC_PACKET_CHUNK2_OFFSET));
        // The offset takes two digits only; the mask 8 characters, upper case.
        Retype(d, IDC_PACKET_CHUNK1_OFFSET, "4x56");
        EXPECT_EQ("45", d.Text(IDC_PACKET_CHUNK1_OFFSET));
        Retype(d, IDC_PACKET_CHUNK1_MASK, "ff00ff00ab");
        EXPECT_EQ("FF00FF00", d.Text(IDC_PACKET_CHUNK1_MASK));
        // Our choice: an offset outside 0-31, or a mask that is not 8 hexadecimal digits, is refused.
        d.ClickButton(IDC_PACKET_ADD);
        EXPECT_EQ(std::vector<std::string>{kInvalidChunkOffset}, Texts(d.TakeMessages()));
        EXPECT_EQ(0, d.RowCount(list));
        Retype(d, IDC_PACKET_CHUNK1_OFFSET, "5");
        SetWindowTextA(d.Control(IDC_PACKET_CHUNK1_MASK), "FF00FF0G");
        d.ClickButton(IDC_PACKET_ADD);
        EXPECT_EQ(std::vector<std::string>{kInvalidChunkMask}, Texts(d.TakeMessages()));
        Retype(d, IDC_PACKET_CHUNK1_MASK, "FF00FF00");
        d.ClickButton(IDC_PACKET_CHUNK3);
        Retype(d, IDC_PACKET_CHUNK3_OFFSET, "31");
        d.ClickButton(IDC_PACKET_ADD);
        EXPECT_EQ(std::vector<std::string>{kInvalidChunkMask}, Texts(d.TakeMessages())) << "chunk 3 has no mask";
        Retype(d, IDC_PACKET_CHUNK3_MASK, "0000ffff");
        d.ClickButton(IDC_PACKET_ADD);
        EXPECT_TRUE(d.TakeMessages().empty());
        ASSERT_EQ(1, d.RowCount(list));
        // Part 5.2: profile ID; for each checked chunk "1", its offset and its mask; "4"; the name.
        EXPECT_EQ(chunkRow, Row(d, list, 0, 15));
        d.Screenshot("page-09-packet-chunk");
        d.Next();
        ASSERT_EQ(10, d.ActiveIndex());
        EXPECT_EQ(5, m_wizard->m_nProfileType);
        EXPECT_EQ(15u, StagedCells("TVG5690", AclOwner::kAcl, AclType::kPacketContent));
        EXPECT_EQ(AclRecordList{chunkRow}, Staged("TVG5690", AclOwner::kAcl, AclType::kPacketContent));
        EXPECT_EQ("Succeed", Apply(d));

        // Back to "Access Control List", the CPU ACL, and the packet page again: offset layout.
        d.Back();
        ASSERT_EQ(9, d.ActiveIndex());
        EXPECT_EQ(0, d.RowCount(list)) << "emptied after the apply";
        d.Back();
        d.Back();
        ASSERT_EQ(2, d.ActiveIndex());
        d.Back();
        ASSERT_EQ(1, d.ActiveIndex());
        d.ClickButton(IDC_STEP1_CPU_ACL);
        d.Next();
        d.Next();
        ChooseType(d, IDC_STEP2_PACKET, "1", 9);
        ASSERT_TRUE(ShowsOffsets(d)) << "TVG5690 CPU ACL: Block16, the offset layout";
        EXPECT_EQ(kOffsetHeaders, Headers(d, list));
        EXPECT_EQ(0, d.RowCount(list));
        d.ClickButton(IDC_PACKET_OFFSET0);
        for (int k = 0; k < 4; ++k) Retype(d, RangeField(0, k), "FFFFFFFF");
        d.ClickButton(IDC_PACKET_ADD);
        EXPECT_TRUE(d.TakeMessages().empty());
        ASSERT_EQ(1, d.RowCount(list));
        EXPECT_EQ((AclRecord{"1", k32F, "", "", "", "", "4"}), Row(d, list, 0, 7));
        d.Screenshot("page-09-packet-offset-cpu");
        d.Next();
        ASSERT_EQ(10, d.ActiveIndex());
        EXPECT_EQ(7u, StagedCells("TVG5690", AclOwner::kCpu, AclType::kPacketContent));
        EXPECT_EQ((AclRecordList{{"1", k32F, "", "", "", "", "4"}}),
                  Staged("TVG5690", AclOwner::kCpu, AclType::kPacketContent));
        EXPECT_EQ("CPU ACL", d.CellText(d.Control(IDC_APPLY_PROFILE_LIST), 0, 2));
        EXPECT_EQ("Success", Apply(d));

        // And back to the ordinary ACL: the chunk layout again, with an empty list.
        d.Back();
        d.Back();
        d.Back();
        d.Back();
        ASSERT_EQ(1, d.ActiveIndex());
        d.ClickButton(IDC_STEP1_ACL);
        d.Next();
        d.Next();
        ChooseType(d, IDC_STEP2_PACKET, "3", 9);
        EXPECT_TRUE(ShowsChunks(d));
        EXPECT_EQ(kChunkHeaders, Headers(d, list));
        EXPECT_EQ(0, d.RowCount(list));
    });
    const AclRecordList chunks = SwitchProfiles(a, "TVG5690", AclOwner::kAcl, AclType::kPacketContent);
    ASSERT_EQ(1u, chunks.size());
    EXPECT_EQ("2", chunks[0][0]);
    EXPECT_EQ("1", chunks[0][1]);
    EXPECT_EQ("5", chunks[0][2]);
    EXPECT_EQ("FF00FF00", chunks[0][3]);
    EXPECT_EQ("1", chunks[0][7]);
    EXPECT_EQ("31", chunks[0][8]);
    EXPECT_EQ("0000FFFF", chunks[0][9]);
    const AclRecordList cpu = SwitchProfiles(a, "TVG5690", AclOwner::kCpu, AclType::kPacketContent);
    ASSERT_EQ(1u, cpu.size());
    EXPECT_EQ("1", cpu[0][0]);
    EXPECT_EQ(k32F, cpu[0][1]);
}

// The layout by model and ACL kind on the other models (Part 5.2 table; the CPU ACL always
// Block16, Part 2.2), each with one row and "\ACPacket.ini" in the matching form. TVR4512's
// chunk rows carry the profile name typed on "Add profile".
TEST_F(Ipv6PacketPageGui, LayoutByModelAndAclKind) {
    struct Case {
        const char* model;
        long kind;
        bool chunks;
    };
    const Case cases[] = {{"TVR4512", 1, true}, {"TVG5240-10", 1, true}, {"TVR4512", 2, false},
                          {"TVR4510", 1, false}, {"TVR4060", 1, false}};
    int host = 10;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.model) + (c.kind == 1 ? " ACL" : " CPU ACL"));
        SimAgent a(host++, c.model);
        ASSERT_TRUE(a.ok()) << a.error();
        const AclOwner owner = c.kind == 1 ? AclOwner::kAcl : AclOwner::kCpu;
        const bool named = std::string(c.model) == "TVR4512" && c.kind == 1;
        Wizard({{a.address(), c.model}}, c.kind, [&](WizardDriver& d) {
            if (named) d.TypeText(IDC_STEP2_PROFILE_NAME, "web");
            ChooseType(d, IDC_STEP2_PACKET, "1", 9);
            HWND list = d.Control(IDC_PACKET_LIST);
            AclRecord expected;
            if (c.chunks) {
                ASSERT_TRUE(ShowsChunks(d));
                EXPECT_EQ(kChunkHeaders, Headers(d, list));
                d.ClickButton(IDC_PACKET_CHUNK2);
                Retype(d, IDC_PACKET_CHUNK2_OFFSET, "0");
                Retype(d, IDC_PACKET_CHUNK2_MASK, "FFFFFFFF");
                expected = {"1", "", "", "", "1", "0", "FFFFFFFF", "", "", "", "", "", "", "4", named ? "web" : ""};
            } else {
                ASSERT_TRUE(ShowsOffsets(d));
                EXPECT_EQ(kOffsetHeaders, Headers(d, list));
                d.ClickButton(IDC_PACKET_OFFSET48);
                for (int k = 0; k < 4; ++k) Retype(d, RangeField(3, k), "0000000F");
                expected = {"1", "", "", "", "0000000F0000000F0000000F0000000F", "", "4"};
            }
            d.ClickButton(IDC_PACKET_ADD);
            EXPECT_TRUE(d.TakeMessages().empty());
            ASSERT_EQ(1, d.RowCount(list));
            EXPECT_EQ(expected, Row(d, list, 0, expected.size()));
            if (named) d.Screenshot("page-09-packet-chunk-tvr4512");
            d.Next();
            ASSERT_EQ(10, d.ActiveIndex());
            EXPECT_EQ(c.chunks ? 15u : 7u, StagedCells(c.model, owner, AclType::kPacketContent));
            EXPECT_EQ(AclRecordList{expected}, Staged(c.model, owner, AclType::kPacketContent));
        });
    }
}

// --- Part 5.4 edge case: TVG5470 sends no packet-content profiles -------------------------------

// TVG5470 with the ordinary ACL has no packet-content profiles: the radio is disabled; a
// pending packet-content profile left in "\ACPacket.ini" (as an earlier page would have) is
// listed on the Confirmation Page but not sent, while an IPv6 profile made on the IPv6 page is.
TEST_F(Ipv6PacketPageGui, Tvg5470SendsTheIpv6ProfileButNoPacketContent) {
    SimAgent a(20, "TVG5470");
    ASSERT_TRUE(a.ok()) << a.error();
    ASSERT_TRUE(WriteStagingFile(kStagingPacket, {{"4", k32F, "", "", "", "", "4"}}, 7));
    ASSERT_EQ(1u, ReadStagingFile(kStagingPacket, 7, 180).size());
    const std::string mask = "00000000000000000000FFFFFFFFFFFF";
    Wizard({{a.address(), "TVG5470"}}, 1, [&](WizardDriver& d) {
        ASSERT_EQ(3, d.ActiveIndex());
        EXPECT_FALSE(Enabled(d, IDC_STEP2_PACKET)) << "TVG5470, ordinary ACL: no packet content";
        ChooseType(d, IDC_STEP2_IPV6, "2", 8);
        d.ClickButton(IDC_IPV6_DST_CHECK);
        Retype(d, IDC_IPV6_DST, mask);
        d.ClickButton(IDC_IPV6_ADD);
        ASSERT_EQ(1, d.RowCount(d.Control(IDC_IPV6_LIST)));
        d.Next();
        ASSERT_EQ(10, d.ActiveIndex());
        // Part 5.4 step 4 lists every pending profile of the four files; the model's sequences
        // then send only the types it has.
        HWND profiles = d.Control(IDC_APPLY_PROFILE_LIST);
        ASSERT_EQ(2, d.RowCount(profiles));
        EXPECT_EQ("IPv6", d.CellText(profiles, 0, 1));
        EXPECT_EQ("Packet Content", d.CellText(profiles, 1, 1));
        EXPECT_EQ("Succeed", Apply(d));
    });
    snmp::Oid ipv6Table, blockTable, chunkTable;
    ASSERT_TRUE(snmp::ParseOid("1.3.6.1.4.1.32473.12.9.2.4", ipv6Table));
    ASSERT_TRUE(snmp::ParseOid("1.3.6.1.4.1.32473.12.9.2.3", blockTable));
    ASSERT_TRUE(snmp::ParseOid("1.3.6.1.4.1.32473.12.9.2.8", chunkTable));
    size_t ipv6Sets = 0;
    for (const sim::SetEvent& e : a.sets())
        for (const snmp::VarBind& vb : e.varbinds) {
            EXPECT_FALSE(snmp::OidIsUnder(vb.name, blockTable) || snmp::OidIsUnder(vb.name, chunkTable))
                << "packet content sent: " << snmp::FormatOid(vb.name);
            if (snmp::OidIsUnder(vb.name, ipv6Table)) ++ipv6Sets;
        }
    EXPECT_GT(ipv6Sets, 0u) << "the IPv6 profile was sent";
    const AclReadResult read = ReadProfiles(AclTarget{a.address(), "public", "private", "TVG5470"}, AclOwner::kAcl);
    ASSERT_EQ(1u, read.records[static_cast<size_t>(AclType::kIPv6)].size());
    EXPECT_EQ("2", read.records[static_cast<size_t>(AclType::kIPv6)][0][0]);
    EXPECT_EQ(mask, read.records[static_cast<size_t>(AclType::kIPv6)][0][5]);
    EXPECT_TRUE(read.records[static_cast<size_t>(AclType::kPacketContent)].empty());
}

}  // namespace
