#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <stdexcept>
#include <unordered_map>
#include <vector>

#include "kd/zero/OCDChangeDescriptorOfPrimitiveSequence.hpp"
#include "kd/zero/PrimitiveCollection.hpp"
#include "kd/zero/Verification.hpp"

namespace kd::zero {

/// Sequence of plain values that one element owns through one of its properties.
///
/// Compares values with ==. If there is a std::hash<T>, which must agree with ==, appending to a
/// large unique sequence takes constant time on average; otherwise it takes linear time.
template <class T>
class PrimitiveSequence final : public PrimitiveCollection {
  // A std::vector<bool> packs its values into bits.
  static_assert(!std::same_as<T, bool>,
                "a sequence of bool would have no references to its values; use an enumeration");

 public:
  PrimitiveSequence(const ModelElement::Impl& collectionOwner, meta::PropertyKey property)
      : PrimitiveCollection(collectionOwner, property) {}
  PrimitiveSequence(ModelElement::Impl* const& collectionOwner, meta::PropertyKey property)
      : PrimitiveCollection(collectionOwner, property) {}
  ~PrimitiveSequence() override = default;

  /// Appends a copy of `value`, unless the sequence is unique and an equal value is in it.
  ///
  /// Notifies the listeners of the model once, before the value is stored. Throws what a listener
  /// or the copy constructor throws, and std::length_error for the 2^32nd value; the sequence is
  /// unchanged in these cases.
  void add(const T& value) {
    if (isUnique() && contains(value)) return;
    if (size() == std::numeric_limits<std::uint32_t>::max()) {
      throw std::length_error("a sequence has at most 2^32 - 1 values");
    }
    Operation operation(*this);
    const OCDChangeDescriptorOfPrimitiveSequence<T> change(
        OCDChange::Operation::kAppend, static_cast<std::int64_t>(values.size()), &value);
    modifying(change);
    store(value);
    operation.commit();
  }

  /// Tells whether an equal value is in the sequence.
  bool contains(const T& value) const {
    if constexpr (kHashable) {
      if (!places.empty()) return containsHashed(value);
    }
    for (const T& present : values) {
      if (present == value) return true;
    }
    return false;
  }

  /// Checks the sequence, which is one of `holder`.
  void verify(const ModelElement::Impl& holder, Verification& verification) const {
    verification.expect(&owner() == &holder, "a collection finds its owner");
    verification.expect(containsValues(), "a collection knows what its places are");
    verification.expect(count == values.size(), "a sequence of values knows its size");
    verification.expect(places.empty() || places.size() == values.size(),
                        "the index of a sequence is empty or has every value");
    for (const auto& [hash, place] : places) {
      verification.expect(place < values.size(), "the index of a sequence refers to its values");
    }
  }

  const T& operator[](std::size_t index) const noexcept { return values[index]; }
  /// Throws std::out_of_range.
  const T& at(std::size_t index) const { return values.at(index); }
  const T* data() const noexcept { return values.data(); }
  auto begin() const noexcept { return values.begin(); }
  auto end() const noexcept { return values.end(); }

 private:
  static constexpr bool kHashable = requires(const T& value) { std::hash<T>{}(value); };
  // Below this size, comparing is cheaper than hashing. Most sequences have one value.
  static constexpr std::size_t kHashedFrom = 16;

  void store(const T& value) {
    values.push_back(value);
    count = static_cast<std::uint32_t>(values.size());
    if constexpr (kHashable) {
      if (isUnique() && values.size() >= kHashedFrom) indexNewPlaces();
    }
  }

  void indexNewPlaces() {
    for (std::size_t place = places.size(); place < values.size(); ++place) {
      places.emplace(std::hash<T>{}(values[place]), place);
    }
  }

  bool containsHashed(const T& value) const {
    const auto [first, last] = places.equal_range(std::hash<T>{}(value));
    for (auto candidate = first; candidate != last; ++candidate) {
      if (values[candidate->second] == value) return true;
    }
    return false;
  }

  void truncate(std::size_t newCount) noexcept override {
    // The entries of the removed values can be found only by hashing the values, which may throw.
    // So drop the whole index, unless it does not have the removed values yet.
    if (places.size() != newCount) places.clear();
    values.erase(values.begin() + static_cast<std::ptrdiff_t>(newCount), values.end());
    count = static_cast<std::uint32_t>(newCount);
  }

  std::vector<T> values;
  /// Maps the hash of a value to its index; empty, or has every value.
  std::unordered_multimap<std::size_t, std::size_t> places;
};

}  // namespace kd::zero
