#pragma once

#include "cppmicroservices/FrameworkEvent.h"

namespace tessera::host {

/// Writes an error or a warning that the framework has to tell to standard error, where a user
/// sees why a bundle takes no part; other events are passed over.
void reportEvent(const cppmicroservices::FrameworkEvent& event);

}  // namespace tessera::host
