// The staging files through the real Win32 private-profile functions (under Wine).
#include <windows.h>

#include <gtest/gtest.h>

#include <optional>

#include "acl/acl_device.h"
#include "acl/acl_staging.h"
#include "tests/win/support/win_test_util.h"

namespace {

const ModelEntry& M(const char* text) { return *LookupModel(text); }

class StagingTest : public ::testing::Test {
 protected:
  static bool Exists(const char* name) {
    return GetFileAttributesA(StagingPath(name).c_str()) != INVALID_FILE_ATTRIBUTES;
  }
  static std::string Raw(const char* section, const char* key, const char* name) {
    char buf[4096];
    DWORD n = GetPrivateProfileStringA(section, key, "<absent>", buf, sizeof buf, StagingPath(name).c_str());
    return std::string(buf, n);
  }
  static std::string Sections(const char* name) {
    char buf[4096];
    DWORD n = GetPrivateProfileSectionNamesA(buf, sizeof buf, StagingPath(name).c_str());
    std::string s;
    for (DWORD i = 0; i < n; ++i) s += buf[i] ? buf[i] : '|';
    return s;
  }
  // The files live in the current folder: a fresh one for every test.
  sentrel_test::ScopedCurrentFolder folder_{"sentrel_staging_"};
};

}  // namespace

TEST_F(StagingTest, CountThenOneSectionAndKeyPerRecordInTheCurrentDirectory) {
  char cwd[MAX_PATH];
  GetCurrentDirectoryA(MAX_PATH, cwd);
  EXPECT_EQ(StagingPath(kStagingEthernet), std::string(cwd) + "\\ACLEthernet.ini");
  const struct {
    const char* file;
    std::vector<AclRecordList> writes;  // written one after the other; the last one counts
    size_t cells;
    const char* sections;
    const char* firstRecord;
  } cases[] = {
      {kStagingEthernet,
       {{{"1", "1", "1", "", "", "2", "2", "4", "1", ""}, {"2", "2", "4", "FFFFFFFFFFFF", "0000000000FF", "1", "1", "4", "1", ""}}},
       10, "Section1|0|1|", "1?1?1???2?2?4?1??"},
      {kStagingIpv6, {{}}, 9, "Section1|", "<absent>"},           // no records: only the count
      {kStagingIpv4Rule, {{{"3", "", "x"}}}, 3, "Section1|0|", "3??x?"},  // an empty cell: two separators
      {kStagingEthRule, {{{"1", "a"}, {"2", "b"}, {"3", "c"}}, {{"9", "z"}}}, 2, "Section1|0|", "9?z?"},  // no stale records
  };
  for (const auto& c : cases) {
    for (const AclRecordList& list : c.writes) ASSERT_TRUE(WriteStagingFile(c.file, list, c.cells));
    const AclRecordList& last = c.writes.back();
    EXPECT_EQ(Sections(c.file), c.sections);
    EXPECT_EQ(Raw("Section1", "Item1", c.file), std::to_string(last.size()));
    EXPECT_EQ(Raw("0", "0", c.file), c.firstRecord);
    EXPECT_EQ(ReadStagingFile(c.file, c.cells, 80), last) << c.file;
  }
  // A mirror rule reads back with the Confirmation Page's own word.
  RuleFields f;
  f.profileId = "1";
  f.accessId = "2";
  f.ports = "1";
  f.action = "3";
  ASSERT_TRUE(WriteStagingFile(kStagingEthRule, {BuildRule(AclType::kEthernet, AclOwner::kAcl, M("TVG5690"), f)}, 15));
  EXPECT_EQ(ActionStagingWord(ReadStagingFile(kStagingEthRule, 15, 80).at(0)[10]), "miror");
}

TEST_F(StagingTest, LongValuesComeBackWholeBeyondTheReadBuffers) {
  // A Block16 packet-content rule with five 32-digit blocks does not fit 160 characters, an
  // IPv6 rule with two addresses does not fit 80.
  RuleFields f;
  f.profileId = "1";
  f.accessId = "1";
  f.ports = "1-28";
  f.srcIpv6 = std::string(32, 'A');
  f.dstIpv6 = std::string(32, 'B');
  for (size_t i = 0; i < 5; ++i) {
    f.items[i].checked = true;
    f.items[i].data = std::string(32, static_cast<char>('0' + i));
  }
  AclRecord pc = BuildRule(AclType::kPacketContent, AclOwner::kAcl, M("TVR4820"), f);
  AclRecord v6 = BuildRule(AclType::kIPv6, AclOwner::kAcl, M("TVR4820"), f);
  ASSERT_GT(JoinStagingRecord(pc, 14).size(), 160u);
  ASSERT_GT(JoinStagingRecord(v6, 14).size(), 80u);
  ASSERT_TRUE(WriteStagingFile(kStagingPacketRule, {pc, pc}, 14));
  ASSERT_TRUE(WriteStagingFile(kStagingIpv6Rule, {v6}, 14));
  EXPECT_EQ(ReadStagingFile(kStagingPacketRule, 14, 160), (AclRecordList{pc, pc}));
  EXPECT_EQ(ReadStagingFile(kStagingIpv6Rule, 14, 80), (AclRecordList{v6}));
  AclRecord huge(3, std::string(5000, 'F'));
  ASSERT_TRUE(WriteStagingFile(kStagingPacket, {huge}, 3));
  EXPECT_EQ(ReadStagingFile(kStagingPacket, 3, 180), (AclRecordList{huge}));
}

TEST_F(StagingTest, DamagedOrRefusedContentNeitherRunsAwayNorLosesTheFile) {
  EXPECT_TRUE(ReadStagingFile(kStagingIpv4, 22, 120).empty()) << "no file";
  const std::string path = StagingPath(kStagingIpv4);
  WritePrivateProfileStringA("Section1", "Item1", "1", path.c_str());
  WritePrivateProfileStringA("0", "0", "7?1?", path.c_str());
  AclRecord padded(22);
  padded[0] = "7";
  padded[1] = "1";
  EXPECT_EQ(ReadStagingFile(kStagingIpv4, 22, 120), AclRecordList{padded}) << "fewer separators than cells";
  WritePrivateProfileStringA("0", "0", "7?1?2?3?4?5?6?7?8?9?10?11?12?13?14?15?16?17?18?19?20?21?22?", path.c_str());
  EXPECT_EQ(ReadStagingFile(kStagingIpv4, 22, 120).at(0).size(), 22u) << "more separators than cells";
  WritePrivateProfileStringA("Section1", "Item1", "99999999999", path.c_str());
  EXPECT_EQ(ReadStagingFile(kStagingIpv4, 22, 120).size(), 65536u) << "a damaged count is bounded";
  // A cell holding the separator is refused and the file kept.
  ASSERT_TRUE(WriteStagingFile(kStagingEthernet, {{"1", "ok"}}, 2));
  EXPECT_FALSE(WriteStagingFile(kStagingEthernet, {{"2", "a?b"}}, 2));
  EXPECT_FALSE(WriteStagingFile(kStagingEthernet, {{"2", "a"}, {"3", "x\n"}}, 2)) << "nor a line break";
  EXPECT_EQ(ReadStagingFile(kStagingEthernet, 2, 80), (AclRecordList{{"1", "ok"}}));
}

// Every staging file at once with its own records: nothing is lost or mixed between files,
// and each group's deletion removes exactly its files.
TEST_F(StagingTest, NothingIsLostOrMixedBetweenFilesAndGroupsDeleteTheirOwn) {
  const AclType types[] = {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent};
  std::vector<std::optional<StagingFile>> files;
  for (AclType t : types) {
    files.push_back(StagingFileFor(M("TVG5240-10"), AclOwner::kAcl, AclKind::kProfiles, t));
    files.push_back(StagingFileFor(M("TVG5240-10"), AclOwner::kAcl, AclKind::kRules, t));
    if (t != AclType::kPacketContent) files.push_back(StagingFileFor(M("TVG5240-10"), AclOwner::kCpu, AclKind::kRules, t));
  }
  std::vector<std::pair<StagingFile, AclRecordList>> written;
  int n = 0;
  for (const auto& f : files) {
    ASSERT_TRUE(f);
    AclRecordList list;
    for (int r = 0; r < 3; ++r) {
      AclRecord rec(f->cellCount);
      for (size_t c = 0; c < rec.size(); ++c) rec[c] = c % 3 == 1 ? "" : "f" + std::to_string(n) + "r" + std::to_string(r) + "c" + std::to_string(c);
      list.push_back(rec);
    }
    ++n;
    ASSERT_TRUE(WriteStagingFile(f->name, list, f->cellCount));
    written.emplace_back(*f, list);
  }
  for (const auto& [f, list] : written) EXPECT_EQ(ReadStagingFile(f.name, f.cellCount, f.bufferSize), list) << f.name;
  // A profile apply deletes the profile files (through its callback) and nothing else.
  AclApplyCallbacks cb;
  cb.deleteStaged = DeleteProfileStagingFiles;
  ApplyProfiles({}, AclOwner::kAcl, {}, cb);
  for (const char* p : {kStagingEthernet, kStagingIpv4, kStagingIpv6, kStagingPacket}) EXPECT_FALSE(Exists(p)) << p;
  for (const auto& [f, list] : written) {
    const std::string name = f.name;
    if (name != kStagingEthernet && name != kStagingIpv4 && name != kStagingIpv6 && name != kStagingPacket) {
      EXPECT_EQ(ReadStagingFile(f.name, f.cellCount, f.bufferSize), list) << f.name;
    }
  }
  DeleteRuleStagingFiles();
  for (const auto& [f, list] : written) EXPECT_FALSE(Exists(f.name)) << f.name;
}
