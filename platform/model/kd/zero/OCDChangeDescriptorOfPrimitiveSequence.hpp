#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "kd/zero/OCDChangeDescriptor.hpp"
#include "kd/zero/OCDChangeOfPrimitiveSequence.hpp"

namespace kd::zero {

/// Describes a change to a sequence of plain values.
template <class T>
class OCDChangeDescriptorOfPrimitiveSequence final : public OCDChangeDescriptor {
 public:
  /// Borrows `value`, which may be null, for the life of the descriptor.
  OCDChangeDescriptorOfPrimitiveSequence(OCDChange::Operation operation, std::int64_t index,
                                         const T* value) noexcept
      : OCDChangeDescriptor(operation, index), value(value) {}
  ~OCDChangeDescriptorOfPrimitiveSequence() override = default;

  std::unique_ptr<OCDChange> makeChange() const override {
    return std::make_unique<OCDChangeOfPrimitiveSequence<T>>(
        getOperation(), value == nullptr ? std::nullopt : std::optional<T>(*value), getIndex());
  }

 private:
  const T* value;
};

}  // namespace kd::zero
