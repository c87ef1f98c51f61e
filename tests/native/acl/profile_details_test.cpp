// The details of a profile clicked in "Add profile"'s list: the values the page shows for a
// record as the reader fills it (which label rows exist is the page's own list).
#include <gtest/gtest.h>

#include "acl/profile_details.h"
#include "model_for_test.h"

namespace {

using L = acl::DetailLabel;

std::string ValueOf(const std::vector<acl::DetailRow>& rows, L label) {
  for (const auto& r : rows)
    if (r.label == label) return r.value;
  return "<no row>";
}

}  // namespace

TEST(ProfileDetails, ValuesAsThePageShowsThem) {
  EXPECT_EQ("urg/ack/psh/rst/syn/fin", acl::TcpFlagNames("63"));
  EXPECT_EQ("", acl::TcpFlagNames(""));
  const AclRecord eth{"3", "1", "4", "FFFFFFFFFFFF", "000000FFFFFF", "2", "1", "4", "web", "128"};
  auto rows = acl::ProfileDetails(AclType::kEthernet, eth, AclOwner::kAcl, M("TVR4512"));
  EXPECT_EQ("Ethernet", ValueOf(rows, L::kProfileType));
  EXPECT_EQ("", ValueOf(rows, L::kOwnerType)) << "empty for the ordinary ACL";
  EXPECT_EQ("web", ValueOf(rows, L::kProfileName)) << "TVR4512 keeps the name in the owner cell";
  EXPECT_EQ("Enabled", ValueOf(rows, L::kVlan));
  EXPECT_EQ("000000FFFFFF", ValueOf(rows, L::kDestinationMac));
  EXPECT_EQ("Disabled", ValueOf(rows, L::k8021p));
  rows = acl::ProfileDetails(AclType::kEthernet, eth, AclOwner::kCpu, M("TVR4512"));
  EXPECT_EQ("CPU ACL", ValueOf(rows, L::kOwnerType));
  EXPECT_EQ("<no row>", ValueOf(rows, L::kProfileName));

  AclRecord v4(22);
  v4[3] = "255.255.255.0";
  v4[4] = "255.255.0.0";
  v4[6] = "4";  // TCP
  v4[11] = "FFFF";
  v4[12] = "00FF";
  v4[13] = "1";
  v4[14] = "34";
  rows = acl::ProfileDetails(AclType::kIPv4, v4, AclOwner::kAcl, M("TVG5690"));
  EXPECT_EQ("255.255.0.0", ValueOf(rows, L::kDestinationIp));
  EXPECT_EQ("00FF", ValueOf(rows, L::kTcpDstPortMask));
  EXPECT_EQ("urg/syn", ValueOf(rows, L::kTcpFlagBitMask));
  EXPECT_EQ("", ValueOf(rows, L::kUdpDstPortMask)) << "port masks belong to their protocol";
  v4[6] = "2";  // ICMP: type and code from the option
  for (const char* option : {"1", "2", "3", "4"}) {
    v4[7] = option;
    rows = acl::ProfileDetails(AclType::kIPv4, v4, AclOwner::kAcl, M("TVR4820"));
    EXPECT_EQ(ValueOf(rows, L::kIcmpType), option[0] == '2' || option[0] == '4' ? "Enabled" : "Disabled") << option;
    EXPECT_EQ(ValueOf(rows, L::kIcmpCode), option[0] >= '3' ? "Enabled" : "Disabled") << option;
  }

  const AclRecord chunks{"2", "1", "3", "FFFF0000", "", "", "", "1", "31", "000000FF", "", "", "", "4", ""};
  rows = acl::ProfileDetails(AclType::kPacketContent, chunks, AclOwner::kAcl, M("TVG5690"));
  EXPECT_EQ("Value:3, Mask:0xFFFF0000", ValueOf(rows, L::kChunk1));
  EXPECT_EQ("Value:31, Mask:0x000000FF", ValueOf(rows, L::kChunk3));
  const AclRecord blocks{"3", std::string(32, 'F'), "", "", "", std::string(32, '0'), "4"};
  rows = acl::ProfileDetails(AclType::kPacketContent, blocks, AclOwner::kCpu, M("TVG5690"));
  EXPECT_EQ(std::string(32, '0'), ValueOf(rows, L::kContMaskOffset64to79)) << "the CPU ACL uses 16-byte blocks";
  for (AclType type : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent})
    EXPECT_EQ("", ValueOf(acl::ProfileDetails(type, AclRecord{}, AclOwner::kAcl, M("TVR4512")), L::kProfileId))
        << "a short record never overruns";
}
