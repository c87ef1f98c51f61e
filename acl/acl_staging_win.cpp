// Staging file I/O through the Win32 private-profile functions (the only file of acl/ that
// includes <windows.h>).
#include <windows.h>

#include <vector>

#include "acl/acl_staging.h"

namespace {

constexpr const char* kCountSection = "Section1";
constexpr const char* kCountKey = "Item1";
// More records than any list can hold (profile IDs and Access IDs stop at 65535).
constexpr long kMaxStagedRecords = 65536;

// GetPrivateProfileStringA with a buffer that grows until the value fits: a result of
// size - 1 characters means the value may have been cut (long IPv6 and packet-content
// records do not fit the classic buffers; values of any length are read whole).
std::string ReadValue(const std::string& path, const char* section, const char* key, size_t size) {
  if (size < 2) size = 2;
  for (;;) {
    std::vector<char> buf(size);
    DWORD n = GetPrivateProfileStringA(section, key, "", buf.data(), static_cast<DWORD>(buf.size()),
                                       path.c_str());
    if (static_cast<size_t>(n) + 1 < size || size >= (1u << 24)) return std::string(buf.data(), n);
    size *= 2;
  }
}

}  // namespace

std::string StagingPath(const char* fileName) {
  char dir[256] = {0};
  DWORD n = GetCurrentDirectoryA(sizeof dir, dir);
  if (n == 0 || n >= sizeof dir) dir[0] = 0;
  return std::string(dir) + fileName;
}

bool WriteStagingFile(const char* fileName, const AclRecordList& list, size_t cellCount) {
  if (!StagingRepresentable(list)) return false;
  const std::string path = StagingPath(fileName);
  DeleteFileA(path.c_str());  // a missing file is no error; no stale records survive
  WritePrivateProfileStringA(kCountSection, kCountKey, std::to_string(list.size()).c_str(), path.c_str());
  for (size_t i = 0; i < list.size(); ++i) {
    const std::string name = std::to_string(i);
    WritePrivateProfileStringA(name.c_str(), name.c_str(), JoinStagingRecord(list[i], cellCount).c_str(),
                               path.c_str());
  }
  WritePrivateProfileStringA(nullptr, nullptr, nullptr, path.c_str());  // flush the cache
  return true;
}

AclRecordList ReadStagingFile(const char* fileName, size_t cellCount, size_t bufferSize) {
  const std::string path = StagingPath(fileName);
  AclRecordList out;
  long n = ParseLeadingDecimal(ReadValue(path, kCountSection, kCountKey, 32));
  if (n > kMaxStagedRecords) n = kMaxStagedRecords;  // a damaged count never runs away
  for (long i = 0; i < n; ++i) {
    const std::string name = std::to_string(i);
    out.push_back(SplitStagingRecord(ReadValue(path, name.c_str(), name.c_str(), bufferSize), cellCount));
  }
  return out;
}

void DeleteProfileStagingFiles() {
  for (const char* f : {kStagingEthernet, kStagingIpv4, kStagingIpv6, kStagingPacket})
    DeleteFileA(StagingPath(f).c_str());
}

void DeleteRuleStagingFiles() {
  for (const char* f : {kStagingEthRule, kStagingIpv4Rule, kStagingIpv6Rule, kStagingCpuEthRule,
                        kStagingCpuIpv4Rule, kStagingCpuIpv6Rule, kStagingPacketRule})
    DeleteFileA(StagingPath(f).c_str());
}
