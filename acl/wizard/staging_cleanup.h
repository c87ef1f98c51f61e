// Part 4.5's deletion of the staging files, as the confirmation pages need it on Finish and
// Cancel (Part 5.1). The ACL core's staging functions (acl/, Part 4.5) were not there yet
// when the wizard frame was built; these two are to give way to them once they land.
#pragma once

namespace acl::wizard {

// Deletes "\ACLEthernet.ini", "\ACLIpv4.ini", "\ACLIpv6.ini", "\ACPacket.ini" in the
// current directory; a missing file is no error.
void RemoveProfileStagingFiles();
// Deletes the seven rule files: "\ACLEthrule.ini", "\ACLIpv4rule.ini", "\ACLIpv6rule.ini",
// "\ACLCpuEthrule.ini", "\ACLCPUIpv4rule.ini", "\ACLCPUIpv6rule.ini", "\ACLPacketrule.ini".
void RemoveRuleStagingFiles();

}  // namespace acl::wizard
