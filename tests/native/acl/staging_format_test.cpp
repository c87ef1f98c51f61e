// The portable half of the staging files: the file a record kind goes to where models and
// owners differ. (The "?"-separated values are read back through the real private-profile
// functions in tests/win/acl/staging_test.cpp.)
#include <gtest/gtest.h>

#include "tests/native/acl/model_for_test.h"

#include "acl/acl_staging.h"

// Packet content shares one file per group whose record shape follows model and owner; the
// Confirmation Page reads all four profile files even for a type the model does not offer.
TEST(AclStagingFormat, PacketContentShapeFollowsModelAndOwner) {
  const struct {
    const char* model;
    AclOwner owner;
    AclKind kind;
    size_t cells, buffer;
  } cases[] = {
      {"TVG5240-10", AclOwner::kAcl, AclKind::kProfiles, 15, 180}, {"TVG5240-10", AclOwner::kCpu, AclKind::kProfiles, 7, 180},
      {"TVR4820", AclOwner::kAcl, AclKind::kProfiles, 7, 180},     {"TVR4510", AclOwner::kAcl, AclKind::kRules, 14, 160},
      {"TVR4060", AclOwner::kAcl, AclKind::kRules, 18, 160},       {"TVG5690", AclOwner::kCpu, AclKind::kRules, 10, 180},
  };
  for (const auto& c : cases) {
    auto f = StagingFileFor(M(c.model), c.owner, c.kind, AclType::kPacketContent);
    ASSERT_TRUE(f) << c.model;
    EXPECT_STREQ(f->name, c.kind == AclKind::kProfiles ? "\\ACPacket.ini" : "\\ACLPacketrule.ini");
    EXPECT_EQ(f->cellCount, c.cells) << c.model;
    EXPECT_EQ(f->bufferSize, c.buffer) << c.model;
  }
  EXPECT_FALSE(StagingFileFor(M("TVG5470"), AclOwner::kAcl, AclKind::kProfiles, AclType::kPacketContent));
  EXPECT_EQ(7u, ProfileStagingFile(M("TVG5470"), AclOwner::kAcl, AclType::kPacketContent).cellCount);
  EXPECT_STREQ("\\ACLCPUIpv4rule.ini", StagingFileFor(M("TVR4820"), AclOwner::kCpu, AclKind::kRules, AclType::kIPv4)->name);
}
