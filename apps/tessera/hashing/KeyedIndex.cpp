#include "tessera/hashing/KeyedIndex.hpp"

#include <bit>

#include "tessera/hashing/KeyedMap.hpp"

namespace tessera::hashing {

void KeyedIndex::reserve(std::size_t count) {
  pairs.reserve(count);
  if (count > heads.size()) makeBuckets(count);
}

void KeyedIndex::add(std::uint64_t key, std::size_t number) {
  if (pairs.size() == heads.size()) makeBuckets(pairs.size() + 1);
  // Before the search, whose place is in this block or in the other one.
  pairs.push_back({.key = key, .number = number, .next = kNone});
  std::size_t* at = &heads[bucketOf(key)];
  std::size_t count = 0;
  for (; *at != kNone; at = &pairs[*at].next) {
    const Pair& other = pairs[*at];
    if (other.key != key) continue;
    if (other.number == number || ++count == kMostPerKey) return pairs.pop_back();
  }
  *at = pairs.size() - 1;
}

/// Nobody can choose keys that share a bucket.
std::size_t KeyedIndex::bucketOf(std::uint64_t key) const {
  return KeyedHasher()(key) & (heads.size() - 1);
}

void KeyedIndex::makeBuckets(std::size_t count) {
  heads.assign(std::bit_ceil(count), kNone);
  // From the last one on, so that each bucket has its pairs in the order of their addition.
  for (std::size_t i = pairs.size(); i > 0; --i) {
    std::size_t& head = heads[bucketOf(pairs[i - 1].key)];
    pairs[i - 1].next = head;
    head = i - 1;
  }
}

}  // namespace tessera::hashing
