#include "components/ComponentDescription.hpp"

#include <algorithm>
#include <cstddef>
#include <set>
#include <stdexcept>
#include <utility>

#include "components/ManifestValue.hpp"
#include "cppmicroservices/Constants.h"
#include "cppmicroservices/servicecomponent/ComponentConstants.hpp"
#include "properties/text.hpp"

namespace cppmicroservices::detail {

namespace {

using service::component::ComponentConstants::COMPONENT_ID;
using service::component::ComponentConstants::COMPONENT_NAME;
using service::component::ComponentConstants::SERVICE_COMPONENT;

// An optional key and the values that this framework supports.
struct Feature {
  const char* key;
  std::vector<Any> offered;
  const char* name;
};

void refuseFeatures(const ManifestValue& owner, const std::vector<Feature>& features) {
  for (const Feature& feature : features) {
    if (!owner.has(feature.key)) continue;
    const ManifestValue value = owner.at(feature.key);
    const auto& offered = feature.offered;
    if (std::find(offered.begin(), offered.end(), value.any()) == offered.end()) {
      value.refuse(feature.name);
    }
  }
}

Any text(const char* value) {
  return std::string(value);
}

void checkComponent(const ManifestValue& component) {
  component.allowKeys({"implementation-class", "name", "service", "properties", "references",
                       "inject-references", "enabled", "immediate", "configuration-policy",
                       "configuration-pid", "factory", "factory-properties"});
  refuseFeatures(component, {{"enabled", {true}, "components that are not enabled"},
                             {"immediate", {false}, "immediate components"},
                             {"configuration-policy", {text("ignore")}, "configurations"},
                             {"configuration-pid", {}, "configurations"},
                             {"factory", {}, "component factories"},
                             {"factory-properties", {}, "component factories"},
                             {"inject-references", {true, false}, "injection of a selection"}});
  if (!component.has("service")) {
    component.refuse("components without a service", "give it a \"service\"");
  }
}

void checkReference(const ManifestValue& reference) {
  reference.allowKeys(
      {"name", "interface", "cardinality", "policy", "policy-option", "scope", "target"});
  refuseFeatures(reference,
                 {{"cardinality", {text("1..1")}, "optional or multiple references"},
                  {"policy", {text("static")}, "dynamic references"},
                  {"policy-option", {text("reluctant")}, "greedy references"},
                  {"scope", {text("singleton"), text("bundle")}, "references of that scope"},
                  {"target", {}, "target filters"}});
}

std::string readInterface(const ManifestValue& value) {
  std::string interfaceId(withoutGlobalScope(value.text()));
  if (interfaceId.empty()) value.fail("must name an interface");
  return interfaceId;
}

std::vector<std::string> readInterfaces(const ManifestValue& service) {
  service.allowKeys({"interfaces", "scope"});
  refuseFeatures(service, {{"scope", {text("singleton")}, "services of that scope"}});
  std::vector<std::string> interfaceIds;
  for (const ManifestValue& interfaceId : service.at("interfaces").elements()) {
    interfaceIds.push_back(readInterface(interfaceId));
  }
  return interfaceIds;
}

std::vector<ReferenceDescription> readReferences(const ManifestValue& component) {
  if (!component.has("references")) return {};
  if (!component.has("inject-references") || !component.at("inject-references").isTrue()) {
    component.at("references").refuse("bind methods", "set \"inject-references\" to true");
  }
  std::vector<ReferenceDescription> references;
  for (const ManifestValue& reference : component.at("references").elements()) {
    checkReference(reference);
    references.push_back({reference.at("name").text(), readInterface(reference.at("interface"))});
  }
  return references;
}

// A key in another spelling than that of a property that is set at the registration would make the
// registration fail.
ServiceProperties readProperties(const ManifestValue& properties) {
  const AnyMap reserved{{COMPONENT_NAME, Any()},
                        {COMPONENT_ID, Any()},
                        {Constants::OBJECTCLASS, Any()},
                        {Constants::SERVICE_ID, Any()},
                        {Constants::SERVICE_SCOPE, Any()}};
  for (const auto& [key, value] : properties.object()) {
    const auto other = reserved.find(key);
    if (other == reserved.end() || other->first == key) continue;
    properties.fail("has the key \"" + key + "\", which differs from \"" + other->first +
                    "\" in case only");
  }
  return ServiceProperties(properties.object().begin(), properties.object().end());
}

ComponentDescription readComponent(const ManifestValue& component, const std::string& name) {
  checkComponent(component);
  ComponentDescription description{.name = name,
                                   .interfaceIds = readInterfaces(component.at("service")),
                                   .properties = {},
                                   .references = readReferences(component)};
  if (component.has("properties")) {
    description.properties = readProperties(component.at("properties"));
  }
  return description;
}

std::string readName(const ManifestValue& component) {
  const std::string& className = component.at("implementation-class").text();
  return component.has("name") ? component.at("name").text() : className;
}

}  // namespace

std::vector<ComponentDescription> readComponents(const AnyMap& headers,
                                                 const std::string& location) {
  if (headers.count(SERVICE_COMPONENT) == 0) return {};
  const ManifestValue record(headers.at(SERVICE_COMPONENT), location, SERVICE_COMPONENT);
  record.allowKeys({"version", "components"});
  if (!(record.at("version").any() == 1)) record.at("version").fail("must be 1");
  std::vector<ComponentDescription> components;
  std::set<std::string> names;
  for (const ManifestValue& component : record.at("components").elements()) {
    const std::string name = readName(component);
    if (!names.insert(name).second) component.fail("is the second one named " + name);
    components.push_back(readComponent(component.called(name), name));
  }
  return components;
}

void checkComponents(const AnyMap& headers, const std::string& location) {
  readComponents(headers, location);
}

}  // namespace cppmicroservices::detail
