// What "Modify Profile" and "Modify Rule" share: the "Access Profile List" group with the
// "Device" drop-down and the profile list of the current device (read by a SwitchReader
// slot), the details of a clicked profile, "Delete" and "Delete All", and the line that says
// when the switch kept rows it was asked to delete. Each deletion is one SET of the row
// status 6 (the ACL core's DeleteRow), sent at once; a row goes only when the switch confirmed
// (one refused or unanswered stays, so the list never hides what the switch still holds).
#pragma once
#include <array>
#include <functional>
#include <string>
#include <vector>

#include "acl/acl_device.h"
#include "acl/wizard/page_base.h"
#include "acl/wizard/switch_reader.h"
#include "controls/xlist_ctrl.h"

namespace acl::wizard {

class CACLModifyPage : public CACLPage {
public:
    CACLModifyPage(int nIndex, UINT nIDTemplate) : CACLPage(nIndex, nIDTemplate, kBackFinish) {}

    // Whether the profile reader (or the rule reader) still runs (tests).
    bool IsProfileReaderRunning() const { return m_profileReader.IsRunning(); }
    virtual bool IsRuleReaderRunning() const { return false; }

protected:
    BOOL OnInitDialog() override;
    BOOL OnSetActive() override;
    BOOL OnKillActive() override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    BOOL OnNotify(const NMHDR* hdr, LRESULT* pResult) override;
    BOOL OnMessage(UINT msg, WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;
    void OnDestroy() override;

    // Every reader slot of the page (stopped together on leave and close).
    virtual std::vector<SwitchReader*> Readers() { return {&m_profileReader}; }
    // A profile's details are shown (clicked or selected by key): the rule page reads its rules.
    virtual void OnProfileClicked() {}
    // The profile list was emptied for a new reading, or no profile's details are shown.
    virtual void OnProfilesEmptied() {}
    // "Delete" and "Delete All": the profiles here; the rule page deletes rules.
    virtual void OnDelete();
    virtual void OnDeleteAll();
    // Other notifications of the page's lists.
    virtual BOOL OnListNotify(const NMHDR*, LRESULT*) { return FALSE; }

    AclOwner Owner() const { return m_nACLKind == 1 ? AclOwner::kAcl : AclOwner::kCpu; }
    // One deletion: the SET of row status 6 to the table of `typeWord`, then the 100 ms pause.
    // True when the switch confirmed it.
    bool DeleteOnSwitch(AclKind kind, const std::string& typeWord, const std::string& profileId,
                        const std::string& accessId = {});
    // "Delete" (the row `shown`, whose details are shown; -1: none, nothing is sent) or "Delete
    // All" (every row, in list order) on `list`, with the wait cursor: `send` deletes a row on
    // the switch, and a row it confirmed leaves the list after `forget` dropped its record;
    // the details list is emptied, no row stays selected, and the line under the lists says
    // how many rows the switch kept.
    void DeleteRows(controls::CXListCtrl& list, controls::CXListCtrl& details, bool bAll, int shown,
                    const std::function<bool(int row)>& send, const std::function<void(int row)>& forget);
    // The line under the lists: empty when every deletion was confirmed.
    void ReportKept(int nKept);
    // What a list notification says of a row's selection; a row that lost it is looked at
    // again (OnSelectionCleared) once the selection has settled.
    enum class SelectionMove { kNone, kSelected, kDeselected };
    static SelectionMove SelectionChange(const NMHDR* hdr);
    // No row of `list` is selected any more: its details are emptied.
    virtual void OnSelectionCleared(HWND list);
    // The row whose `column` holds `text` (and, unless empty, column 1 `typeName`); -1 if none.
    static int FindRow(controls::CXListCtrl& list, int column, const std::string& text,
                       const std::string& typeName = {});
    static void RemoveRecord(std::array<AclRecordList, 4>& tables, const std::string& typeWord,
                             const std::string& profileId, const std::string& accessId = {});

    long m_nACLKind = 1;
    AclTarget m_device;  // the current device
    std::string m_strSelProfileID, m_strSelTypeName;
    controls::CXListCtrl m_profileList;
    controls::CXListCtrl m_details;  // the clicked profile's details
    acl::pages::SortToggle m_sort;
    std::array<AclRecordList, 4> m_aProfiles{};  // the hidden tables, by AclType
    SwitchReader m_profileReader;

private:
    bool m_bInKeyPress = false;     // a key press on the profile list is being handled
    bool m_bClickSelected = false;  // the coming click is the one that selected its row

    void SelectDevice(int index);
    void ShowProfile(int row, bool bAgain = false);
    void StartProfileReader();
    void DeleteProfiles(bool bAll);
};

}  // namespace acl::wizard
