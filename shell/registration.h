// COM registration of one class, host registration, and the
// module-level register and unregister sequences behind the exports.
#pragma once
#include <windows.h>

namespace shell {

struct ClassRegistration {
    const CLSID* pclsid;
    const char* szProgID;                // "OrblaneLib.CSentrel.1"
    const char* szVersionIndependentID;  // "OrblaneLib.CSentrel"
};

// Writes the keys of one class under HKEY_CLASSES_ROOT; the first key that cannot be
// opened or created ends it with HRESULT_FROM_WIN32 of the error.
HRESULT RegisterClassKeys(const ClassRegistration& reg);
// Deletes both ProgID keys and the class key, each with all subkeys; always S_OK.
HRESULT UnregisterClassKeys(const ClassRegistration& reg);

// Registry form of a class identifier: braces, upper-case hexadecimal digits.
void ClassKeyName(REFGUID guid, char (&out)[40]);

HRESULT RegisterServer();    // DllRegisterServer
HRESULT UnregisterServer();  // DllUnregisterServer

}  // namespace shell
