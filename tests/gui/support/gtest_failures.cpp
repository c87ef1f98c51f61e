// The driver's own failures (no wizard appeared) fail the running GUI test: without this a
// script that never ran would pass.
#include <gtest/gtest.h>

#include "host/wizard_driver/wizard_driver.h"

namespace {
void FailTest(const std::string& what) { ADD_FAILURE() << what; }
const bool g_registered = (sentrel_gui::SetFailureHandler(&FailTest), true);
}  // namespace
