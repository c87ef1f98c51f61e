// The rule pages opened on a chosen profile, like a user: each check's message in the page's
// order (two bad fields: the earlier one speaks), the page keeping its input and adding
// nothing, the Add rules, the port check while typing, the two replacements excluding each
// other; then "Add rule" over switches that fail in each way it must tell apart.
#include <algorithm>
#include <array>
#include <vector>

#include "tests/gui/wizard/profile_flow.h"

using namespace profile_flow;

namespace {

using Fields = std::vector<std::pair<int, std::string>>;

// The chosen profiles: every field their masks allow enabled (IPv4: TCP with both ports).
const std::array<std::string, 5> kEthProfile{"1", "1", "4", "1", "1"};
const std::array<std::string, 11> kIPv4Profile{"2", "1", "4", "1", "4", "1", "1", "4", "1", "1", "1"};
const std::array<std::string, 4> kIPv6Profile{"3", "1", "1", "4"};

class RulePageGui : public ProfileFlowGui {
protected:
    // The wizard on `page` after "Add Rules:Select Profile" chose the profiles above.
    void RulePage(const std::vector<std::pair<std::string, std::string>>& targets, long nACLKind, int page,
                  const std::function<void(WizardDriver&)>& script) {
        Wizard(targets, nACLKind, script, page, [](acl::wizard::CACLWizard& wizard) {
            wizard.m_astrEthProfile = kEthProfile;
            wizard.m_astrIPv4Profile = kIPv4Profile;
            wizard.m_astrIPv6Profile = kIPv6Profile;
            wizard.m_strPacketProfileID = "4";
        });
    }
    // Leaves the page (for "Add rule", which reads no switch) and comes back to `page`.
    void Reenter(WizardDriver& d, int page) {
        m_wizard->SetActivePage(acl::pages::kPageRuleApply);
        d.Settle();
        m_wizard->SetActivePage(page);
        d.Settle();
    }
    // One rule (the Access ID, port 1) added, and on to "Add rule", which lists it alone.
    static void AddOneAndGoOn(WizardDriver& d, const std::string& accessId) {
        d.TypeText(IDC_RULE_ACCESS_ID, accessId);
        d.TypeText(IDC_RULE_PORTS, "1");
        d.ClickButton(IDC_RULE_ADD);
        d.Next();
        ASSERT_EQ(acl::pages::kPageRuleApply, d.ActiveIndex());
        ASSERT_EQ(1, d.RowCount(d.Control(IDC_RAPPLY_RULE_LIST)));
    }
    // Types each field's text, first checking the box that enables it.
    static void Fill(WizardDriver& d, const Fields& fields) {
        for (const auto& [id, text] : fields) {
            const int box = id == IDC_RULE_PRIORITY       ? IDC_RULE_PRIORITY_CHECK
                            : id == IDC_RULE_REPLACE_DSCP ? IDC_RULE_DSCP_CHECK
                            : id == IDC_RULE_REPLACE_TOS  ? IDC_RULE_TOS_CHECK
                                                          : 0;
            if (box && !d.IsChecked(box)) d.ClickButton(box);
            d.TypeText(id, text);
        }
    }
};

struct MessageRow {
    int page;
    Fields fields;  // typed after a valid Access ID and ports unless the row types its own
    const char* message;
};

constexpr int E = acl::pages::kPageEthRule, V4 = acl::pages::kPageIPv4Rule, V6 = acl::pages::kPageIPv6Rule,
              PC = acl::pages::kPagePacketRule;

TEST_F(RulePageGui, ChecksSpeakInTheirOrderAndThePageKeepsItsInput) {
    const std::vector<MessageRow> rows = {
        {E, {{IDC_RULE_8021P, "9"}, {IDC_RULE_ACCESS_ID, ""}}, "8021p value range is 0 to 7"},
        {E, {{IDC_RULE_ACCESS_ID, ""}, {IDC_RULE_DST_MAC, "zz"}}, "Access ID  can not null!"},
        {E, {{IDC_RULE_ACCESS_ID, "9999"}, {IDC_RULE_DST_MAC, "zz"}}, "Access ID range is error"},
        {E, {{IDC_RULE_DST_MAC, "00-11-22"}, {IDC_RULE_PRIORITY, "9"}}, "Invalid MAC Address !"},
        {E, {{IDC_RULE_PRIORITY, "8"}, {IDC_RULE_RX, "0"}}, "Priority value range is 0 to 7"},
        {E, {{IDC_RULE_RX, "0"}, {IDC_RULE_SRC_MAC, "zz"}}, "Rxrate range is not error"},
        {E, {{IDC_RULE_SRC_MAC, "00112233445"}, {IDC_RULE_ETHERTYPE, "GZ"}}, "Invalid MAC Address !"},
        {E, {{IDC_RULE_ETHERTYPE, "GZ"}, {IDC_RULE_REPLACE_DSCP, "64"}}, "Invalid Ethertype value!"},
        {E, {{IDC_RULE_REPLACE_DSCP, "64"}}, "Dscp value range is 0 to 63"},
        {E, {{IDC_RULE_REPLACE_TOS, "8"}}, "Replace ToS Precedence value range is 0 to 7"},
        {E, {{IDC_RULE_ACCESS_ID, "5"}}, "Port  is error!"},  // ports left empty
        {V4, {{IDC_RULE_RX, "0"}, {IDC_RULE_REPLACE_DSCP, "64"}}, "Rxrate range is not error"},
        {V4, {{IDC_RULE_REPLACE_DSCP, "64"}, {IDC_RULE_DSCP, "64"}}, "Replace Dscp value range is 0 to 63"},
        {V4, {{IDC_RULE_DSCP, "64"}, {IDC_RULE_REPLACE_TOS, "8"}}, "Dscp value range is 0 to 63"},
        {V4, {{IDC_RULE_FIRST, "65536"}, {IDC_RULE_SECOND, "X"}}, "value is 0 to 65535"},
        {V4, {{IDC_RULE_SECOND, "8O"}}, "value is 0 to 65535"},
        {V4, {{IDC_RULE_ACCESS_ID, "5"}}, "Access ID  can not null!"},  // ports left empty
        {V6, {{IDC_RULE_CLASS, "256"}, {IDC_RULE_PRIORITY, "8"}}, "Class value is 0 to 255!"},
        {V6, {{IDC_RULE_FLOW_LABEL, "XY"}, {IDC_RULE_REPLACE_DSCP, "64"}}, "Invalid Flowlabel value!"},
        {V6, {{IDC_RULE_ACCESS_ID, "5"}}, "Port can not null!"},
        {PC, {{IDC_RULE_PRIORITY, "8"}, {IDC_RULE_REPLACE_DSCP, "64"}}, "Priority value range is 0 to 7"},
        {PC, {{IDC_RULE_REPLACE_TOS, "8"}}, "Replace ToS Precedence value range is 0 to 7"},
        {PC, {{IDC_RULE_ACCESS_ID, "5"}}, "Port can not null!"},
    };
    const int n = static_cast<int>(rows.size());
    int shown = 0;
    RulePage({{"127.0.0.1:1", "TVG5240-10"}}, 1, E, [&](WizardDriver& d) {
        for (int i = 0; i < n; ++i) {
            const MessageRow& row = rows[static_cast<size_t>(i)];
            SCOPED_TRACE("row " + std::to_string(i) + ": " + row.message);
            // Away and back to the row's page: fresh fields.
            if (i > 0) Reenter(d, row.page);
            ASSERT_EQ(row.page, d.ActiveIndex());
            bool ownAccess = false, ownPorts = false;
            for (const auto& [id, text] : row.fields) {
                ownAccess = ownAccess || id == IDC_RULE_ACCESS_ID;
                ownPorts = ownPorts || id == IDC_RULE_PORTS || id == IDC_RULE_ACCESS_ID;
            }
            if (!ownAccess) d.TypeText(IDC_RULE_ACCESS_ID, "7");
            if (!ownPorts) d.TypeText(IDC_RULE_PORTS, "1-2");
            Fill(d, row.fields);
            EXPECT_TRUE(d.TakeMessages().empty());
            if (i == 0 || rows[static_cast<size_t>(i - 1)].page != row.page)
                d.Screenshot("rule-page-" + std::to_string(row.page) + "-filled");
            d.ClickButton(IDC_RULE_ADD);
            EXPECT_EQ(std::vector<std::string>{row.message}, d.TakeTexts());
            EXPECT_EQ(0, d.RowCount(d.Control(IDC_RULE_LIST))) << "nothing added";
            for (const auto& [id, text] : row.fields) EXPECT_EQ(text, d.Text(id)) << "the page keeps its input";
            ++shown;
        }
    });
    EXPECT_EQ(n, shown);
}

TEST_F(RulePageGui, AddRulesPortTypingAndTheReplacementsExcludingEachOther) {
    RulePage({{"127.0.0.1:1", "TVG5240-10"}}, 1, E, [&](WizardDriver& d) {
        HWND list = d.Control(IDC_RULE_LIST);
        // A letter after a valid port list: the message, then the text before it.
        d.TypeText(IDC_RULE_PORTS, "1,2,3a");
        EXPECT_EQ(std::vector<std::string>{"Input port error!"}, d.TakeTexts());
        EXPECT_EQ("1,2,3", d.Text(IDC_RULE_PORTS));
        d.TypeText(IDC_RULE_PORTS, "--");
        EXPECT_EQ(std::vector<std::string>{"Input port error!"}, d.TakeTexts());
        EXPECT_EQ("1,2,3-", d.Text(IDC_RULE_PORTS));
        // Empty optional fields: added, the empty MACs as zeros.
        d.TypeText(IDC_RULE_PORTS, "4");
        d.TypeText(IDC_RULE_ACCESS_ID, "7");
        d.ClickButton(IDC_RULE_ADD);
        EXPECT_TRUE(d.TakeMessages().empty());
        ASSERT_EQ(1, d.RowCount(list));
        EXPECT_EQ("00.00.00.00.00.00", d.CellText(list, 0, 3));
        EXPECT_EQ("00.00.00.00.00.00", d.CellText(list, 0, 4));
        // The same Access ID under the same profile: nothing added, nothing said.
        d.ClickButton(IDC_RULE_ADD);
        EXPECT_TRUE(d.TakeMessages().empty());
        EXPECT_EQ(1, d.RowCount(list));
        // Under another profile, as "Add Rules:Select Profile" would copy it: a second row.
        m_wizard->m_astrEthProfile[0] = "2";
        Reenter(d, E);
        d.TypeText(IDC_RULE_ACCESS_ID, "7");
        d.TypeText(IDC_RULE_PORTS, "4");
        d.ClickButton(IDC_RULE_ADD);
        ASSERT_EQ(2, d.RowCount(list));
        EXPECT_EQ("2", d.CellText(list, 1, 0));
        // Replace DSCP and Replace ToS exclude each other, whichever comes last wins.
        for (int first : {IDC_RULE_TOS_CHECK, IDC_RULE_DSCP_CHECK}) {
            const int last = first == IDC_RULE_TOS_CHECK ? IDC_RULE_DSCP_CHECK : IDC_RULE_TOS_CHECK;
            d.ClickButton(first);
            d.ClickButton(last);
            EXPECT_TRUE(d.IsChecked(last));
            EXPECT_FALSE(d.IsChecked(first));
            const bool dscpLast = last == IDC_RULE_DSCP_CHECK;
            EXPECT_EQ(dscpLast, IsWindowEnabled(d.Control(IDC_RULE_REPLACE_DSCP)) != FALSE);
            EXPECT_EQ(!dscpLast, IsWindowEnabled(d.Control(IDC_RULE_REPLACE_TOS)) != FALSE);
            d.ClickButton(last);  // unchecked again
        }
        d.Screenshot("rule-page-11-ethernet");
    });
}

// The staging file and the pending list never differ: a value the file cannot hold ("?") is
// refused at Add with the input kept, so a rule deleted earlier is not what "Add rule" sends;
// a rule already pending is skipped without a word before the empty-field messages; a
// pending rule loaded back sets "ALL Ports" and "No Limit" by its own values, so the next Add
// reads what is shown; "Add rule" names packet content as the staged lists do; a rule deleted
// before Back is not sent either.
TEST_F(RulePageGui, StagedRulesAreThePendingListAndLoadedRulesSetTheirBoxes) {
    RulePage({{"127.0.0.1:1", "TVG5240-10"}}, 1, E, [&](WizardDriver& d) {
        HWND list = d.Control(IDC_RULE_LIST);
        d.TypeText(IDC_RULE_ACCESS_ID, "7");
        d.TypeText(IDC_RULE_PORTS, "1-2");
        d.TypeText(IDC_RULE_VLAN, "a");
        d.ClickButton(IDC_RULE_ADD);
        ASSERT_EQ(1, d.RowCount(list));
        d.Next();
        ASSERT_EQ(acl::pages::kPageRuleApply, d.ActiveIndex());
        m_wizard->SetActivePage(E);
        d.Settle();
        d.ClickCell(list, 0, 0);  // loads its values back
        d.ClickButton(IDC_RULE_DELETE);
        ASSERT_EQ(0, d.RowCount(list));
        for (int id : {IDC_RULE_ACCESS_ID, IDC_RULE_PORTS, IDC_RULE_VLAN}) SetWindowTextA(d.Control(id), "");
        d.TypeText(IDC_RULE_ACCESS_ID, "8");
        d.TypeText(IDC_RULE_PORTS, "3");
        d.TypeText(IDC_RULE_VLAN, "v?1");
        d.ClickButton(IDC_RULE_ADD);
        EXPECT_EQ(std::vector<std::string>{"A field contains \"?\" or a line break, which can not be kept until the "
                                           "apply! Please change it."},
                  d.TakeTexts());
        EXPECT_EQ(0, d.RowCount(list));
        EXPECT_EQ("v?1", d.Text(IDC_RULE_VLAN)) << "the input stays";
        d.Next();
        ASSERT_EQ(acl::pages::kPageRuleApply, d.ActiveIndex());
        EXPECT_EQ(0, d.RowCount(d.Control(IDC_RAPPLY_RULE_LIST))) << "the deleted rule is not staged";

        m_wizard->SetActivePage(E);
        d.Settle();
        d.TypeText(IDC_RULE_ACCESS_ID, "7");
        d.TypeText(IDC_RULE_PORTS, "1-2");
        d.ClickButton(IDC_RULE_ADD);
        ASSERT_EQ(1, d.RowCount(list));
        SetWindowTextA(d.Control(IDC_RULE_PORTS), "");
        d.ClickButton(IDC_RULE_ADD);
        EXPECT_TRUE(d.TakeTexts().empty()) << "pending already: nothing said, not even about the empty ports";
        d.ClickButton(IDC_RULE_ALL_PORTS);
        d.ClickCell(list, 0, 0);
        EXPECT_FALSE(d.IsChecked(IDC_RULE_ALL_PORTS));
        EXPECT_TRUE(d.IsEnabled(IDC_RULE_PORTS));
        EXPECT_EQ("1-2", d.Text(IDC_RULE_PORTS));
        d.Screenshot("rule-page-11-loaded-back");

        m_wizard->SetActivePage(V6);
        d.Settle();
        list = d.Control(IDC_RULE_LIST);
        d.TypeText(IDC_RULE_ACCESS_ID, "5");
        d.TypeText(IDC_RULE_PORTS, "1");
        d.TypeText(IDC_RULE_RX, "100");
        d.ClickButton(IDC_RULE_ADD);
        d.ClickButton(IDC_RULE_NO_LIMIT);
        EXPECT_FALSE(d.IsEnabled(IDC_RULE_RX));
        d.ClickCell(list, 0, 0);
        EXPECT_FALSE(d.IsChecked(IDC_RULE_NO_LIMIT));
        EXPECT_TRUE(d.IsEnabled(IDC_RULE_RX));
        SetWindowTextA(d.Control(IDC_RULE_ACCESS_ID), "");
        d.TypeText(IDC_RULE_ACCESS_ID, "6");
        d.ClickButton(IDC_RULE_ADD);
        EXPECT_TRUE(d.TakeTexts().empty());
        ASSERT_EQ(2, d.RowCount(list));
        const int columns = Header_GetItemCount(ListView_GetHeader(list));
        for (int c = 2; c < columns; ++c)
            EXPECT_EQ(d.CellText(list, 0, c), d.CellText(list, 1, c)) << "the second rule takes what is shown, column " << c;
        const Strings second = [&] {
            Strings cells;
            for (int c = 0; c < columns; ++c) cells.push_back(d.CellText(list, 1, c));
            return cells;
        }();
        EXPECT_NE(std::find(second.begin(), second.end(), "100"), second.end()) << "its Rx Rate";

        m_wizard->SetActivePage(PC);
        d.Settle();
        ASSERT_NO_FATAL_FAILURE(AddOneAndGoOn(d, "9"));
        EXPECT_EQ("Packet content", d.CellText(d.Control(IDC_RAPPLY_RULE_LIST), 0, 2));
        EXPECT_TRUE(d.TakeTexts().empty());

        // Deleted, then left backwards to choose another profile: the rule is not sent.
        d.Back();
        ASSERT_EQ(PC, d.ActiveIndex());
        d.ClickCell(d.Control(IDC_RULE_LIST), 0, 0);
        d.ClickButton(IDC_RULE_DELETE);
        d.Back();
        ASSERT_EQ(acl::pages::kPageSelectProfile, d.ActiveIndex());
        m_wizard->SetActivePage(V4);
        d.Settle();
        ASSERT_NO_FATAL_FAILURE(AddOneAndGoOn(d, "3"));
        EXPECT_EQ("3", d.CellText(d.Control(IDC_RAPPLY_RULE_LIST), 0, 1)) << "only the rule added last";
    });
}

// The result words of rule rows: a silent switch, a good one, one refusing the record, one
// not answering the closing request; only the CPU ACL tells that last one apart ("fail").
// Finish, or Cancel, then deletes the rule staging files and no others.
TEST_F(RulePageGui, ApplyWordsPerSwitchAndASecondApplySendsOnlyTheClosingRequest) {
    for (long kind : {1L, 2L}) {
        SCOPED_TRACE(kind == 1 ? "ACL" : "CPU ACL");
        sim::Faults silent, refuse, drop;
        silent.silent = true;
        refuse.refuseSets = {1};
        drop.dropSets = {2};  // the record is answered, the closing request is not
        const int host = static_cast<int>(kind) * 4;
        SimAgent s(host, "TVG5690", silent), a(host + 1, "TVG5690"), r(host + 2, "TVG5690", refuse),
            c(host + 3, "TVG5690", drop);
        ASSERT_TRUE(s.ok() && a.ok() && r.ok() && c.ok());
        const std::vector<std::pair<std::string, std::string>> targets = {
            {s.address(), "TVG5690"}, {a.address(), "TVG5690"}, {r.address(), "TVG5690"}, {c.address(), "TVG5690"}};
        RulePage(targets, kind, E, [&](WizardDriver& d) {
            ASSERT_NO_FATAL_FAILURE(AddOneAndGoOn(d, "7"));
            EXPECT_EQ(kind == 1 ? "Rule" : "CPU Rule", d.Text(IDC_RAPPLY_GROUP_RULE));
            d.ClickButton(IDC_RAPPLY_APPLY);
            HWND switches = d.Control(IDC_RAPPLY_SWITCH_LIST);
            ASSERT_TRUE(d.WaitFor([&] { return !d.CellText(switches, 3, 2).empty(); }, 30000));
            const std::vector<std::string> words = {"Fail", "Succeed", "Fail", kind == 1 ? "Fail" : "fail"};
            for (int i = 0; i < 4; ++i) EXPECT_EQ(words[static_cast<size_t>(i)], d.CellText(switches, i, 2)) << i;
            EXPECT_EQ(1u, r.sets().size()) << "the refusing switch gets no closing request";
            d.Screenshot("rule-page-16-applied-" + std::to_string(kind));
            a.clearSets();
            d.ClickButton(IDC_RAPPLY_APPLY);
            ASSERT_TRUE(d.WaitFor([&] { return !a.sets().empty(); }, 30000));
            d.Settle();
            EXPECT_EQ(1u, a.sets().size()) << "no record the second time, only the closing request";
            for (const char* file : {"ACLEthrule.ini", "ACLEthernet.ini"}) sentrel_test::WriteTextFile(m_folder.File(file), "[Section1]\nItem1=0\n");
            d.PressButton(kind == 1 ? PSBTN_FINISH : PSBTN_CANCEL);
            EXPECT_TRUE(d.WaitFor([&] { return !d.IsOpen(); }));
        });
        EXPECT_FALSE(m_folder.Exists("ACLEthrule.ini"));
        EXPECT_TRUE(m_folder.Exists("ACLEthernet.ini")) << "a profile file is the Confirmation Page's";
    }
}

}  // namespace
