// Requests pinned on the wire: for a fixed set of records per model, the varbinds that reach
// the simulated switch (OID, type, value bytes) equal lists written by hand from the models'
// column lists, cell encodings and closing requests. Nothing here is computed by the code
// under test.
#include <gtest/gtest.h>

#include "acl/acl_device.h"
#include "sim_agent.h"

namespace {

constexpr unsigned long kTimeout = 400;

// "OID TYPE VALUE": i = INTEGER (decimal), s = OCTET STRING text, x = OCTET STRING bytes in hex,
// a = IpAddress. OIDs not starting with "1.3.6" are below 1.3.6.1.4.1.32473.12.9.
using Expected = std::vector<std::string>;

std::string Canonical(const std::string& line) {
  size_t a = line.find(' '), b = line.find(' ', a + 1);
  std::string oid = line.substr(0, a), type = line.substr(a + 1, b - a - 1), value = line.substr(b + 1);
  if (oid.rfind("1.3.6", 0) != 0) oid = "1.3.6.1.4.1.32473.12.9." + oid;
  if (type == "s") {
    type = "x";
    value = BytesToHex(value);
  }
  return oid + " " + type + " " + value;
}

std::string Render(const snmp::VarBind& vb) {
  std::string s = snmp::FormatOid(vb.name) + " ";
  switch (vb.value.tag) {
    case snmp::kTagInteger: return s + "i " + std::to_string(vb.value.integer);
    case snmp::kTagOctetString: return s + "x " + BytesToHex(vb.value.bytes);
    case snmp::kTagIpAddress: {
      const auto& b = vb.value.bytes;
      std::string ip;
      for (size_t i = 0; i < b.size(); ++i)
        ip += (i ? "." : "") + std::to_string(static_cast<unsigned char>(b[i]));
      return s + "a " + ip;
    }
    default: return s + "? tag " + std::to_string(vb.value.tag);
  }
}

struct Pinned {
  const char* what;
  const char* model;
  AclOwner owner;
  AclKind kind;
  AclType type;
  AclRecord record;
  std::vector<Expected> requests;  // the record's SET, then the closing request
};

const std::string kClose6 = "1.3.6.1.4.1.32473.12.1.2.6.0";
const std::string kClose18 = "1.3.6.1.4.1.32473.12.1.2.18.4.0";
const AclOwner O = AclOwner::kAcl, C = AclOwner::kCpu;
const AclKind P = AclKind::kProfiles, R = AclKind::kRules;

const std::vector<Pinned>& Table() {
  static const std::string ports5470 = "800001" + std::string(186, '0');
  static const std::string ports5690 = "000000000000" "40" + std::string(178, '0');
  static const std::vector<Pinned> table = {
      {"ReplaceDSCP and ToS left out; ports 1-3,10", "TVG5240-10", O, R, AclType::kEthernet,
       {"3", "12", "v10", "00A0C9FFEE01", "00.00.00.00.00.00", "5", "86DD", "1", "6", "40", "3", "1-3,10", "4", "3",
        "156249"},
       {{"3.1.1.3.3.12 s v10", "3.1.1.4.3.12 x 00A0C9FFEE01", "3.1.1.5.3.12 x 000000000000", "3.1.1.6.3.12 i 5",
         "3.1.1.7.3.12 x 86DD", "3.1.1.8.3.12 i 1", "3.1.1.9.3.12 i 6", "3.1.1.13.3.12 i 3",
         "3.1.1.14.3.12 x E0400000", "3.1.1.15.3.12 i 4", "3.1.1.17.3.12 i 156249"},
        {kClose6 + " i 5"}}},
      {"the TVG pair skips VLAN, protocol, ICMP; 96-byte ports", "TVG5470", O, R, AclType::kIPv4,
       {"2", "128", "vl", "10.0.0.1", "0.0.0.0", "46", "4", "", "", "80", "8080", "18", "", "", "1", "6", "", "1",
        "40", "2", "1,24", "4", "", "1000", "3"},
       {{"3.2.1.4.2.128 a 10.0.0.1", "3.2.1.6.2.128 i 46", "3.2.1.10.2.128 i 80", "3.2.1.11.2.128 i 8080",
         "3.2.1.12.2.128 i 18", "3.2.1.15.2.128 i 1", "3.2.1.16.2.128 i 6", "3.2.1.18.2.128 i 1",
         "3.2.1.19.2.128 i 40", "3.2.1.20.2.128 i 2", "3.2.1.21.2.128 x " + ports5470, "3.2.1.23.2.128 i 4",
         "3.2.1.22.2.128 i 1000"},
        {kClose6 + " i 5"}}},
      {"CPU rule: ports before the row status", "TVG5690", C, R, AclType::kEthernet,
       {"1", "100", "", "", "001122334455", "", "", "1", "4", "50"},
       {{"5.1.1.4.1.100 x 000000000000", "5.1.1.5.1.100 x 001122334455", "5.1.1.8.1.100 i 1",
         "5.1.1.10.1.100 i 4", "5.1.1.9.1.100 x " + ports5690},
        {kClose18 + " i 3"}}},
      {"CPU profile without 802.1P; closes with 4", "TVG5690", C, P, AclType::kEthernet,
       {"8", "1", "3", "FFFFFFFFFFFF", "", "1", "2", "4", "2", ""},
       {{"4.1.1.2.8 i 1", "4.1.1.3.8 i 3", "4.1.1.4.8 x FFFFFFFFFFFF", "4.1.1.5.8 x 000000000000", "4.1.1.7.8 i 2",
         "4.1.1.8.8 i 4"},
        {kClose18 + " i 4"}}},
      {"offset items", "TVR4060", O, R, AclType::kPacketContent,
       {"5", "65535", "12", "86DD", "", "", "30", "0A0B0C", "", "", "", "", "1", "7", "64", "2", "4", "1-26"},
       {{"3.9.1.8.5.65535 i 12", "3.9.1.10.5.65535 x 86DD", "3.9.1.14.5.65535 i 30", "3.9.1.16.5.65535 x 0A0B0C",
         "3.9.1.23.5.65535 i 1", "3.9.1.24.5.65535 i 7", "3.9.1.28.5.65535 i 64", "3.9.1.29.5.65535 i 2",
         "3.9.1.30.5.65535 i 4", "3.9.1.33.5.65535 x FFFFFFC0"},
        {kClose6 + " i 5"}}},
      {"the first layout's profiles", "TVR4510", O, P, AclType::kEthernet,
       {"9", "1", "4", "FFFFFFFFFFFF", "0000000000ff", "2", "1", "4", "1", ""},
       {{"1.1.1.2.9 i 1", "1.1.1.3.9 i 4", "1.1.1.4.9 x FFFFFFFFFFFF", "1.1.1.5.9 x 0000000000FF", "1.1.1.6.9 i 2",
         "1.1.1.7.9 i 1", "1.1.1.8.9 i 4"},
        {kClose6 + " i 3"}}},
      {"the first layout's rules under .2.1", "TVR4510", O, R, AclType::kEthernet,
       {"4", "0", "", "", "", "", "", "2", "", "2", "1", "26", "4", "", ""},
       {{"2.1.1.4.4.0 x 000000000000", "2.1.1.5.4.0 x 000000000000", "2.1.1.8.4.0 i 2", "2.1.1.13.4.0 i 1",
         "2.1.1.14.4.0 x 00000040", "2.1.1.15.4.0 i 4"},
        {kClose6 + " i 3"}}},
      {"the name in column 11", "TVR4512", O, P, AclType::kEthernet,
       {"6", "2", "2", "", "0000000000FF", "2", "2", "4", "web", ""},
       {{"2.1.1.2.6 i 2", "2.1.1.3.6 i 2", "2.1.1.4.6 x 000000000000", "2.1.1.5.6 x 0000000000FF", "2.1.1.6.6 i 2",
         "2.1.1.7.6 i 2", "2.1.1.8.6 i 4", "2.1.1.11.6 s web"},
        {kClose6 + " i 5"}}},
      {"8-byte ports", "TVR4512", O, R, AclType::kEthernet,
       {"6", "1", "", "", "", "", "", "2", "", "2", "2", "28", "4", "", ""},
       {{"3.1.1.4.6.1 x 000000000000", "3.1.1.5.6.1 x 000000000000", "3.1.1.8.6.1 i 2", "3.1.1.13.6.1 i 2",
         "3.1.1.14.6.1 x 0000001000000000", "3.1.1.15.6.1 i 4"},
        {kClose6 + " i 5"}}},
      {"IPv6 rule columns", "TVR4820", O, R, AclType::kIPv6,
       {"1", "1", "0", "FFFF", "FE800000000000000000000000000001", "", "1", "7", "2", "3", "1-28", "4", "", ""},
       {{"3.4.1.3.1.1 i 0", "3.4.1.4.1.1 x FFFF0000", "3.4.1.5.1.1 x FE800000000000000000000000000001",
         "3.4.1.7.1.1 i 1", "3.4.1.8.1.1 i 7", "3.4.1.9.1.1 i 2", "3.4.1.12.1.1 i 3", "3.4.1.13.1.1 x FFFFFFF0",
         "3.4.1.15.1.1 i 4"},
        {kClose6 + " i 5"}}},
      {"every option, masks always, a 20-byte protocol mask, no owner", "TVR4820", O, P, AclType::kIPv4,
       {"2", "2", "4", "255.255.255.0", "255.255.0.0", "2", "6", "1", "2", "1", "1", "", "", "2", "0", "1", "17",
        "0000FFFF0000FFFF0000FFFF0000FFFF0000FFFF", "4", "1", "", ""},
       {{"2.2.1.2.2 i 2", "2.2.1.3.2 i 4", "2.2.1.4.2 a 255.255.255.0", "2.2.1.5.2 a 255.255.0.0", "2.2.1.6.2 i 2",
         "2.2.1.7.2 i 6", "2.2.1.8.2 i 1", "2.2.1.9.2 i 2", "2.2.1.10.2 i 1", "2.2.1.11.2 i 1", "2.2.1.12.2 x 0000",
         "2.2.1.13.2 x 0000", "2.2.1.14.2 i 2", "2.2.1.15.2 i 0", "2.2.1.16.2 i 1", "2.2.1.17.2 i 17",
         "2.2.1.18.2 x 0000FFFF0000FFFF0000FFFF0000FFFF0000FFFF", "2.2.1.19.2 i 4"},
        {kClose6 + " i 5"}}},
  };
  return table;
}

}  // namespace

TEST(AclPinned, RequestsOnTheWire) {
  int host = 40;
  for (const Pinned& p : Table()) {
    SCOPED_TRACE(std::string(p.model) + ": " + p.what);
    SimAgent agent(host++, p.model);
    ASSERT_TRUE(agent.ok()) << agent.error();
    std::array<AclRecordList, 4> lists;
    lists[static_cast<size_t>(p.type)].push_back(p.record);
    AclTarget t{agent.address(), "public", "private", p.model};
    (p.kind == AclKind::kProfiles ? ApplyProfiles : ApplyRules)({t}, p.owner, lists, {}, kTimeout);
    auto sets = agent.sets();
    ASSERT_EQ(sets.size(), p.requests.size());
    for (size_t r = 0; r < sets.size(); ++r) {
      EXPECT_EQ(sets[r].errorStatus, 0) << "request " << r << " refused at binding " << sets[r].errorIndex;
      std::vector<std::string> got, want;
      for (const auto& vb : sets[r].varbinds) got.push_back(Render(vb));
      for (const auto& line : p.requests[r]) want.push_back(Canonical(line));
      EXPECT_EQ(got, want) << "request " << r;
    }
  }
}
