// What the four profile definition pages (`CACLSTEP_ETH`, `CACLStep5`,
// `CACLStep_IPV6`, `CACLStep_Packet`) share: the pending list (one row per profile ID, living
// as long as the wizard, emptied on the next activation after an apply), Add (a profile ID
// already pending is skipped without a word; the ACL core validates and builds the record),
// Delete, and Next (the type's staging file, `m_nProfileType`, then the
// confirmation page). A page supplies its columns, reads its fields and sets up its controls.
#pragma once
#include <span>
#include <string>

#include "acl/acl_record.h"
#include "acl/wizard/page_base.h"
#include "acl/wizard/pending_columns.h"
#include "controls/xlist_ctrl.h"

namespace acl::wizard {

class CProfileDefinitionPage : public CACLPage {
public:
    // The pending rows (tests; the list control shows the same rows).
    const AclRecordList& Pending() const { return m_pending; }

protected:
    struct Ids {
        int list, add, remove;  // the pending list, "Add" and "Delete"
    };
    CProfileDefinitionPage(int nIndex, UINT nIDTemplate, AclType type, Ids ids);

    // The model (type of the first target) and ACL kind copied on activation.
    const std::string& Model() const { return m_strModel; }
    long ACLKind() const { return m_nACLKind; }
    AclOwner Owner() const { return m_nACLKind == 1 ? AclOwner::kAcl : AclOwner::kCpu; }
    controls::CXListCtrl& PendingList() { return m_list; }

    // The page's part: columns of its pending list (set up again when they change), its field
    // texts for Add, its own set-up on activation, and its field commands.
    virtual std::span<const PendingColumn> Columns() const = 0;
    virtual ProfileFields ReadFields() const = 0;
    virtual void OnActivate() {}
    virtual BOOL OnFieldCommand(int /*id*/, int /*code*/) { return FALSE; }
    virtual void OnPendingRowClicked(int /*row*/) {}
    // A row was appended for this record (a page may fill list cells past the record's).
    virtual void OnRowAdded(int /*row*/, const AclRecord& /*record*/) {}
    // A page's own checks of its fields on Add, after the MAC rule (the IPv6
    // and packet-content masks): the string ID of the message to show (no
    // row, the input stays), or 0.
    virtual UINT CheckFields(const ProfileFields& /*fields*/) const { return 0; }
    // Sets up the pending list's columns from Columns() (OnInitDialog, and when a page switches
    // layout); empties the list and the pending rows.
    void ResetPendingList();

    BOOL OnInitDialog() override;
    BOOL OnSetActive() override;
    LRESULT OnWizardNext() override;
    LRESULT OnWizardBack() override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    BOOL OnNotify(const NMHDR* hdr, LRESULT* pResult) override;
    void OnDestroy() override;

private:
    void OnAdd();
    void OnDelete();
    int ShowRow(const AclRecord& record);
    bool StagePending();

    AclType m_type;
    Ids m_ids;
    std::string m_strModel;
    long m_nACLKind = 1;
    AclRecordList m_pending;
    controls::CXListCtrl m_list;
};

}  // namespace acl::wizard
