// Part 4.5, the portable half: the "?"-separated value, the file of each record kind.
#include <gtest/gtest.h>

#include "tests/native/acl/model_for_test.h"

#include "acl/acl_staging.h"

TEST(AclStagingFormat, EveryCellFollowedBySeparator) {
  EXPECT_EQ(JoinStagingRecord({"1", "2", "", "4"}, 4), "1?2??4?");
  EXPECT_EQ(JoinStagingRecord({"1"}, 3), "1???") << "missing cells written empty";
  EXPECT_EQ(JoinStagingRecord({}, 0), "");
}

TEST(AclStagingFormat, SplitTakesExactlyTheCellCount) {
  EXPECT_EQ(SplitStagingRecord("1?2??4?", 4), (AclRecord{"1", "2", "", "4"}));
  EXPECT_EQ(SplitStagingRecord("1?2?", 4), (AclRecord{"1", "2", "", ""})) << "fewer separators: empty trailing cells";
  EXPECT_EQ(SplitStagingRecord("1?2?3?4?5?", 3), (AclRecord{"1", "2", "3"}));
  EXPECT_EQ(SplitStagingRecord("", 2), (AclRecord{"", ""}));
  EXPECT_EQ(SplitStagingRecord("abc", 2), (AclRecord{"abc", ""}));
}

TEST(AclStagingFormat, QuestionMarksAndLineBreaksCannotBeStaged) {
  EXPECT_TRUE(StagingRepresentable({{"1", "a b"}}));
  EXPECT_FALSE(StagingRepresentable({{"1", "a?b"}}));
  EXPECT_FALSE(StagingRepresentable({{"1"}, {"x\n"}}));
}

TEST(AclStagingFormat, FilesCellCountsAndBuffersOfPart45) {
  struct Case {
    const char* model;
    AclOwner owner;
    AclKind kind;
    AclType type;
    const char* file;
    size_t cells;
    size_t buffer;
  } cases[] = {
      {"TVG5240-10", AclOwner::kAcl, AclKind::kProfiles, AclType::kEthernet, "\\ACLEthernet.ini", 10, 80},
      {"TVG5240-10", AclOwner::kCpu, AclKind::kProfiles, AclType::kIPv4, "\\ACLIpv4.ini", 22, 120},
      {"TVG5240-10", AclOwner::kAcl, AclKind::kProfiles, AclType::kIPv6, "\\ACLIpv6.ini", 9, 80},
      {"TVG5240-10", AclOwner::kAcl, AclKind::kProfiles, AclType::kPacketContent, "\\ACPacket.ini", 15, 180},
      {"TVG5240-10", AclOwner::kCpu, AclKind::kProfiles, AclType::kPacketContent, "\\ACPacket.ini", 7, 180},
      {"TVR4820", AclOwner::kAcl, AclKind::kProfiles, AclType::kPacketContent, "\\ACPacket.ini", 7, 180},
      {"TVR4820", AclOwner::kAcl, AclKind::kRules, AclType::kEthernet, "\\ACLEthrule.ini", 15, 80},
      {"TVR4820", AclOwner::kCpu, AclKind::kRules, AclType::kEthernet, "\\ACLCpuEthrule.ini", 10, 80},
      {"TVR4820", AclOwner::kAcl, AclKind::kRules, AclType::kIPv4, "\\ACLIpv4rule.ini", 25, 160},
      {"TVR4820", AclOwner::kCpu, AclKind::kRules, AclType::kIPv4, "\\ACLCPUIpv4rule.ini", 17, 80},
      {"TVR4820", AclOwner::kAcl, AclKind::kRules, AclType::kIPv6, "\\ACLIpv6rule.ini", 14, 80},
      {"TVR4512", AclOwner::kCpu, AclKind::kRules, AclType::kIPv6, "\\ACLCPUIpv6rule.ini", 9, 80},
      {"TVR4820", AclOwner::kAcl, AclKind::kRules, AclType::kPacketContent, "\\ACLPacketrule.ini", 14, 160},
      {"TVR4510", AclOwner::kAcl, AclKind::kRules, AclType::kPacketContent, "\\ACLPacketrule.ini", 14, 160},
      {"TVR4060", AclOwner::kAcl, AclKind::kRules, AclType::kPacketContent, "\\ACLPacketrule.ini", 18, 160},
      {"TVG5690", AclOwner::kAcl, AclKind::kRules, AclType::kPacketContent, "\\ACLPacketrule.ini", 18, 160},
      {"TVG5690", AclOwner::kCpu, AclKind::kRules, AclType::kPacketContent, "\\ACLPacketrule.ini", 10, 180},
  };
  for (const Case& c : cases) {
    auto f = StagingFileFor(M(c.model), c.owner, c.kind, c.type);
    ASSERT_TRUE(f) << c.file;
    EXPECT_STREQ(f->name, c.file);
    EXPECT_EQ(f->cellCount, c.cells) << c.model << c.file;
    EXPECT_EQ(f->bufferSize, c.buffer) << c.model << c.file;
  }
  EXPECT_FALSE(StagingFileFor(M("TVG5470"), AclOwner::kAcl, AclKind::kProfiles, AclType::kPacketContent));
}

// Part 5.4, step 4: the Confirmation Page reads all four profile files whatever the model
// offers; packet content in the chunk form on the chunk models with the ordinary ACL, else in
// the offset form.
TEST(Staging, ProfileFilesForTheConfirmationPageWhateverTheModelOffers) {
  const StagingFile packet = ProfileStagingFile(M("TVG5470"), AclOwner::kAcl, AclType::kPacketContent);
  EXPECT_STREQ("\\ACPacket.ini", packet.name);
  EXPECT_EQ(7u, packet.cellCount) << "TVG5470 offers none: offset form";
  EXPECT_EQ(180u, packet.bufferSize);
  EXPECT_EQ(15u, ProfileStagingFile(M("TVG5690"), AclOwner::kAcl, AclType::kPacketContent).cellCount);
  EXPECT_EQ(7u, ProfileStagingFile(M("TVG5690"), AclOwner::kCpu, AclType::kPacketContent).cellCount);
  const StagingFile ipv6 = ProfileStagingFile(M("TVR4510"), AclOwner::kAcl, AclType::kIPv6);
  EXPECT_STREQ("\\ACLIpv6.ini", ipv6.name);
  EXPECT_EQ(9u, ipv6.cellCount);
  EXPECT_EQ(22u, ProfileStagingFile(M("TVR4060"), AclOwner::kCpu, AclType::kIPv4).cellCount);
}
