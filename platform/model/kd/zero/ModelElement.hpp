#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "quenlith/export/model.hpp"

namespace kd::zero {

namespace meta {
class Class;
struct ClassKey;
class Property;
}  // namespace meta

class Model;
class ModelStorage;
class Verification;

/// Handle to an element of a model: one pointer wide, counts its references.
///
/// Copies refer to the same element, which exists as long as any handle refers to it. A
/// default-constructed or moved-from handle is empty. Handles of one model are used by one thread
/// at a time: the count is a plain number.
class QUENLITH_MODEL_EXPORT ModelElement {
 public:
  class Impl;
  class DeferredReleases;

  constexpr ModelElement() noexcept = default;
  ModelElement(const ModelElement& other) noexcept : impl(other.impl) { addRef(); }
  ModelElement(ModelElement&& other) noexcept : impl(std::exchange(other.impl, nullptr)) {}
  ModelElement& operator=(ModelElement other) noexcept {
    std::swap(impl, other.impl);
    return *this;
  }
  ~ModelElement() { dropRef(); }

  /// Returns a handle that takes over one reference, which the caller counted.
  static ModelElement adopt(Impl* element) noexcept {
    ModelElement handle;
    handle.impl = element;
    return handle;
  }
  /// Returns a new handle to `element` and counts its reference; null gives the empty handle.
  static ModelElement share(Impl* element) noexcept;
  /// Gives up the handle's reference to the caller, who must adopt it again.
  Impl* detach() noexcept { return std::exchange(impl, nullptr); }

  explicit operator bool() const noexcept { return impl != nullptr; }
  Impl* get() const noexcept { return impl; }
  Impl* operator->() const noexcept { return impl; }
  /// Identity, not equality of contents.
  friend bool operator==(const ModelElement& a, const ModelElement& b) noexcept {
    return a.impl == b.impl;
  }

 protected:
  /// Lets an empty handle take over one reference.
  void take(Impl* element) noexcept { impl = element; }

 private:
  void addRef() const noexcept;
  void dropRef() const noexcept;

  Impl* impl = nullptr;
};

/// The implementation object behind a handle. Lives in the storage of its model.
class QUENLITH_MODEL_EXPORT ModelElement::Impl {
 public:
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  Model getModel() const noexcept;
  const meta::Class& getMetaClass() const noexcept;
  /// Tells whether the element is of `metaClass` or of a class derived from it.
  bool isKindOf(const meta::Class& metaClass) const noexcept;
  /// Tells whether this is a placeholder for an element that is not loaded.
  bool isProxy() const noexcept { return proxy; }
  /// The element that contains this one; the empty handle while it is detached.
  ModelElement getContainer() const noexcept { return ModelElement::share(container); }

 protected:
  /// Whether an element has anything outside its own block: other elements, rare parts, a separate
  /// text. An element without such parts is destroyed by deallocating its block.
  enum class Parts : bool { kNone, kSome };

  /// A new element has one reference, which the caller adopts.
  explicit Impl(meta::ClassKey metaClass, Parts parts = Parts::kSome) noexcept;
  ~Impl() = default;
  /// The default for classes of elements without collections and blocks: nothing to verify.
  void verifyParts(Verification& /*verification*/) const noexcept {}
  void setProxy() noexcept { proxy = true; }
  void setHasParts() noexcept { hasParts = true; }
  bool mayHaveParts() const noexcept { return hasParts; }
  /// Enlarges the element's block by `sizeBytes`, rounded up, directly after its object, which ends
  /// at `objectEnd`. Returns false and changes nothing unless the block is the last one of its
  /// chunk and the chunk has the space. `sizeBytes` is at most 504.
  bool extendBlock(const void* objectEnd, std::size_t sizeBytes) noexcept;
  /// By how many bytes the block was enlarged.
  std::size_t extraBytes() const noexcept { return extraGranules * kExtraGranule; }

 private:
  friend class ModelElement;
  friend class ModelElement::DeferredReleases;
  friend class ReferenceCollection;
  friend class Verification;
  friend struct Containment;
  friend struct ElementMaker;

  static constexpr std::size_t kExtraGranule = 8;
  static constexpr std::size_t kLargestExtraGranules = 0x3F;

  static void destroy(Impl* element) noexcept;
  void destroyWith(DeferredReleases& releases) noexcept;
  void deallocateBlock() noexcept;

  std::uint32_t references = 1;
  std::uint16_t containerProperty = 0;
  std::uint8_t classIndex : 7;
  // The header is packed into 16 bytes; docs/model.md has its layout.
  //
  // False only for an element that never contained another. Not a bit of containerProperty: that
  // is read as a whole soon after this bit of the owner is set, and a load that spans an earlier,
  // narrower store has to wait for it (a failed store-to-load forwarding).
  bool containsOthers : 1 = false;
  bool proxy : 1 = false;
  bool hasParts : 1;
  std::uint8_t extraGranules : 6 = 0;
  Impl* container = nullptr;
};

inline ModelElement ModelElement::share(Impl* element) noexcept {
  if (element != nullptr) ++element->references;
  return adopt(element);
}

inline void ModelElement::addRef() const noexcept {
  if (impl != nullptr) ++impl->references;
}

inline void ModelElement::dropRef() const noexcept {
  if (impl != nullptr && --impl->references == 0) Impl::destroy(impl);
}

/// Gives a kind of element its typed handle: `Self` is the handle class, `Base` the handle of
/// the kind that it is derived from. A handle of a derived kind converts to one of its base kind:
/// an lvalue is copied and counts another reference, a temporary passes its reference on.
template <class Self, class Base>
class Handle : public Base {
 public:
  /// The kind that `Self` is derived from.
  using BaseKind = Base;

  static Self adopt(ModelElement::Impl* element) noexcept {
    Self handle;
    handle.take(element);
    return handle;
  }
  static Self share(ModelElement::Impl* element) noexcept {
    return adopt(ModelElement::share(element).detach());
  }
  /// Returns a handle of this kind to the element; the empty handle if the element is of another
  /// kind or `element` is empty.
  static Self castFrom(const ModelElement& element) noexcept {
    if (!element || !element->isKindOf(Self::Impl::classOf())) return Self();
    return share(element.get());
  }
  auto get() const noexcept { return static_cast<typename Self::Impl*>(ModelElement::get()); }
  auto operator->() const noexcept { return get(); }
};

}  // namespace kd::zero
