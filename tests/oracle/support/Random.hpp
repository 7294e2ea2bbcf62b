#pragma once

#include <cstddef>
#include <cstdint>

namespace quenlith::oracle {

/// Pseudorandom numbers that depend only on the seed, not on the compiler or the library.
///
/// The generator is SplitMix64 (Steele, Lea and Flood, "Fast splittable pseudorandom number
/// generators", 2014).
class Random {
 public:
  explicit Random(std::uint64_t seed) : state(seed) {}

  std::uint64_t next() {
    state += 0x9E3779B97F4A7C15U;
    std::uint64_t mixed = state;
    mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
    return mixed ^ (mixed >> 31U);
  }

  /// Returns a number below `count`, which is not 0.
  std::size_t below(std::size_t count) { return static_cast<std::size_t>(next() % count); }
  /// Returns a number of the closed interval from `low` to `high`.
  std::size_t between(std::size_t low, std::size_t high) { return low + below(high - low + 1); }
  /// Returns true with a probability of 1 / `count`.
  bool oneIn(std::size_t count) { return below(count) == 0; }

  /// Returns one element of a non-empty array or vector.
  template <class List>
  const auto& pick(const List& list) {
    return list[below(list.size())];
  }

 private:
  std::uint64_t state;
};

}  // namespace quenlith::oracle
