#include "acl/wizard/packet_rule_page.h"

#include "res/resource.h"
#include "ui/text.h"

namespace acl::wizard {
namespace {

constexpr int kMaxRows = 5;

}  // namespace

CACLAddPacketRule::CACLAddPacketRule()
    : CRuleDefinitionPage(acl::pages::kPagePacketRule, IDD_ACL_ADD_PACKET_RULE, AclType::kPacketContent) {}

std::span<const std::string> CACLAddPacketRule::ChosenProfile() const {
    return std::span<const std::string>(&State().m_strPacketProfileID, 1);
}

PacketShape CACLAddPacketRule::Shape() const {
    const ModelEntry* model = LookupSupportedModel(Model());
    return model ? model->packetShape(Owner(), AclKind::kRules) : PacketShape::kBlock16;
}

// The rows of the model's layout, titled by it; the packet-content profile has no masks that
// could enable a row, so each row's own check box does.
void CACLAddPacketRule::EnableTypeFields(const acl::RuleEnabling&) {
    const PacketShape shape = Shape();
    const UINT first = shape == PacketShape::kChunks4       ? IDS_RULE_CHUNK_FIRST
                       : shape == PacketShape::kOffsetItems ? IDS_RULE_ITEM_FIRST
                                                            : IDS_RULE_OFFSET_FIRST;
    const bool offsets = shape != PacketShape::kBlock16;
    for (int i = 0; i < kMaxRows; ++i) {
        const bool shown = i < Rows();
        SetText(IDC_RULE_ITEM_FIRST + i, ui::LoadResString(first + static_cast<UINT>(i)));
        Show(IDC_RULE_ITEM_FIRST + i, shown);
        Show(IDC_RULE_ITEM_OFFSET_FIRST + i, shown && offsets);
        Show(IDC_RULE_ITEM_DATA_FIRST + i, shown);
        EnableRow(i);
    }
    Show(IDC_RULE_OFFSET_LABEL, offsets);
    WidenValuesOverOffsets(!offsets);
    SetText(IDC_RULE_VALUE_LABEL,
            ui::LoadResString(shape == PacketShape::kChunks4 ? IDS_RULE_LABEL_MASK : IDS_RULE_LABEL_VALUE));
}

// A 16-byte block's value is 32 hexadecimal digits and has no offset: without the offset
// column the value fields and their label start where it would be, so the value shows whole.
void CACLAddPacketRule::WidenValuesOverOffsets(bool widen) {
    auto place = [&](size_t k, int id, int leftOf) {
        RECT own{}, left{};
        GetWindowRect(GetDlgItem(id), &own);
        GetWindowRect(GetDlgItem(leftOf), &left);
        MapWindowPoints(nullptr, GetSafeHwnd(), reinterpret_cast<POINT*>(&own), 2);
        MapWindowPoints(nullptr, GetSafeHwnd(), reinterpret_cast<POINT*>(&left), 2);
        if (!m_valueLeft[k]) m_valueLeft[k] = own.left;  // the dialog's own place, before any move
        const LONG x = widen ? left.left : m_valueLeft[k];
        SetWindowPos(GetDlgItem(id), nullptr, x, own.top, own.right - x, own.bottom - own.top,
                     SWP_NOZORDER | SWP_NOACTIVATE);
    };
    place(0, IDC_RULE_VALUE_LABEL, IDC_RULE_OFFSET_LABEL);
    for (int i = 0; i < kMaxRows; ++i)
        place(static_cast<size_t>(i) + 1, IDC_RULE_ITEM_DATA_FIRST + i, IDC_RULE_ITEM_OFFSET_FIRST + i);
}

void CACLAddPacketRule::EnableRow(int i) {
    const bool on = Checked(IDC_RULE_ITEM_FIRST + i);
    Enable(IDC_RULE_ITEM_OFFSET_FIRST + i, on);
    Enable(IDC_RULE_ITEM_DATA_FIRST + i, on);
}

void CACLAddPacketRule::ReadTypeFields(RuleFields& f) const {
    for (int i = 0; i < Rows(); ++i) {
        auto& item = f.items[static_cast<size_t>(i)];
        item.checked = Checked(IDC_RULE_ITEM_FIRST + i);
        item.offset = Text(IDC_RULE_ITEM_OFFSET_FIRST + i);
        item.data = Text(IDC_RULE_ITEM_DATA_FIRST + i);
    }
}

void CACLAddPacketRule::WriteTypeFields(const RuleFields& f) {
    for (int i = 0; i < kMaxRows; ++i) {
        const auto& item = f.items[static_cast<size_t>(i)];
        Check(IDC_RULE_ITEM_FIRST + i, item.checked);
        SetText(IDC_RULE_ITEM_OFFSET_FIRST + i, item.offset);
        SetText(IDC_RULE_ITEM_DATA_FIRST + i, item.data);
        EnableRow(i);
    }
}

void CACLAddPacketRule::ClearTypeFields() { WriteTypeFields(RuleFields{}); }

BOOL CACLAddPacketRule::OnTypeCommand(int id, int code) {
    if (code != BN_CLICKED || id < IDC_RULE_ITEM_FIRST || id >= IDC_RULE_ITEM_FIRST + kMaxRows) return FALSE;
    EnableRow(id - IDC_RULE_ITEM_FIRST);
    return TRUE;
}

}  // namespace acl::wizard
