#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "kd/zero/OCDChangeOfPrimitiveContainer.hpp"

namespace kd::zero {

/// The record of a change to a sequence of plain values.
template <class T>
class OCDChangeOfPrimitiveSequence : public OCDChangeOfPrimitiveContainer<T> {
 public:
  OCDChangeOfPrimitiveSequence(OCDChange::Operation operation, std::optional<T> value,
                               std::int64_t index)
      : OCDChangeOfPrimitiveContainer<T>(OCDChange::CollectionType::kPrimitiveSequence, operation,
                                         std::move(value)),
        index(index) {}
  ~OCDChangeOfPrimitiveSequence() override = default;

  /// The zero-based index of the value after the change.
  std::int64_t getIndex() const noexcept { return index; }

 private:
  std::int64_t index;
};

}  // namespace kd::zero
