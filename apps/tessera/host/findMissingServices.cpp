#include "tessera/host/findMissingServices.hpp"

#include <algorithm>

#include "fl/i18n/ustring.hpp"
#include "tessera/spelling/areSimilar.hpp"

namespace tessera::host {
namespace {

using Components = std::vector<ComponentState*>;

// A bundle with a problem registers no further component.
Components possibleComponents(std::vector<StartedBundle>& bundles) {
  Components components;
  for (StartedBundle& bundle : bundles) {
    if (bundle.hasProblem) continue;
    for (ComponentState& state : bundle.components) components.push_back(&state);
  }
  return components;
}

Components componentsOf(std::vector<StartedBundle>& bundles) {
  Components components;
  for (StartedBundle& bundle : bundles) {
    for (ComponentState& state : bundle.components) components.push_back(&state);
  }
  return components;
}

bool isSatisfied(const ComponentState& state, const std::set<std::string>& available) {
  return std::ranges::all_of(state.component.references, [&](const Reference& reference) {
    return available.contains(reference.interfaceId);
  });
}

/// Adds the interfaces of the components that can be registered, until there are no more.
void addPossible(const Components& components, std::set<std::string>& available) {
  bool hasChanged = true;
  while (hasChanged) {
    hasChanged = false;
    for (const ComponentState* state : components) {
      if (!isSatisfied(*state, available)) continue;
      for (const std::string& interfaceId : state->component.interfaceIds) {
        hasChanged |= available.insert(interfaceId).second;
      }
    }
  }
}

std::string findProvider(const Components& components, const std::string& interfaceId) {
  for (const ComponentState* state : components) {
    const auto& provided = state->component.interfaceIds;
    if (std::ranges::find(provided, interfaceId) != provided.end()) return state->component.name;
  }
  return "";
}

}  // namespace

std::string findSimilar(const std::set<std::string>& names, const std::string& name) {
  const auto text = fl::i18n::utf8_to_ustring(name);
  for (const std::string& other : names) {
    if (spelling::areSimilar(text, fl::i18n::utf8_to_ustring(other))) return other;
  }
  return "";
}

void findMissingServices(std::vector<StartedBundle>& bundles,
                         const std::set<std::string>& registeredIds) {
  const Components components = componentsOf(bundles);
  std::set<std::string> available = registeredIds;
  addPossible(possibleComponents(bundles), available);
  for (ComponentState* state : components) {
    state->missing.clear();
    if (state->isRegistered) continue;
    for (const Reference& reference : state->component.references) {
      if (available.contains(reference.interfaceId)) continue;
      state->missing.push_back({.reference = reference,
                                .provider = findProvider(components, reference.interfaceId),
                                .similar = findSimilar(available, reference.interfaceId)});
    }
  }
}

}  // namespace tessera::host
