// The device panel: the tree of the host's domains and submaps and the check-box
// list of the devices of the clicked node. The owning dialog (page 0 of the ACL wizard)
// owns the controls and calls Setup, PreTranslateMessage and OnTreeClick.
#pragma once
#include <windows.h>
#include <commctrl.h>

#include <string>

#include "controls/xlist_ctrl.h"
#include "shell/host_inventory.h"
#include "ui/win_handles.h"

namespace shell {

class DevicePanel : public DeviceRowList {
public:
    DevicePanel() = default;
    ~DevicePanel() override;
    DevicePanel(const DevicePanel&) = delete;
    DevicePanel& operator=(const DevicePanel&) = delete;

    // Panel set-up, steps 1 to 4: tree images, columns, header images, tree.
    void Setup(HWND hwndOwner, HWND hwndTree, controls::CXListCtrl& list);
    // Tree mouse pre-translation: a left or right button going down over a tree item selects
    // that item at once; the message then goes on to the tree. Returns false (never eats it).
    bool PreTranslateMessage(const MSG& msg);
    // The tree's NM_CLICK: empties the list and refills it from the selected item.
    LRESULT OnTreeClick();
    // Fills the list from the tree's selected item; used also at initialisation.
    void FillFromSelectedNode();

    long CurrentNode() const { return m_nCurrentNode; }
    HWND Tree() const { return m_hwndTree; }

    // DeviceRowList: the host inventory's fill writes rows through these.
    void DeleteAllRows() override;
    void AppendRow(const DeviceRecord& record) override;
    int RowCount() const override;
    std::string RowIP(int row) const override;
    void CheckSelectAndFocus(int row) override;

private:
    static LRESULT CALLBACK TreeProc(HWND, UINT, WPARAM, LPARAM, UINT_PTR, DWORD_PTR);

    HWND m_hwndOwner = nullptr;
    HWND m_hwndTree = nullptr;
    controls::CXListCtrl* m_pList = nullptr;
    ui::UniqueImageList m_treeImages;
    ui::UniqueImageList m_headerImages;
    long m_nCurrentNode = 0;
};

}  // namespace shell
