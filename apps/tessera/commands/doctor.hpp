#pragma once

#include "tessera/commands/Options.hpp"

namespace tessera::commands {

/// Writes what the program and the named bundles are made of and what is wrong with them, and
/// returns the exit status.
int doctor(const DoctorOptions& options);

}  // namespace tessera::commands
