#pragma once

#include <cstdint>
#include <memory>

#include "kd/zero/OCDChange.hpp"
#include "quenlith/export/model.hpp"

namespace kd::zero {

/// Describes a change that is about to be made; creates the records that listeners receive.
class QUENLITH_MODEL_EXPORT OCDChangeDescriptor {
 public:
  /// `index` is the zero-based index that the value will have.
  OCDChangeDescriptor(OCDChange::Operation operation, std::int64_t index) noexcept
      : operation(operation), index(index) {}
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
