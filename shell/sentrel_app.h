// The application object. The framework (here DllMain) calls InitInstance when the
// module is loaded and ExitInstance when it is unloaded.
#pragma once
#include <windows.h>

namespace shell {

class CSentrelApp {
public:
    // Initialises the COM module with the class table, the instance handle and SENTRELLib's
    // identifier. Test programs that link the plug-in's code pass their own instance.
    BOOL InitInstance(HINSTANCE hInstance);
    int ExitInstance();
};

CSentrelApp& TheApp();

}  // namespace shell
