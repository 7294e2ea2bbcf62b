#include "components/ManifestValue.hpp"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <utility>

namespace cppmicroservices::detail {

ManifestValue::ManifestValue(const Any& any, std::string file, std::string keys)
    : value(&any), location(std::move(file)), path(std::move(keys)) {}

ManifestValue ManifestValue::called(const std::string& name) const {
  return ManifestValue(*value, location, path + " (" + name + ")");
}

template <class T>
const T& ManifestValue::as(const char* kind) const {
  const T* const content = any_cast<T>(value);
  if (content == nullptr) fail(std::string("must be ") + kind);
  return *content;
}

const AnyMap& ManifestValue::object() const {
  return as<AnyMap>("an object");
}

bool ManifestValue::isTrue() const {
  return as<bool>("true or false");
}

const std::string& ManifestValue::text() const {
  const std::string& content = as<std::string>("a text");
  if (content.empty()) fail("must not be empty");
  return content;
}

bool ManifestValue::has(const std::string& key) const {
  return object().count(key) != 0;
}

ManifestValue ManifestValue::at(const std::string& key) const {
  const auto entry = object().find(key);
  if (entry == object().end()) fail("must have the key \"" + key + "\"");
  return ManifestValue(entry->second, location, path + "." + key);
}

std::vector<ManifestValue> ManifestValue::elements() const {
  const auto& list = as<std::vector<Any>>("a list");
  if (list.empty()) fail("must not be empty");
  std::vector<ManifestValue> values;
  for (std::size_t index = 0; index < list.size(); ++index) {
    values.emplace_back(list[index], location, path + "[" + std::to_string(index) + "]");
  }
  return values;
}

void ManifestValue::allowKeys(std::initializer_list<std::string_view> keys) const {
  for (const auto& [key, content] : object()) {
    if (std::find(keys.begin(), keys.end(), key) == keys.end()) {
      fail("has the key \"" + key + "\", which Declarative Services do not know");
    }
  }
}

void ManifestValue::fail(const std::string& problem) const {
  throw std::runtime_error(location + ": " + path + " " + problem +
                           "; correct the manifest of the bundle");
}

void ManifestValue::refuse(const std::string& feature, const std::string& instead) const {
  throw std::runtime_error(location + ": " + path + ": the embedded framework has no " + feature +
                           "; " + instead + " or use an installed CppMicroServices, which has it");
}

}  // namespace cppmicroservices::detail
