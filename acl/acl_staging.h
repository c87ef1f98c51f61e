// The ACL staging INI files that carry defined records from the pages to the apply. The layout (record <-> "?"-separated value), the file
// names and the choice of file are portable (acl_staging_format.cpp); the file I/O goes
// through the Win32 private-profile functions and is built only for Windows
// (acl_staging_win.cpp).
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "acl/acl_record.h"

// File names (appended to the current directory).
inline constexpr const char* kStagingEthernet = "\\ACLEthernet.ini";
inline constexpr const char* kStagingIpv4 = "\\ACLIpv4.ini";
inline constexpr const char* kStagingIpv6 = "\\ACLIpv6.ini";
inline constexpr const char* kStagingPacket = "\\ACPacket.ini";
inline constexpr const char* kStagingEthRule = "\\ACLEthrule.ini";
inline constexpr const char* kStagingCpuEthRule = "\\ACLCpuEthrule.ini";
inline constexpr const char* kStagingIpv4Rule = "\\ACLIpv4rule.ini";
inline constexpr const char* kStagingCpuIpv4Rule = "\\ACLCPUIpv4rule.ini";
inline constexpr const char* kStagingIpv6Rule = "\\ACLIpv6rule.ini";
inline constexpr const char* kStagingCpuIpv6Rule = "\\ACLCPUIpv6rule.ini";
inline constexpr const char* kStagingPacketRule = "\\ACLPacketrule.ini";

struct StagingFile {
  const char* name;    // one of the names above
  size_t cellCount;    // cells per record
  size_t bufferSize;   // read buffer (a first guess; longer values are read whole)
};

// The staging file, cell count and read buffer of a record kind of a model.
// nullopt for a kind the model does not have.
std::optional<StagingFile> StagingFileFor(const ModelEntry& model, AclOwner owner, AclKind kind,
                                          AclType type);

// The profile file of a type whatever a model offers (the Confirmation Page reads all
// four): packet content in the chunk form on the models whose ordinary ACL uses
// Chunks4, with the ordinary ACL, and in the offset (Block16) form in all other cases.
StagingFile ProfileStagingFile(const ModelEntry& model, AclOwner owner, AclType type);

// The value: every cell (exactly cellCount, missing ones empty) followed by "?".
std::string JoinStagingRecord(const AclRecord& record, size_t cellCount);
// Reading: split at "?", exactly cellCount cells, missing cells empty.
AclRecord SplitStagingRecord(std::string_view value, size_t cellCount);
// A cell holding "?" (or a line break, which an INI value
// cannot hold) cannot be represented; such a list is refused before the file is touched.
bool StagingRepresentable(const AclRecordList& list);

// The type as the rule confirmation list names a staged record: "Ethernet", "IPv4", "IPv6",
// "Packet content" (lower-case "content", unlike the profile lists).
const char* StagedRuleTypeWord(AclType type);

// --- Windows only (acl_staging_win.cpp) ---

// Current directory (GetCurrentDirectoryA, 256-byte buffer) followed by the name.
std::string StagingPath(const char* fileName);
// Deletes the file, writes "Section1"/"Item1" = count and one section/key per record.
// Returns false (and leaves the file as it was) when the list is not representable.
bool WriteStagingFile(const char* fileName, const AclRecordList& list, size_t cellCount);
// The records back, in order; an absent file gives none. Values of any length come back whole.
AclRecordList ReadStagingFile(const char* fileName, size_t cellCount, size_t bufferSize);
void DeleteProfileStagingFiles();
void DeleteRuleStagingFiles();
