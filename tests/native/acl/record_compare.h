// What the ACL tests compare after a write and a read: a record read back from a switch
// against the record sent, cell by cell after the cell encodings. Shared by the
// device tests and the GUI flows that create profiles through the wizard.
#pragma once
#include <gtest/gtest.h>

#include <string>

#include "acl/acl_mib.h"
#include "acl/acl_record.h"

// Every cell the writer sends must read back to the same SNMP value; the row status reads back
// active.
inline void ExpectSameCells(const ModelEntry& m, const AclTableLayout& t, const AclRecord& sent, const AclRecord& read,
                     const std::string& what) {
  ASSERT_EQ(read.size(), RecordCellCount(t.record)) << what;
  EXPECT_EQ(read[0], sent[0]) << what;
  if (t.record.kind == AclKind::kRules) {
    EXPECT_EQ(read[1], sent[1]) << what;
  }
  for (size_t k = 0; k < t.columns.size(); ++k) {
    if (t.columns[k] == 0) {
      EXPECT_EQ(read[k], "") << what << " cell " << k << " has no column";
      continue;
    }
    if (t.kinds[k] == CellKind::kRowStatus) {
      EXPECT_EQ(read[k], "1") << what << " createAndGo leaves the row active";
      continue;
    }
    if (t.leftOut[k] || t.kinds[k] == CellKind::kIndex) continue;
    auto want = EncodeCell(t.kinds[k], m, sent[k]);
    if (!want) continue;  // not sent: the device's default stands
    auto got = EncodeCell(t.kinds[k], m, read[k]);
    ASSERT_TRUE(got) << what << " cell " << k << " read '" << read[k] << "'";
    EXPECT_EQ(*got, *want) << what << " cell " << k << " sent '" << sent[k] << "' read '" << read[k] << "'";
  }
}

