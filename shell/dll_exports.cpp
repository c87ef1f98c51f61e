// The module's entry point and its four exports (named in res/Sentrel.def).
#include <windows.h>

#include "shell/com_module.h"
#include "shell/registration.h"
#include "shell/sentrel_app.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        DisableThreadLibraryCalls(hInstance);
        return shell::TheApp().InitInstance(hInstance);
    }
    if (reason == DLL_PROCESS_DETACH) shell::TheApp().ExitInstance();
    return TRUE;
}

extern "C" HRESULT WINAPI DllGetClassObject(REFCLSID rclsid, REFIID riid, LPVOID* ppv) {
    return shell::Module().GetClassObject(rclsid, riid, ppv);
}

// The framework keeps no objects of its own beyond a command's modal window, and every
// command runs inside Execute on a live object; only a switch reader can outlive it.
extern "C" HRESULT WINAPI DllCanUnloadNow() { return shell::CanUnloadNow() ? S_OK : S_FALSE; }

extern "C" HRESULT WINAPI DllRegisterServer() { return shell::RegisterServer(); }

extern "C" HRESULT WINAPI DllUnregisterServer() { return shell::UnregisterServer(); }
