// Resource IDs of the rule-creation pages: "Add Rules:Select Profile", the four rule pages
// (which share the IDs of their common fields) and "Add rule". Strings 700-799, controls
// 1300-1429.
#pragma once

// Messages and texts of the rule pages.
#define IDS_MSG_INPUT_PORT_ERROR     700   // "Input port error!"
#define IDS_MSG_PROFILES_READING     701   // Next while the device's profiles are still read
#define IDS_RULE_ACTION_FIRST        702   // 702-704: "Permit", "Mirror", "Deny"
#define IDS_RULE_GROUP_FIRST         705   // 705-708: the group titles by rule type
#define IDS_RULE_APPLY_GROUP         709   // "Rule"
#define IDS_RULE_APPLY_CPU_GROUP     710   // "CPU Rule"
#define IDS_RULE_AREA_FIRST          711   // 711-715: protocol area titles, ICMP to ProtocolID
#define IDS_RULE_LABEL_TYPE          716
#define IDS_RULE_LABEL_CODE          717
#define IDS_RULE_LABEL_SRC_PORT      718
#define IDS_RULE_LABEL_DST_PORT      719
#define IDS_RULE_LABEL_PROTOCOL_ID   720
#define IDS_RULE_LABEL_USER_MASK     721
#define IDS_RULE_EX_255              722
#define IDS_RULE_EX_65535            723
#define IDS_RULE_EX_FFFFFFFF         724
#define IDS_RULE_CHUNK_FIRST         725   // 725-728: "Chunk 1" .. "Chunk 4"
#define IDS_RULE_ITEM_FIRST          730   // 730-734: "Content Item1" .. "Content Item5"
#define IDS_RULE_OFFSET_FIRST        735   // 735-739: "offset 0-15" .. "offset 64-79"
#define IDS_RULE_LABEL_MASK          740
#define IDS_RULE_LABEL_VALUE         741
#define IDS_RULE_LABEL_OFFSET        742
// Pending-rule column headers (also the names of the rule details on "Add rule").
#define IDS_RCOL_ACCESS_ID           750
#define IDS_RCOL_VLAN                751
#define IDS_RCOL_SRC_MAC             752
#define IDS_RCOL_DST_MAC             753
#define IDS_RCOL_8021P               754
#define IDS_RCOL_ETHERTYPE           755
#define IDS_RCOL_PRIORITY_ENABLED    756
#define IDS_RCOL_PRIORITY            757
#define IDS_RCOL_REPLACE_DSCP        758
#define IDS_RCOL_PERMIT              759
#define IDS_RCOL_PORTS               760
#define IDS_RCOL_TOS                 761
#define IDS_RCOL_RX_RATE             762
#define IDS_RCOL_SRC_IP              763
#define IDS_RCOL_DST_IP              764
#define IDS_RCOL_DSCP                765
#define IDS_RCOL_PROTOCOL            766
#define IDS_RCOL_ICMP_TYPE           767
#define IDS_RCOL_ICMP_CODE           768
#define IDS_RCOL_SRC_PORT            769
#define IDS_RCOL_DST_PORT            770
#define IDS_RCOL_FLAG_BITS           771
#define IDS_RCOL_PROTOCOL_ID         772
#define IDS_RCOL_USER_MASK           773
#define IDS_RCOL_REPLACE_DSCP_ON     774
#define IDS_RCOL_CLASS               775
#define IDS_RCOL_FLOW_LABEL          776
#define IDS_RCOL_SRC_IPV6            777
#define IDS_RCOL_DST_IPV6            778
#define IDS_RCOL_OFFSET_FIRST        779   // 779-783: "Offset1" .. "Offset5"
#define IDS_RCOL_DATA_FIRST          784   // 784-788: "Data1" .. "Data5"
#define IDS_RCOL_TYPE                789   // "Add rule": the rule's type
#define IDS_RCOL_ACTION              790   // "Add rule": the action in words
#define IDS_RULE_DETAILS_HEADER      791   // "ACL Rule Details"

// The rule pages' common fields (the same IDs on all four templates).
#define IDC_RULE_GROUP               1300
#define IDC_RULE_ACCESS_LABEL        1301  // "Access ID(1-200)", set per model
#define IDC_RULE_ACCESS_ID           1302
#define IDC_RULE_ACTION              1304  // "Permit", "Mirror", "Deny"
#define IDC_RULE_PORTS               1306
#define IDC_RULE_ALL_PORTS           1308  // "ALL Ports"
#define IDC_RULE_RX_LABEL            1309  // "Rx Rate  (1-156249)", set per model
#define IDC_RULE_RX                  1310
#define IDC_RULE_NO_LIMIT            1311  // IPv6: "No Limit"
#define IDC_RULE_PRIORITY_CHECK      1312
#define IDC_RULE_PRIORITY            1313
#define IDC_RULE_DSCP_CHECK          1314  // "Replace DSCP  (0-63)"
#define IDC_RULE_REPLACE_DSCP        1315
#define IDC_RULE_TOS_CHECK           1316  // "Replace ToS Precedence  (0-7)"
#define IDC_RULE_REPLACE_TOS         1317
#define IDC_RULE_ADD                 1318
#define IDC_RULE_DELETE              1319
#define IDC_RULE_LIST                1320  // the pending rules
#define IDC_RULE_PROFILE_LIST        1321  // hidden: the profile of each pending rule
// Ethernet and IPv4
#define IDC_RULE_VLAN                1331
#define IDC_RULE_8021P               1333
#define IDC_RULE_SRC_MAC             1335
#define IDC_RULE_SRC_MAC_EXAMPLE     1336
#define IDC_RULE_DST_MAC             1338
#define IDC_RULE_DST_MAC_EXAMPLE     1339
#define IDC_RULE_ETHERTYPE           1341
#define IDC_RULE_SRC_IP              1343
#define IDC_RULE_SRC_IP_EXAMPLE      1344
#define IDC_RULE_DST_IP              1346
#define IDC_RULE_DST_IP_EXAMPLE      1347
#define IDC_RULE_DSCP                1349
#define IDC_RULE_PROTO_GROUP         1351  // the protocol area, titled by the profile
#define IDC_RULE_FIRST_LABEL         1352
#define IDC_RULE_FIRST               1353
#define IDC_RULE_FIRST_EXAMPLE       1354
#define IDC_RULE_SECOND_LABEL        1355
#define IDC_RULE_SECOND              1356
#define IDC_RULE_SECOND_EXAMPLE      1357
#define IDC_RULE_FLAG_LABEL          1358  // "Flag Bits"
#define IDC_RULE_FLAG_FIRST          1359  // 1359-1364: "URG", "ACK", "PSH", "RST", "SYN", "FIN"
// IPv6
#define IDC_RULE_CLASS               1366
#define IDC_RULE_FLOW_LABEL          1369
#define IDC_RULE_SRC_IPV6            1371
#define IDC_RULE_DST_IPV6            1373
// Packet content: five rows of a check box, an offset and the content
#define IDC_RULE_ITEM_FIRST          1380  // 1380-1384
#define IDC_RULE_ITEM_OFFSET_FIRST   1385  // 1385-1389
#define IDC_RULE_ITEM_DATA_FIRST     1390  // 1390-1394
#define IDC_RULE_OFFSET_LABEL        1395
#define IDC_RULE_VALUE_LABEL         1396

// "Add Rules:Select Profile" (CACLStep4)
#define IDC_STEP4_GROUP              1400  // "Please select profile"
#define IDC_STEP4_DEVICE             1402
#define IDC_STEP4_PROFILE_LIST       1403
#define IDC_STEP4_DETAILS            1404

// "Add rule" (CACLRuleApply)
#define IDC_RAPPLY_SWITCH_LIST       1411
#define IDC_RAPPLY_GROUP_RULE        1412  // "Rule" / "CPU Rule"
#define IDC_RAPPLY_RULE_LIST         1413
#define IDC_RAPPLY_DETAILS           1414
#define IDC_RAPPLY_PROGRESS          1415
#define IDC_RAPPLY_APPLY             1416  // "Apply to Switch"
#define IDC_RAPPLY_NEXT_DEVICE       1417  // "Configure Next Device"
