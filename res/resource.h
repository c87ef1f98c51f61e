// Resource identifiers of Sentrel.dll. The host loads the menu, prompt and toolbar texts by
// these numbers through the resource handle, so they stay fixed once released.
#pragma once

#ifndef IDC_STATIC
#define IDC_STATIC (-1)
#endif

// Texts handed to the host.
#define IDS_PROJNAME                100   // "Sentrel": the COM description and message-box title
#define IDS_RADIUS_MENU_PATH        101
#define IDS_RADIUS_MENU_ITEM        102
#define IDS_RADIUS_PROMPT           103
#define IDS_CFG_MENU_PATH           104
#define IDS_CFG_MENU_ITEM           105
#define IDS_CFG_PROMPT              106
#define IDS_TOOLBAR_MENU            107
#define IDS_TOOLBAR_TITLE           108

// Registry key paths and device-list failure.
#define IDS_KEY_SETTINGS            110
#define IDS_KEY_DEVICE_TYPES        111
#define IDS_FAILED_DEVICE_LIST      112
#define IDS_SENTREL_CONFIG          113

// The RADIUS browser command
#define IDS_FAILED_IE_PATH          120

// The wizard's page templates, in page-index order.
#define IDD_ACL_STEP0                200   // page 0, CACLStep0
#define IDD_ACL_STEP1                201   // page 1, CACLStep1
#define IDD_ACL_SELECT               202   // page 2, CACLselect
#define IDD_ACL_STEP2                203   // page 3, CACLStep2
#define IDD_ACL_STEP3                204   // page 4, CACLStep3
#define IDD_ACL_STEP4                205   // page 5, CACLStep4
#define IDD_ACL_STEP5                206   // page 6, CACLStep5
#define IDD_ACL_STEP_ETH             207   // page 7, CACLSTEP_ETH
#define IDD_ACL_STEP_IPV6            208   // page 8, CACLStep_IPV6
#define IDD_ACL_STEP_PACKET          209   // page 9, CACLStep_Packet
#define IDD_ACL_APPLY                210   // page 10, CACLApply
#define IDD_ACL_ADDRULE              211   // page 11, CACLAddrule
#define IDD_ACL_MODIFY_PROFILE       212   // page 12, CACLModifyProfile
#define IDD_ACL_MODIFY_RULE          213   // page 13, CACLModifyRule
#define IDD_ACL_ADD_IPV4_RULE        214   // page 14, CACLAddIPv4Rule
#define IDD_ACL_ADD_IPV6_RULE        215   // page 15, CACLAddIPv6Rule
#define IDD_ACL_RULE_APPLY           216   // page 16, CACLRuleApply
#define IDD_ACL_ADD_PACKET_RULE      217   // page 17, CACLAddPacketRule
#define IDI_ACL_WIZARD               300

// Device list column texts (trailing blanks kept) and the panel's bitmaps.
#define IDS_COL_DEVICE_NAME          130
#define IDS_COL_DEVICE_TYPE          131
#define IDS_COL_DEVICE_IP            132
#define IDS_COL_READ_COMMUNITY       133
#define IDS_COL_WRITE_COMMUNITY      134
#define IDS_COL_DEVICE_ID            135
#define IDB_TREE_IMAGES              310   // 112 x 16, 24-bit, white transparent: 7 tree images
#define IDB_HEADER_CHECKS            311   // 64 x 16, 8-bit, magenta transparent: 4 header images

// The wizard's texts.
#define IDS_ACL                      140   // the sheet's caption and page 1's group title
#define IDS_MSG_SELECT_DEVICE        141
#define IDS_MSG_NO_ACL_FUNCTION      142
#define IDS_MSG_SAME_TYPE            143
#define IDS_MSG_TOO_MANY_DEVICES     144   // more than 10 targets are refused as a whole
#define IDS_MSG_NO_PROFILE           145
#define IDS_ACCESS_PROFILE_LIST      146
#define IDS_CPU_ACCESS_PROFILE_LIST  147
#define IDS_GROUP_CREATE             148
#define IDS_GROUP_MODIFY             149
#define IDS_CREATE_PROFILE           150   // 150-153: the four actions, ordinary ACL
#define IDS_CREATE_RULE              151
#define IDS_MODIFY_PROFILE           152
#define IDS_MODIFY_RULE              153
#define IDS_CREATE_CPU_PROFILE       154   // 154-157: the four actions, CPU ACL
#define IDS_CREATE_CPU_RULE          155
#define IDS_MODIFY_CPU_PROFILE       156
#define IDS_MODIFY_CPU_RULE          157
#define IDS_GROUP_FONT               158   // "Arial": the bold group-title font

// The check-box list
#define IDS_XLISTCTRL_CHECKBOX_CLICKED 160

// "Add profile" (CACLStep2).
#define IDS_STEP2_ADD_ACL_PROFILE    300
#define IDS_STEP2_ADD_CPU_PROFILE_GROUP 301
#define IDS_STEP2_PROFILE_LIST       302
#define IDS_STEP2_CPU_PROFILE_LIST   303
#define IDS_STEP2_CAPTION            304
#define IDS_STEP2_CPU_CAPTION        305
#define IDS_MSG_INPUT_PROFILENAME    306
#define IDS_MSG_SELECT_PROFILE_ID    307
#define IDS_STEP2_COL_PROFILE_ID     308
#define IDS_STEP2_COL_PROFILE_TYPE   309
#define IDS_STEP2_COL_OWNER          310
#define IDS_MSG_INVALID_MAC          311   // Ethernet page

// pending-list column headers of the definition pages ("ProfileID" is
// IDS_STEP2_COL_PROFILE_ID), also the Ethernet hidden-table names of "Add profile" and the
// field names of the Confirmation Page's details (acl/wizard/pending_columns.cpp).
#define IDS_PCOL_USE_VLAN            320
#define IDS_PCOL_MAC_MASK_STATE      321
#define IDS_PCOL_SRC_MAC_MASK        322
#define IDS_PCOL_DST_MAC_MASK        323
#define IDS_PCOL_USE_8021P           324
#define IDS_PCOL_ETHERNET_TYPE       325
#define IDS_PCOL_ETH_ROW_STATUS      326
#define IDS_PCOL_ETH_OWNER           327
#define IDS_PCOL_ETH_UNUSED_ENTRIES  328
#define IDS_PCOL_ADDR_MASK_STATE     329
#define IDS_PCOL_SRC_IP_MASK         330
#define IDS_PCOL_DST_IP_MASK         331
#define IDS_PCOL_USE_DSCP            332
#define IDS_PCOL_USE_PROTO_TYPE      333
#define IDS_PCOL_ICMP_OPTION         334
#define IDS_PCOL_IGMP_OPTION         335
#define IDS_PCOL_TCP_OPTION          336
#define IDS_PCOL_UDP_OPTION          337
#define IDS_PCOL_SRC_PORT_MASK       338
#define IDS_PCOL_DST_PORT_MASK       339
#define IDS_PCOL_TCP_FLAG_BIT        340
#define IDS_PCOL_TCP_FLAG_MASK       341
#define IDS_PCOL_PROTO_ID_OPTION     342
#define IDS_PCOL_PROTO_ID            343
#define IDS_PCOL_PROTO_ID_MASK       344
#define IDS_PCOL_MASK_CLASS          345
#define IDS_PCOL_MASK_FLOW_LABEL     346
#define IDS_PCOL_SRC_IPV6_MASK       347
#define IDS_PCOL_DST_IPV6_MASK       348
#define IDS_PCOL_ID                  349
#define IDS_PCOL_CHUNK1              350
#define IDS_PCOL_CHUNK2              351
#define IDS_PCOL_CHUNK3              352
#define IDS_PCOL_CHUNK4              353
#define IDS_PCOL_VALUE               354
#define IDS_PCOL_MASK                355
#define IDS_PCOL_ROWSTATUS           356
#define IDS_PCOL_PROFILENAME         357
#define IDS_PCOL_PROFILE_ID_BLANK    358
#define IDS_PCOL_OFFSET0             359
#define IDS_PCOL_OFFSET16            360
#define IDS_PCOL_OFFSET32            361
#define IDS_PCOL_OFFSET48            362
#define IDS_PCOL_OFFSET64            363

// 400-403: the IPv6 and packet-content pages' input checks, in res/acl_messages.inc.
#define IDS_MSG_CANNOT_STAGE         404   // a cell the staging file cannot hold ("?", line break)

// IPv4 page: the protocol group titles, also column 22 of its pending rows.
#define IDS_IPV4_GROUP_ICMP          370   // "ICMP"        (m_nFrameOption 3)
#define IDS_IPV4_GROUP_IGMP          371   // "IGMP"        (4)
#define IDS_IPV4_GROUP_TCP           372   // "TCP"         (5)
#define IDS_IPV4_GROUP_UDP           373   // "UDP"         (6)
#define IDS_IPV4_GROUP_PROTOCOL_ID   374   // "Protocol ID" (7)

// "Add profile" details list: its header and the row labels, in the order of
// acl::DetailLabel (acl/profile_details.h): IDS_DETAIL_FIRST + label.
#define IDS_DETAIL_FIRST             430   // 430-467: "Profile ID" ... "ContMaskOffset64to79"
#define IDS_DETAIL_HEADER            468   // "ACL Profile Details"

// Confirmation Page column headers (trailing and leading blanks kept).
#define IDS_APPLY_COL_DEVICE_IP      470
#define IDS_APPLY_COL_DEVICE_NAME    471
#define IDS_APPLY_COL_STATUS         472
#define IDS_COL_PROFILE_DETAILS      473   // also the "Add profile" details list
#define IDS_COL_BLANK                474

// "Add profile"'s initial combo data: the frame list, then the protocol list.
#define IDS_STEP2_FRAME_FIRST        476   // 476-477: "Tagged", "UnTagged"
#define IDS_STEP2_PROTOCOL_FIRST     478   // 478-482: "ICMP", "IGMP", "TCP", "UDP", "ProtocolID"

// Ranges kept for the pages: strings 370-399 IPv4 page, 400-429 IPv6 and
// packet pages, 430-469 "Add profile" details, 475-489 Confirmation Page; controls 1100-1159
// IPv4 page, 1160-1219 IPv6 and packet pages, 1220-1239 "Add profile".

// Controls of the wizard's pages.
#define IDC_STEP0_TREE               1001  // page 0: the device tree
#define IDC_STEP0_LIST               1002  // page 0: the device list
#define IDC_STEP0_TYPES              1003  // page 0: hidden combo of the supported types
#define IDC_STEP1_GROUP              1011
#define IDC_STEP1_ACL                1012  // "Access Profile List", choice 1
#define IDC_STEP1_CPU_ACL            1013  // "CPU Access Profile List", choice 2
#define IDC_SELECT_GROUP_CREATE      1021
#define IDC_SELECT_GROUP_MODIFY      1022
#define IDC_SELECT_CHOICE1           1023  // 1023-1026: choices 1 to 4
#define IDC_SELECT_CHOICE2           1024
#define IDC_SELECT_CHOICE3           1025
#define IDC_SELECT_CHOICE4           1026
#define IDC_STEP2_ETHERNET           1031  // page 3: "Ethernet ACL" (type 1)
#define IDC_STEP2_IPV4               1032  // "IPv4 ACL" (2)
#define IDC_STEP2_IPV6               1033  // "IPv6 ACL" (3)
#define IDC_STEP2_PACKET             1034  // "Packet Content ACL" (4)
#define IDC_STEP2_GROUP_ADD          1035  // "Add ACL profile" / "Add CPU ACL profile"
#define IDC_STEP2_GROUP_LIST         1036  // "Access profile list" / "CPU Access profile list"
#define IDC_STEP2_PROFILE_ID         1037  // "Select Profile ID" drop-down list
#define IDC_STEP2_NAME_LABEL         1038  // "Profile Name"
#define IDC_STEP2_PROFILE_NAME       1039
#define IDC_STEP2_FRAME              1040  // "Tagged", "UnTagged"
#define IDC_STEP2_PROTOCOL           1041  // "ICMP", "IGMP", "TCP", "UDP", "ProtocolID"
#define IDC_STEP2_DEVICE             1042  // "Device": the targets' IP addresses
#define IDC_STEP2_PROFILE_LIST       1043  // the profile list of the chosen device
#define IDC_STEP2_ID_LABEL           1044
#define IDC_STEP2_DEVICE_LABEL       1045
#define IDC_STEP2_DETAILS            1220  // details of the clicked profile (hidden until a click)
#define IDC_ETH_GROUP                1051  // page 7: "Filtering Mask"
#define IDC_ETH_SRC_MAC_CHECK        1052  // "Source MAC Mask"
#define IDC_ETH_SRC_MAC              1053
#define IDC_ETH_DST_MAC_CHECK        1054  // "Destination MAC Mask"
#define IDC_ETH_DST_MAC              1055
#define IDC_ETH_VLAN                 1056  // "VLAN"
#define IDC_ETH_8021P                1057  // "802.1P"
#define IDC_ETH_ETHERNET_TYPE        1058  // "Ethernet Type"
#define IDC_ETH_ADD                  1059  // "Add"
#define IDC_ETH_DELETE               1060  // "Delete"
#define IDC_ETH_LIST                 1061  // the pending list
#define IDC_APPLY_GROUP_SWITCH       1071  // page 10: "All Selected Switch"
#define IDC_APPLY_SWITCH_LIST        1072
#define IDC_APPLY_GROUP_PROFILE      1073  // "Profile List"
#define IDC_APPLY_PROFILE_LIST       1074
#define IDC_APPLY_PROGRESS           1075
#define IDC_APPLY_APPLY              1076  // "Apply to Switch"
#define IDC_APPLY_NEXT_DEVICE        1077  // "Configure Next Device"
#define IDC_APPLY_CREATE_RULES       1078  // "Create Rules"
#define IDC_APPLY_DETAILS            1079  // the details of the clicked profile
#define IDC_APPLY_ETH_RULE           1080  // hidden radios: "Add Ethernet rule"
#define IDC_APPLY_IPV4_RULE          1081  // "Add IPv4 rule"
#define IDC_APPLY_IPV6_RULE          1082  // "Add IPv6 rule"

// Page 6 `CACLStep5`: "Filtering Mask", Add, Delete, the pending list, and one
// group per protocol in the same place (only the group of m_nFrameOption is shown).
#define IDC_IPV4_GROUP               1100  // "Filtering Mask"
#define IDC_IPV4_VLAN                1101  // "VLAN"
#define IDC_IPV4_DSCP                1102  // "IPV4 DSCP"
#define IDC_IPV4_SRC_IP_CHECK        1103  // "Source IP Mask"
#define IDC_IPV4_SRC_IP              1104  // its IP-address control
#define IDC_IPV4_DST_IP_CHECK        1105  // "Destination IP Mask"
#define IDC_IPV4_DST_IP              1106
#define IDC_IPV4_ADD                 1107  // "Add"
#define IDC_IPV4_DELETE              1108  // "Delete"
#define IDC_IPV4_LIST                1109  // the pending list (23 columns)
#define IDC_IPV4_ICMP_GROUP          1110  // group "ICMP" (m_nFrameOption 3)
#define IDC_IPV4_ICMP                1111  // "ICMP"
#define IDC_IPV4_ICMP_TYPE           1112  // "ICMP Type"
#define IDC_IPV4_ICMP_CODE           1113  // "ICMP Code"
#define IDC_IPV4_IGMP_GROUP          1115  // group "IGMP" (4)
#define IDC_IPV4_IGMP                1116  // "IGMP"
#define IDC_IPV4_IGMP_TYPE           1117  // "IGMP Type"
#define IDC_IPV4_TCP_GROUP           1120  // group "TCP" (5)
#define IDC_IPV4_TCP                 1121  // "TCP"
#define IDC_IPV4_TCP_SRC_PORT_CHECK  1122  // "Source Port Mask (0-FFFF)"
#define IDC_IPV4_TCP_SRC_PORT        1123  // 4 hex digits
#define IDC_IPV4_TCP_DST_PORT_CHECK  1124  // "Destination Port Mask (0-FFFF)"
#define IDC_IPV4_TCP_DST_PORT        1125
#define IDC_IPV4_TCP_FLAG_BITS       1126  // "TCP Flag Bits"
#define IDC_IPV4_TCP_CHECK_ALL       1127  // "Check All"
#define IDC_IPV4_TCP_URG             1128  // "URG" (32); 1128-1133 in weight order
#define IDC_IPV4_TCP_ACK             1129  // "ACK" (16)
#define IDC_IPV4_TCP_PSH             1130  // "PSH" (8)
#define IDC_IPV4_TCP_RST             1131  // "RST" (4)
#define IDC_IPV4_TCP_SYN             1132  // "SYN" (2)
#define IDC_IPV4_TCP_FIN             1133  // "FIN" (1)
#define IDC_IPV4_UDP_GROUP           1135  // group "UDP" (6)
#define IDC_IPV4_UDP                 1136  // "UDP"
#define IDC_IPV4_UDP_SRC_PORT_CHECK  1137  // "Source Port Mask (0-FFFF)"
#define IDC_IPV4_UDP_SRC_PORT        1138
#define IDC_IPV4_UDP_DST_PORT_CHECK  1139  // "Destination Port Mask (0-FFFF)"
#define IDC_IPV4_UDP_DST_PORT        1140
#define IDC_IPV4_PROTO_GROUP         1145  // group "Protocol ID" (7)
#define IDC_IPV4_PROTO_ID_CHECK      1146  // "Protocol ID Mask(0-255)"
#define IDC_IPV4_PROTO_ID            1147  // 0-255
#define IDC_IPV4_USER_DEFINE         1148  // "User Define(0-FFFFFFFF)"
#define IDC_IPV4_USER_MASK1          1149  // 1149-1153: five 8-digit fields (one shown but on
#define IDC_IPV4_USER_MASK2          1150  // TVR4510 and TVR4820)
#define IDC_IPV4_USER_MASK3          1151
#define IDC_IPV4_USER_MASK4          1152
#define IDC_IPV4_USER_MASK5          1153
#define IDC_IPV6_GROUP               1160  // page 8: "Filtering Mask"
#define IDC_IPV6_CLASS               1161  // "IPv6 Class"
#define IDC_IPV6_FLOW_LABEL          1162  // "IPv6 Flow Label"
#define IDC_IPV6_SRC_CHECK           1163  // "IPv6 Source Address"
#define IDC_IPV6_SRC                 1164
#define IDC_IPV6_DST_CHECK           1165  // "IPv6 Destination Address"
#define IDC_IPV6_DST                 1166
#define IDC_IPV6_ADD                 1167  // "Add"
#define IDC_IPV6_DELETE              1168  // "Delete"
#define IDC_IPV6_LIST                1169  // the pending list
#define IDC_PACKET_GROUP             1170  // page 9: "Filtering Mask"
#define IDC_PACKET_ADD               1171  // "Add"
#define IDC_PACKET_DELETE            1172  // "Delete"
#define IDC_PACKET_LIST              1173  // the pending list
#define IDC_PACKET_CHUNK1            1174  // chunk layout: "Chunk 1(0-31)" .. "Chunk 4(0-31)"
#define IDC_PACKET_CHUNK2            1175
#define IDC_PACKET_CHUNK3            1176
#define IDC_PACKET_CHUNK4            1177
#define IDC_PACKET_CHUNK1_OFFSET     1178  // 1178-1181: the chunks' offsets (0 to 31)
#define IDC_PACKET_CHUNK2_OFFSET     1179
#define IDC_PACKET_CHUNK3_OFFSET     1180
#define IDC_PACKET_CHUNK4_OFFSET     1181
#define IDC_PACKET_CHUNK1_MASK       1182  // 1182-1185: the chunks' masks (8 hex digits)
#define IDC_PACKET_CHUNK2_MASK       1183
#define IDC_PACKET_CHUNK3_MASK       1184
#define IDC_PACKET_CHUNK4_MASK       1185
#define IDC_PACKET_OFFSET_LABEL      1186  // chunk layout: "Offset" above the offset edits
#define IDC_PACKET_MASK_LABEL        1187  // chunk layout: "Mask" above the mask edits
#define IDC_PACKET_OFFSET0           1188  // offset layout: "offset 0-15" .. "offset 64-79"
#define IDC_PACKET_OFFSET16          1189
#define IDC_PACKET_OFFSET32          1190
#define IDC_PACKET_OFFSET48          1191
#define IDC_PACKET_OFFSET64          1192
#define IDC_PACKET_RANGE_MASK_FIRST  1193  // 1193-1212: range r's four 8-digit masks at 1193 + 4r + k

// The rule-creation pages.
#include "rule_resource.h"
// "Modify Profile" and "Modify Rule".
#include "modify_resource.h"
