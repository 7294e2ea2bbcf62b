#include "describeCircle.hpp"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <unordered_map>

namespace cppmicroservices::declarativeservices {

namespace {

using Components = std::vector<const detail::ComponentDescription*>;

// Which components of a list wait for which; a component is its place in the list. Goes from
// interface to interface: the pairs of components may be many more.
class Waits {
 public:
  explicit Waits(const Components& waiting) : components(waiting), heldReferences(waiting.size()) {
    for (std::size_t place = 0; place < components.size(); ++place) addProvider(place);
    for (std::size_t place = 0; place < components.size(); ++place) addUser(place);
    dropOpenEnds();
  }

  // Returns the components that wait for each other, or for such components, in order.
  std::vector<std::size_t> held() const {
    std::vector<std::size_t> places;
    for (std::size_t place = 0; place < components.size(); ++place) {
      if (isHeld(place)) places.push_back(place);
    }
    return places;
  }

  // Returns the first component that the one at `place`, which is held, waits for.
  std::size_t neededBy(std::size_t place) const {
    std::size_t first = components.size();
    for (const auto& reference : components[place]->references) {
      const auto entry = interfaces.find(reference.interfaceId);
      if (entry == interfaces.end() || entry->second.providers.empty()) continue;
      first = std::min(first, entry->second.providers.front());
    }
    return first;
  }

 private:
  struct Interface {
    std::vector<std::size_t> providers;
    std::vector<std::size_t> users;
    std::size_t heldProviders = 0;
  };

  bool isHeld(std::size_t place) const { return heldReferences[place] > 0; }

  void addProvider(std::size_t place) {
    for (const std::string& interfaceId : components[place]->interfaceIds) {
      interfaces[interfaceId].providers.push_back(place);
      ++interfaces[interfaceId].heldProviders;
    }
  }

  void addUser(std::size_t place) {
    for (const auto& reference : components[place]->references) {
      const auto entry = interfaces.find(reference.interfaceId);
      if (entry == interfaces.end()) continue;
      entry->second.users.push_back(place);
      ++heldReferences[place];
    }
  }

  // Leaves only components that wait for another one of them.
  void dropOpenEnds() {
    std::vector<std::size_t> openEnds;
    for (std::size_t place = 0; place < components.size(); ++place) {
      if (!isHeld(place)) openEnds.push_back(place);
    }
    while (!openEnds.empty()) {
      const std::size_t place = openEnds.back();
      openEnds.pop_back();
      for (const std::string& interfaceId : components[place]->interfaceIds) {
        removeProvider(interfaces.at(interfaceId), openEnds);
      }
    }
    for (auto& [interfaceId, interface] : interfaces) {
      std::erase_if(interface.providers, [this](std::size_t place) { return !isHeld(place); });
    }
  }

  // Adds the users that wait for no other component any more to `openEnds`.
  void removeProvider(Interface& interface, std::vector<std::size_t>& openEnds) {
    if (--interface.heldProviders > 0) return;
    for (const std::size_t user : interface.users) {
      if (--heldReferences[user] == 0) openEnds.push_back(user);
    }
  }

  const Components& components;
  std::unordered_map<std::string_view, Interface> interfaces;
  // For each component, its references to interfaces of components that are held. A component with
  // such a reference is held itself.
  std::vector<std::size_t> heldReferences;
};

// Follows `start` to the component that it needs, and so on, until one of them comes again. Returns
// those from its first place on.
std::vector<std::size_t> findCircle(const Waits& waits, std::size_t start, std::size_t count) {
  std::vector<std::size_t> path{start};
  std::vector<bool> isOnPath(count);
  while (!isOnPath[path.back()]) {
    isOnPath[path.back()] = true;
    path.push_back(waits.neededBy(path.back()));
  }
  path.erase(path.begin(), std::find(path.begin(), path.end(), path.back()));
  return path;
}

}  // namespace

std::string describeCircle(const Components& waiting) {
  const Waits waits(waiting);
  const std::vector<std::size_t> held = waits.held();
  if (held.empty()) return "";
  std::string text;
  for (const std::size_t place : findCircle(waits, held.front(), waiting.size())) {
    text.append(text.empty() ? "" : " needs ").append(waiting[place]->name);
  }
  return "components wait for each other and are not offered: " + text +
         "; break the circle, or start a bundle that provides one of their interfaces";
}

}  // namespace cppmicroservices::declarativeservices
