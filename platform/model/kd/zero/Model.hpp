#pragma once

#include <cstdint>
#include <utility>

#include "kd/zero/ModelStorage.hpp"
#include "quenlith/export/model.hpp"

namespace kd::zero {

class ChangeListener;

/// Handle to a model: the container of all elements of one document.
///
/// One pointer wide. The model exists as long as a handle to it or an element of it.
/// Default-constructed and moved-from handles are empty. Not thread-safe: one thread at a time
/// uses a model.
class QUENLITH_MODEL_EXPORT Model {
 public:
  using Impl = ModelStorage;

  /// Returns a new model without elements.
  static Model create();
  /// Returns a handle to the model that owns `storage`.
  static Model share(ModelStorage& storage) noexcept;

  constexpr Model() noexcept = default;
  Model(const Model& other) noexcept : storageOfModel(other.storageOfModel) {
    if (storageOfModel != nullptr) storageOfModel->addHandle();
  }
  Model(Model&& other) noexcept : storageOfModel(std::exchange(other.storageOfModel, nullptr)) {}
  Model& operator=(Model other) noexcept {
    std::swap(storageOfModel, other.storageOfModel);
    return *this;
  }
  ~Model() {
    if (storageOfModel != nullptr) storageOfModel->dropHandle();
  }

  explicit operator bool() const noexcept { return storageOfModel != nullptr; }
  Impl* get() const noexcept { return storageOfModel; }
  Impl* operator->() const noexcept { return storageOfModel; }
  friend bool operator==(const Model&, const Model&) noexcept = default;

  /// Borrows `listener`, which must outlive the model or be removed, and notifies it of each value
  /// that is later appended to a sequence of plain values. A listener that is added twice is
  /// notified twice.
  void addListener(ChangeListener& listener) const;
  /// Undoes one `addListener`; does nothing when there was none. May be called during a
  /// notification: a listener that was removed is not notified of that change any more.
  void removeListener(ChangeListener& listener) const noexcept;

  /// Number of collection operations started so far, committed or not. An append that is skipped,
  /// or rejected by a rule of its collection, does not count, so a host can tell whether a call
  /// tried to change anything. One that a listener rejects counts.
  std::uint64_t getNumberOfOperations() const noexcept { return storageOfModel->operations; }

  /// Returns a text that names the first invariant of the model found broken, or null if there is
  /// none; checks the storage, and the document of the model with all its nodes. Linear in the size
  /// of the model, apart from one sort of its blocks. Throws std::bad_alloc.
  const char* findBrokenInvariant() const;
  /// Like it, but checks only `top`, which is not empty, and what can be reached from it: the cheap
  /// way to check what was just appended to a large document.
  const char* findBrokenInvariant(const ModelElement& top) const;
  /// Tells whether `findBrokenInvariant` finds none; for assertions.
  bool verify() const { return findBrokenInvariant() == nullptr; }
  bool verify(const ModelElement& top) const { return findBrokenInvariant(top) == nullptr; }

  /// Where the elements are stored; for classes of elements only.
  ModelStorage& storage() const noexcept { return *storageOfModel; }

 private:
  ModelStorage* storageOfModel = nullptr;
};

}  // namespace kd::zero
