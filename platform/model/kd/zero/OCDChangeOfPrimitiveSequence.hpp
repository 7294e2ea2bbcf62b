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
  OCDChangeOfPrimitiveSequence(OCDChange::Operation changedBy, std::optional<T> changedValue,
                               std::int64_t changedIndex)
      : OCDChangeOfPrimitiveContainer<T>(OCDChange::CollectionType::kPrimitiveSequence, changedBy,
                                         std::move(changedValue)),
        index(changedIndex) {}
  ~OCDChangeOfPrimitiveSequence() override = default;

  /// Where the value stands after the change, zero-based.
  std::int64_t getIndex() const noexcept { return index; }

 private:
  std::int64_t index;
};

}  // namespace kd::zero
