#include "acl/wizard/staging_cleanup.h"

#include <windows.h>

#include <string>

#include "res/resource.h"
#include "ui/text.h"

namespace acl::wizard {
namespace {
// Part 4.5: each file is the current directory (a 256-byte buffer) followed by its name.
void DeleteStagingFile(UINT nName) {
    char directory[256] = {};
    GetCurrentDirectoryA(sizeof directory, directory);
    const std::string path = std::string(directory) + ui::LoadResString(nName);
    DeleteFileA(path.c_str());
}
}  // namespace

void RemoveProfileStagingFiles() {
    for (UINT name : {IDS_FILE_ACL_ETHERNET, IDS_FILE_ACL_IPV4, IDS_FILE_ACL_IPV6, IDS_FILE_AC_PACKET})
        DeleteStagingFile(name);
}

void RemoveRuleStagingFiles() {
    for (UINT name : {IDS_FILE_ACL_ETHRULE, IDS_FILE_ACL_IPV4RULE, IDS_FILE_ACL_IPV6RULE, IDS_FILE_ACL_CPU_ETHRULE,
                      IDS_FILE_ACL_CPU_IPV4RULE, IDS_FILE_ACL_CPU_IPV6RULE, IDS_FILE_ACL_PACKETRULE})
        DeleteStagingFile(name);
}

}  // namespace acl::wizard
