#include "host/host_objects/site.h"

#include <cstdio>
#include <mutex>

// MSXML 4.0's DOMDocument40 (mingw's import libraries do not define it).
extern "C" const CLSID CLSID_DOMDocument40 = {0x88d969c0, 0xf192, 0x11d4, {0xa6, 0x5f, 0x00, 0x40, 0x96, 0x32, 0x51, 0xe5}};

namespace host {
namespace {
std::mutex g_pathLock;
std::wstring g_sitePath;

std::wstring ModuleFolder() {
    HMODULE self = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&ModuleFolder), &self);
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(self, path, MAX_PATH);
    std::wstring folder(path);
    size_t slash = folder.find_last_of(L"\\/");
    return slash == std::wstring::npos ? L"." : folder.substr(0, slash);
}

IXMLDOMDocument* NewDocument() {
    IXMLDOMDocument* doc = nullptr;
    if (FAILED(CoCreateInstance(CLSID_DOMDocument40, nullptr, CLSCTX_INPROC_SERVER, IID_IXMLDOMDocument,
                                reinterpret_cast<void**>(&doc))))
        return nullptr;
    doc->put_async(VARIANT_FALSE);
    return doc;
}
}  // namespace

std::wstring SitePath() {
    std::lock_guard<std::mutex> lock(g_pathLock);
    if (!g_sitePath.empty()) return g_sitePath;
    wchar_t env[MAX_PATH] = {};
    if (GetEnvironmentVariableW(L"ORBLANE_SITE", env, MAX_PATH) > 0) return env;
    return ModuleFolder() + L"\\site.xml";
}

void SetSitePath(const wchar_t* path) {
    std::lock_guard<std::mutex> lock(g_pathLock);
    g_sitePath = path ? path : L"";
}

IXMLDOMDocument* LoadSite() {
    IXMLDOMDocument* doc = NewDocument();
    if (!doc) return nullptr;
    VARIANT file;
    VariantInit(&file);
    file.vt = VT_BSTR;
    file.bstrVal = SysAllocString(SitePath().c_str());
    VARIANT_BOOL ok = VARIANT_FALSE;
    HRESULT hr = doc->load(file, &ok);
    VariantClear(&file);
    if (FAILED(hr) || ok != VARIANT_TRUE) {
        doc->Release();
        return nullptr;
    }
    return doc;
}

HRESULT DocumentFromHolder(IXMLDOMNode* holder, IXMLDOMDocument** ppDocument) {
    *ppDocument = NewDocument();
    if (!*ppDocument) return E_FAIL;
    if (!holder) return S_OK;
    IXMLDOMNode* child = nullptr;
    if (holder->get_firstChild(&child) != S_OK) return S_OK;
    while (child) {
        DOMNodeType type;
        child->get_nodeType(&type);
        if (type == NODE_ELEMENT) {
            BSTR xml = nullptr;
            child->get_xml(&xml);
            VARIANT_BOOL ok;
            (*ppDocument)->loadXML(xml, &ok);
            SysFreeString(xml);
            child->Release();
            break;
        }
        IXMLDOMNode* next = nullptr;
        HRESULT hr = child->get_nextSibling(&next);
        child->Release();
        child = hr == S_OK ? next : nullptr;
    }
    return S_OK;
}

std::wstring SiteText(IXMLDOMDocument* site, const wchar_t* name) {
    std::wstring out;
    IXMLDOMElement* root = nullptr;
    if (!site || site->get_documentElement(&root) != S_OK || !root) return out;
    BSTR bstrName = SysAllocString(name);
    VARIANT v;
    VariantInit(&v);
    if (root->getAttribute(bstrName, &v) == S_OK && v.vt == VT_BSTR) out = v.bstrVal;
    VariantClear(&v);
    SysFreeString(bstrName);
    root->Release();
    return out;
}

long SiteLong(IXMLDOMDocument* site, const wchar_t* name, long fallback) {
    std::wstring text = SiteText(site, name);
    return text.empty() ? fallback : wcstol(text.c_str(), nullptr, 10);
}

void LogCall(const std::wstring& line) {
    wchar_t path[MAX_PATH] = {};
    if (GetEnvironmentVariableW(L"ORBLANE_HOST_LOG", path, MAX_PATH) == 0) return;
    FILE* f = _wfopen(path, L"ab");
    if (!f) return;
    fprintf(f, "%ls\n", line.c_str());
    fclose(f);
}

}  // namespace host
