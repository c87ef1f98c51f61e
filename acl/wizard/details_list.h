// The details list beside a profile or rule list: two columns, a label in red (cyan in the
// title row) and its value in black on the window colour, framed by grid lines. Filled from
// the hidden tables that a SwitchReader filled when the user clicks a row.
#pragma once
#include <windows.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "acl/acl_device.h"
#include "controls/xlist_ctrl.h"

namespace acl::wizard {

// Binds the list and makes its two columns: `idsHeader` ("ACL Profile Details" unless a rule's
// list says "ACL Rule Details") and " ".
void SetUpDetailsList(controls::CXListCtrl& list, HWND hwndList, int labelWidth, int valueWidth, UINT idsHeader = 0);
// Replaces the rows with these (label, value) pairs and shows the list.
void FillDetailsList(controls::CXListCtrl& list, const std::vector<std::pair<std::string, std::string>>& rows);
// The record of type word `typeWord` ("Ethernet", "IPv4", "IPv6", "Packet Content") whose
// cell 0 is `profileId` (and cell 1 `accessId`, when given), or nullptr.
const AclRecord* FindRecord(const std::array<AclRecordList, 4>& tables, const std::string& typeWord,
                            const std::string& profileId, const std::string& accessId = {});
// The details of a profile read from a device of `modelText`, as "Add profile" shows them;
// false (the list unchanged) when the profile is not in the tables.
bool ShowProfileDetails(controls::CXListCtrl& list, const std::array<AclRecordList, 4>& tables,
                        const std::string& profileId, const std::string& typeWord, AclOwner owner,
                        const std::string& modelText);

}  // namespace acl::wizard
