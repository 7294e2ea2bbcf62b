#pragma once

#include "kd/zero/AbstractOwnedCollection.hpp"

namespace kd::zero {

/// Base of the collections of plain values of any type.
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

  /// Removes the values from index `newCount` on.
  virtual void truncate(std::size_t newCount) noexcept = 0;
};

}  // namespace kd::zero
