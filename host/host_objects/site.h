// The stand-in host's inventory: one "site" XML file (format in host/demo/site.xml) that
// holds the domain tree document, the device list documents and the host's answers.
#pragma once
#include <windows.h>
#include <msxml2.h>
#include <string>

namespace host {

// Path of the site file: set by orblane.exe, else ORBLANE_SITE, else site.xml beside the DLL.
std::wstring SitePath();
void SetSitePath(const wchar_t* path);

// The site document, freshly loaded (the host answers every query from the file as it is
// now, so tests and people can edit it between queries). Null when it cannot be loaded.
IXMLDOMDocument* LoadSite();

// A new DOMDocument40 holding a copy of the first child element of `holder` (or empty).
HRESULT DocumentFromHolder(IXMLDOMNode* holder, IXMLDOMDocument** ppDocument);

// Attribute of the site's root element; `fallback` when missing.
long SiteLong(IXMLDOMDocument* site, const wchar_t* name, long fallback);
std::wstring SiteText(IXMLDOMDocument* site, const wchar_t* name);

// Appends one line to the file named by ORBLANE_HOST_LOG, if set: tests read what the
// plug-in asked of the host.
void LogCall(const std::wstring& line);

}  // namespace host
