#include "cppmicroservices/AnyMap.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "properties/text.hpp"

namespace cppmicroservices {

namespace {

const Any& entryOf(const AnyMap& map, const std::string& name) {
  const auto entry = map.find(name);
  if (entry == map.end()) throw std::out_of_range("the map has no key \"" + name + "\"");
  return entry->second;
}

const Any& entryOf(const std::vector<Any>& list, const std::string& name) {
  std::size_t index = 0;
  const char* const end = name.data() + name.size();
  const auto parsed = std::from_chars(name.data(), end, index);
  if (parsed.ec == std::errc::invalid_argument || parsed.ptr != end) {
    throw std::invalid_argument("\"" + name + "\" leads into a list, but is no index");
  }
  if (parsed.ec != std::errc() || index >= list.size()) {
    throw std::out_of_range("the list has no index " + name);
  }
  return list[index];
}

const Any& entryOf(const Any& value, const std::string& name) {
  if (const auto* map = any_cast<AnyMap>(&value)) return entryOf(*map, name);
  if (const auto* list = any_cast<std::vector<Any>>(&value)) return entryOf(*list, name);
  throw std::invalid_argument("\"" + name + "\" leads into a value that is neither map nor list");
}

}  // namespace

bool detail::KeyLess::operator()(const std::string& left, const std::string& right) const {
  if (!ignoresCase) return left < right;
  return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                      [](char a, char b) { return lowerCase(a) < lowerCase(b); });
}

any_map::any_map(map_type mapType, std::initializer_list<value_type> list)
    : type(mapType),
      entries(list, detail::KeyLess{mapType == UNORDERED_MAP_CASEINSENSITIVE_KEYS}) {}

any_map::any_map(const ordered_any_map& map) : type(ORDERED_MAP), entries(map.begin(), map.end()) {}

any_map::any_map(const unordered_any_map& map)
    : type(UNORDERED_MAP), entries(map.begin(), map.end()) {}

bool any_map::operator==(const any_map& other) const {
  return size() == other.size() && std::all_of(begin(), end(), [&other](const value_type& entry) {
           const auto twin = other.find(entry.first);
           return twin != other.end() && twin->second == entry.second;
         });
}

const AnyMap::mapped_type& AnyMap::AtCompoundKey(const key_type& key) const {
  std::size_t dot = key.find('.');
  const Any* value = &entryOf(*this, key.substr(0, dot));
  while (dot != std::string::npos) {
    const std::size_t begin = dot + 1;
    dot = key.find('.', begin);
    value = &entryOf(*value, key.substr(begin, dot - begin));
  }
  return *value;
}

AnyMap::mapped_type AnyMap::AtCompoundKey(const key_type& key,
                                          mapped_type defaultValue) const noexcept {
  try {
    return AtCompoundKey(key);
  } catch (const std::exception&) {
    return defaultValue;
  }
}

std::ostream& any_value_to_string(std::ostream& os, const AnyMap& map) {
  const char* separator = "{";
  for (const auto& [key, value] : map) {
    any_value_to_string(os << separator << key << " : ", value);
    separator = ", ";
  }
  return os << (map.empty() ? "{}" : "}");
}

}  // namespace cppmicroservices
