// Resource identifiers of Sentrel.dll. The host loads the menu, prompt and toolbar texts by
// these numbers through the resource handle (Part 1.1), so they stay fixed once released.
#pragma once

#ifndef IDC_STATIC
#define IDC_STATIC (-1)
#endif

// Part 1.1: texts handed to the host.
#define IDS_PROJNAME                100   // "Sentrel": the COM description and message-box title
#define IDS_RADIUS_MENU_PATH        101
#define IDS_RADIUS_MENU_ITEM        102
#define IDS_RADIUS_PROMPT           103
#define IDS_CFG_MENU_PATH           104
#define IDS_CFG_MENU_ITEM           105
#define IDS_CFG_PROMPT              106
#define IDS_TOOLBAR_MENU            107
#define IDS_TOOLBAR_TITLE           108

// Part 1.2: registry key paths and device-list failure.
#define IDS_KEY_SETTINGS            110
#define IDS_KEY_DEVICE_TYPES        111
#define IDS_FAILED_DEVICE_LIST      112
#define IDS_SENTREL_CONFIG          113

// Part 1.4
#define IDS_FAILED_IE_PATH          120

// Part 5.1: the wizard's page templates, in page-index order.
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
