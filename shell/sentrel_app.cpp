#include "shell/sentrel_app.h"

#include "Sentrel.h"
#include "shell/com_module.h"
#include "shell/plugin_classes.h"
#include "ui/text.h"

namespace shell {

CSentrelApp& TheApp() {
    static CSentrelApp app;
    return app;
}

BOOL CSentrelApp::InitInstance(HINSTANCE hInstance) {
    Module().Init(ClassTable(), hInstance, &LIBID_SENTRELLib);
    ui::SetResourceInstance(Module().ResourceInstance());
    return TRUE;
}

int CSentrelApp::ExitInstance() {
    Module().Term();
    return 0;
}

}  // namespace shell
