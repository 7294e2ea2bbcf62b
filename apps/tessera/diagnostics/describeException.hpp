#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tessera::diagnostics {

/// Returns the text of the exception that is being handled: its `what()` where it has one.
std::string describeException();

/// Calls `report` once with the message for the user about the exception that is being handled,
/// which ends the run. The message about a lack of memory needs no memory.
void reportException(const std::function<void(std::string_view message)>& report);

}  // namespace tessera::diagnostics
