#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tessera/hashing/KeyedIndex.hpp"

namespace tessera::check::scan {

/// The least length of an id that is compared with others: one of a single character resembles
/// every other one.
inline constexpr std::size_t kMinSimilar = 2;

/// Finds a name that was perhaps meant by a misspelt one.
///
/// Each name is stored under all the texts that result from it when one character is removed, so
/// that a search compares only a bounded number of names (the method of symmetric deletion). Names
/// longer than 64 units are found only by their case. Linear in the length of all names. For one
/// thread at a time.
class SimilarNames {
 public:
  /// Adds a name under a number. The name is copied.
  void add(std::u16string_view name, std::size_t number);

  /// Returns the number of a name that is similar to `name`, the one that was added first.
  std::optional<std::size_t> find(std::u16string_view name) const;

 private:
  struct Entry {
    std::u16string name;
    std::size_t number;
  };

  /// Adds the keys of the names that were added since the last search: there may be none.
  void indexNames() const;

  std::vector<Entry> entries;
  // The indices of entries by the hashes of their keys. Of the names of a key, the first ones are
  // as good as the others.
  mutable hashing::KeyedIndex index;
  mutable std::size_t indexedCount = 0;
};

}  // namespace tessera::check::scan
