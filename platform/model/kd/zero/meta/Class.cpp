#include "kd/zero/meta/Class.hpp"

#include <mutex>
#include <stdexcept>

#include "kd/zero/meta/Property.hpp"

namespace kd::zero::meta {

namespace {

/// Enters `entry` into the next free place of `table` and returns the place. Descriptions may
/// be made on several threads, by bundles that bring classes of their own.
template <class Entry, std::size_t kCapacity>
std::size_t enter(std::array<const Entry*, kCapacity>& table, std::size_t& used, const Entry* entry,
                  const char* full) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  if (used == kCapacity) throw std::length_error(full);
  table[used] = entry;
  return used++;
}

}  // namespace

std::array<const Class*, Class::kCapacity> Class::registered{};
std::array<const Property*, Property::kCapacity> Property::registered{};

Class::Class(std::u16string_view qualifiedName, const Type::Impl* base, std::size_t sizeBytes,
             Dismantle dismantle)
    : Type::Impl(qualifiedName, base), size(sizeBytes), dismantleElement(dismantle) {
  static std::size_t used = kFixedPlaces;
  key.index = static_cast<std::uint8_t>(
      enter(registered, used, this, "a process holds at most 128 classes of model elements"));
}

Class::Class(ClassKey place, std::u16string_view qualifiedName, const Type::Impl* base,
             std::size_t sizeBytes, Dismantle dismantle)
    : Type::Impl(qualifiedName, base), size(sizeBytes), dismantleElement(dismantle), key(place) {
  registered[place.index] = this;
}

const Type::Impl& Class::modelElement() noexcept {
  static const Type::Impl type(u"kd::zero::ModelElement");
  return type;
}

Property::Property(const Traits& traits)
    : is(traits), key{0, is.unique && is.opposite != nullptr && is.opposite->isContainer()} {
  static std::size_t used = kFixedPlaces;
  key.index = static_cast<std::uint16_t>(
      enter(registered, used, this, "a process holds at most 1024 properties of model elements"));
}

Property::Property(PropertyKey fixedKey, const Traits& traits) : is(traits), key(fixedKey) {
  registered[fixedKey.index] = this;
}

}  // namespace kd::zero::meta
