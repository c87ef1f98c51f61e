#include "shell/xml_dom.h"

#include "ui/text.h"

namespace shell::xml {
namespace {

bool IsElementNamed(IXMLDOMNode* node, const wchar_t* name) {
    DOMNodeType type;
    if (FAILED(node->get_nodeType(&type)) || type != NODE_ELEMENT) return false;
    ui::UniqueBstr nodeName;
    if (FAILED(node->get_nodeName(nodeName.put())) || !nodeName) return false;
    return lstrcmpW(nodeName.get(), name) == 0;  // exact, case-sensitive
}

template <typename F>
void ForEachChildElement(IXMLDOMNode* parent, const wchar_t* name, F&& f) {
    if (!parent) return;
    ui::ComPtr<IXMLDOMNode> child;
    if (parent->get_firstChild(&child) != S_OK) return;
    while (child) {
        if (IsElementNamed(child.Get(), name)) {
            ui::ComPtr<IXMLDOMElement> element;
            if (SUCCEEDED(child->QueryInterface(IID_IXMLDOMElement, reinterpret_cast<void**>(element.GetAddressOf()))) &&
                !f(element))
                return;
        }
        ui::ComPtr<IXMLDOMNode> next;
        if (child->get_nextSibling(&next) != S_OK) break;
        child = next;
    }
}

}  // namespace

ui::ComPtr<IXMLDOMElement> FirstChildElement(IXMLDOMNode* parent, const wchar_t* name) {
    ui::ComPtr<IXMLDOMElement> found;
    ForEachChildElement(parent, name, [&](const ui::ComPtr<IXMLDOMElement>& e) {
        found = e;
        return false;
    });
    return found;
}

std::vector<ui::ComPtr<IXMLDOMElement>> ChildElements(IXMLDOMNode* parent, const wchar_t* name) {
    std::vector<ui::ComPtr<IXMLDOMElement>> out;
    ForEachChildElement(parent, name, [&](const ui::ComPtr<IXMLDOMElement>& e) {
        out.push_back(e);
        return true;
    });
    return out;
}

bool Attribute(IXMLDOMElement* element, const wchar_t* name, std::string& value) {
    value.clear();
    ui::UniqueBstr bstrName(SysAllocString(name));
    VARIANT v;
    VariantInit(&v);
    if (element->getAttribute(bstrName.get(), &v) != S_OK || v.vt != VT_BSTR) {
        VariantClear(&v);
        return false;
    }
    value = ui::ToAnsi(v.bstrVal, static_cast<int>(SysStringLen(v.bstrVal)));
    VariantClear(&v);
    return true;
}

HRESULT Text(IXMLDOMNode* node, std::string& text) {
    text.clear();
    ui::UniqueBstr bstr;
    HRESULT hr = node->get_text(bstr.put());
    if (FAILED(hr)) return hr;
    text = ui::ToAnsi(bstr.get(), static_cast<int>(SysStringLen(bstr.get())));
    return S_OK;
}

}  // namespace shell::xml
