// Part 4.2: column lists, instance naming, encodings both ways and the port bitmap. Tests named
// "EdgeCase..." are the "Edge cases worth testing" of Part 4.2; expected OIDs and bytes are
// written from the spec's tables.
#include <gtest/gtest.h>

#include "tests/native/acl/model_for_test.h"

#include "acl/acl_device.h"
#include "acl/acl_mib.h"

namespace {

std::string Hex(const std::string& bytes) { return BytesToHex(bytes); }

const std::string kP = "1.3.6.1.4.1.32473.12.9.";

}  // namespace

TEST(AclMib, EdgeCaseVlanOfRule3Access12OnTvg5240) {
  RuleFields f;
  f.profileId = "3";
  f.accessId = "12";
  f.vlan = "v";
  f.ports = "1";
  AclRecord r = BuildRule(AclType::kEthernet, AclOwner::kAcl, M("TVG5240-10"), f);
  auto t = TableLayout(M("TVG5240-10"), AclOwner::kAcl, AclKind::kRules, AclType::kEthernet);
  ASSERT_TRUE(t);
  auto b = RecordBindings(M("TVG5240-10"), *t, r);
  ASSERT_FALSE(b.empty());
  EXPECT_EQ(b[0].oid, "1.3.6.1.4.1.32473.12.9.3.1.1.3.3.12");
  EXPECT_EQ(b[0].value, "v");
  EXPECT_EQ(InstanceOid("1.3.6.1.4.1.32473.12.9.2.1.1.2", "5"), "1.3.6.1.4.1.32473.12.9.2.1.1.2.5");
}

TEST(AclMib, EdgeCaseTenPortsBitmapOnTvg5240AndTvg5690) {
  std::string b = PortListToBitmap("1,2,3,4,5,6,7,8,9,10", M("TVG5240-10"));
  EXPECT_EQ(Hex(b), "FFC00000");
  std::string w = PortListToBitmap("1,2,3,4,5,6,7,8,9,10", M("TVG5690"));
  ASSERT_EQ(w.size(), 96u);
  EXPECT_EQ(Hex(w), "FFC0" + std::string(188, '0'));
  EXPECT_EQ(PortListToBitmap("1-10", M("TVR4512")).size(), 8u);
  EXPECT_EQ(Hex(PortListToBitmap("1-10", M("TVR4512"))), "FFC0000000000000");
}

TEST(AclMib, EdgeCaseIpv4RuleWithEmptySourceAndZeroDestinationSendsNeither) {
  RuleFields f;
  f.profileId = "1";
  f.accessId = "1";
  f.srcIp = "";
  f.dstIp = "0.0.0.0";
  f.ports = "1";
  for (const char* model : {"TVG5240-10", "TVR4510", "TVG5470"}) {
    const ModelEntry& m = M(model);
    auto t = TableLayout(m, AclOwner::kAcl, AclKind::kRules, AclType::kIPv4);
    ASSERT_TRUE(t) << model;
    for (const SnmpBinding& b : RecordBindings(m, *t, BuildRule(AclType::kIPv4, AclOwner::kAcl, m, f)))
      EXPECT_NE(b.type, kSnmpIpAddress) << model << " " << b.oid;
  }
  f.dstIp = "10.0.0.1";
  const ModelEntry& m = M("TVG5240-10");
  auto t = TableLayout(m, AclOwner::kAcl, AclKind::kRules, AclType::kIPv4);
  auto b = RecordBindings(m, *t, BuildRule(AclType::kIPv4, AclOwner::kAcl, m, f));
  ASSERT_FALSE(b.empty());
  EXPECT_EQ(b[0].oid, kP + "3.2.1.5.1.1");
  EXPECT_EQ(b[0].type, kSnmpIpAddress);
  EXPECT_EQ(b[0].value, "10.0.0.1");
}

TEST(AclMib, EdgeCaseCpuEthernetRuleRowStatusAndPortsColumns) {
  auto r4820 = ColumnList(M("TVR4820"), AclOwner::kCpu, AclKind::kRules, AclType::kEthernet);
  ASSERT_EQ(r4820.size(), 10u);
  EXPECT_EQ(r4820[8], kP + "5.1.1.9");   // row status
  EXPECT_EQ(r4820[9], kP + "5.1.1.10");  // ports
  auto r5690 = ColumnList(M("TVG5690"), AclOwner::kCpu, AclKind::kRules, AclType::kEthernet);
  ASSERT_EQ(r5690.size(), 10u);
  EXPECT_EQ(r5690[8], kP + "5.1.1.10");
  EXPECT_EQ(r5690[9], kP + "5.1.1.9");
  EXPECT_EQ(RowStatusColumnOid(M("TVG5690"), AclOwner::kCpu, AclKind::kRules, AclType::kEthernet),
            kP + "5.1.1.10");
}

// A few lists copied by hand from Part 4.2, including the "-" entries and the layouts.
TEST(AclMib, ColumnListsFollowThePart42Tables) {
  auto cols = [](const char* model, AclOwner o, AclKind k, AclType t) {
    std::string s;
    for (const std::string& c : ColumnList(M(model), o, k, t)) {
      if (!s.empty()) s += ",";
      s += c.empty() ? "-" : c.substr(c.rfind('.') + 1);
    }
    return s;
  };
  const AclOwner O = AclOwner::kAcl, C = AclOwner::kCpu;
  const AclKind P = AclKind::kProfiles, R = AclKind::kRules;
  EXPECT_EQ(cols("TVR4512", O, P, AclType::kEthernet), "1,2,3,4,5,6,7,8,11,10");
  EXPECT_EQ(cols("TVR4510", O, P, AclType::kEthernet), "1,2,3,4,5,6,7,8,-,-");
  EXPECT_EQ(cols("TVR4512", O, P, AclType::kIPv6), "1,2,3,4,5,6,7,10,9");
  EXPECT_EQ(cols("TVR4512", O, P, AclType::kPacketContent), "1,2,3,4,5,6,7,8,9,10,11,12,13,14,17");
  EXPECT_EQ(cols("TVG5470", O, R, AclType::kEthernet), "1,2,3,4,5,6,7,8,9,10,13,14,16,-,15");
  EXPECT_EQ(cols("TVG5690", O, R, AclType::kIPv4),
            "1,2,-,4,5,6,7,-,-,10,11,12,13,14,15,16,-,18,19,20,21,23,-,22,-");
  EXPECT_EQ(cols("TVR4510", O, R, AclType::kIPv4), "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,-,18,19,20,21,22,-,-,-");
  EXPECT_EQ(cols("TVR4820", O, R, AclType::kIPv6), "1,2,3,4,5,6,7,8,9,12,13,15,-,14");
  EXPECT_EQ(cols("TVG5240-10", O, R, AclType::kPacketContent), "1,2,3,4,5,6,7,8,9,10,13,-,11,12,20,16,17,18");
  EXPECT_EQ(cols("TVR4060", O, R, AclType::kPacketContent), "1,2,8,10,11,13,14,16,17,19,20,22,23,24,28,29,30,33");
  EXPECT_EQ(cols("TVG5690", C, P, AclType::kEthernet), "1,2,3,4,5,-,7,8,-,-");
  EXPECT_EQ(cols("TVG5470", C, R, AclType::kIPv4), "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,17,16");
  // Layouts: the same prefix .2.1 is TVR4510's Ethernet rule table and the others' profiles.
  EXPECT_EQ(ColumnList(M("TVR4510"), O, R, AclType::kEthernet)[2], kP + "2.1.1.3");
  EXPECT_EQ(ColumnList(M("TVG5240-10"), O, P, AclType::kEthernet)[2], kP + "2.1.1.3");
  EXPECT_EQ(ColumnList(M("TVR4510"), O, P, AclType::kPacketContent)[1], kP + "1.3.1.2");
  EXPECT_EQ(ColumnList(M("TVR4820"), O, P, AclType::kPacketContent)[1], kP + "2.3.1.2");
  // Tables a model does not offer have no list; unsupported models have none.
  EXPECT_TRUE(ColumnList(M("TVG5470"), O, P, AclType::kPacketContent).empty());
  EXPECT_TRUE(ColumnList(M("TVR4060"), O, R, AclType::kIPv6).empty());
  EXPECT_TRUE(ColumnList(M("TVR-4512"), O, P, AclType::kEthernet).empty());
  // Left to the implementer: TVR4060's and TVG5470's CPU packet-content profiles use 1 to 7.
  EXPECT_EQ(cols("TVR4060", C, P, AclType::kPacketContent), "1,2,3,4,5,6,7");
  EXPECT_EQ(cols("TVG5470", C, P, AclType::kPacketContent), "1,2,3,4,5,6,7");
}

TEST(AclMib, EveryOfferedTableHasAListWithOneEntryPerCell) {
  int tables = 0;
  for (const ModelEntry* m = CatalogueBegin(); m != CatalogueEnd(); ++m) {
    for (auto owner : {AclOwner::kAcl, AclOwner::kCpu})
      for (auto kind : {AclKind::kProfiles, AclKind::kRules})
        for (auto type : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent}) {
          bool offered = kind == AclKind::kProfiles ? m->offersProfileType(owner, type) : m->offersRuleType(owner, type);
          auto t = TableLayout(*m, owner, kind, type);
          EXPECT_EQ(t.has_value(), offered) << m->typeText << " " << TypeWord(type);
          if (!t) continue;
          ++tables;
          EXPECT_EQ(t->columns.size(), RecordCellCount(t->record));
          EXPECT_EQ(t->kinds.size(), RecordCellCount(t->record));
          ASSERT_GE(t->rowStatusCell, 0);
          EXPECT_NE(t->columns[static_cast<size_t>(t->rowStatusCell)], 0u) << m->typeText << " " << TypeWord(type);
          EXPECT_EQ(t->columns[0], 1u) << "cell 0 is the profile ID column";
        }
  }
  EXPECT_EQ(tables, 98) << "tables offered by the seven models (Part 2.2 table 2)";
}

TEST(AclMib, EncodingsOfPart42) {
  const ModelEntry& m = M("TVG5240-10");
  EXPECT_EQ(EncodeCell(CellKind::kInteger, m, ""), std::nullopt);
  EXPECT_EQ(EncodeCell(CellKind::kInteger, m, "7")->value, "7");
  EXPECT_EQ(EncodeCell(CellKind::kInteger, m, "7")->type, kSnmpInteger);
  EXPECT_EQ(EncodeCell(CellKind::kRowStatus, m, "")->value, "4");
  EXPECT_EQ(EncodeCell(CellKind::kAlways, m, "3")->value, "3");
  EXPECT_EQ(EncodeCell(CellKind::kText, m, ""), std::nullopt);
  EXPECT_EQ(EncodeCell(CellKind::kMac, m, "00.00.00.00.00.00")->value, std::string(6, '\0'));
  EXPECT_EQ(EncodeCell(CellKind::kMac, m, "")->value, std::string(6, '\0'));
  EXPECT_EQ(Hex(EncodeCell(CellKind::kMac, m, " 00a0c9ffee01 ")->value), "00A0C9FFEE01");
  EXPECT_EQ(Hex(EncodeCell(CellKind::kEthertype, m, "86DD99")->value), "86DD") << "first four hex digits";
  EXPECT_EQ(EncodeCell(CellKind::kEthertype, m, ""), std::nullopt);
  EXPECT_EQ(Hex(EncodeCell(CellKind::kHex4, m, "0000FFFF")->value), "0000FFFF");
  EXPECT_EQ(Hex(EncodeCell(CellKind::kHex4, m, "FFFF")->value), "FFFF0000") << "two digits per byte from the start";
  EXPECT_EQ(Hex(EncodeCell(CellKind::kHex2Always, m, "")->value), "0000");
  EXPECT_EQ(EncodeCell(CellKind::kIpMask, m, "")->value, "0.0.0.0");
  EXPECT_EQ(EncodeCell(CellKind::kIpMask, m, "255.255.0.0")->type, kSnmpIpAddress);
  EXPECT_EQ(EncodeCell(CellKind::kIpRule, m, "1.2.3"), std::nullopt) << "never a malformed address";
  EXPECT_EQ(EncodeCell(CellKind::kIpRule, m, "1.2.3.256"), std::nullopt);
  EXPECT_EQ(EncodeCell(CellKind::kHex16, m, ""), std::nullopt);
  EXPECT_EQ(EncodeCell(CellKind::kHex16Always, m, "")->value, std::string(16, '\0'));
  EXPECT_EQ(EncodeCell(CellKind::kProtoMask, m, "0000FFFF ")->value.size(), 4u);
  EXPECT_EQ(EncodeCell(CellKind::kProtoMask, M("TVR4820"), std::string(40, 'F'))->value, std::string(20, '\xFF'));
  EXPECT_EQ(EncodeCell(CellKind::kReadOnly, m, "1"), std::nullopt);
  EXPECT_EQ(EncodeCell(CellKind::kIndex, m, "1"), std::nullopt);
  EXPECT_EQ(Hex(EncodeCell(CellKind::kHexData, m, "ABC")->value), "ABC0");
}

TEST(AclMib, DecodingsOfPart43) {
  const ModelEntry& m = M("TVG5240-10");
  auto bytes = [](std::string v) { return SnmpRowBinding{"", std::move(v), snmp::kTagOctetString}; };
  EXPECT_EQ(DecodeCell(CellKind::kInteger, m, SnmpRowBinding{"", "3", snmp::kTagInteger}), "3");
  EXPECT_EQ(DecodeCell(CellKind::kIpMask, m, SnmpRowBinding{"", "10.1.2.3", snmp::kTagIpAddress}), "10.1.2.3");
  EXPECT_EQ(DecodeCell(CellKind::kMac, m, bytes(std::string("\x00\x00\x00\xFF\xFF\xFF", 6))), "000000FFFFFF");
  EXPECT_EQ(DecodeCell(CellKind::kEthertype, m, bytes("\x86\xDD")), "86DD");
  // Part 4.3 edge case: protocol ID mask 00 00 FF FF reads "0000FFFF " and writes back its
  // first eight hex digits.
  std::string mask = DecodeCell(CellKind::kProtoMask, m, bytes(std::string("\x00\x00\xFF\xFF", 4)));
  EXPECT_EQ(mask, "0000FFFF ");
  EXPECT_EQ(EncodeCell(CellKind::kProtoMask, m, mask)->value, std::string("\x00\x00\xFF\xFF", 4));
  EXPECT_EQ(DecodeCell(CellKind::kHex16, m, bytes(std::string(16, '\x11'))), std::string(32, '1'));
  EXPECT_EQ(DecodeCell(CellKind::kText, m, bytes("vlan7")), "vlan7");
  EXPECT_EQ(DecodeCell(CellKind::kPorts, m, bytes(std::string("\xFF\xC0\x00\x01", 4))), "1,2,3,4,5,6,7,8,9,10,32,");
}

TEST(AclMib, PortBitmapBothWays) {
  const ModelEntry& m = M("TVG5690");
  std::string b = PortListToBitmap("1-3,50,128,129", m);
  EXPECT_EQ(BitmapToPortList(b), "1,2,3,50,128,") << "129 lies beyond the 32 digits";
  EXPECT_EQ(BitmapToPortList(PortListToBitmap("1,2,3,", m)), "1,2,3,") << "the read form goes back";
  EXPECT_EQ(Hex(PortListToBitmap("0", M("TVR4820"))), "00000000") << "port 0 marks nothing";
  EXPECT_EQ(Hex(PortListToBitmap("33", M("TVR4820"))), "00000000");
  EXPECT_EQ(Hex(PortListToBitmap("5-3", M("TVR4820"))), "00000000");
  EXPECT_EQ(PortListToBitmap("1-4000000000", m).size(), 96u) << "at most 200 ports collected";
  EXPECT_EQ(BitmapToPortList(PortListToBitmap("1-4000000000", m)).size(), std::string("1,").size() * 9 +
                                                                               std::string("10,").size() * 90 +
                                                                               std::string("100,").size() * 29);
  EXPECT_EQ(PortListFromHex("FFC00000"), "1,2,3,4,5,6,7,8,9,10,");
  EXPECT_EQ(PortBitmapBytes(M("TVG5470")), 96u);
  EXPECT_EQ(PortBitmapBytes(M("TVR4512")), 8u);
  for (const char* t : {"TVG5240-10", "TVR4060", "TVR4510", "TVR4820"}) EXPECT_EQ(PortBitmapBytes(M(t)), 4u);
}

TEST(AclMib, HexToBytesIsTotal) {
  EXPECT_EQ(HexToBytes("", 4), std::string(4, '\0'));
  EXPECT_EQ(Hex(HexToBytes("zz12", 2)), "0012");
  EXPECT_EQ(Hex(HexToBytes("a", 1)), "A0");
  EXPECT_EQ(Hex(HexToBytes("AABBCCDDEE", 2)), "AABB");
}

TEST(AclMib, RecordsWithBadIdsNeverBecomeRequests) {
  const ModelEntry& m = M("TVG5240-10");
  auto t = TableLayout(m, AclOwner::kAcl, AclKind::kRules, AclType::kEthernet);
  for (AclRecord r : {AclRecord{}, AclRecord{"", "1"}, AclRecord{"1", ""}, AclRecord{"1.2", "3"},
                      AclRecord{"1", "2x"}, AclRecord{"12345678901", "1"}})
    EXPECT_TRUE(RecordBindings(m, *t, r).empty()) << (r.empty() ? "" : r[0]);
  EXPECT_FALSE(RecordBindings(m, *t, AclRecord{"1", "2"}).empty()) << "short records: missing cells are empty";
}
