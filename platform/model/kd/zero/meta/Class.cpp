#include "kd/zero/meta/Class.hpp"

#include <atomic>

namespace kd::zero::meta {

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
  table[key.index] = this;
}

const Type::Impl& Class::modelElement() noexcept {
  static const Type::Impl type(u"kd::zero::ModelElement");
  return type;
}

}  // namespace kd::zero::meta
