#include "kd/zero/meta/Class.hpp"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <span>

namespace kd::zero::meta {

namespace {

// The elements of the two classes would be destroyed as if they were of one. A description is
// created while its library is loaded, where an exception would leave the loader locked.
void requireFreeKey(ClassKey key, std::span<const Class* const> table) noexcept {
  if (key.index < Class::kFixedKeys && table[key.index] == nullptr) return;
  std::fprintf(
      stderr,
      "the fixed key %u of a class of model elements is out of range or in use; describe the class "
      "without a fixed key\n",
      unsigned{key.index});
  std::abort();
}

}  // namespace

std::array<const Class*, ClassKey::kNotInTable + 1> Class::table{};

ClassKey Class::enter(const Class* entry) noexcept {
  static std::atomic<std::size_t> used = kFixedKeys;
  const std::size_t place = used.fetch_add(1, std::memory_order_relaxed);
  if (place >= ClassKey::kNotInTable) return {ClassKey::kNotInTable};
  table[place] = entry;
  return {static_cast<std::uint8_t>(place)};
}

Class::Class(std::u16string_view qualifiedName, const Type::Impl* base, std::size_t sizeBytes,
             Dismantle dismantle, Verify verify) noexcept
    : Type::Impl(qualifiedName, base),
      sizeBytes(sizeBytes),
      dismantle(dismantle),
      verify(verify),
      key(enter(this)) {}

Class::Class(ClassKey key, std::u16string_view qualifiedName, const Type::Impl* base,
             std::size_t sizeBytes, Dismantle dismantle, Verify verify) noexcept
    : Type::Impl(qualifiedName, base),
      sizeBytes(sizeBytes),
      dismantle(dismantle),
      verify(verify),
      key(key) {
  requireFreeKey(key, table);
  table[key.index] = this;
}

const Type::Impl& Class::modelElement() noexcept {
  static const Type::Impl type(u"kd::zero::ModelElement");
  return type;
}

}  // namespace kd::zero::meta
