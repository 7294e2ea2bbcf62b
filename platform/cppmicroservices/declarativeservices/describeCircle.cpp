#include "describeCircle.hpp"

#include <algorithm>
#include <cstddef>

namespace cppmicroservices::declarativeservices {

namespace {

using detail::ComponentDescription;
using Components = std::vector<const ComponentDescription*>;

bool needs(const ComponentDescription& component, const ComponentDescription& other) {
  const auto& offered = other.interfaceIds;
  return std::any_of(
      component.references.begin(), component.references.end(), [&](const auto& reference) {
        return std::find(offered.begin(), offered.end(), reference.interfaceId) != offered.end();
      });
}

const ComponentDescription* neededBy(const ComponentDescription& component,
                                     const Components& others) {
  const auto found = std::find_if(others.begin(), others.end(),
                                  [&](const auto* other) { return needs(component, *other); });
  return found == others.end() ? nullptr : *found;
}

// Removes the components that wait for none of the others, until each waits for another one.
void dropOpenEnds(Components& components) {
  while (std::erase_if(components, [&](const auto* component) {
           return neededBy(*component, components) == nullptr;
         }) != 0) {
  }
}

}  // namespace

std::string describeCircle(const Components& waiting) {
  Components components = waiting;
  dropOpenEnds(components);
  if (components.empty()) return "";
  // Each waits for another one, so that following them ends in a cycle.
  Components path{components.front()};
  auto repeated = path.begin();
  do {
    const ComponentDescription* const next = neededBy(*path.back(), components);
    path.push_back(next);
    repeated = std::find(path.begin(), path.end(), next);
  } while (repeated + 1 == path.end());
  std::string text = (*repeated)->name;
  for (auto next = repeated + 1; next != path.end(); ++next) text += " needs " + (*next)->name;
  return "components wait for each other and are not offered: " + text +
         "; break the circle, or start a bundle that provides one of their interfaces";
}

}  // namespace cppmicroservices::declarativeservices
