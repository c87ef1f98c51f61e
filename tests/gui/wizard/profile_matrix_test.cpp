// Every supported model and both ACL kinds: a profile of each type the model offers is created
// through the pages like a user does it ("Add profile", the type's page, Add, Next), applied
// on the Confirmation Page, and read back from the simulated switch: every cell the writer
// sent reads back the same.
#include <array>

#include "record_compare.h"
#include "tests/gui/wizard/profile_flow.h"

using namespace profile_flow;

namespace {

constexpr AclType kTypes[] = {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent};
constexpr const char* kModels[] = {"TVG5240-10", "TVG5470", "TVG5690", "TVR4060", "TVR4510", "TVR4820", "TVR4512"};

struct Case {
    const char* model;
    long nACLKind;  // 1 ordinary ACL, 2 CPU ACL
};

std::string CaseName(const ::testing::TestParamInfo<Case>& info) {
    std::string name = info.param.model;
    std::replace(name.begin(), name.end(), '-', '_');
    return name + (info.param.nACLKind == 1 ? "_Acl" : "_CpuAcl");
}

// On the definition page of `type`: masks a user would set.
void FillMasks(WizardDriver& d, AclType type, bool chunks) {
    switch (type) {
    case AclType::kEthernet:
        d.ClickButton(IDC_ETH_VLAN);
        d.ClickButton(IDC_ETH_DST_MAC_CHECK);
        d.TypeText(IDC_ETH_DST_MAC, "FFFFFF000000");
        break;
    case AclType::kIPv4:  // the TCP group
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
        if (chunks) {
            d.ClickButton(IDC_PACKET_CHUNK1);
            d.TypeText(IDC_PACKET_CHUNK1_OFFSET, "3");
            d.TypeText(IDC_PACKET_CHUNK1_MASK, "FFFF0000");
        } else {
            d.ClickButton(IDC_PACKET_OFFSET0);
            for (int k = 0; k < 4; ++k) d.TypeText(IDC_PACKET_RANGE_MASK_FIRST + k, k == 0 ? "FFFFFFFF" : "0000FFFF");
        }
        break;
    }
}

class ProfileMatrixGui : public ProfileFlowGui, public ::testing::WithParamInterface<Case> {};

TEST_P(ProfileMatrixGui, EveryOfferedProfileTypeIsCreatedThroughThePagesAndReadBack) {
    const Case c = GetParam();
    const ModelEntry& model = *LookupModel(c.model);
    const AclOwner owner = c.nACLKind == 1 ? AclOwner::kAcl : AclOwner::kCpu;
    std::vector<AclType> offered;
    for (AclType type : kTypes)
        if (model.offersProfileType(owner, type)) offered.push_back(type);
    ASSERT_FALSE(offered.empty());
    const int host = 2 * static_cast<int>(std::find_if(std::begin(kModels), std::end(kModels), [&](const char* m) {
                                               return std::string(m) == c.model;
                                           }) - std::begin(kModels)) + static_cast<int>(c.nACLKind);
    SimAgent agent(host, c.model);
    ASSERT_TRUE(agent.ok()) << agent.error();
    const bool named = std::string(c.model) == "TVR4512" && c.nACLKind == 1;
    std::array<AclRecordList, 4> sent{};

    Wizard({{agent.address(), c.model}}, c.nACLKind, [&](WizardDriver& d) {
        for (size_t i = 0; i < offered.size(); ++i) {
            const AclType type = offered[i];
            const std::string id = std::to_string(i + 1);
            // "Add profile" enables exactly the types the model offers.
            for (AclType t : kTypes)
                EXPECT_EQ(model.offersProfileType(owner, t), d.IsEnabled(ControlsOf(t).radio)) << TypeWord(t);
            if (named) d.TypeText(IDC_STEP2_PROFILE_NAME, "web" + id);
            ToDefinitionPage(d, type, id, type == AclType::kIPv4 ? "TCP" : "");
            FillMasks(d, type, RecordKindFor(model, owner, AclKind::kProfiles, type).shape == PacketShape::kChunks4);
            d.ClickButton(ControlsOf(type).add);
            EXPECT_TRUE(d.TakeMessages().empty()) << TypeWord(type);
            ASSERT_EQ(1, d.RowCount(d.Control(ControlsOf(type).list))) << TypeWord(type);
            d.Next();
            ASSERT_EQ(acl::pages::kPageApply, d.ActiveIndex());
            if (i + 1 < offered.size()) {
                d.Back();  // to the definition page, then to "Add profile"
                d.Back();
            }
        }
        ASSERT_EQ(static_cast<int>(offered.size()), d.RowCount(d.Control(IDC_APPLY_PROFILE_LIST)));
        // What the staging files hold is what the apply sends.
        for (AclType type : offered) {
            const auto file = StagingFileFor(model, owner, AclKind::kProfiles, type);
            ASSERT_TRUE(file.has_value());
            sent[static_cast<size_t>(type)] = ReadStagingFile(file->name, file->cellCount, file->bufferSize);
            ASSERT_EQ(1u, sent[static_cast<size_t>(type)].size()) << TypeWord(type);
        }
        EXPECT_EQ((Strings{c.nACLKind == 1 ? "Succeed" : "Success"}), Apply(d));
        d.Screenshot("matrix-" + CaseName({GetParam(), 0}) + "-applied");
    });

    const AclReadResult read = OnSwitch(agent, c.model, owner);
    for (AclType type : offered) {
        const auto layout = TableLayout(model, owner, AclKind::kProfiles, type);
        ASSERT_TRUE(layout.has_value());
        const AclRecordList& rows = read.records[static_cast<size_t>(type)];
        ASSERT_EQ(1u, rows.size()) << TypeWord(type) << " read back";
        ExpectSameCells(model, *layout, sent[static_cast<size_t>(type)][0], rows[0],
                        std::string(c.model) + " " + TypeWord(type));
    }
}

std::vector<Case> AllCases() {
    std::vector<Case> cases;
    for (const char* model : kModels)
        for (long kind : {1L, 2L}) cases.push_back({model, kind});
    return cases;
}

INSTANTIATE_TEST_SUITE_P(AllModels, ProfileMatrixGui, ::testing::ValuesIn(AllCases()), CaseName);

}  // namespace
