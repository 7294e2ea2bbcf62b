#pragma once

#include <optional>
#include <utility>

#include "kd/zero/OCDChange.hpp"

namespace kd::zero {

/// The record of a change that concerns one plain value.
template <class T>
class OCDChangeOfPrimitiveContainer : public OCDChange {
 public:
  OCDChangeOfPrimitiveContainer(CollectionType changedType, Operation changedBy,
                                std::optional<T> changedValue)
      : OCDChange(changedType, changedBy), value(std::move(changedValue)) {}
  ~OCDChangeOfPrimitiveContainer() override = default;

  /// The value that the change is about; absent when the change has none.
  const std::optional<T>& getValue() const noexcept { return value; }

 private:
  std::optional<T> value;
};

}  // namespace kd::zero
