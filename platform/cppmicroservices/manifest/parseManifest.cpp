#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "cppmicroservices/BundleVersion.h"
#include "cppmicroservices/Constants.h"
#include "manifest/bundleManifests.hpp"
#include "properties/text.hpp"

namespace cppmicroservices::detail {

namespace {

using Json = nlohmann::json;

// Bounds the recursion over the values.
constexpr std::size_t kMaximumDepth = 100;

// Builds a manifest from the events of the JSON parser; stops at the first problem.
class ManifestBuilder {
 public:
  bool null() { return put(Any()); }
  bool boolean(bool value) { return put(value); }
  bool number_integer(std::int64_t value) { return putInteger(value); }
  bool number_unsigned(std::uint64_t value) { return putInteger(value); }
  bool number_float(double value, const std::string& /*text*/) { return put(value); }
  bool string(std::string& value) { return put(std::move(value)); }

  bool start_object(std::size_t /*size*/) { return open(true); }
  bool start_array(std::size_t /*size*/) { return open(false); }
  bool end_object() { return close(); }
  bool end_array() { return close(); }

  bool key(std::string& name) {
    if (containers.back().map.count(name) > 0) return fail("the key \"" + name + "\" occurs twice");
    containers.back().key = std::move(name);
    return true;
  }

  bool parse_error(std::size_t /*place*/, const std::string& token, const Json::exception& error) {
    constexpr int kNumberTooLarge = 406;
    if (error.id == kNumberTooLarge) return fail("the number " + token + " is too large");
    // The text before "at line 1, column 2: ..." is the JSON library's code for the problem.
    const std::string text = error.what();
    return fail("it is not JSON " + text.substr(text.find("at line")));
  }

  // The JSON library requires this member of every builder; text contains no binary values.
  bool (*binary)(Json::binary_t& value) = nullptr;

  AnyMap manifest;
  std::string problem;

 private:
  struct Container {
    bool isObject;
    std::string key;  // of the value that comes next
    AnyMap map;
    std::vector<Any> list;
  };

  bool fail(std::string text) {
    problem = std::move(text);
    return false;
  }

  bool open(bool isObject) {
    if (containers.empty() && !isObject) return fail("it is not an object");
    if (containers.size() == kMaximumDepth) return fail("its values are nested too deeply");
    containers.push_back({isObject, {}, {}, {}});
    return true;
  }

  bool close() {
    Container closed = std::move(containers.back());
    containers.pop_back();
    if (containers.empty()) {
      manifest = std::move(closed.map);
      return true;
    }
    return closed.isObject ? put(std::move(closed.map)) : put(std::move(closed.list));
  }

  bool put(Any value) {
    if (containers.empty()) return fail("it is not an object");
    Container& container = containers.back();
    if (container.isObject) {
      container.map.emplace(std::move(container.key), std::move(value));
    } else {
      container.list.push_back(std::move(value));
    }
    return true;
  }

  template <class Integer>
  bool putInteger(Integer value) {
    if (std::in_range<int>(value)) return put(static_cast<int>(value));
    return put(static_cast<double>(value));
  }

  std::vector<Container> containers;
};

bool isLetter(char character) {
  return lowerCase(character) >= 'a' && lowerCase(character) <= 'z';
}
bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

bool isIdentifier(std::string_view text) {
  return !text.empty() && !isDigit(text.front()) &&
         std::all_of(text.begin(), text.end(), [](char character) {
           return isLetter(character) || isDigit(character) || character == '_';
         });
}

bool isVersion(const std::string& text) {
  try {
    return !BundleVersion(text).IsUndefined();
  } catch (const std::invalid_argument&) {
    return false;
  }
}

// Returns the problem with the headers that the framework reads, "" when there is none.
std::string problemOf(const AnyMap& headers) {
  const auto name = headers.find(Constants::BUNDLE_SYMBOLICNAME);
  if (name == headers.end()) return "\"" + Constants::BUNDLE_SYMBOLICNAME + "\" is missing";
  const auto* text = any_cast<std::string>(&name->second);
  if (text == nullptr || !isIdentifier(*text)) {
    return "\"" + Constants::BUNDLE_SYMBOLICNAME + "\" is not a text of letters, digits and _";
  }
  const auto activator = headers.find(Constants::BUNDLE_ACTIVATOR);
  if (activator != headers.end() && activator->second.Type() != typeid(bool)) {
    return "\"" + Constants::BUNDLE_ACTIVATOR + "\" is neither true nor false";
  }
  const auto version = headers.find(Constants::BUNDLE_VERSION);
  if (version == headers.end()) return "";
  const auto* versionText = any_cast<std::string>(&version->second);
  if (versionText != nullptr && isVersion(*versionText)) return "";
  return "\"" + Constants::BUNDLE_VERSION + "\" is not a text such as \"1.0.2\"";
}

}  // namespace

AnyMap parseManifest(const std::string& location, const ManifestText& manifest) {
  ManifestBuilder builder;
  if (Json::sax_parse(manifest.text, &builder)) builder.problem = problemOf(builder.manifest);
  if (!builder.problem.empty()) {
    refuseBundle(location, manifest.path + " cannot be used: " + builder.problem,
                 "correct the manifest and append the archive again");
  }
  return std::move(builder.manifest);
}

}  // namespace cppmicroservices::detail
