// Page 3 `CACLStep2` ("Add profile"): the profile ID and type to create,
// and the profiles already on the chosen device, read by the ACL core's reader on a
// worker thread. The worker never touches a window: it posts each row to the page, which
// inserts it on the user-interface thread. Leaving the page asks the reader to stop; the
// page's destruction stops it and waits at most 3000 ms.
#pragma once
#include <array>
#include <string>
#include <vector>

#include "acl/acl_device.h"
#include "acl/wizard/page_base.h"
#include "acl/wizard/switch_reader.h"
#include "controls/xlist_ctrl.h"

namespace acl::wizard {

class CACLStep2 : public CACLPage {
public:
    CACLStep2();
    ~CACLStep2() override;

    // Whether the reader of an ACL kind (1 ordinary, 2 CPU) still runs (tests).
    bool IsReaderRunning(int nACLKind) const;
    // The rows read so far for the current device, by type.
    const std::array<AclRecordList, 4>& HiddenTables() const { return m_aTables; }

protected:
    acl::pages::NavInput MakeNavInput() const override;
    BOOL OnInitDialog() override;
    BOOL OnSetActive() override;
    BOOL OnKillActive() override;
    LRESULT OnWizardNext() override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    BOOL OnNotify(const NMHDR* hdr, LRESULT* pResult) override;
    BOOL OnMessage(UINT msg, WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;
    void OnDestroy() override;

private:
    void ApplyModelTable();
    void ShowTypeLists();
    void SelectDevice(int index);
    void StartReader();
    void OnReaderRow(const AclRecord& record, AclType type, const AclSummaryLine& line);
    void RemoveUsedProfileIds();
    void ShowDetails(int row);

    int m_nProfileChoice = 1;  // "Ethernet ACL" (1) is checked at start
    long m_nACLKind = 1;
    AclTarget m_device;        // the current device
    int m_nProfileIds = 0;     // N of the model table
    std::string m_strSelProfileID, m_strSelTypeName;
    controls::CXListCtrl m_profileList;
    controls::CXListCtrl m_details;  // "ACL Profile Details" of the clicked profile
    acl::pages::SortToggle m_sort;
    std::array<AclRecordList, 4> m_aTables{};  // the hidden tables, by AclType
    std::array<SwitchReader, 2> m_readers;  // one slot per ACL kind (index kind - 1)
};

}  // namespace acl::wizard
