#pragma once

#include <string>

namespace tessera::view {

/// Asks the desktop to show `address` in a browser. Does nothing without a desktop.
void openBrowser(const std::string& address);

}  // namespace tessera::view
