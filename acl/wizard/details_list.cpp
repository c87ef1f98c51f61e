#include "acl/wizard/details_list.h"

#include "acl/profile_details.h"
#include "res/resource.h"
#include "ui/text.h"

namespace acl::wizard {
namespace {

static_assert(IDS_DETAIL_FIRST + static_cast<int>(acl::DetailLabel::kCount) == IDS_DETAIL_HEADER,
              "one string per details label, in acl::DetailLabel's order");

constexpr COLORREF kDetailLabelRed = RGB(255, 0, 0);
constexpr COLORREF kDetailTitleCyan = RGB(0, 255, 255);
constexpr COLORREF kDetailValueBlack = RGB(0, 0, 0);

constexpr AclType kTypes[] = {AclType::kEthernet, AclType::kIPv4, AclType::kIPv6, AclType::kPacketContent};

}  // namespace

void SetUpDetailsList(controls::CXListCtrl& list, HWND hwndList, int labelWidth, int valueWidth, UINT idsHeader) {
    list.Attach(hwndList);
    list.SetExtendedStyle(LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES);  // grid lines frame the values
    list.InsertColumn(0, ui::LoadResString(idsHeader ? idsHeader : IDS_DETAIL_HEADER), labelWidth);
    list.InsertColumn(1, ui::LoadResString(IDS_COL_BLANK), valueWidth);
}

void FillDetailsList(controls::CXListCtrl& list, const std::vector<std::pair<std::string, std::string>>& rows) {
    const std::string title = ui::LoadResString(IDS_COL_PROFILE_DETAILS);
    list.DeleteAllItems();
    for (const auto& [label, value] : rows) {
        const int line = list.InsertItem(list.GetItemCount(), label,
                                         label == title ? kDetailTitleCyan : kDetailLabelRed,
                                         GetSysColor(COLOR_WINDOW));
        list.SetItemText(line, 1, value);
        list.SetCellColors(line, 1, kDetailValueBlack, GetSysColor(COLOR_WINDOW));
    }
    ShowWindow(list.GetSafeHwnd(), SW_SHOW);
}

const AclRecord* FindRecord(const std::array<AclRecordList, 4>& tables, const std::string& typeWord,
                            const std::string& profileId, const std::string& accessId) {
    for (AclType type : kTypes) {
        if (typeWord != TypeWord(type)) continue;
        for (const AclRecord& record : tables[static_cast<size_t>(type)]) {
            if (record.empty() || record[0] != profileId) continue;
            if (!accessId.empty() && (record.size() < 2 || record[1] != accessId)) continue;
            return &record;
        }
    }
    return nullptr;
}

bool ShowProfileDetails(controls::CXListCtrl& list, const std::array<AclRecordList, 4>& tables,
                        const std::string& profileId, const std::string& typeWord, AclOwner owner,
                        const std::string& modelText) {
    const ModelEntry* model = LookupModel(modelText);
    const AclRecord* record = FindRecord(tables, typeWord, profileId);
    if (model == nullptr || record == nullptr) return false;
    AclType type = AclType::kEthernet;
    for (AclType t : kTypes)
        if (typeWord == TypeWord(t)) type = t;
    std::vector<std::pair<std::string, std::string>> rows;
    for (const acl::DetailRow& d : acl::ProfileDetails(type, *record, owner, *model))
        rows.emplace_back(ui::LoadResString(IDS_DETAIL_FIRST + static_cast<UINT>(d.label)), d.value);
    FillDetailsList(list, rows);
    return true;
}

}  // namespace acl::wizard
