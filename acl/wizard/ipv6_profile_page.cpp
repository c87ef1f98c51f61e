#include "acl/wizard/ipv6_profile_page.h"

#include "res/resource.h"
#include "ui/controls.h"

namespace acl::wizard {
namespace {

// An IPv6 mask is 32 hexadecimal digits (16 bytes on the wire).
constexpr size_t kIpv6MaskDigits = 32;

}  // namespace

CACLStep_IPV6::CACLStep_IPV6()
    : CProfileDefinitionPage(acl::pages::kPageIPv6Profile, IDD_ACL_STEP_IPV6, AclType::kIPv6,
                             {IDC_IPV6_LIST, IDC_IPV6_ADD, IDC_IPV6_DELETE}) {}

BOOL CACLStep_IPV6::OnInitDialog() {
    // Each address edit is limited to 32 characters (ES_UPPERCASE in the template).
    SendMessageA(GetDlgItem(IDC_IPV6_SRC), EM_LIMITTEXT, kIpv6MaskDigits, 0);
    SendMessageA(GetDlgItem(IDC_IPV6_DST), EM_LIMITTEXT, kIpv6MaskDigits, 0);
    return CProfileDefinitionPage::OnInitDialog();
}

// On activation only the enabling is renewed; the masks keep what the user typed
// (pages keep their contents for the wizard's life).
void CACLStep_IPV6::OnActivate() { EnableAddressEdits(); }

// Each address check box enables its edit.
void CACLStep_IPV6::EnableAddressEdits() {
    EnableWindow(GetDlgItem(IDC_IPV6_SRC), ui::Button(GetDlgItem(IDC_IPV6_SRC_CHECK)).IsChecked());
    EnableWindow(GetDlgItem(IDC_IPV6_DST), ui::Button(GetDlgItem(IDC_IPV6_DST_CHECK)).IsChecked());
}

ProfileFields CACLStep_IPV6::ReadFields() const {
    ProfileFields f;
    f.ipv6Class = ui::Button(GetDlgItem(IDC_IPV6_CLASS)).IsChecked();
    f.flowLabel = ui::Button(GetDlgItem(IDC_IPV6_FLOW_LABEL)).IsChecked();
    f.srcIpv6Checked = ui::Button(GetDlgItem(IDC_IPV6_SRC_CHECK)).IsChecked();
    f.dstIpv6Checked = ui::Button(GetDlgItem(IDC_IPV6_DST_CHECK)).IsChecked();
    f.srcIpv6Mask = ui::GetWindowTextString(GetDlgItem(IDC_IPV6_SRC));
    f.dstIpv6Mask = ui::GetWindowTextString(GetDlgItem(IDC_IPV6_DST));
    return f;
}

UINT CACLStep_IPV6::CheckFields(const ProfileFields& f) const {
    // A checked mask must be exactly 32 hexadecimal digits
    // (ValidateHexWidth says why).
    if ((f.srcIpv6Checked && !ValidateHexWidth(f.srcIpv6Mask, kIpv6MaskDigits)) ||
        (f.dstIpv6Checked && !ValidateHexWidth(f.dstIpv6Mask, kIpv6MaskDigits)))
        return static_cast<UINT>(AclMessage::kInvalidIpv6Mask);
    return 0;
}

BOOL CACLStep_IPV6::OnFieldCommand(int id, int code) {
    if (code == BN_CLICKED && (id == IDC_IPV6_SRC_CHECK || id == IDC_IPV6_DST_CHECK)) {
        EnableAddressEdits();
        return TRUE;
    }
    return FALSE;
}

}  // namespace acl::wizard
