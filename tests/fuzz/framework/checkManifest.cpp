#include <cppmicroservices/Any.h>
#include <cppmicroservices/AnyMap.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/broken/BundleFile.hpp"
#include "fuzz/MemoryFile.hpp"
#include "fuzz/framework/BundleHost.hpp"
#include "fuzz/readJson.hpp"
#include "fuzz/require.hpp"
#include "fuzz/targets.hpp"

namespace quenlith::fuzz {

using cppmicroservices::Any;
using cppmicroservices::any_cast;
using cppmicroservices::AnyMap;
using foundation::json::Array;
using foundation::json::Object;
using foundation::json::Value;

namespace {

bool areAlike(const Any& any, const Value& value);

bool areAlikeNumbers(const Any& any, const Value& value) {
  if (const auto* integer = value.getIf<std::int64_t>(); integer && std::in_range<int>(*integer)) {
    const auto* narrow = any_cast<int>(&any);
    return narrow != nullptr && *narrow == *integer;
  }
  const auto* wide = any_cast<double>(&any);
  if (wide == nullptr) return false;
  if (const auto* integer = value.getIf<std::int64_t>()) {
    return *wide == static_cast<double>(*integer);
  }
  if (const auto* natural = value.getIf<std::uint64_t>()) {
    return *wide == static_cast<double>(*natural);
  }
  const auto* number = value.getIf<double>();
  return number != nullptr && *wide == *number;
}

bool areAlike(const AnyMap& map, const Object& object) {
  if (map.size() != object.size()) return false;
  for (const auto& [key, value] : object) {
    const auto found = map.find(key);
    if (found == map.end() || found->first != key || !areAlike(found->second, value)) return false;
  }
  return true;
}

bool areAlike(const Any& any, const Value& value) {
  if (value.is<foundation::json::Null>()) return any.Empty();
  if (const auto* truth = value.getIf<bool>()) {
    const auto* same = any_cast<bool>(&any);
    return same != nullptr && *same == *truth;
  }
  if (const auto* text = value.getIf<std::string>()) {
    const auto* same = any_cast<std::string>(&any);
    return same != nullptr && *same == *text;
  }
  if (const auto* object = value.getIf<Object>()) {
    const auto* map = any_cast<AnyMap>(&any);
    return map != nullptr && areAlike(*map, *object);
  }
  const auto* array = value.getIf<Array>();
  if (array == nullptr) return areAlikeNumbers(any, value);
  const auto* list = any_cast<std::vector<Any>>(&any);
  if (list == nullptr || list->size() != array->size()) return false;
  for (std::size_t i = 0; i < list->size(); ++i) {
    if (!areAlike((*list)[i], (*array)[i])) return false;
  }
  return true;
}

bool contains(const std::string& text, std::string_view part) {
  return text.find(part) != std::string::npos;
}

}  // namespace

void checkManifest(std::string_view input) {
  static MemoryFile file;
  const std::string text(input);
  file.write(makeArchive({{"fuzz/manifest.json", text}}, 0));
  const InstalledBundles installed = installOnce(file.path());
  // A byte order mark is accepted at the start.
  const auto value = readJson(input.substr(input.starts_with("\xEF\xBB\xBF") ? 3 : 0));
  if (!installed.refusal) {
    require(value && value->is<Object>(), "what is installed has a JSON object as its manifest");
    require(areAlike(installed.headers.front(), value->get<Object>()),
            "RapidJSON reads the same headers");
    return;
  }
  const std::string& refusal = *installed.refusal;
  // RapidJSON keeps escaped surrogates without their other half.
  const bool mayDiffer = contains(text, "\\u") || contains(refusal, "nested too deeply");
  if (contains(refusal, "it is not JSON") && !mayDiffer) {
    require(!value, "what is refused as JSON is not JSON");
  }
  if (contains(refusal, "it is not an object")) {
    require(!value || !value->is<Object>(), "what is refused as an object is not an object");
  }
}

}  // namespace quenlith::fuzz
