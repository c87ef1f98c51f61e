// Resource identifiers of "Modify Profile" (CACLModifyProfile) and "Modify Rule"
// (CACLModifyRule): strings 900-929, controls 1500-1529.
#pragma once

#define IDS_MODIFY_RULE_CAPTION      900   // "Modify rule"
#define IDS_MODIFY_CPU_RULE_CAPTION  901   // "Modify CPU rule"
#define IDS_MODIFY_GROUP_RULE        902   // "Rule"
#define IDS_MODIFY_COL_ACCESS_ID     903   // "AccessID"
#define IDS_MODIFY_NOT_DELETED       904   // the line under the lists when the switch kept rows
#define IDS_MODIFY_NOT_DELETED_ONE   905
#define IDC_MODIFY_GROUP             1500  // "Access Profile List"
#define IDC_MODIFY_DEVICE_LABEL      1501  // "Device"
#define IDC_MODIFY_DEVICE            1502
#define IDC_MODIFY_PROFILE_LIST      1503
#define IDC_MODIFY_DETAILS           1504  // the clicked profile's details
#define IDC_MODIFY_DELETE            1505  // "Delete" (profiles; on "Modify Rule" rules)
#define IDC_MODIFY_DELETE_ALL        1506  // "Delete All"
#define IDC_MODIFY_STATUS            1507  // what a deletion left on the switch
#define IDC_MODIFY_RULE_GROUP        1508  // "Rule"
#define IDC_MODIFY_RULE_LIST         1509
#define IDC_MODIFY_RULE_DETAILS      1510
