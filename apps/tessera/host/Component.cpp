#include "tessera/host/Component.hpp"

#include "cppmicroservices/Any.h"
#include "cppmicroservices/Constants.h"

namespace tessera::host {
namespace {

using cppmicroservices::Any;
using cppmicroservices::any_cast;
using cppmicroservices::AnyMap;

/// Returns the value of `key` if it is a `Value`, else null.
template <class Value>
const Value* find(const AnyMap& map, const std::string& key) {
  const auto entry = map.find(key);
  return entry == map.end() ? nullptr : any_cast<Value>(&entry->second);
}

std::string textOf(const AnyMap& map, const std::string& key) {
  const auto* text = find<std::string>(map, key);
  return text == nullptr ? "" : *text;
}

template <class Value, class Function>
void forEach(const AnyMap& map, const std::string& key, Function function) {
  const auto* list = find<std::vector<Any>>(map, key);
  if (list == nullptr) return;
  for (const Any& element : *list) {
    if (const auto* value = any_cast<Value>(&element)) function(*value);
  }
}

bool isAutomatic(const AnyMap& description) {
  const bool* enabled = find<bool>(description, "enabled");
  return (enabled == nullptr || *enabled) && description.count("factory") == 0 &&
         description.count("service") != 0 &&
         textOf(description, "configuration-policy") != "require";
}

Component readComponent(const AnyMap& description) {
  Component component;
  component.name = textOf(description, "name");
  if (component.name.empty()) component.name = textOf(description, "implementation-class");
  component.isAutomatic = isAutomatic(description);
  if (const auto* service = find<AnyMap>(description, "service")) {
    forEach<std::string>(*service, "interfaces", [&](const std::string& interfaceId) {
      component.interfaceIds.push_back(interfaceId);
    });
  }
  forEach<AnyMap>(description, "references", [&](const AnyMap& reference) {
    if (textOf(reference, "cardinality").starts_with('0')) return;
    component.references.push_back({textOf(reference, "name"), textOf(reference, "interface")});
  });
  return component;
}

}  // namespace

std::vector<Component> readComponents(const AnyMap& headers) {
  std::vector<Component> components;
  if (const auto* record = find<AnyMap>(headers, "scr")) {
    forEach<AnyMap>(*record, "components", [&](const AnyMap& description) {
      components.push_back(readComponent(description));
    });
  }
  return components;
}

bool hasActivator(const AnyMap& headers) {
  const bool* activator = find<bool>(headers, cppmicroservices::Constants::BUNDLE_ACTIVATOR);
  return activator != nullptr && *activator;
}

std::string factoryOf(const std::string& name) {
  std::string function = "NewInstance_" + name;
  for (auto at = function.find("::"); at != std::string::npos; at = function.find("::", at)) {
    function.replace(at, 2, "_");
  }
  return function;
}

}  // namespace tessera::host
