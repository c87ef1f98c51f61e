// For every supported model and both ACL kinds: a profile of each type the model offers is
// created through "Add profile" and the type's definition page like a user does it, applied on
// the Confirmation Page, then a rule of each offered type under the profile of that type
// through "Create Rules", "Add Rules:Select Profile" and the rule page, applied on "Add rule";
// every cell the writer sent reads back the same from the simulated switch.
#include <algorithm>
#include <array>
#include <functional>
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

class ProfileMatrixGui : public ProfileFlowGui, public ::testing::WithParamInterface<Case> {
protected:
    // What the staging files of `kind` hold for `types`, one record each: what the apply sends.
    static std::array<AclRecordList, 4> Staged(const ModelEntry& model, AclOwner owner, AclKind kind,
                                               const std::vector<AclType>& types) {
        std::array<AclRecordList, 4> out{};
        for (AclType type : types) {
            const auto file = StagingFileFor(model, owner, kind, type);
            if (file) out[static_cast<size_t>(type)] = ReadStagingFile(file->name, file->cellCount, file->bufferSize);
            EXPECT_EQ(1u, out[static_cast<size_t>(type)].size()) << TypeWord(type);
        }
        return out;
    }
    // "Apply to Switch" and the switch's result word.
    static std::string ApplyWord(WizardDriver& d, int button, int switchList) {
        d.ClickButton(button);
        HWND switches = d.Control(switchList);
        d.WaitFor([&] { return !d.CellText(switches, 0, 2).empty(); }, 20000);
        return d.CellText(switches, 0, 2);
    }
    // Every cell the writer sent reads back the same from the switch.
    static void ExpectReadBack(const ModelEntry& model, AclOwner owner, AclKind kind, const std::vector<AclType>& types,
                               const std::array<AclRecordList, 4>& sent, const std::function<AclReadResult(AclType)>& read) {
        for (AclType type : types) {
            const auto layout = TableLayout(model, owner, kind, type);
            ASSERT_TRUE(layout.has_value());
            const AclRecordList rows = read(type).records[static_cast<size_t>(type)];
            ASSERT_EQ(1u, rows.size()) << TypeWord(type) << " read back";
            ExpectSameCells(model, *layout, sent[static_cast<size_t>(type)][0], rows[0],
                            std::string(model.typeText) + " " + TypeWord(type));
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

    const auto index = std::find_if(std::begin(kModels), std::end(kModels), [&](const char* m) { return std::string(m) == c.model; });
    SimAgent agent(1 + 2 * static_cast<int>(index - std::begin(kModels)) + static_cast<int>(c.nACLKind) - 1, c.model);
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
                EXPECT_EQ(model.offersProfileType(owner, t), d.IsEnabled(PagesOf(t).radio))
                    << TypeWord(t);
            d.ClickButton(PagesOf(type).radio);
            if (type == AclType::kIPv4) d.PickCombo(IDC_STEP2_PROTOCOL, "TCP");
            if (named) d.TypeText(IDC_STEP2_PROFILE_NAME, "web" + id);
            d.PickCombo(IDC_STEP2_PROFILE_ID, id);
            d.Next();
            ASSERT_EQ(PagesOf(type).profilePage, d.ActiveIndex()) << TypeWord(type);
            sentrel_gui::FillProfileAndAdd(d, type, model, owner);
            EXPECT_TRUE(d.TakeMessages().empty()) << TypeWord(type);
            ASSERT_EQ(1, d.RowCount(d.Control(PagesOf(type).profileList))) << TypeWord(type);
            d.Screenshot(std::string("matrix-") + CaseName({GetParam(), 0}) + "-page-0" + std::to_string(PagesOf(type).profilePage));
            d.Next();
            ASSERT_EQ(acl::pages::kPageApply, d.ActiveIndex());
            if (i + 1 < offered.size()) {
                d.Back();  // to the definition page, then to "Add profile"
                d.Back();
            }
        }
        HWND profiles = d.Control(IDC_APPLY_PROFILE_LIST);
        ASSERT_EQ(static_cast<int>(offered.size()), d.RowCount(profiles));
        sent = Staged(model, owner, AclKind::kProfiles, offered);
        EXPECT_EQ(c.nACLKind == 1 ? "Succeed" : "Success", ApplyWord(d, IDC_APPLY_APPLY, IDC_APPLY_SWITCH_LIST));
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
            // Chosen by the arrow keys from the first row: Next follows the highlight.
            d.ClickCell(list, 0, 0);
            for (int r = 0; r < row; ++r) {
                PostMessageA(list, WM_KEYDOWN, VK_DOWN, 0);
                PostMessageA(list, WM_KEYUP, VK_DOWN, 0);
                d.Settle();
            }
            sentrel_gui::NextWhenRead(d);
            ASSERT_EQ(PagesOf(type).rulePage, d.ActiveIndex()) << TypeWord(type);
            sentrel_gui::FillRuleAndAdd(d, type, model, owner);
            EXPECT_TRUE(d.TakeMessages().empty()) << TypeWord(type) << " rule";
            ASSERT_EQ(1, d.RowCount(d.Control(IDC_RULE_LIST))) << TypeWord(type);
            d.Screenshot(std::string("matrix-") + CaseName({GetParam(), 0}) + "-page-" + std::to_string(PagesOf(type).rulePage));
            d.Next();
            ASSERT_EQ(acl::pages::kPageRuleApply, d.ActiveIndex());
        }
        if (ruleTypes.empty()) return;
        ASSERT_EQ(static_cast<int>(ruleTypes.size()), d.RowCount(d.Control(IDC_RAPPLY_RULE_LIST)));
        rules = Staged(model, owner, AclKind::kRules, ruleTypes);
        EXPECT_EQ("Succeed", ApplyWord(d, IDC_RAPPLY_APPLY, IDC_RAPPLY_SWITCH_LIST));
        EXPECT_EQ(0, d.RowCount(d.Control(IDC_RAPPLY_RULE_LIST)));
        d.Screenshot(std::string("matrix-") + CaseName({GetParam(), 0}) + "-page-16-applied");
    });

    const AclTarget target{agent.address(), "public", "private", c.model};
    const AclReadResult profiles = ReadProfiles(target, owner);
    ExpectReadBack(model, owner, AclKind::kProfiles, offered, sent, [&](AclType) { return profiles; });
    ExpectReadBack(model, owner, AclKind::kRules, ruleTypes, rules, [&](AclType type) { return ReadRules(target, owner, type); });
}

std::vector<Case> AllCases() {
    std::vector<Case> cases;
    for (const char* model : kModels)
        for (long kind : {1L, 2L}) cases.push_back({model, kind});
    return cases;
}

INSTANTIATE_TEST_SUITE_P(AllModels, ProfileMatrixGui, ::testing::ValuesIn(AllCases()), CaseName);

}  // namespace
