#pragma once

#include <string>
#include <vector>

#include "components/ComponentDescription.hpp"

namespace cppmicroservices::declarativeservices {

/// Returns a sentence about components that wait for each other in a circle, empty when there is
/// no circle among those given.
std::string describeCircle(const std::vector<const detail::ComponentDescription*>& waiting);

}  // namespace cppmicroservices::declarativeservices
