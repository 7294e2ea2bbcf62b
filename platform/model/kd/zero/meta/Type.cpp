#include "kd/zero/meta/Type.hpp"

namespace kd::zero::meta {

bool Type::Impl::conformsTo(const Impl& other) const noexcept {
  for (const Impl* type = this; type != nullptr; type = type->base) {
    if (type == &other) return true;
  }
  return false;
}

}  // namespace kd::zero::meta
