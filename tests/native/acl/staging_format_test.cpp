// The portable half of the staging files: the file a record kind goes to holds every cell of
// the records the pages build for that table, for every model and owner. (The "?"-separated
// values are read back through the real private-profile functions in
// tests/win/acl/staging_test.cpp.)
#include <gtest/gtest.h>

#include "acl/acl_mib.h"
#include "acl/acl_staging.h"

TEST(AclStagingFormat, EveryTableStagesAllItsCells) {
  int tables = 0;
  for (const ModelEntry* m = CatalogueBegin(); m != CatalogueEnd(); ++m) {
    if (!m->supported) continue;
    for (AclOwner owner : {AclOwner::kAcl, AclOwner::kCpu})
      for (AclKind kind : {AclKind::kProfiles, AclKind::kRules})
        for (AclType type : {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent}) {
          const auto table = TableLayout(*m, owner, kind, type);
          const auto file = StagingFileFor(*m, owner, kind, type);
          ASSERT_EQ(table.has_value(), file.has_value()) << m->typeText << " " << TypeWord(type);
          if (!table) continue;
          EXPECT_EQ(file->cellCount, RecordCellCount(table->record)) << m->typeText << " " << TypeWord(type);
          ++tables;
        }
  }
  EXPECT_EQ(tables, 98);
}
