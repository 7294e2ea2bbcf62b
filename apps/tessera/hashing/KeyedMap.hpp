#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace tessera::hashing {

/// Hashes keys that are made from the text of files with the key of the process. A file can be
/// written so that many of its texts have one standard hash, but not one of these.
struct KeyedHasher {
  using is_transparent = void;

  std::size_t operator()(std::u16string_view text) const;
  std::size_t operator()(const std::pair<std::u16string_view, std::u16string_view>& texts) const;
  std::size_t operator()(std::uint64_t number) const;
};

template <class Key, class Value>
using KeyedMap = std::unordered_map<Key, Value, KeyedHasher, std::equal_to<>>;

template <class Key>
using KeyedSet = std::unordered_set<Key, KeyedHasher, std::equal_to<>>;

}  // namespace tessera::hashing
