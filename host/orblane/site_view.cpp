#include "host/orblane/site_view.h"

#include <msxml2.h>
#include <oleauto.h>
#include <wrl/client.h>

#include "orblane.h"

using Microsoft::WRL::ComPtr;

namespace orblane {

namespace {

std::wstring NodeName(IXMLDOMNode* node) {
    BSTR name = nullptr;
    std::wstring result;
    if (SUCCEEDED(node->get_nodeName(&name)) && name) result = name;
    SysFreeString(name);
    return result;
}

std::wstring NodeText(IXMLDOMNode* node) {
    BSTR text = nullptr;
    std::wstring result;
    if (SUCCEEDED(node->get_text(&text)) && text) result = text;
    SysFreeString(text);
    return result;
}

// Child elements of `parent`, in document order, whose name is `name` (any when empty).
template <typename F>
void ForEachChildElement(IXMLDOMNode* parent, const wchar_t* name, F&& f) {
    ComPtr<IXMLDOMNodeList> children;
    if (FAILED(parent->get_childNodes(&children)) || !children) return;
    long count = 0;
    children->get_length(&count);
    for (long i = 0; i < count; ++i) {
        ComPtr<IXMLDOMNode> child;
        if (FAILED(children->get_item(i, &child)) || !child) continue;
        DOMNodeType type = NODE_INVALID;
        child->get_nodeType(&type);
        if (type != NODE_ELEMENT) continue;
        if (name && *name && NodeName(child.Get()) != name) continue;
        if (!f(child.Get())) return;
    }
}

ComPtr<IXMLDOMNode> FirstChild(IXMLDOMNode* parent, const wchar_t* name) {
    ComPtr<IXMLDOMNode> found;
    ForEachChildElement(parent, name, [&](IXMLDOMNode* child) {
        found = child;
        return false;
    });
    return found;
}

bool Attribute(IXMLDOMNode* node, const wchar_t* name, std::wstring& value) {
    ComPtr<IXMLDOMNamedNodeMap> attributes;
    if (FAILED(node->get_attributes(&attributes)) || !attributes) return false;
    ComPtr<IXMLDOMNode> attribute;
    BSTR bname = SysAllocString(name);
    HRESULT hr = attributes->getNamedItem(bname, &attribute);
    SysFreeString(bname);
    if (hr != S_OK || !attribute) return false;
    value = NodeText(attribute.Get());
    return true;
}

long ToLong(const std::wstring& text) { return static_cast<long>(wcstol(text.c_str(), nullptr, 10)); }

HTREEITEM InsertNode(HWND tree, HTREEITEM parent, const std::wstring& text, long id, int image, bool bold) {
    TVINSERTSTRUCTW insert{};
    insert.hParent = parent;
    insert.hInsertAfter = TVI_LAST;
    insert.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_STATE;
    insert.item.pszText = const_cast<wchar_t*>(text.c_str());
    insert.item.lParam = id;
    insert.item.iImage = insert.item.iSelectedImage = image;
    insert.item.stateMask = TVIS_BOLD | TVIS_EXPANDED;
    insert.item.state = (bold ? TVIS_BOLD : 0) | TVIS_EXPANDED;
    return TreeView_InsertItem(tree, &insert);
}

// The host's own reading of its tree: "Domain" and "Submap" at any depth.
void AddChildren(HWND tree, IXMLDOMNode* element, HTREEITEM parent) {
    ForEachChildElement(element, nullptr, [&](IXMLDOMNode* child) {
        std::wstring name = NodeName(child);
        if (name != L"Domain" && name != L"Submap") return true;
        std::wstring id, text, type;
        Attribute(child, L"ID", id);
        if (!Attribute(child, L"Name", text)) text = id;
        Attribute(child, L"Type", type);
        int image = name == L"Domain" ? kImageDomain : kImageSubmap;
        if (!type.empty() && ToLong(type) == 7) image = kImageType7;
        HTREEITEM item = InsertNode(tree, parent, text, ToLong(id), image, false);
        AddChildren(tree, child, item);
        return true;
    });
}

std::wstring HostErrorText(long result) {
    ComPtr<IHostSystem> system;
    if (FAILED(CoCreateInstance(CLSID_HostSystem, nullptr, CLSCTX_INPROC_SERVER, IID_IHostSystem,
                                reinterpret_cast<void**>(system.GetAddressOf()))))
        return {};
    BSTR text = nullptr;
    system->GetErrorText(result, &text);
    std::wstring out = text ? text : L"";
    SysFreeString(text);
    return out;
}

HTREEITEM FindIn(HWND tree, HTREEITEM item, long id) {
    for (; item; item = TreeView_GetNextSibling(tree, item)) {
        TVITEMW data{};
        data.mask = TVIF_PARAM;
        data.hItem = item;
        if (TreeView_GetItem(tree, &data) && static_cast<long>(data.lParam) == id) return item;
        if (HTREEITEM found = FindIn(tree, TreeView_GetChild(tree, item), id)) return found;
    }
    return nullptr;
}

}  // namespace

std::wstring ReadRootName() {
    wchar_t buffer[256] = {};
    DWORD size = sizeof(buffer);
    if (RegGetValueW(HKEY_CURRENT_USER, L"Software\\Kestrix\\OrblaneNMS\\Settings", L"RootName", RRF_RT_REG_SZ,
                     nullptr, buffer, &size) != ERROR_SUCCESS)
        return {};
    return buffer;
}

bool LoadDomainTree(HWND tree, std::wstring& error) {
    TreeView_DeleteAllItems(tree);
    long context = -1;
    {
        ComPtr<IHostSystem> system;
        if (SUCCEEDED(CoCreateInstance(CLSID_HostSystem, nullptr, CLSCTX_INPROC_SERVER, IID_IHostSystem,
                                       reinterpret_cast<void**>(system.GetAddressOf()))))
            system->GetContextID(&context);
    }
    ComPtr<IHostDomainTree> domains;
    HRESULT hr = CoCreateInstance(CLSID_HostDomainTree, nullptr, CLSCTX_INPROC_SERVER, IID_IHostDomainTree,
                                  reinterpret_cast<void**>(domains.GetAddressOf()));
    if (FAILED(hr)) {
        error = L"The host's domain tree object is not registered (regsvr32 OrblaneHost.dll).";
        return false;
    }
    ComPtr<IXMLDOMDocument> document;
    hr = domains->GetDomainTree(&document, context);
    long result = 0;
    domains->GetLastResult(&result);
    if (result != 0 && result != 1) {
        error = HostErrorText(result);
        if (error.empty()) error = L"Domain tree unavailable";
        return false;
    }
    if (FAILED(hr) || !document) {
        error = L"The host gave no domain tree document.";
        return false;
    }
    ComPtr<IXMLDOMNode> operation = FirstChild(document.Get(), L"Operation");
    ComPtr<IXMLDOMNode> dds = operation ? FirstChild(operation.Get(), L"DDS") : nullptr;
    ComPtr<IXMLDOMNode> root = dds ? FirstChild(dds.Get(), L"Root") : nullptr;
    if (!root) {
        error = L"The site's domain tree has no Operation/DDS/Root.";
        return false;
    }
    std::wstring rootId;
    Attribute(root.Get(), L"ID", rootId);
    std::wstring rootText = ReadRootName();
    if (rootText.empty()) rootText = rootId;
    HTREEITEM rootItem = InsertNode(tree, TVI_ROOT, rootText, ToLong(rootId), kImageRoot, true);
    AddChildren(tree, root.Get(), rootItem);
    TreeView_Expand(tree, rootItem, TVE_EXPAND);
    return true;
}

HTREEITEM FindTreeNode(HWND tree, long id) { return FindIn(tree, TreeView_GetRoot(tree), id); }

void SetUpDeviceColumns(HWND list) {
    struct Column {
        const wchar_t* title;
        int width;
    };
    static const Column columns[kColCount] = {{L"Name", 130}, {L"Type", 100},         {L"IP Address", 105},
                                              {L"Read Community", 110}, {L"Write Community", 115}, {L"ID", 45}};
    for (int i = 0; i < kColCount; ++i) {
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        column.pszText = const_cast<wchar_t*>(columns[i].title);
        column.cx = columns[i].width;
        column.iSubItem = i;
        ListView_InsertColumn(list, i, &column);
    }
}

int LoadDeviceList(HWND list, long nodeId) {
    ListView_DeleteAllItems(list);
    ComPtr<IHostDeviceList> devices;
    if (FAILED(CoCreateInstance(CLSID_HostDeviceList, nullptr, CLSCTX_INPROC_SERVER, IID_IHostDeviceList,
                                reinterpret_cast<void**>(devices.GetAddressOf()))))
        return -1;
    ComPtr<IXMLDOMDocument> document;
    if (FAILED(devices->ListDeviceFromGroup(nodeId, &document)) || !document) return -1;
    ComPtr<IXMLDOMNode> top = FirstChild(document.Get(), L"DEVICELIST");
    if (!top) return 0;
    int row = 0;
    ForEachChildElement(top.Get(), L"DEVICEINFO", [&](IXMLDOMNode* info) {
        static const wchar_t* const fields[kColCount] = {L"NAME", L"TYPE", L"IP", L"GETCOMM", L"SETCOMM", L"ID"};
        std::wstring texts[kColCount];
        for (int c = 0; c < kColCount; ++c)
            if (ComPtr<IXMLDOMNode> field = FirstChild(info, fields[c])) texts[c] = NodeText(field.Get());
        LVITEMW item{};
        item.mask = LVIF_TEXT | LVIF_PARAM;
        item.iItem = row;
        item.pszText = const_cast<wchar_t*>(texts[kColName].c_str());
        item.lParam = ToLong(texts[kColID]);
        int index = ListView_InsertItem(list, &item);
        if (index < 0) return true;
        for (int c = 1; c < kColCount; ++c)
            ListView_SetItemText(list, index, c, const_cast<wchar_t*>(texts[c].c_str()));
        ++row;
        return true;
    });
    return row;
}

}  // namespace orblane
