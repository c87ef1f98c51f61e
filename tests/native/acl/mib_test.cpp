// The MIB mapping where a mistake would stay hidden from a round trip through the same code:
// column lists written out by hand, encodings both ways (those a pinned request already shows
// on the wire are left to tests/native/acl/pinned_test.cpp), and the port bitmap.
#include <gtest/gtest.h>

#include "tests/native/acl/model_for_test.h"

#include "acl/acl_device.h"
#include "acl/acl_mib.h"

namespace {

std::string Hex(const std::string& bytes) { return BytesToHex(bytes); }

// A model's list as column numbers, "-" for a cell that is never sent.
std::string Columns(const char* model, AclOwner o, AclKind k, AclType t) {
  std::string s;
  for (const std::string& c : ColumnList(M(model), o, k, t)) s += (s.empty() ? "" : ",") + (c.empty() ? "-" : c.substr(c.rfind('.') + 1));
  return s;
}

}  // namespace

// The lists with gaps, renamed or swapped columns; a swap of two columns of one type would
// read back unnoticed.
TEST(AclMib, ColumnListsWhereModelsDiffer) {
  const AclOwner O = AclOwner::kAcl, C = AclOwner::kCpu;
  const AclKind P = AclKind::kProfiles, R = AclKind::kRules;
  const AclType E = AclType::kEthernet, V4 = AclType::kIPv4, V6 = AclType::kIPv6, PC = AclType::kPacketContent;
  const struct {
    const char* model;
    AclOwner owner;
    AclKind kind;
    AclType type;
    const char* columns;
  } cases[] = {
      {"TVR4512", O, P, E, "1,2,3,4,5,6,7,8,11,10"},
      {"TVR4510", O, P, E, "1,2,3,4,5,6,7,8,-,-"},
      {"TVR4512", O, P, V4, "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,23,-,-"},
      {"TVR4512", O, P, V6, "1,2,3,4,5,6,7,10,9"},
      {"TVR4512", O, P, PC, "1,2,3,4,5,6,7,8,9,10,11,12,13,14,17"},
      {"TVG5470", O, R, E, "1,2,3,4,5,6,7,8,9,10,13,14,16,-,15"},
      {"TVG5690", O, R, V4, "1,2,-,4,5,6,7,-,-,10,11,12,13,14,15,16,-,18,19,20,21,23,-,22,-"},
      {"TVR4510", O, R, V4, "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,-,18,19,20,21,22,-,-,-"},
      {"TVR4820", O, R, V6, "1,2,3,4,5,6,7,8,9,12,13,15,-,14"},
      {"TVG5470", O, R, V6, "1,2,3,4,5,6,7,8,9,10,11,13,-,12"},
      {"TVG5240-10", O, R, PC, "1,2,3,4,5,6,7,8,9,10,13,-,11,12,20,16,17,18"},
      {"TVR4060", O, R, PC, "1,2,8,10,11,13,14,16,17,19,20,22,23,24,28,29,30,33"},
      {"TVR4820", O, R, PC, "1,2,3,4,5,6,7,8,9,11,12,13,15,14"},
      {"TVG5690", C, P, E, "1,2,3,4,5,-,7,8,-,-"},
      {"TVG5470", C, R, V4, "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,17,16"},
      {"TVG5690", C, R, PC, "1,2,3,4,5,6,7,8,10,9"},
      {"TVR4820", C, R, E, "1,2,3,4,5,6,7,8,9,10"},
      {"TVR4060", C, P, PC, "1,2,3,4,5,6,7"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Columns(c.model, c.owner, c.kind, c.type), c.columns) << c.model << " " << TypeWord(c.type);
  // The same prefix .2.1 is TVR4510's Ethernet rule table and the others' profile table.
  EXPECT_EQ(ColumnList(M("TVR4510"), O, R, E)[2], "1.3.6.1.4.1.32473.12.9.2.1.1.3");
  EXPECT_EQ(ColumnList(M("TVR4510"), O, P, PC)[1], "1.3.6.1.4.1.32473.12.9.1.3.1.2");
  EXPECT_TRUE(ColumnList(M("TVG5470"), O, P, PC).empty());
  EXPECT_TRUE(ColumnList(M("TVR-4512"), O, P, E).empty());
}

TEST(AclMib, EncodingsBothWays) {
  const ModelEntry& m = M("TVG5240-10");
  EXPECT_EQ(EncodeCell(CellKind::kInteger, m, ""), std::nullopt);
  EXPECT_EQ(EncodeCell(CellKind::kFlag, m, ""), std::nullopt) << "never a made-up value";
  EXPECT_EQ(EncodeCell(CellKind::kRowStatus, m, "")->value, "4");
  EXPECT_EQ(Hex(EncodeCell(CellKind::kMac, m, " 00a0c9ffee01 ")->value), "00A0C9FFEE01");
  EXPECT_EQ(Hex(EncodeCell(CellKind::kEthertype, m, "86DD99")->value), "86DD") << "first four hex digits";
  EXPECT_EQ(EncodeCell(CellKind::kIpMask, m, "")->value, "0.0.0.0");
  EXPECT_EQ(EncodeCell(CellKind::kIpRule, m, "0.0.0.0"), std::nullopt);
  EXPECT_EQ(EncodeCell(CellKind::kIpRule, m, "1.2.3.256"), std::nullopt) << "never a malformed address";
  EXPECT_EQ(EncodeCell(CellKind::kHex16Always, m, "")->value, std::string(16, '\0'));
  EXPECT_EQ(Hex(EncodeCell(CellKind::kHexData, m, "ABC")->value), "ABC0");
  auto bytes = [](std::string v) { return SnmpRowBinding{"", std::move(v), snmp::kTagOctetString}; };
  EXPECT_EQ(DecodeCell(CellKind::kInteger, m, SnmpRowBinding{"", "3", snmp::kTagInteger}), "3");
  EXPECT_EQ(DecodeCell(CellKind::kMac, m, bytes(std::string("\x00\x00\x00\xFF\xFF\xFF", 6))), "000000FFFFFF");
  // The protocol ID mask reads with a trailing blank and writes back its first eight digits.
  std::string mask = DecodeCell(CellKind::kProtoMask, m, bytes(std::string("\x00\x00\xFF\xFF", 4)));
  EXPECT_EQ(mask, "0000FFFF ");
  EXPECT_EQ(EncodeCell(CellKind::kProtoMask, m, mask)->value, std::string("\x00\x00\xFF\xFF", 4));
  EXPECT_EQ(DecodeCell(CellKind::kPorts, m, bytes(std::string("\xFF\xC0\x00\x01", 4))), "1,2,3,4,5,6,7,8,9,10,32,");
  EXPECT_EQ(Hex(HexToBytes("zz12", 2)), "0012");
}

TEST(AclMib, PortBitmapBothWays) {
  const ModelEntry& m = M("TVG5690");
  EXPECT_EQ(BitmapToPortList(PortListToBitmap("1-3,50,128,129", m)), "1,2,3,50,128,") << "129 is beyond 32 digits";
  EXPECT_EQ(Hex(PortListToBitmap("1,2,3,4,5,6,7,8,9,10", m)), "FFC0" + std::string(188, '0'));
  EXPECT_EQ(Hex(PortListToBitmap("1-10", M("TVR4512"))), "FFC0000000000000");
  EXPECT_EQ(Hex(PortListToBitmap("0,33,5-3", M("TVR4820"))), "00000000");
  EXPECT_EQ(BitmapToPortList(PortListToBitmap("1-4000000000", m)).size(), 2u * 9 + 3u * 90 + 4u * 29)
      << "at most 200 ports collected, 128 marked";
  EXPECT_EQ(PortListFromHex("FFC00000"), "1,2,3,4,5,6,7,8,9,10,");
}

TEST(AclMib, RecordsThatCannotBeSentNeverBecomeRequests) {
  const ModelEntry& m = M("TVG5240-10");
  auto rules = TableLayout(m, AclOwner::kAcl, AclKind::kRules, AclType::kEthernet);
  for (AclRecord r : {AclRecord{}, AclRecord{"", "1"}, AclRecord{"1.2", "3"}, AclRecord{"1", "2x"},
                      AclRecord{"12345678901", "1"}})
    EXPECT_TRUE(RecordBindings(m, *rules, r).empty()) << (r.empty() ? "" : r[0]);
  EXPECT_FALSE(RecordBindings(m, *rules, AclRecord{"1", "2"}).empty()) << "missing cells are empty";
  auto profiles = TableLayout(m, AclOwner::kAcl, AclKind::kProfiles, AclType::kIPv4);
  ProfileFields fields;
  fields.profileId = "1";
  AclRecord p = BuildProfile(AclType::kIPv4, AclOwner::kAcl, m, fields);
  EXPECT_FALSE(RecordBindings(m, *profiles, p).empty());
  p[7].clear();
  EXPECT_TRUE(RecordBindings(m, *profiles, p).empty()) << "a profile without its ICMP option is never half sent";
}
