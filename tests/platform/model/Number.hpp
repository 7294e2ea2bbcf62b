#pragma once

#include <cstddef>
#include <functional>

namespace quenlith::test {

/// A plain value whose copies and comparisons are counted, and whose copying can be made to throw.
struct Number {
  explicit Number(int number) : value(number) {}
  Number(const Number& other) : value(other.value) {
    if (throwOnCopy) throw CopyFailure();
    ++copies;
  }
  Number& operator=(const Number&) = default;
  ~Number() = default;

  friend bool operator==(const Number& a, const Number& b) {
    ++comparisons;
    return a.value == b.value;
  }

  struct CopyFailure {};

  int value;

  static inline std::size_t copies = 0;
  static inline std::size_t comparisons = 0;
  static inline bool throwOnCopy = false;
};

/// A plain value without a hash.
struct UnhashedNumber {
  int value;
  friend bool operator==(const UnhashedNumber&, const UnhashedNumber&) = default;
};

}  // namespace quenlith::test

template <>
struct std::hash<quenlith::test::Number> {
  // A third of the numbers share their hash with others.
  std::size_t operator()(const quenlith::test::Number& number) const {
    return static_cast<std::size_t>(number.value % 3 == 0 ? number.value / 3 : number.value);
  }
};
