// What the four rule pages (`CACLAddrule`, `CACLAddIPv4Rule`, `CACLAddIPv6Rule`,
// `CACLAddPacketRule`) share: the common fields (Access ID, action, ports with "ALL Ports",
// Rx Rate, priority, Replace DSCP and Replace ToS Precedence), the model's labels and rows, the
// port check while typing, Add (the ACL core checks and builds the row; a rule already pending
// under the same profile and Access ID is skipped without a word), the hidden list of each
// rule's profile, Delete, a click loading a rule back, and Next (the rule staging file and
// `m_nRuleType`). The pending rules of each ACL kind live as long as the wizard.
#pragma once
#include <array>
#include <span>
#include <string>

#include "acl/acl_record.h"
#include "acl/rule_form.h"
#include "acl/wizard/page_base.h"
#include "controls/xlist_ctrl.h"

namespace acl::wizard {

class CRuleDefinitionPage : public CACLPage {
public:
    // The pending rules of the ACL kind shown (tests; the list control shows the same rows).
    const AclRecordList& Pending() const { return m_pending[OwnerIndex()]; }

protected:
    CRuleDefinitionPage(int nIndex, UINT nIDTemplate, AclType type);

    const std::string& Model() const { return m_strModel; }
    AclOwner Owner() const { return m_nACLKind == 1 ? AclOwner::kAcl : AclOwner::kCpu; }

    // The page's part: the chosen profile's fields (the sheet's copy), the enabling of its own
    // fields by them, its fields into and out of RuleFields, and its own commands.
    virtual std::span<const std::string> ChosenProfile() const = 0;
    virtual void EnableTypeFields(const acl::RuleEnabling& enabling) = 0;
    virtual void ReadTypeFields(RuleFields& fields) const = 0;
    virtual void WriteTypeFields(const RuleFields& fields) = 0;
    virtual void ClearTypeFields() = 0;
    virtual BOOL OnTypeCommand(int /*id*/, int /*code*/) { return FALSE; }
    // The action selected on activation: the first ("Permit") unless a page says otherwise.
    virtual int InitialAction() const { return 0; }

    void SetText(int id, const std::string& text) const { SetWindowTextA(GetDlgItem(id), text.c_str()); }
    std::string Text(int id) const;
    void Enable(int id, bool enable) const { EnableWindow(GetDlgItem(id), enable); }
    void Show(int id, bool show) const { ShowWindow(GetDlgItem(id), show ? SW_SHOW : SW_HIDE); }
    bool Checked(int id) const;
    void Check(int id, bool checked) const;

    BOOL OnInitDialog() override;
    BOOL OnSetActive() override;
    LRESULT OnWizardNext() override;
    LRESULT OnWizardBack() override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    BOOL OnNotify(const NMHDR* hdr, LRESULT* pResult) override;
    void OnDestroy() override;

private:
    size_t OwnerIndex() const { return m_nACLKind == 1 ? 0 : 1; }
    void ShowPendingList();
    void ApplyModel();
    void ClearFields();
    void OnPortsChanged();
    void OnAdd();
    void OnDelete();
    void LoadRow(int row);
    bool StagePending();
    RuleFields ReadFields() const;

    AclType m_type;
    std::string m_strModel;
    long m_nACLKind = 1;
    long m_nShownKind = 0;  // the kind whose rows and columns the list shows
    bool m_bInPortCheck = false;
    std::array<AclRecordList, 2> m_pending{};   // by ACL kind
    std::array<AclRecordList, 2> m_profiles{};  // the profile of each pending rule, row for row
    controls::CXListCtrl m_list;
    controls::CXListCtrl m_profileList;         // hidden
};

}  // namespace acl::wizard
