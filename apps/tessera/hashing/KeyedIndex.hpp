#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tessera::hashing {

/// Numbers by 64-bit keys, in two blocks of memory: a KeyedMap has two for each key.
///
/// A key keeps the first four numbers that are added under it, so that a search takes constant
/// time however many there are.
class KeyedIndex {
 public:
  static constexpr std::size_t kMostPerKey = 4;

  /// Makes room for this many pairs of key and number in all.
  void reserve(std::size_t count);

  /// Does nothing if `number` was the last one that was added under the key, or if there are
  /// enough.
  void add(std::uint64_t key, std::size_t number);

  /// Calls `use` with the numbers of the key, in the order in which they were added.
  template <class Use>
  void forEach(std::uint64_t key, Use use) const {
    if (heads.empty()) return;
    for (std::size_t at = heads[bucketOf(key)]; at != kNone; at = pairs[at].next) {
      if (pairs[at].key == key) use(pairs[at].number);
    }
  }

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  struct Pair {
    std::uint64_t key;
    std::size_t number;
    // The next one of the bucket.
    std::size_t next;
  };

  std::size_t bucketOf(std::uint64_t key) const;
  void makeBuckets(std::size_t count);

  std::vector<Pair> pairs;
  // The first pair of each bucket. The number of buckets is a power of two, or 0.
  std::vector<std::size_t> heads;
};

}  // namespace tessera::hashing
