// Small helpers over MSXML's DOM (the host inventory reads the host's documents
// with them).
#pragma once
#include <windows.h>
#include <msxml2.h>
#include <string>
#include <vector>

#include "ui/win_handles.h"

namespace shell::xml {

// The first child element of `parent` with exactly that name, or null.
ui::ComPtr<IXMLDOMElement> FirstChildElement(IXMLDOMNode* parent, const wchar_t* name);
// Every child element of `parent` with exactly that name, in document order.
std::vector<ui::ComPtr<IXMLDOMElement>> ChildElements(IXMLDOMNode* parent, const wchar_t* name);
// The attribute's value converted to 8-bit text; false when it is missing.
bool Attribute(IXMLDOMElement* element, const wchar_t* name, std::string& value);
// The concatenated text of the node's content, converted to 8-bit text.
HRESULT Text(IXMLDOMNode* node, std::string& text);

}  // namespace shell::xml
