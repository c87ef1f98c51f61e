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
