// The host's own view of its site: the domain tree in a tree view, the devices of one node
// in a list view. The host asks its host objects exactly as the plug-in does
// (IHostDomainTree::GetDomainTree + GetLastResult, IHostDeviceList::ListDeviceFromGroup),
// so what the user sees in the host is what the plug-in will get.
#pragma once
#include <windows.h>
#include <commctrl.h>
#include <string>

namespace orblane {

// Image numbers of the host's tree image list.
enum TreeImage { kImageRoot = 0, kImageDomain = 1, kImageSubmap = 2, kImageType7 = 3, kImageCount };

// Fills `tree` from the host's domain tree: the root, then every "Domain" and "Submap"
// element below it, nested as in the document; item data = the node's ID. Returns false
// (and an explanation in `error`) when the host gives no tree.
bool LoadDomainTree(HWND tree, std::wstring& error);

// The tree item whose node ID is `id`, or null.
HTREEITEM FindTreeNode(HWND tree, long id);

// Columns of the device list view.
enum DeviceColumn { kColName, kColType, kColIP, kColRead, kColWrite, kColID, kColCount };
void SetUpDeviceColumns(HWND list);

// Fills `list` with the devices of node `nodeId` (every DEVICEINFO, "NonSNMPDevice"
// included: the host knows all its devices). Returns the number of rows, or -1 when the
// host object fails (the list is then empty).
int LoadDeviceList(HWND list, long nodeId);

// Root text from HKCU\Software\Kestrix\OrblaneNMS\Settings "RootName" (empty when missing).
std::wstring ReadRootName();

}  // namespace orblane
