#include "shell/device_panel.h"

#include <windowsx.h>

#include "acl/page_logic.h"
#include "res/resource.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace shell {
namespace {
constexpr UINT_PTR kTreeSubclassId = 0x44505452;  // 'DPTR'

struct ColumnSpec {
    UINT nText;  // 0: empty header
    int nWidth;
};
// The seven columns, left-aligned, with their widths.
constexpr ColumnSpec kColumns[acl::pages::kDeviceColumnCount] = {
    {0, 20},
    {IDS_COL_DEVICE_NAME, 140},
    {IDS_COL_DEVICE_TYPE, 100},
    {IDS_COL_DEVICE_IP, 120},
    {IDS_COL_READ_COMMUNITY, 120},
    {IDS_COL_WRITE_COMMUNITY, 120},
    {IDS_COL_DEVICE_ID, 80},
};

}  // namespace

DevicePanel::~DevicePanel() {
    if (m_hwndTree && IsWindow(m_hwndTree)) RemoveWindowSubclass(m_hwndTree, &DevicePanel::TreeProc, kTreeSubclassId);
}

void DevicePanel::Setup(HWND hwndOwner, HWND hwndTree, controls::CXListCtrl& list) {
    m_hwndOwner = hwndOwner;
    m_hwndTree = hwndTree;
    m_pList = &list;

    // 1. The tree's normal image list: 7 images of 16x16 from a 24-bit bitmap, white
    // transparent, grow step 1.
    m_treeImages.reset(ui::LoadImageStrip(IDB_TREE_IMAGES, 16, ILC_COLOR24, RGB(255, 255, 255), 1));
    if (m_treeImages) TreeView_SetImageList(m_hwndTree, m_treeImages.get(), TVSIL_NORMAL);

    // 2. Column texts from the string table, extended styles, the seven columns.
    list.SetExtendedStyle(LVS_EX_FULLROWSELECT | LVS_EX_FLATSB);
    for (int column = 0; column < acl::pages::kDeviceColumnCount; ++column) {
        const ColumnSpec& c = kColumns[column];
        list.InsertColumn(column, c.nText ? ui::LoadResString(c.nText) : std::string(), c.nWidth);
    }

    // 3. The header's image list: 4 images of 16x16 from an 8-bit bitmap, magenta
    // transparent, grow step 3; without it the header has none.
    m_headerImages.reset(ui::LoadImageStrip(IDB_HEADER_CHECKS, 16, ILC_COLOR24, RGB(255, 0, 255), 3));
    if (m_headerImages) {
        list.GetHeaderCtrl().SetImageList(m_headerImages.get());
        // No check box in column 0's header: checking every row at once would take devices of
        // every type, which page 0 refuses anyway, and the click would also sort the column.
    }

    // The tree's mouse goes through the pre-translation below before the tree sees it.
    SetWindowSubclass(m_hwndTree, &DevicePanel::TreeProc, kTreeSubclassId, reinterpret_cast<DWORD_PTR>(this));

    // 4. The tree from the host; it selects the opened submap's node.
    CDomainTreeLoader loader;
    loader.SetTree(m_hwndTree);
    loader.Load(m_hwndOwner);
}

bool DevicePanel::PreTranslateMessage(const MSG& msg) {
    if ((msg.message == WM_LBUTTONDOWN || msg.message == WM_RBUTTONDOWN) && msg.hwnd == m_hwndTree) {
        TVHITTESTINFO hit{};
        hit.pt = {GET_X_LPARAM(msg.lParam), GET_Y_LPARAM(msg.lParam)};
        HTREEITEM item = TreeView_HitTest(m_hwndTree, &hit);
        if (item && (hit.flags & TVHT_ONITEM)) TreeView_SelectItem(m_hwndTree, item);
    }
    return false;
}

LRESULT CALLBACK DevicePanel::TreeProc(HWND hWnd, UINT msg, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                       DWORD_PTR refData) {
    try {
        if (msg == WM_NCDESTROY) {
            RemoveWindowSubclass(hWnd, &DevicePanel::TreeProc, kTreeSubclassId);
            reinterpret_cast<DevicePanel*>(refData)->m_hwndTree = nullptr;
        } else if (msg == WM_LBUTTONDOWN || msg == WM_RBUTTONDOWN) {
            MSG m{hWnd, msg, wParam, lParam, 0, {}};
            if (reinterpret_cast<DevicePanel*>(refData)->PreTranslateMessage(m)) return 0;
        }
    } catch (...) {
    }
    return DefSubclassProc(hWnd, msg, wParam, lParam);
}

LRESULT DevicePanel::OnTreeClick() {
    FillFromSelectedNode();
    return 0;
}

void DevicePanel::FillFromSelectedNode() {
    FillDeviceListFromTree(m_hwndTree, *this, &m_nCurrentNode, m_hwndOwner);
}

void DevicePanel::DeleteAllRows() {
    if (m_pList) m_pList->DeleteAllItems();
}

void DevicePanel::AppendRow(const DeviceRecord& record) {
    if (!m_pList) return;
    const int row = m_pList->InsertItem(m_pList->GetItemCount(), std::string());
    if (row < 0) return;
    m_pList->SetItemText(row, acl::pages::kColName, record.strName);
    m_pList->SetItemText(row, acl::pages::kColType, record.strDeviceType);
    m_pList->SetItemText(row, acl::pages::kColIP, record.strIP);
    m_pList->SetItemText(row, acl::pages::kColReadCommunity, record.strReadCommunity);
    m_pList->SetItemText(row, acl::pages::kColWriteCommunity, record.strWriteCommunity);
    m_pList->SetItemText(row, acl::pages::kColDeviceID, record.strDeviceID);  // as the host wrote it
    m_pList->SetRowData(row, static_cast<DWORD_PTR>(record.nDeviceID));
    m_pList->SetCheckState(row, acl::pages::kColCheck, 0);
}

int DevicePanel::RowCount() const { return m_pList ? m_pList->GetItemCount() : 0; }

std::string DevicePanel::RowIP(int row) const {
    return m_pList ? m_pList->GetItemText(row, acl::pages::kColIP) : std::string();
}

void DevicePanel::CheckSelectAndFocus(int row) {
    if (!m_pList) return;
    m_pList->SetCheckState(row, acl::pages::kColCheck, 1);
    m_pList->SelectRow(row, true);
}

}  // namespace shell
