// The RADIUS server command and the lookup of the default browser.
#pragma once
#include <string>

namespace shell {

// The program path inside a registered browser command: from the drive letter before the
// first ":\" through the first ".exe" (or, second pass, ".EXE"); "" when not found.
std::string ExtractBrowserPath(const std::string& command);

// The default browser's program file from HKEY_CLASSES_ROOT\http\shell\open\command
// (200-byte buffer); "" when it cannot be found.
std::string GetBrowserPath();

// Opens "RadiusSite" in the browser; shows "Failed to get IE path !" when there is none.
// Does not wait for the browser.
void RunRadiusServerCommand();

}  // namespace shell
