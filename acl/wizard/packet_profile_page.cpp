#include "acl/wizard/packet_profile_page.h"

#include "res/resource.h"
#include "ui/controls.h"

namespace acl::wizard {
namespace {

constexpr int kChunks = 4;
constexpr int kRanges = 5;
constexpr int kRangeFields = 4;     // four 8-digit masks make a range's 16-byte mask
constexpr size_t kMaskDigits = 8;   // a chunk mask, and each field of a range mask

constexpr int kChunkCheck[kChunks] = {IDC_PACKET_CHUNK1, IDC_PACKET_CHUNK2, IDC_PACKET_CHUNK3, IDC_PACKET_CHUNK4};
constexpr int kChunkOffset[kChunks] = {IDC_PACKET_CHUNK1_OFFSET, IDC_PACKET_CHUNK2_OFFSET, IDC_PACKET_CHUNK3_OFFSET,
                                       IDC_PACKET_CHUNK4_OFFSET};
constexpr int kChunkMask[kChunks] = {IDC_PACKET_CHUNK1_MASK, IDC_PACKET_CHUNK2_MASK, IDC_PACKET_CHUNK3_MASK,
                                     IDC_PACKET_CHUNK4_MASK};
constexpr int kRangeCheck[kRanges] = {IDC_PACKET_OFFSET0, IDC_PACKET_OFFSET16, IDC_PACKET_OFFSET32,
                                      IDC_PACKET_OFFSET48, IDC_PACKET_OFFSET64};
constexpr int RangeField(int range, int field) { return IDC_PACKET_RANGE_MASK_FIRST + range * kRangeFields + field; }

// The switch takes any bytes, so a mistyped mask would filter on the wrong bits: a checked chunk's or range's mask
// fields must be exactly 8 hexadecimal digits and a chunk offset 0 to 31 (acl_record.h).
bool IsMaskField(const std::string& text) { return ValidateHexWidth(text, kMaskDigits); }

}  // namespace

CACLStep_Packet::CACLStep_Packet()
    : CProfileDefinitionPage(acl::pages::kPagePacketProfile, IDD_ACL_STEP_PACKET, AclType::kPacketContent,
                             {IDC_PACKET_LIST, IDC_PACKET_ADD, IDC_PACKET_DELETE}) {}

BOOL CACLStep_Packet::OnInitDialog() {
    // Chunk offsets take two digits (ES_NUMBER), every mask field 8 (ES_UPPERCASE).
    for (int i = 0; i < kChunks; ++i) {
        SendMessageA(GetDlgItem(kChunkOffset[i]), EM_LIMITTEXT, 2, 0);
        SendMessageA(GetDlgItem(kChunkMask[i]), EM_LIMITTEXT, kMaskDigits, 0);
    }
    for (int r = 0; r < kRanges; ++r)
        for (int k = 0; k < kRangeFields; ++k) SendMessageA(GetDlgItem(RangeField(r, k)), EM_LIMITTEXT, kMaskDigits, 0);
    const BOOL result = CProfileDefinitionPage::OnInitDialog();
    ShowLayout();
    return result;
}

std::span<const PendingColumn> CACLStep_Packet::Columns() const {
    return m_layout == Layout::kChunk ? ChunkPendingColumns() : OffsetPendingColumns();
}

// The layout by model: the chunk layout where the
// model's packet-content profiles have the Chunks4 shape for this ACL kind (TVG5690, TVR4512,
// TVG5240-10 with the ordinary ACL), the offset layout everywhere else. On the chunk
// models with the CPU ACL, Add and the staging writer use
// the offset (Block16) form, so the page shows the offset controls there: what the user types
// is what gets sent. A change of layout empties the pending list, whose rows are of the other
// form, and sets up its columns again.
void CACLStep_Packet::OnActivate() {
    const ModelEntry* model = LookupModel(Model());
    const bool chunks =
        model != nullptr &&
        RecordKindFor(*model, Owner(), AclKind::kProfiles, AclType::kPacketContent).shape == PacketShape::kChunks4;
    const Layout layout = chunks ? Layout::kChunk : Layout::kOffset;
    if (layout != m_layout) {
        m_layout = layout;
        ResetPendingList();
        ShowLayout();
    }
    EnableEdits();
}

void CACLStep_Packet::ShowLayout() {
    const int chunk = m_layout == Layout::kChunk ? SW_SHOW : SW_HIDE;
    const int offset = m_layout == Layout::kChunk ? SW_HIDE : SW_SHOW;
    ShowWindow(GetDlgItem(IDC_PACKET_OFFSET_LABEL), chunk);
    ShowWindow(GetDlgItem(IDC_PACKET_MASK_LABEL), chunk);
    for (int i = 0; i < kChunks; ++i) {
        ShowWindow(GetDlgItem(kChunkCheck[i]), chunk);
        ShowWindow(GetDlgItem(kChunkOffset[i]), chunk);
        ShowWindow(GetDlgItem(kChunkMask[i]), chunk);
    }
    for (int r = 0; r < kRanges; ++r) {
        ShowWindow(GetDlgItem(kRangeCheck[r]), offset);
        for (int k = 0; k < kRangeFields; ++k) ShowWindow(GetDlgItem(RangeField(r, k)), offset);
    }
    EnableEdits();
}

// Each check box enables its edits.
void CACLStep_Packet::EnableEdits() {
    for (int i = 0; i < kChunks; ++i) {
        const BOOL on = ui::Button(GetDlgItem(kChunkCheck[i])).IsChecked();
        EnableWindow(GetDlgItem(kChunkOffset[i]), on);
        EnableWindow(GetDlgItem(kChunkMask[i]), on);
    }
    for (int r = 0; r < kRanges; ++r) {
        const BOOL on = ui::Button(GetDlgItem(kRangeCheck[r])).IsChecked();
        for (int k = 0; k < kRangeFields; ++k) EnableWindow(GetDlgItem(RangeField(r, k)), on);
    }
}

// The fields BuildProfile expects: chunk layout, items 0..3 with offset and 8-digit mask;
// offset layout, items 0..4 with the range's four 8-digit fields joined into one 32-digit mask.
ProfileFields CACLStep_Packet::ReadFields() const {
    ProfileFields f;
    if (m_layout == Layout::kChunk) {
        for (int i = 0; i < kChunks; ++i) {
            auto& item = f.items[static_cast<size_t>(i)];
            item.checked = ui::Button(GetDlgItem(kChunkCheck[i])).IsChecked();
            item.offset = TrimBlanks(ui::GetWindowTextString(GetDlgItem(kChunkOffset[i])));
            item.mask = ui::GetWindowTextString(GetDlgItem(kChunkMask[i]));
        }
        return f;
    }
    for (int r = 0; r < kRanges; ++r) {
        auto& item = f.items[static_cast<size_t>(r)];
        item.checked = ui::Button(GetDlgItem(kRangeCheck[r])).IsChecked();
        for (int k = 0; k < kRangeFields; ++k) item.mask += TrimBlanks(ui::GetWindowTextString(GetDlgItem(RangeField(r, k))));
    }
    return f;
}

UINT CACLStep_Packet::CheckFields(const ProfileFields& f) const {
    if (m_layout == Layout::kChunk) {
        for (int i = 0; i < kChunks; ++i) {
            const auto& item = f.items[static_cast<size_t>(i)];
            if (!item.checked) continue;
            if (!ValidateChunkOffset(item.offset)) return static_cast<UINT>(AclMessage::kInvalidChunkOffset);
            if (!IsMaskField(item.mask)) return static_cast<UINT>(AclMessage::kInvalidChunkMask);
        }
        return 0;
    }
    // Each of a checked range's four fields on its own (the joined mask hides a short one).
    for (int r = 0; r < kRanges; ++r) {
        if (!ui::Button(GetDlgItem(kRangeCheck[r])).IsChecked()) continue;
        for (int k = 0; k < kRangeFields; ++k)
            if (!IsMaskField(ui::GetWindowTextString(GetDlgItem(RangeField(r, k))))) return static_cast<UINT>(AclMessage::kInvalidOffsetMask);
    }
    return 0;
}

BOOL CACLStep_Packet::OnFieldCommand(int id, int code) {
    if (code != BN_CLICKED) return FALSE;
    bool isCheck = false;
    for (int check : kChunkCheck) isCheck = isCheck || id == check;
    for (int check : kRangeCheck) isCheck = isCheck || id == check;
    if (!isCheck) return FALSE;
    EnableEdits();
    return TRUE;
}

}  // namespace acl::wizard
