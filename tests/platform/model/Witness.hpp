#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "kd/zero/AbstractOwnedCollection.hpp"
#include "kd/zero/ChangeListener.hpp"
#include "kd/zero/ModelElement.hpp"
#include "kd/zero/OCDChange.hpp"

namespace quenlith::test {

/// Thrown by a listener that refuses a change.
struct Veto {};

/// Records each notification and the size of the collection at that time.
class Witness final : public kd::zero::ChangeListener {
 public:
  void modifying(const kd::zero::AbstractOwnedCollection& collection,
                 std::unique_ptr<kd::zero::OCDChange> change) override {
    sizes.push_back(collection.size());
    owners.push_back(collection.getOwner());
    changes.push_back(std::move(change));
    if (vetoes) throw Veto();
  }

  std::vector<std::size_t> sizes;
  std::vector<kd::zero::ModelElement> owners;
  std::vector<std::unique_ptr<kd::zero::OCDChange>> changes;
  bool vetoes = false;
};

}  // namespace quenlith::test
