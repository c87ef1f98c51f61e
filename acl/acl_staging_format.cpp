#include "acl/acl_staging.h"

std::optional<StagingFile> StagingFileFor(const ModelEntry& model, AclOwner owner, AclKind kind,
                                          AclType type) {
  const bool offered = kind == AclKind::kProfiles ? model.offersProfileType(owner, type)
                                                  : model.offersRuleType(owner, type);
  if (!offered) return std::nullopt;
  const size_t cells = RecordCellCount(RecordKindFor(model, owner, kind, type));
  if (cells == 0) return std::nullopt;
  const bool cpu = owner == AclOwner::kCpu;
  if (kind == AclKind::kProfiles) return ProfileStagingFile(model, owner, type);
  // File name and read buffer.
  switch (type) {
    case AclType::kEthernet: return StagingFile{cpu ? kStagingCpuEthRule : kStagingEthRule, cells, 80};
    case AclType::kIPv4: return StagingFile{cpu ? kStagingCpuIpv4Rule : kStagingIpv4Rule, cells, cpu ? 80u : 160u};
    case AclType::kIPv6: return StagingFile{cpu ? kStagingCpuIpv6Rule : kStagingIpv6Rule, cells, 80};
    case AclType::kPacketContent: return StagingFile{kStagingPacketRule, cells, cpu ? 180u : 160u};
  }
  return std::nullopt;
}

StagingFile ProfileStagingFile(const ModelEntry& model, AclOwner owner, AclType type) {
  AclRecordKind k{owner, AclKind::kProfiles, type, PacketShape::kNone};
  if (type == AclType::kPacketContent)
    k.shape = RecordKindFor(model, owner, AclKind::kProfiles, type).shape == PacketShape::kChunks4
                  ? PacketShape::kChunks4
                  : PacketShape::kBlock16;
  const size_t cells = RecordCellCount(k);
  // File name and read buffer.
  switch (type) {
    case AclType::kEthernet: return StagingFile{kStagingEthernet, cells, 80};
    case AclType::kIPv4: return StagingFile{kStagingIpv4, cells, 120};
    case AclType::kIPv6: return StagingFile{kStagingIpv6, cells, 80};
    case AclType::kPacketContent: break;
  }
  return StagingFile{kStagingPacket, cells, 180};
}

std::string JoinStagingRecord(const AclRecord& record, size_t cellCount) {
  std::string s;
  for (size_t i = 0; i < cellCount; ++i) {
    if (i < record.size()) s += record[i];
    s += '?';
  }
  return s;
}

AclRecord SplitStagingRecord(std::string_view value, size_t cellCount) {
  AclRecord r(cellCount);
  size_t cell = 0;
  while (cell < cellCount) {
    size_t q = value.find('?');
    r[cell++] = std::string(value.substr(0, q));
    if (q == std::string_view::npos) break;
    value.remove_prefix(q + 1);
  }
  return r;
}

bool StagingRepresentable(const AclRecordList& list) {
  for (const AclRecord& r : list)
    for (const std::string& c : r)
      if (c.find_first_of("?\r\n") != std::string::npos) return false;
  return true;
}

const char* StagedRuleTypeWord(AclType type) {
  return type == AclType::kPacketContent ? "Packet content" : TypeWord(type);
}
