#pragma once

#include <optional>
#include <utility>

#include "kd/zero/OCDChange.hpp"

namespace kd::zero {

/// The record of a change that concerns one plain value.
template <class T>
class OCDChangeOfPrimitiveContainer : public OCDChange {
 public:
  OCDChangeOfPrimitiveContainer(CollectionType collectionType, Operation operation,
                                std::optional<T> value)
      : OCDChange(collectionType, operation), value(std::move(value)) {}
  ~OCDChangeOfPrimitiveContainer() override = default;

  /// The value that is appended; absent if the change has no value.
  const std::optional<T>& getValue() const noexcept { return value; }

 private:
  std::optional<T> value;
};

}  // namespace kd::zero
