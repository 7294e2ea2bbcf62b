#pragma once

#include <set>
#include <string>
#include <vector>

#include "tessera/host/StartedBundle.hpp"

namespace tessera::host {

/// Sets what each component of `bundles` that is not registered waits for in vain, given the
/// interfaces of all services that are registered. A component that only waits for others that can
/// still be registered waits for nothing in vain.
void findMissingServices(std::vector<StartedBundle>& bundles,
                         const std::set<std::string>& registeredIds);

/// Returns a name of `names` that is similar to `name` but not equal to it, "" if there is none.
std::string findSimilar(const std::set<std::string>& names, const std::string& name);

}  // namespace tessera::host
