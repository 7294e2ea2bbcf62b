#include "kd/zero/meta/Property.hpp"

#include <atomic>
#include <stdexcept>

namespace kd::zero::meta {

std::array<const Property*, Property::kCapacity> Property::table{};

Property::Property(const Traits& traits) noexcept
    : propertyTraits(traits),
      key{0, traits.unique && traits.opposite != nullptr && traits.opposite->isContainer()} {
  static std::atomic<std::size_t> used = kFixedKeys;
  const std::size_t place = used.fetch_add(1, std::memory_order_relaxed);
  inTable = place < kCapacity;
  if (!inTable) return;
  table[place] = this;
  key.index = static_cast<std::uint16_t>(place);
}

Property::Property(PropertyKey key, const Traits& traits) noexcept
    : propertyTraits(traits), key(key), inTable(true) {
  table[key.index] = this;
}

void Property::throwNotInTable() {
  throw std::length_error("a process has at most 65536 properties of model elements");
}

}  // namespace kd::zero::meta
