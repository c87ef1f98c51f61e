// Part 5.1, page 7 `CACLSTEP_ETH` ("Ethernet ACL Settings", Part 5.2): the Ethernet filtering
// masks, Add and Delete, and the pending list (one row per profile ID), which lives as long as
// the wizard and is emptied on the next activation after an apply. Records are the ACL core's
// (ValidateProfile, BuildProfile, AddProfile); Next writes them to "\ACLEthernet.ini"
// (Part 4.5) and goes on to the confirmation page through page 9.
#pragma once
#include <string>

#include "acl/acl_record.h"
#include "acl/wizard/acl_page.h"
#include "controls/xlist_ctrl.h"

namespace acl::wizard {

class CACLSTEP_ETH : public CACLPage {
public:
    CACLSTEP_ETH();

    // The pending rows (tests; the list control shows the same rows).
    const AclRecordList& Pending() const { return m_pending; }

protected:
    BOOL OnInitDialog() override;
    BOOL OnSetActive() override;
    LRESULT OnWizardNext() override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    BOOL OnNotify(const NMHDR* hdr, LRESULT* pResult) override;
    void OnDestroy() override;

private:
    void OnAdd();
    void OnDelete();
    void LoadRow(int row);
    void EnableMacEdits();
    void ClearMasks();

    std::string m_strModel;
    long m_nACLKind = 1;
    AclRecordList m_pending;
    controls::CXListCtrl m_list;
};

}  // namespace acl::wizard
