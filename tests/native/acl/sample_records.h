// Records as the pages build them, at the model's limits with every optional field filled on
// the first and few on the second: what the round trips send and what a pending rule loads
// back from.
#pragma once
#include <gtest/gtest.h>

#include <string>

#include "acl/acl_record.h"

// Rule records as the rule dialogs build them, two per kind: the Access IDs at the model's
// limits, every optional field filled on the first and few on the second.
inline AclRecordList SampleRules(const ModelEntry& m, AclOwner owner, AclType type) {
  auto range = m.accessIdRange(owner, type);
  auto rx = m.rxRange();
  const bool cpu = owner == AclOwner::kCpu;
  const PacketShape shape = m.packetShape(owner, AclKind::kRules);
  AclRecordList out;
  for (int v = 0; v < 2; ++v) {
    const bool all = v == 0;
    RuleFields f;
    f.profileId = all ? "3" : "7";
    f.accessId = std::to_string(all ? range->max : range->min);
    f.action = cpu ? (all ? "1" : "2") : (all ? "3" : "1");
    f.ports = all ? "1-3," + std::to_string(m.portCount) : "2";
    if (!cpu && rx && all) f.rxRate = std::to_string(rx->max);
    f.priorityChecked = f.replaceDscpChecked = f.replaceTosChecked = all;
    f.priority = "6";
    f.replaceDscp = "40";
    f.replaceTos = "3";
    if (all && type == AclType::kEthernet) {
      f.vlan = "v10";
      f.srcMac = "00a0c9ffee01";
      f.dstMac = "0000000000FF";
      f.p8021 = "5";
      f.ethertype = "86dd";
    }
    if (type == AclType::kIPv4) {
      f.srcIp = all ? "10.0.0.1" : "";
      f.dstIp = all ? "192.168.1.0" : "0.0.0.0";
      f.dscp = all ? "46" : "";
      f.vlan = all ? "v20" : "";
      f.protocol = all ? "4" : "6";
      f.value1 = all ? "80" : "17";
      f.value2 = all ? "8080" : "0000ffff";
      f.flagBits = "18";
    }
    if (all && type == AclType::kIPv6) {
      f.ipv6Class = "255";
      f.flowLabel = "fffff";
      f.srcIpv6 = "fe800000000000000000000000000001";
      f.dstIpv6 = "20010DB8000000000000000000000002";
    }
    for (size_t i = 0; i < 5; ++i) {
      f.items[i] = {all || i == 2, std::to_string(4 * i + 1),
                    shape == PacketShape::kBlock16   ? std::string(32, static_cast<char>('A' + i))
                    : shape == PacketShape::kChunks4 ? "0800450" + std::to_string(i)
                                                     : "86DD"};
    }
    EXPECT_EQ(ValidateRule(type, owner, m, f).code, AclMessage::kNone) << m.typeText << " " << TypeWord(type) << v;
    out.push_back(BuildRule(type, owner, m, f));
  }
  return out;
}

// Profile records as the definition pages build them, one with most boxes checked, one with few.
inline AclRecordList SampleProfiles(const ModelEntry& m, AclOwner owner, AclType type) {
  const bool wideMask = std::string(m.typeText) == "TVR4510" || std::string(m.typeText) == "TVR4820";
  AclRecordList out;
  for (int v = 0; v < 2; ++v) {
    const bool on = v == 0;
    ProfileFields p;
    p.profileId = on ? "1" : "5";
    p.profileName = on ? "web" : "";
    p.vlan = p.ethernetType = p.srcMacChecked = p.dscp = p.srcIpChecked = p.flagBitsChecked = on;
    p.ipv6Class = p.srcIpv6Checked = on;
    p.p8021 = p.userMaskChecked = p.flowLabel = !on;
    p.dstMacChecked = p.dstIpChecked = p.protocolChecked = p.dstIpv6Checked = true;
    p.srcMac = " ffffffffffff ";
    p.dstMac = "0000000000ff";
    p.srcIp = "255.255.255.0";
    p.dstIp = "255.255.0.0";
    p.protocolGroup = on ? 5 : 7;
    p.srcPortMask = "FFFF";
    p.dstPortMask = on ? "" : "00FF";
    p.flagValue = 63;
    p.protocolId = "6";
    p.userMask = wideMask ? "0000FFFF0000FFFF0000FFFF0000FFFF0000FFFF" : "0000FFFF";
    p.srcIpv6Mask = std::string(32, 'F');
    p.dstIpv6Mask = "FFFFFFFFFFFFFFFF0000000000000000";
    for (size_t i = 0; i < 5; ++i)
      p.items[i] = {on || i == 1, std::to_string(7 * i),
                    m.packetShape(owner, AclKind::kProfiles) == PacketShape::kChunks4
                        ? "FFFF000" + std::to_string(i)
                        : std::string(32, static_cast<char>('0' + i))};
    EXPECT_EQ(ValidateProfile(type, p).code, AclMessage::kNone);
    out.push_back(BuildProfile(type, owner, m, p));
  }
  return out;
}
