// Page 13 `CACLModifyRule` ("Modify Rule", "Modify CPU rule"): the profiles of a target switch
// as on "Modify Profile"; a clicked profile's rules, read by a second SwitchReader slot from
// the rule table of its type, in the "Rule" group with their details; "Delete" and
// "Delete All" act on the rules.
#pragma once
#include "acl/wizard/modify_page_base.h"

namespace acl::wizard {

class CACLModifyRule : public CACLModifyPage {
public:
    CACLModifyRule();
    bool IsRuleReaderRunning() const override { return m_ruleReader.IsRunning(); }

protected:
    BOOL OnInitDialog() override;
    BOOL OnSetActive() override;
    void OnDestroy() override;
    std::vector<SwitchReader*> Readers() override { return {&m_profileReader, &m_ruleReader}; }
    void OnProfileClicked() override;
    void OnProfilesEmptied() override;
    void OnDelete() override;
    void OnDeleteAll() override;
    BOOL OnListNotify(const NMHDR* hdr, LRESULT* pResult) override;
    void OnSelectionCleared(HWND list) override;

private:
    void ClearRules();
    void ShowRuleDetails(int row);
    void DeleteRules(bool bAll);

    std::string m_strRuleProfileID, m_strRuleTypeName;  // the profile whose rules are listed
    std::string m_strSelAccessID;
    controls::CXListCtrl m_ruleList;
    controls::CXListCtrl m_ruleDetails;
    std::array<AclRecordList, 4> m_aRules{};  // the hidden rule tables, by AclType
    SwitchReader m_ruleReader;
};

}  // namespace acl::wizard
