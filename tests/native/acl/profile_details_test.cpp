// Part 5.2: the details rows of a profile clicked in "Add profile"'s profile list, from the
// record as the reader fills it (Part 4.1 cell order).
#include <gtest/gtest.h>

#include <tuple>

#include "acl/profile_details.h"
#include "model_for_test.h"

namespace {

using acl::DetailLabel;
using acl::DetailRow;
using L = DetailLabel;

std::vector<DetailLabel> Labels(const std::vector<DetailRow>& rows) {
    std::vector<DetailLabel> out;
    for (const auto& r : rows) out.push_back(r.label);
    return out;
}

std::string ValueOf(const std::vector<DetailRow>& rows, DetailLabel label) {
    for (const auto& r : rows)
        if (r.label == label) return r.value;
    ADD_FAILURE() << "no row " << static_cast<int>(label);
    return {};
}

TEST(ProfileDetails, EnabledWordAndTcpFlagNames) {
    EXPECT_EQ("Enabled", acl::EnabledWord("1"));
    EXPECT_EQ("Disabled", acl::EnabledWord("2"));
    EXPECT_EQ("Disabled", acl::EnabledWord(""));
    EXPECT_EQ("urg/ack/psh/rst/syn/fin", acl::TcpFlagNames("63"));
    EXPECT_EQ("ack/syn", acl::TcpFlagNames("18"));
    EXPECT_EQ("fin", acl::TcpFlagNames("1"));
    EXPECT_EQ("", acl::TcpFlagNames("0"));
    EXPECT_EQ("", acl::TcpFlagNames(""));
}

TEST(ProfileDetails, EthernetRowsInTheSpecOrder) {
    const AclRecord r{"3", "1", "4", "FFFFFFFFFFFF", "000000FFFFFF", "2", "1", "1", "1", "128"};
    const auto rows = acl::ProfileDetails(AclType::kEthernet, r, AclOwner::kAcl, M("TVR4820"));
    EXPECT_EQ((std::vector<DetailLabel>{L::kProfileId, L::kProfileType, L::kOwnerType, L::kVlan, L::kSourceMac,
                                        L::kDestinationMac, L::k8021p, L::kEthernetType}),
              Labels(rows));
    EXPECT_EQ("3", ValueOf(rows, L::kProfileId));
    EXPECT_EQ("Ethernet", ValueOf(rows, L::kProfileType));
    EXPECT_EQ("", ValueOf(rows, L::kOwnerType)) << "empty for the ordinary ACL";
    EXPECT_EQ("Enabled", ValueOf(rows, L::kVlan));
    EXPECT_EQ("FFFFFFFFFFFF", ValueOf(rows, L::kSourceMac));
    EXPECT_EQ("000000FFFFFF", ValueOf(rows, L::kDestinationMac));
    EXPECT_EQ("Disabled", ValueOf(rows, L::k8021p));
    EXPECT_EQ("Enabled", ValueOf(rows, L::kEthernetType));
}

TEST(ProfileDetails, CpuOwnerAndTvr4512ProfileName) {
    const AclRecord eth{"2", "2", "1", "", "", "2", "2", "1", "2", ""};
    EXPECT_EQ("CPU ACL", ValueOf(acl::ProfileDetails(AclType::kEthernet, eth, AclOwner::kCpu, M("TVG5690")),
                                 L::kOwnerType));
    // TVR4512, ordinary ACL: "ProfileName" after "Owner Type", from the cell that holds the name.
    const AclRecord named{"4", "1", "1", "", "", "2", "2", "1", "web", ""};
    const auto rows = acl::ProfileDetails(AclType::kEthernet, named, AclOwner::kAcl, M("TVR4512"));
    ASSERT_GE(rows.size(), 4u);
    EXPECT_EQ(L::kProfileName, rows[3].label);
    EXPECT_EQ("web", rows[3].value);
    // Not for the CPU ACL of TVR4512, nor for other models.
    EXPECT_EQ(L::kVlan, acl::ProfileDetails(AclType::kEthernet, named, AclOwner::kCpu, M("TVR4512"))[3].label);
    EXPECT_EQ(L::kVlan, acl::ProfileDetails(AclType::kEthernet, named, AclOwner::kAcl, M("TVG5690"))[3].label);
}

TEST(ProfileDetails, Ipv4TcpWithFlagsAndMasks) {
    AclRecord r(22);
    r[0] = "5";
    r[1] = "1";
    r[2] = "4";
    r[3] = "255.255.255.0";
    r[4] = "255.255.0.0";
    r[5] = "2";
    r[6] = "4";  // TCP
    r[9] = "4";
    r[11] = "FFFF";
    r[12] = "00FF";
    r[13] = "1";
    r[14] = "34";  // urg + syn
    r[15] = "2";
    const auto rows = acl::ProfileDetails(AclType::kIPv4, r, AclOwner::kAcl, M("TVG5690"));
    EXPECT_EQ((std::vector<DetailLabel>{L::kProfileId, L::kProfileType, L::kOwnerType, L::kVlan, L::kDestinationIp,
                                        L::kSourceIp, L::kDscp, L::kIcmp, L::kIcmpType, L::kIcmpCode, L::kIgmp,
                                        L::kTcpDstPortMask, L::kTcpSrcPortMask, L::kTcpFlagBit, L::kTcpFlagBitMask,
                                        L::kUdpDstPortMask, L::kUdpSrcPortMask, L::kProtocolId, L::kUserMask,
                                        L::kProtoIdOption}),
              Labels(rows));
    EXPECT_EQ("255.255.0.0", ValueOf(rows, L::kDestinationIp));
    EXPECT_EQ("255.255.255.0", ValueOf(rows, L::kSourceIp));
    EXPECT_EQ("Disabled", ValueOf(rows, L::kDscp));
    EXPECT_EQ("Disabled", ValueOf(rows, L::kIcmp));
    EXPECT_EQ("00FF", ValueOf(rows, L::kTcpDstPortMask));
    EXPECT_EQ("FFFF", ValueOf(rows, L::kTcpSrcPortMask));
    EXPECT_EQ("Enabled", ValueOf(rows, L::kTcpFlagBit));
    EXPECT_EQ("urg/syn", ValueOf(rows, L::kTcpFlagBitMask));
    EXPECT_EQ("", ValueOf(rows, L::kUdpDstPortMask)) << "port masks belong to their protocol";
}

TEST(ProfileDetails, Ipv4IcmpOptions) {
    AclRecord r(22);
    r[0] = "1";
    r[6] = "2";  // ICMP
    for (const auto& [option, type, code] : std::vector<std::tuple<const char*, const char*, const char*>>{
             {"1", "Disabled", "Disabled"}, {"2", "Enabled", "Disabled"}, {"3", "Disabled", "Enabled"},
             {"4", "Enabled", "Enabled"}}) {
        r[7] = option;
        const auto rows = acl::ProfileDetails(AclType::kIPv4, r, AclOwner::kAcl, M("TVR4820"));
        EXPECT_EQ("Enabled", ValueOf(rows, L::kIcmp));
        EXPECT_EQ(type, ValueOf(rows, L::kIcmpType)) << option;
        EXPECT_EQ(code, ValueOf(rows, L::kIcmpCode)) << option;
    }
}

TEST(ProfileDetails, Ipv6Rows) {
    const AclRecord r{"7", "1", "2", "4", "FFFF0000000000000000000000000000", "0000000000000000000000000000FFFF",
                      "1", "1", ""};
    const auto rows = acl::ProfileDetails(AclType::kIPv6, r, AclOwner::kAcl, M("TVR4820"));
    EXPECT_EQ((std::vector<DetailLabel>{L::kProfileId, L::kProfileType, L::kOwnerType, L::kIpv6Class,
                                        L::kIpv6FlowLabel, L::kDestinationIpv6Mask, L::kSourceIpv6Mask}),
              Labels(rows));
    EXPECT_EQ("IPv6", ValueOf(rows, L::kProfileType));
    EXPECT_EQ("Enabled", ValueOf(rows, L::kIpv6Class));
    EXPECT_EQ("Disabled", ValueOf(rows, L::kIpv6FlowLabel));
    EXPECT_EQ("0000000000000000000000000000FFFF", ValueOf(rows, L::kDestinationIpv6Mask));
}

TEST(ProfileDetails, PacketContentChunkAndOffsetLayouts) {
    // TVG5690, ordinary ACL: the chunk layout, "Value:" offset ", Mask:0x" mask.
    const AclRecord chunks{"2", "1", "3", "FFFF0000", "1", "", "", "1", "31", "000000FF", "", "", "", "4", ""};
    const auto c = acl::ProfileDetails(AclType::kPacketContent, chunks, AclOwner::kAcl, M("TVG5690"));
    EXPECT_EQ((std::vector<DetailLabel>{L::kProfileId, L::kProfileType, L::kOwnerType, L::kChunk1, L::kChunk2,
                                        L::kChunk3, L::kChunk4}),
              Labels(c));
    EXPECT_EQ("Packet Content", ValueOf(c, L::kProfileType));
    EXPECT_EQ("Value:3, Mask:0xFFFF0000", ValueOf(c, L::kChunk1));
    EXPECT_EQ("Value:, Mask:0x", ValueOf(c, L::kChunk2));
    EXPECT_EQ("Value:31, Mask:0x000000FF", ValueOf(c, L::kChunk3));
    // The CPU ACL of the same model and every other model: the offset layout.
    const AclRecord offsets{"3", std::string(32, 'F'), "", "", "", std::string(32, '0'), "4"};
    for (const auto& [model, owner] : std::vector<std::pair<const char*, AclOwner>>{
             {"TVG5690", AclOwner::kCpu}, {"TVR4820", AclOwner::kAcl}}) {
        const auto o = acl::ProfileDetails(AclType::kPacketContent, offsets, owner, M(model));
        EXPECT_EQ((std::vector<DetailLabel>{L::kProfileId, L::kProfileType, L::kOwnerType, L::kContMaskOffset0to15,
                                            L::kContMaskOffset16to31, L::kContMaskOffset32to47,
                                            L::kContMaskOffset48to63, L::kContMaskOffset64to79}),
                  Labels(o))
            << model;
        EXPECT_EQ(std::string(32, 'F'), ValueOf(o, L::kContMaskOffset0to15));
        EXPECT_EQ(std::string(32, '0'), ValueOf(o, L::kContMaskOffset64to79));
    }
}

TEST(ProfileDetails, ShortOrEmptyRecordsNeverOverrun) {
    for (AclType type : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent}) {
        const auto rows = acl::ProfileDetails(type, AclRecord{}, AclOwner::kAcl, M("TVR4512"));
        ASSERT_GE(rows.size(), 4u);
        EXPECT_EQ("", rows[0].value);
    }
}

}  // namespace
