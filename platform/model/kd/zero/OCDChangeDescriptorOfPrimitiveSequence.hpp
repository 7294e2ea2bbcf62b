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
  /// Borrows `changedValue`, which may be null, for the life of the descriptor.
  OCDChangeDescriptorOfPrimitiveSequence(OCDChange::Operation changedBy, std::int64_t changedIndex,
                                         const T* changedValue) noexcept
      : OCDChangeDescriptor(changedBy, changedIndex), value(changedValue) {}
  ~OCDChangeDescriptorOfPrimitiveSequence() override = default;

  std::unique_ptr<OCDChange> makeChange() const override {
    return std::make_unique<OCDChangeOfPrimitiveSequence<T>>(
        getOperation(), value == nullptr ? std::nullopt : std::optional<T>(*value), getIndex());
  }

 private:
  const T* value;
};

}  // namespace kd::zero
