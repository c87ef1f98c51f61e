// For every supported model and both ACL kinds: a profile of each type the model offers is
// created through "Add profile" and the type's definition page like a user does it, applied on
// the Confirmation Page, then a rule of each offered type under the profile of that type
// through "Create Rules", "Add Rules:Select Profile" and the rule page, applied on "Add rule";
// every cell the writer sent reads back the same from the simulated switch.
#include <array>
#include <vector>

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
    for (char& c : name)
        if (c == '-') c = '_';
    return name + (info.param.nACLKind == 1 ? "_Acl" : "_CpuAcl");
}

// The "Add profile" radio and the definition page of a type.
int RadioOf(AclType type) {
    switch (type) {
    case AclType::kEthernet: return IDC_STEP2_ETHERNET;
    case AclType::kIPv4: return IDC_STEP2_IPV4;
    case AclType::kIPv6: return IDC_STEP2_IPV6;
    case AclType::kPacketContent: return IDC_STEP2_PACKET;
    }
    return 0;
}
int PageOf(AclType type) {
    switch (type) {
    case AclType::kEthernet: return acl::pages::kPageEthProfile;
    case AclType::kIPv4: return acl::pages::kPageIPv4Profile;
    case AclType::kIPv6: return acl::pages::kPageIPv6Profile;
    case AclType::kPacketContent: return acl::pages::kPagePacketProfile;
    }
    return -1;
}
int PendingListOf(AclType type) {
    switch (type) {
    case AclType::kEthernet: return IDC_ETH_LIST;
    case AclType::kIPv4: return IDC_IPV4_LIST;
    case AclType::kIPv6: return IDC_IPV6_LIST;
    case AclType::kPacketContent: return IDC_PACKET_LIST;
    }
    return 0;
}

int RulePageOf(AclType type) {
    switch (type) {
    case AclType::kEthernet: return acl::pages::kPageEthRule;
    case AclType::kIPv4: return acl::pages::kPageIPv4Rule;
    case AclType::kIPv6: return acl::pages::kPageIPv6Rule;
    case AclType::kPacketContent: return acl::pages::kPagePacketRule;
    }
    return -1;
}

class ProfileMatrixGui : public ProfileFlowGui, public ::testing::WithParamInterface<Case> {
protected:
    // On the rule page of `type`, under the profile FillAndAdd made: the fields its masks
    // enable, then Add. The destination MAC is typed as the page's example shows it.
    static void FillRuleAndAdd(WizardDriver& d, AclType type, const ModelEntry& model, AclOwner owner) {
        d.TypeText(IDC_RULE_ACCESS_ID, "1");
        if (IsWindowEnabled(d.Control(IDC_RULE_PORTS))) d.TypeText(IDC_RULE_PORTS, "1-2");
        if (IsWindowVisible(d.Control(IDC_RULE_PRIORITY_CHECK))) {
            d.ClickButton(IDC_RULE_PRIORITY_CHECK);
            d.TypeText(IDC_RULE_PRIORITY, "3");
        }
        switch (type) {
        case AclType::kEthernet:
            d.TypeText(IDC_RULE_VLAN, "v1");
            d.TypeText(IDC_RULE_DST_MAC, "00-11-22-33-44-55");
            break;
        case AclType::kIPv4:  // the TCP profile with a destination port mask
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
    // Next on "Add Rules:Select Profile" refuses while the device is read: press it again.
    static void NextWhenRead(WizardDriver& d) {
        for (int i = 0; i < 50 && d.ActiveIndex() == acl::pages::kPageSelectProfile; ++i) {
            d.Next();
            if (d.ActiveIndex() == acl::pages::kPageSelectProfile) {
                d.TakeMessages();
                Sleep(200);
            }
        }
    }
    // On the definition page of `type`: masks a user would set, then Add.
    static void FillAndAdd(WizardDriver& d, AclType type, const ModelEntry& model, AclOwner owner) {
        switch (type) {
        case AclType::kEthernet:
            d.ClickButton(IDC_ETH_VLAN);
            d.ClickButton(IDC_ETH_DST_MAC_CHECK);
            d.TypeText(IDC_ETH_DST_MAC, "FFFFFF000000");
            d.ClickButton(IDC_ETH_ADD);
            break;
        case AclType::kIPv4:  // the TCP group (m_nFrameOption 5)
            d.ClickButton(IDC_IPV4_VLAN);
            d.ClickButton(IDC_IPV4_TCP);
            d.ClickButton(IDC_IPV4_TCP_DST_PORT_CHECK);
            d.TypeText(IDC_IPV4_TCP_DST_PORT, "00FF");
            d.ClickButton(IDC_IPV4_ADD);
            break;
        case AclType::kIPv6:
            d.ClickButton(IDC_IPV6_CLASS);
            d.ClickButton(IDC_IPV6_DST_CHECK);
            d.TypeText(IDC_IPV6_DST, "FFFFFFFFFFFFFFFF0000000000000000");
            d.ClickButton(IDC_IPV6_ADD);
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
            d.ClickButton(IDC_PACKET_ADD);
            break;
        }
    }
};

TEST_P(ProfileMatrixGui, EveryOfferedProfileTypeIsCreatedThroughThePagesAndReadBack) {
    const Case c = GetParam();
    const ModelEntry& model = *LookupModel(c.model);
    const AclOwner owner = c.nACLKind == 1 ? AclOwner::kAcl : AclOwner::kCpu;
    std::vector<AclType> offered;
    for (AclType type : kTypes)
        if (model.offersProfileType(owner, type)) offered.push_back(type);
    ASSERT_FALSE(offered.empty());

    int host = 1;
    for (const char* m : kModels) {
        if (std::string(m) == c.model) break;
        host += 2;
    }
    SimAgent agent(host + static_cast<int>(c.nACLKind) - 1, c.model);
    ASSERT_TRUE(agent.ok()) << agent.error();
    const bool named = std::string(c.model) == "TVR4512" && c.nACLKind == 1;
    std::array<AclRecordList, 4> sent{};
    std::array<AclRecordList, 4> rules{};
    std::vector<AclType> ruleTypes;

    Wizard({{agent.address(), c.model}}, c.nACLKind, [&](WizardDriver& d) {
        for (size_t i = 0; i < offered.size(); ++i) {
            const AclType type = offered[i];
            const std::string id = std::to_string(i + 1);
            ASSERT_EQ(acl::pages::kPageAddProfile, d.ActiveIndex());
            // Add profile enables exactly the radios of the types the model offers.
            for (AclType t : kTypes)
                EXPECT_EQ(model.offersProfileType(owner, t), IsWindowEnabled(d.Control(RadioOf(t))) != FALSE)
                    << TypeWord(t);
            d.ClickButton(RadioOf(type));
            if (type == AclType::kIPv4) d.PickCombo(IDC_STEP2_PROTOCOL, "TCP");
            if (named) d.TypeText(IDC_STEP2_PROFILE_NAME, "web" + id);
            d.PickCombo(IDC_STEP2_PROFILE_ID, id);
            d.Next();
            ASSERT_EQ(PageOf(type), d.ActiveIndex()) << TypeWord(type);
            FillAndAdd(d, type, model, owner);
            EXPECT_TRUE(d.TakeMessages().empty()) << TypeWord(type);
            ASSERT_EQ(1, d.RowCount(d.Control(PendingListOf(type)))) << TypeWord(type);
            d.Screenshot(std::string("matrix-") + CaseName({GetParam(), 0}) + "-page-0" + std::to_string(PageOf(type)));
            d.Next();
            ASSERT_EQ(acl::pages::kPageApply, d.ActiveIndex());
            if (i + 1 < offered.size()) {
                d.Back();  // to the definition page, then to "Add profile"
                d.Back();
            }
        }
        HWND profiles = d.Control(IDC_APPLY_PROFILE_LIST);
        ASSERT_EQ(static_cast<int>(offered.size()), d.RowCount(profiles));
        // What the staging files hold is what the apply sends.
        for (AclType type : offered) {
            const auto file = StagingFileFor(model, owner, AclKind::kProfiles, type);
            ASSERT_TRUE(file.has_value());
            sent[static_cast<size_t>(type)] = ReadStagingFile(file->name, file->cellCount, file->bufferSize);
            ASSERT_EQ(1u, sent[static_cast<size_t>(type)].size()) << TypeWord(type);
        }
        d.ClickButton(IDC_APPLY_APPLY);
        HWND switches = d.Control(IDC_APPLY_SWITCH_LIST);
        ASSERT_TRUE(d.WaitFor([&] { return !d.CellText(switches, 0, 2).empty(); }, 20000));
        EXPECT_EQ(c.nACLKind == 1 ? "Succeed" : "Success", d.CellText(switches, 0, 2));
        d.Screenshot(std::string("matrix-") + CaseName({GetParam(), 0}) + "-page-10-applied");

        // Rules: one of each offered type under the profile of that type just made.
        d.ClickButton(IDC_APPLY_CREATE_RULES);
        for (size_t i = 0; i < offered.size(); ++i) {
            const AclType type = offered[i];
            if (!model.offersRuleType(owner, type)) continue;
            if (!ruleTypes.empty()) {
                d.Back();  // to the rule page, then to "Add Rules:Select Profile"
                d.Back();
            }
            ruleTypes.push_back(type);
            ASSERT_EQ(acl::pages::kPageSelectProfile, d.ActiveIndex());
            HWND list = d.Control(IDC_STEP4_PROFILE_LIST);
            ASSERT_TRUE(d.WaitFor([&] { return d.RowCount(list) == static_cast<int>(offered.size()); }, 20000));
            int row = -1;
            for (int r = 0; r < d.RowCount(list); ++r)
                if (d.CellText(list, r, 0) == std::to_string(i + 1) && d.CellText(list, r, 1) == TypeWord(type)) row = r;
            ASSERT_GE(row, 0) << TypeWord(type);
            d.ClickCell(list, row, 0);
            NextWhenRead(d);
            ASSERT_EQ(RulePageOf(type), d.ActiveIndex()) << TypeWord(type);
            FillRuleAndAdd(d, type, model, owner);
            EXPECT_TRUE(d.TakeMessages().empty()) << TypeWord(type) << " rule";
            ASSERT_EQ(1, d.RowCount(d.Control(IDC_RULE_LIST))) << TypeWord(type);
            d.Screenshot(std::string("matrix-") + CaseName({GetParam(), 0}) + "-page-" + std::to_string(RulePageOf(type)));
            d.Next();
            ASSERT_EQ(acl::pages::kPageRuleApply, d.ActiveIndex());
        }
        if (ruleTypes.empty()) return;
        ASSERT_EQ(static_cast<int>(ruleTypes.size()), d.RowCount(d.Control(IDC_RAPPLY_RULE_LIST)));
        for (AclType type : ruleTypes) {
            const auto file = StagingFileFor(model, owner, AclKind::kRules, type);
            ASSERT_TRUE(file.has_value());
            rules[static_cast<size_t>(type)] = ReadStagingFile(file->name, file->cellCount, file->bufferSize);
            ASSERT_EQ(1u, rules[static_cast<size_t>(type)].size()) << TypeWord(type);
        }
        d.ClickButton(IDC_RAPPLY_APPLY);
        HWND ruleSwitches = d.Control(IDC_RAPPLY_SWITCH_LIST);
        ASSERT_TRUE(d.WaitFor([&] { return !d.CellText(ruleSwitches, 0, 2).empty(); }, 20000));
        EXPECT_EQ("Succeed", d.CellText(ruleSwitches, 0, 2));
        EXPECT_EQ(0, d.RowCount(d.Control(IDC_RAPPLY_RULE_LIST)));
        d.Screenshot(std::string("matrix-") + CaseName({GetParam(), 0}) + "-page-16-applied");
    });

    const AclReadResult read = ReadProfiles(AclTarget{agent.address(), "public", "private", c.model}, owner);
    for (AclType type : offered) {
        const auto layout = TableLayout(model, owner, AclKind::kProfiles, type);
        ASSERT_TRUE(layout.has_value());
        const AclRecordList& rows = read.records[static_cast<size_t>(type)];
        ASSERT_EQ(1u, rows.size()) << TypeWord(type) << " read back";
        ExpectSameCells(model, *layout, sent[static_cast<size_t>(type)][0], rows[0],
                        std::string(c.model) + " " + TypeWord(type));
    }
    const AclTarget target{agent.address(), "public", "private", c.model};
    for (AclType type : ruleTypes) {
        const auto layout = TableLayout(model, owner, AclKind::kRules, type);
        ASSERT_TRUE(layout.has_value());
        const AclReadResult read = ReadRules(target, owner, type);
        const AclRecordList& rows = read.records[static_cast<size_t>(type)];
        ASSERT_EQ(1u, rows.size()) << TypeWord(type) << " rule read back";
        ExpectSameCells(model, *layout, rules[static_cast<size_t>(type)][0], rows[0],
                        std::string(c.model) + " " + TypeWord(type) + " rule");
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
