#pragma once

#include <string>

namespace tessera::diagnostics {

/// Returns the text of the exception that is being handled: its `what()` where it has one.
std::string describeException();

}  // namespace tessera::diagnostics
