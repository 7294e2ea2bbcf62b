#pragma once

#include <cstdint>
#include <memory>

#include "kd/zero/OCDChange.hpp"
#include "quenlith/export/model.hpp"

namespace kd::zero {

/// Describes a change that is about to be made; makes the records that listeners get.
class QUENLITH_MODEL_EXPORT OCDChangeDescriptor {
 public:
  /// `index` is where the value will stand, zero-based.
  OCDChangeDescriptor(OCDChange::Operation changedBy, std::int64_t changedIndex) noexcept
      : operation(changedBy), index(changedIndex) {}
  OCDChangeDescriptor(const OCDChangeDescriptor&) = delete;
  OCDChangeDescriptor& operator=(const OCDChangeDescriptor&) = delete;
  virtual ~OCDChangeDescriptor();

  /// Returns a new record of the change.
  virtual std::unique_ptr<OCDChange> makeChange() const = 0;

  OCDChange::Operation getOperation() const noexcept { return operation; }
  std::int64_t getIndex() const noexcept { return index; }

 private:
  OCDChange::Operation operation;
  std::int64_t index;
};

}  // namespace kd::zero
