#include "acl/wizard/acl_wizard.h"

#include "res/resource.h"
#include "ui/text.h"

namespace acl::wizard {

CACLWizard::CACLWizard() : WizardSheet(ui::LoadResString(IDS_ACL)) {
    CACLPage* const pages[acl::pages::kPageCount] = {
        &m_step0,   &m_step1,         &m_select,     &m_step2,      &m_step3,       &m_step4,
        &m_step5,   &m_stepEth,       &m_stepIPv6,   &m_stepPacket, &m_apply,       &m_addRule,
        &m_modifyProfile, &m_modifyRule, &m_addIPv4Rule, &m_addIPv6Rule, &m_ruleApply, &m_addPacketRule};
    for (CACLPage* page : pages) {
        page->Share(*this);
        AddPage(page);
    }
    SetStartPage(acl::pages::kPageDeviceList);
    // A log that cannot be opened changes nothing the pages show.
    std::string error;
    m_auditing = m_auditLog.Open(error);
    if (m_auditing) SetAclWriteObserver(m_auditLog.Observer());
}

CACLWizard::~CACLWizard() {
    if (m_auditing) SetAclWriteObserver(nullptr);
}

void CACLWizard::OnInitSheet() {
    // The wizard's icon as the big window icon; the wizard has no help to offer.
    HICON icon = LoadIconA(ui::ResourceInstance(), MAKEINTRESOURCEA(IDI_ACL_WIZARD));
    if (icon) SendMessageA(GetSafeHwnd(), WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon));
    if (HWND help = ::GetDlgItem(GetSafeHwnd(), IDHELP)) ShowWindow(help, SW_HIDE);
}

void RunAclWizard(HWND hwndParent) {
    CACLWizard wizard;  // the sheet and all pages are destroyed here, whatever the outcome
    wizard.DoModal(hwndParent);
}

}  // namespace acl::wizard
