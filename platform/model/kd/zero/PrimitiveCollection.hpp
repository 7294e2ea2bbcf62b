#pragma once

#include "kd/zero/AbstractOwnedCollection.hpp"

namespace kd::zero {

/// A collection of plain values, of whatever type.
class QUENLITH_MODEL_EXPORT PrimitiveCollection : public AbstractOwnedCollection {
 protected:
  PrimitiveCollection(const ModelElement::Impl& collectionOwner,
                      meta::PropertyKey property) noexcept
      : AbstractOwnedCollection(collectionOwner, property, Content::kValues) {}
  PrimitiveCollection(ModelElement::Impl* const& collectionOwner,
                      meta::PropertyKey property) noexcept
      : AbstractOwnedCollection(collectionOwner, property, Content::kValues) {}
  virtual ~PrimitiveCollection();

 private:
  friend class AbstractOwnedCollection::Operation;

  /// Drops the values from `newCount` on.
  virtual void truncate(std::size_t newCount) noexcept = 0;
};

}  // namespace kd::zero
