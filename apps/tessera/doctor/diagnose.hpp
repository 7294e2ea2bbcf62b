#pragma once

#include <string>
#include <vector>

#include "tessera/doctor/Diagnosis.hpp"

namespace tessera::doctor {

/// Starts the program's bundles and `extensionBundles` as `tessera parse` does, and returns what
/// there is and what is wrong. A bundle that cannot be used does not keep the others from being
/// started.
Diagnosis diagnose(const std::vector<std::string>& extensionBundles);

/// Returns what is known when the process that started the bundles ended before it was done; `how`
/// says how, as in "by signal 9 (Killed)".
Diagnosis describeEnd(const std::string& how);

}  // namespace tessera::doctor
