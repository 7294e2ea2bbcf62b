#pragma once

#include <cstddef>
#include <string_view>

#include "fl/i18n/ustring.hpp"
#include "quenlith/export/model.hpp"

namespace kd::zero::meta {

/// Names a type of the metamodel: a class of elements or a type of plain values.
///
/// One pointer wide: refers to a description that exists as long as the process.
class Type {
 public:
  class Impl;

  explicit Type(const Impl& impl) noexcept : impl(&impl) {}
  const Impl* get() const noexcept { return impl; }
  const Impl* operator->() const noexcept { return impl; }
  friend bool operator==(const Type&, const Type&) = default;

 private:
  const Impl* impl;
};

class QUENLITH_MODEL_EXPORT Type::Impl {
 public:
  /// `qualifiedName` is borrowed for the life of the process; `base` may be null.
  explicit Impl(std::u16string_view qualifiedName, const Impl* base = nullptr) noexcept
      : qualifiedName(qualifiedName), base(base) {}
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  fl::i18n::ustring getQualifiedName() const { return fl::i18n::ustring(qualifiedName); }
  /// The qualified name without its namespaces; valid for the life of the process.
  std::u16string_view getName() const noexcept {
    const std::size_t separator = qualifiedName.rfind(u':');
    return separator == qualifiedName.npos ? qualifiedName : qualifiedName.substr(separator + 1);
  }

  /// Tells whether a value of this type can be used as one of `other`: it is that type or
  /// derived from it.
  bool conformsTo(const Impl& other) const noexcept;

 private:
  std::u16string_view qualifiedName;
  const Impl* base;
};

}  // namespace kd::zero::meta
