#pragma once

#include <cstdint>

#include "quenlith/export/model.hpp"

namespace kd::zero {

/// The record of one change to a collection, which listeners receive.
class QUENLITH_MODEL_EXPORT OCDChange {
 public:
  enum class Operation : std::int32_t {
    /// One value is appended at the end of a sequence.
    kAppend = 0,
  };
  enum class CollectionType : std::int32_t {
    kPrimitiveSequence = 0,
  };

  OCDChange(CollectionType collectionType, Operation operation) noexcept
      : collectionType(collectionType), operation(operation) {}
  OCDChange(const OCDChange&) = delete;
  OCDChange& operator=(const OCDChange&) = delete;
  virtual ~OCDChange();

  CollectionType getCollectionType() const noexcept { return collectionType; }
  Operation getOperation() const noexcept { return operation; }

 private:
  CollectionType collectionType;
  Operation operation;
};

}  // namespace kd::zero
