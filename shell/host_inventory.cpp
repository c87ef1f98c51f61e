#include "shell/host_inventory.h"

#include <climits>
#include <cctype>

#include "orblane.h"
#include "res/resource.h"
#include "shell/xml_dom.h"
#include "ui/text.h"
#include "ui/win_handles.h"

namespace shell {

long g_lOpenedSubmapID = 0;

namespace {

// Registry strings are read into 60 bytes, terminating zero included (Overview, Conventions).
constexpr DWORD kRegistryValueBytes = 60;

template <class Itf>
ui::ComPtr<Itf> CreateHostObject(REFCLSID clsid, REFIID iid, DWORD context) {
    ui::ComPtr<Itf> object;
    if (FAILED(CoCreateInstance(clsid, nullptr, context, iid, reinterpret_cast<void**>(object.GetAddressOf()))))
        object.Reset();
    return object;
}

ui::ComPtr<IHostSystem> CreateHostSystem() {
    return CreateHostObject<IHostSystem>(CLSID_HostSystem, IID_IHostSystem, CLSCTX_ALL);
}

}  // namespace

std::string ReadRegistryString(const std::string& keyPath, const char* valueName) {
    ui::UniqueRegKey key;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, keyPath.c_str(), 0, KEY_READ, key.put()) != ERROR_SUCCESS)
        return {};
    char buffer[kRegistryValueBytes + 1] = {};
    DWORD type = 0;
    DWORD size = kRegistryValueBytes;
    if (RegQueryValueExA(key.get(), valueName, nullptr, &type, reinterpret_cast<BYTE*>(buffer), &size) !=
        ERROR_SUCCESS)
        return {};
    if (type != REG_SZ && type != REG_EXPAND_SZ) return {};
    // A value stored without its zero still must leave room for one within the 60 bytes.
    size_t length = strnlen(buffer, size);
    if (length >= kRegistryValueBytes) return {};
    return std::string(buffer, length);
}

std::string SettingsKeyPath() { return ui::LoadResString(IDS_KEY_SETTINGS); }
std::string DeviceTypesKeyPath() { return ui::LoadResString(IDS_KEY_DEVICE_TYPES); }

long AsciiToLong(const std::string& text) {
    size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r'))) ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
    long long value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        value = value * 10 + (text[i] - '0');
        if (value > static_cast<long long>(INT_MAX) + 1) value = static_cast<long long>(INT_MAX) + 1;
    }
    if (negative) value = -value;
    if (value > INT_MAX) value = INT_MAX;
    return static_cast<long>(value);
}

std::string HostErrorText(long lResult) {
    auto host = CreateHostSystem();
    if (!host) return {};
    ui::UniqueBstr text;
    if (FAILED(host->GetErrorText(lResult, text.put()))) return {};
    return ui::ToAnsi(text.get(), text ? static_cast<int>(SysStringLen(text.get())) : 0);
}

std::string HostSelectedDeviceIP() {
    auto host = CreateHostSystem();
    if (!host) return {};
    ui::UniqueBstr ip;
    long valid = 0;
    host->GetSelectedDeviceIP(ip.put(), &valid);
    if (!valid || !ip) return {};
    return ui::ToAnsi(ip.get(), static_cast<int>(SysStringLen(ip.get())));
}

// ---------------------------------------------------------------------------------------
// Tree building

bool CDomainTreeLoader::Load(HWND hwndOwner) {
    m_hSelect = nullptr;

    long lContextID = -1;  // stands when the call sets nothing or the host is missing
    if (auto host = CreateHostSystem()) host->GetContextID(&lContextID);

    auto tree = CreateHostObject<IHostDomainTree>(CLSID_HostDomainTree, IID_IHostDomainTree, CLSCTX_ALL);
    if (!tree) return false;
    ui::ComPtr<IXMLDOMDocument> document;
    long lResult = 0;
    tree->GetDomainTree(&document, lContextID);
    tree->GetLastResult(&lResult);
    tree.Reset();

    if (lResult != 0 && lResult != 1) {
        if (auto host = CreateHostSystem()) {
            ui::UniqueBstr text;
            host->GetErrorText(lResult, text.put());
            ui::MessageBoxOk(hwndOwner, ui::ToAnsi(text.get(), text ? static_cast<int>(SysStringLen(text.get())) : 0));
        }
        return false;
    }

    // A document without "Operation", "DDS" or "Root" leaves the tree empty, without a
    // message: an empty tree rather than a stale one.
    ui::ComPtr<IXMLDOMElement> operation, dds, root;
    if (document) operation = xml::FirstChildElement(document.Get(), L"Operation");
    if (operation) dds = xml::FirstChildElement(operation.Get(), L"DDS");
    if (dds) root = xml::FirstChildElement(dds.Get(), L"Root");
    TreeView_DeleteAllItems(m_hwndTree);
    if (!root) return false;

    std::string rootId;
    xml::Attribute(root.Get(), L"ID", rootId);  // a missing ID reads as "" and converts to 0
    std::string rootText = rootId;
    const std::string rootName = ReadRegistryString(SettingsKeyPath(), kRootName);
    if (!rootName.empty()) rootText = rootName;

    TVINSERTSTRUCTA insert{};
    insert.hParent = TVI_ROOT;
    insert.hInsertAfter = TVI_LAST;
    insert.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_STATE;
    insert.item.pszText = rootText.data();
    insert.item.lParam = AsciiToLong(rootId);
    insert.item.state = insert.item.stateMask = TVIS_BOLD;
    HTREEITEM hRoot = reinterpret_cast<HTREEITEM>(
        SendMessageA(m_hwndTree, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&insert)));
    if (!hRoot) return false;
    if (AsciiToLong(rootId) == g_lOpenedSubmapID) m_hSelect = hRoot;

    m_nDepth = 1;
    AddChildren(root.Get(), hRoot);

    // Expand every item, depth first from the root.
    struct Expander {
        HWND tree;
        void operator()(HTREEITEM item) const {
            TreeView_Expand(tree, item, TVE_EXPAND);
            for (HTREEITEM c = TreeView_GetChild(tree, item); c; c = TreeView_GetNextSibling(tree, c)) (*this)(c);
        }
    };
    Expander{m_hwndTree}(hRoot);

    if (m_hSelect) TreeView_SelectItem(m_hwndTree, m_hSelect);
    return true;
}

// Only the children of "Root" are read as "Domain" elements: the depth counter is shared by
// all levels and only grows, so every later level reads "Submap" elements.
void CDomainTreeLoader::AddChildren(IXMLDOMElement* node, HTREEITEM parent) {
    const bool domains = m_nDepth == 1;
    const wchar_t* childName = domains ? L"Domain" : L"Submap";
    const int levelImage = domains ? 2 : 1;
    ++m_nDepth;

    for (const auto& child : xml::ChildElements(node, childName)) {
        std::string id, name, type;
        xml::Attribute(child.Get(), L"ID", id);
        xml::Attribute(child.Get(), L"Name", name);
        xml::Attribute(child.Get(), L"Type", type);
        const int image = AsciiToLong(type) == 7 ? 4 : levelImage;
        const long nodeId = AsciiToLong(id);

        TVINSERTSTRUCTA insert{};
        insert.hParent = parent;
        insert.hInsertAfter = TVI_LAST;
        insert.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
        insert.item.pszText = name.data();
        insert.item.iImage = insert.item.iSelectedImage = image;
        insert.item.lParam = nodeId;
        HTREEITEM hItem = reinterpret_cast<HTREEITEM>(
            SendMessageA(m_hwndTree, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&insert)));
        if (!hItem) continue;
        AddChildren(child.Get(), hItem);
        // Checked after the descendants: with two equal IDs the one checked last wins.
        if (nodeId == g_lOpenedSubmapID) m_hSelect = hItem;
    }
}

// ---------------------------------------------------------------------------------------
// Device list

namespace {

void ShowDeviceListFailure(HWND hwndOwner) {
    ui::MessageBoxOk(hwndOwner, ui::LoadResString(IDS_FAILED_DEVICE_LIST), ui::LoadResString(IDS_SENTREL_CONFIG));
}

// Reads one "DEVICEINFO" element; false when a field is missing or unreadable.
bool ReadDeviceRecord(IXMLDOMElement* info, DeviceRecord& record) {
    struct Field {
        const wchar_t* name;
        std::string* target;
    };
    const Field fields[] = {{L"ID", &record.strDeviceID},       {L"NAME", &record.strName},
                            {L"TYPE", &record.strDeviceType},   {L"IP", &record.strIP},
                            {L"GETCOMM", &record.strReadCommunity}, {L"SETCOMM", &record.strWriteCommunity}};
    for (const Field& f : fields) {
        auto child = xml::FirstChildElement(info, f.name);
        if (!child || FAILED(xml::Text(child.Get(), *f.target))) return false;
    }
    record.nDeviceID = AsciiToLong(record.strDeviceID);
    return true;
}

}  // namespace

void FillDeviceListFromTree(HWND hwndTree, DeviceRowList& list, long* pnCurrentNode, HWND hwndOwner) {
    list.DeleteAllRows();
    HTREEITEM hSelected = TreeView_GetSelection(hwndTree);
    if (!hSelected) return;
    TVITEMA item{};
    item.mask = TVIF_PARAM;
    item.hItem = hSelected;
    SendMessageA(hwndTree, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item));
    const long nodeId = static_cast<long>(item.lParam);
    if (pnCurrentNode) *pnCurrentNode = nodeId;

    auto devices = CreateHostObject<IHostDeviceList>(CLSID_HostDeviceList, IID_IHostDeviceList,
                                                     CLSCTX_INPROC_SERVER);
    if (!devices) return;
    ui::ComPtr<IXMLDOMDocument> document;
    if (FAILED(devices->ListDeviceFromGroup(nodeId, &document)) || !document) return;

    ui::UniqueBstr fileName(SysAllocString(L"RListDeviceFromGroup.xml"));
    VARIANT target;
    VariantInit(&target);
    target.vt = VT_BSTR;
    target.bstrVal = fileName.get();  // borrowed: not cleared
    if (FAILED(document->save(target))) {
        ShowDeviceListFailure(hwndOwner);
        return;
    }

    ui::UniqueBstr path(SysAllocString(L"/DEVICELIST/DEVICEINFO"));
    ui::ComPtr<IXMLDOMNodeList> nodes;
    long count = 0;
    if (FAILED(document->selectNodes(path.get(), &nodes)) || !nodes || FAILED(nodes->get_length(&count))) {
        ShowDeviceListFailure(hwndOwner);
        return;
    }
    for (long i = 0; i < count; ++i) {
        ui::ComPtr<IXMLDOMNode> node;
        ui::ComPtr<IXMLDOMElement> info;
        if (FAILED(nodes->get_item(i, &node)) || !node ||
            FAILED(node->QueryInterface(IID_IXMLDOMElement, reinterpret_cast<void**>(info.GetAddressOf())))) {
            ShowDeviceListFailure(hwndOwner);
            return;
        }
        DeviceRecord record;
        if (!ReadDeviceRecord(info.Get(), record)) continue;
        if (record.strDeviceType == kNonSnmpDevice) continue;
        list.AppendRow(record);
    }
}

void SelectHostCurrentDevice(DeviceRowList& list) {
    const std::string ip = HostSelectedDeviceIP();
    if (ip.empty()) return;
    for (int row = 0; row < list.RowCount(); ++row) {
        if (list.RowIP(row) == ip) {
            list.CheckSelectAndFocus(row);
            return;
        }
    }
}

}  // namespace shell
