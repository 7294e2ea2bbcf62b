#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "cppmicroservices/BundleContext.h"

namespace cppmicroservices {

/// The contexts that the library of a bundle was given. There are several when several frameworks
/// have started the bundle: the library uses that of the last start.
///
/// A library stores the address of this object, and another thread may use it while the bundle is
/// uninstalled. So it is made when a library is first given a context, and never destroyed; nor is
/// the library unloaded.
class BundleContextPrivate {
 public:
  using Set = void (*)(BundleContextPrivate*);

  /// Returns the contexts of the library that stores their address when `set` is called.
  static BundleContextPrivate& of(Set set);

  explicit BundleContextPrivate(Set set) : set(set) {}

  void give(const std::shared_ptr<detail::BundlePrivate>& bundle);
  void takeBack(const std::weak_ptr<detail::BundlePrivate>& bundle) noexcept;

  /// Returns the last one that is valid, or an invalid one.
  BundleContext last() const;

 private:
  const Set set;
  mutable std::mutex mutex;
  std::vector<std::weak_ptr<detail::BundlePrivate>> bundles;
};

}  // namespace cppmicroservices
