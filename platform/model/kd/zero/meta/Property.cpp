#include "kd/zero/meta/Property.hpp"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <stdexcept>

namespace kd::zero::meta {

namespace {

// Like that of the classes: the collections of the two properties would follow the rules of one.
void requireFreeKey(PropertyKey key, std::span<const Property* const> table) noexcept {
  if (key.index < Property::kFixedKeys && table[key.index] == nullptr) return;
  std::fprintf(stderr,
               "the fixed key %u of a property of model elements is out of range or in use; "
               "describe the property "
               "without a fixed key\n",
               unsigned{key.index});
  std::abort();
}

}  // namespace

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
  requireFreeKey(key, table);
  table[key.index] = this;
}

void Property::throwNotInTable() {
  throw std::length_error("a process has at most 65536 properties of model elements");
}

}  // namespace kd::zero::meta
