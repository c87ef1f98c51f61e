// The Windows tests catch message boxes with the wizard driver's hook, so there is one.
#pragma once
#include "host/wizard_driver/message_box_hook.h"

namespace sentrel_test {
using CaughtMessageBox = sentrel_gui::CaughtBox;
using MessageBoxCatcher = sentrel_gui::MessageBoxHook;  // on the calling thread
}  // namespace sentrel_test
