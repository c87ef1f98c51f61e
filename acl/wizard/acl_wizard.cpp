#include "acl/wizard/acl_wizard.h"

#include "res/resource.h"
#include "ui/text.h"

namespace acl::wizard {
namespace {

// A page of the wizard before its Part gives it controls: its template (with the caption of
// Part 5.1) and its wizard buttons on activation. Parts 5.1 to 5.5 replace these one by one.
class CACLPage : public ui::WizardPage {
public:
    CACLPage(UINT nIDTemplate, DWORD dwButtons) : WizardPage(nIDTemplate), m_dwButtons(dwButtons) {}

protected:
    BOOL OnSetActive() override {
        if (m_dwButtons) Sheet()->SetWizardButtons(m_dwButtons);
        return TRUE;
    }

private:
    DWORD m_dwButtons;
};

struct PageSpec {
    UINT nIDTemplate;
    DWORD dwButtons;  // 0: keeps the buttons of the page before (CACLselect)
};

constexpr DWORD kNext = PSWIZB_NEXT;
constexpr DWORD kBackNext = PSWIZB_BACK | PSWIZB_NEXT;
constexpr DWORD kBackFinish = PSWIZB_BACK | PSWIZB_FINISH;

// Part 5.1: pages by index, with the wizard buttons each posts on activation.
constexpr PageSpec kPages[kPageCount] = {
    {IDD_ACL_STEP0, kNext},           {IDD_ACL_STEP1, kBackNext},       {IDD_ACL_SELECT, 0},
    {IDD_ACL_STEP2, kBackNext},       {IDD_ACL_STEP3, kBackNext},       {IDD_ACL_STEP4, kBackNext},
    {IDD_ACL_STEP5, kBackNext},       {IDD_ACL_STEP_ETH, kBackNext},    {IDD_ACL_STEP_IPV6, kBackNext},
    {IDD_ACL_STEP_PACKET, kBackNext}, {IDD_ACL_APPLY, kBackFinish},     {IDD_ACL_ADDRULE, kBackNext},
    {IDD_ACL_MODIFY_PROFILE, kBackFinish}, {IDD_ACL_MODIFY_RULE, kBackFinish},
    {IDD_ACL_ADD_IPV4_RULE, kBackNext},    {IDD_ACL_ADD_IPV6_RULE, kBackNext},
    {IDD_ACL_RULE_APPLY, kBackFinish},     {IDD_ACL_ADD_PACKET_RULE, kBackNext},
};

}  // namespace

CACLWizard::CACLWizard() : WizardSheet("ACL") {
    for (const PageSpec& spec : kPages) {
        m_pages.push_back(std::make_unique<CACLPage>(spec.nIDTemplate, spec.dwButtons));
        AddPage(m_pages.back().get());
    }
    SetStartPage(kPageDeviceList);
}

CACLWizard::~CACLWizard() = default;

void CACLWizard::OnInitSheet() {
    // The wizard's icon as the big window icon; no Help button (Part 5.1).
    HICON icon = LoadIconA(ui::ResourceInstance(), MAKEINTRESOURCEA(IDI_ACL_WIZARD));
    if (icon) SendMessageA(GetSafeHwnd(), WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon));
    if (HWND help = ::GetDlgItem(GetSafeHwnd(), IDHELP)) ShowWindow(help, SW_HIDE);
}

void RunAclWizard(HWND hwndParent) {
    CACLWizard wizard;  // the sheet and all pages are destroyed here, whatever the outcome
    wizard.DoModal(hwndParent);
}

}  // namespace acl::wizard
