// What both confirmation pages ("Confirmation Page" and "Add rule") share: the switch list,
// the pending list read back from the page's staging files with the details of a clicked row,
// "Apply to Switch", "Configure Next Device", and Finish and Cancel deleting the page's
// staging files. The apply runs the ACL core's apply on the user-interface thread with the
// wait cursor and the progress bar, writes each switch's result word, deletes the staging
// files and sets the page's applied flag. What was sent leaves the page's lists, so a second
// Apply sends only the closing request.
#pragma once
#include <windows.h>

#include <array>
#include <span>
#include <string>

#include "acl/acl_record.h"
#include "acl/wizard/page_base.h"
#include "acl/wizard/pending_columns.h"
#include "controls/xlist_ctrl.h"

namespace acl::wizard {

class CApplyPage : public CACLPage {
public:
    // The page's controls.
    struct Controls {
        int switchList, pendingList, details, progress, apply, nextDevice;
    };

protected:
    CApplyPage(int nIndex, UINT nIDTemplate, AclKind kind, const Controls& controls);

    BOOL OnInitDialog() override;
    BOOL OnSetActive() override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    BOOL OnNotify(const NMHDR* hdr, LRESULT* pResult) override;
    BOOL OnWizardFinish() override;
    void OnCancel() override;  // whenever the wizard is cancelled after the page was created
    void OnDestroy() override;

    // The pending list's and the details list's columns, and the pending list's group.
    virtual void SetUpLists() = 0;
    // Reads the staging files of the ACL kind into m_lists and lists each record (AddRow).
    virtual void ReadStaged(const WizardState& wizard, AclOwner owner) = 0;
    // The header of each cell of a record in the details; 0 leaves the cell out.
    virtual std::span<const PendingColumn> DetailColumns(AclType type, const AclRecord& record) const = 0;
    virtual void DeleteStaged() const = 0;
    virtual BOOL OnPageCommand(int) { return FALSE; }
    virtual BOOL OnPendingListNotify(const NMHDR*, LRESULT*) { return FALSE; }

    // A pending-list row for record `index` of `type`'s list; the row keeps which record it
    // shows through sorting.
    int AddRow(AclType type, size_t index, const std::string& firstColumn);
    static AclOwner OwnerOf(const WizardState& wizard) {
        return wizard.m_nACLKind == 1 ? AclOwner::kAcl : AclOwner::kCpu;
    }

    std::array<AclRecordList, 4> m_lists{};  // the hidden lists, by AclType: what Apply sends
    controls::CXListCtrl m_switchList;
    controls::CXListCtrl m_pendingList;
    controls::CXListCtrl m_details;

private:
    void Apply();
    void ShowDetails(int row);

    AclKind m_kind;
    Controls m_controls;
};

}  // namespace acl::wizard
