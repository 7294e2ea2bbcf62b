#pragma once

#include "cppmicroservices/FrameworkEvent.h"

namespace tessera::host {

/// Writes an error or a warning of the framework to standard error, so that a user sees why a
/// bundle has no effect. Ignores other events.
void reportEvent(const cppmicroservices::FrameworkEvent& event);

}  // namespace tessera::host
